#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/CommandTest.h"

namespace velkrund::tests {
namespace {

using TFileCommandsTest = TCommandTest;

std::string Section(const std::string& Name, const std::string& Body) {
  return "[SECTION]\r\nName = " + Name + "\r\nType = TableData\r\nVersion = 100\r\nTableName = T\r\n[DATA]\r\n" + Body +
         "\r\n[END]\r\n";
}

TEST_F(TFileCommandsTest, RemoveLeavesEveryOtherByte) {
  const std::string Comment = "; kept\r\n\r\n";
  const std::string A = Section("A", "body \xFF of A"), B = Section("B", "lone\nline feed"), C = Section("C", "<1>"),
                    A2 = Section("a", "");
  const std::string All = Comment + A + Comment + B + C + A2;
  struct TCase {
    TArguments Options;
    int ExitCode;
    std::string Left;
  };
  const TCase Cases[] = {
      {{"0"}, 0, Comment + Comment + B + C + A2},
      {{"3", "1", "1"}, 0, Comment + A + Comment + C},
      {{"0", "1", "2", "3"}, 0, Comment + Comment},
      {{"--name", "b", "2"}, 0, Comment + A + Comment + A2},
      {{"--name", "A"}, 1, All},
      {{"--name", "A", "--yes"}, 0, Comment + Comment + B + C},
      {{"0", "4"}, 1, All},
      {{"--name", "D"}, 1, All},
  };
  for (const auto& [Options, ExitCode, Left] : Cases) {
    Write("F", All);
    chmod(Path("F").c_str(), 0640);
    TArguments Arguments = {"file", "remove", "F"};
    Arguments.insert(Arguments.end(), Options.begin(), Options.end());
    EXPECT_EQ(Run(Arguments).ExitCode, ExitCode) << Joined(Options);
    EXPECT_EQ(Read("F"), Left) << Joined(Options);
    struct stat Status = {};
    stat(Path("F").c_str(), &Status);
    EXPECT_EQ(Status.st_mode & 07777, 0640U) << Joined(Options);
    EXPECT_EQ(Files(), TArguments{"F"}) << Joined(Options);
  }

  // Through a link the file behind it changes, and the link stays.
  Write("F", A + B);
  ASSERT_EQ(symlink("F", Path("link").c_str()), 0);
  const auto Report = RunJson({"file", "remove", "link", "0"});
  EXPECT_EQ(Report["removed"][0]["name"], "A");
  EXPECT_EQ(Report["sectionsLeft"], 1);
  EXPECT_EQ(Read("F"), B);
  struct stat Status = {};
  lstat(Path("link").c_str(), &Status);
  EXPECT_TRUE(S_ISLNK(Status.st_mode));
}

TEST_F(TFileCommandsTest, ListShowsHeadersAndWhatComesBeforeAFault) {
  const std::string A = Section("A \x1B[31m", "12345");
  Write("F", A + Section("B", "") + "[SECTION]\r\nName = C\r\n");
  const TOutcome Text = Run({"file", "list", "F"});
  EXPECT_EQ(Text.ExitCode, 1);
  EXPECT_NE(Text.Output.find("    0  A \\x1B[31m  TableData      100  ansi            11     7  TableName=T\n"),
            std::string::npos)
      << Text.Output;
  EXPECT_NE(Text.Errors.find("Data begin not found"), std::string::npos) << Text.Errors;

  const TOutcome Document = Run({"file", "list", "F", "--json"});
  EXPECT_EQ(Document.ExitCode, 1);
  const auto Json = nlohmann::json::parse(Document.Output, nullptr, false);
  ASSERT_EQ(Json["sections"].size(), 2U) << Document.Output;
  const auto& Second = Json["sections"][1];
  EXPECT_EQ(Second["position"], static_cast<int>(A.size()) + 11);
  EXPECT_EQ(Second["parameters"]["TableName"], "T");
  EXPECT_EQ(Read("F").substr(Second["dataPosition"], Second["size"]), "\r\n");
  EXPECT_GT(Json["error"]["line"], 0);
}

// Both encodings in one file, with text between the sections: listed as they are, and removed around each other.
TEST_F(TFileCommandsTest, MixedEncodingsAreListedAndRemoved) {
  const std::string Mark = "\xEF\xBB\xBF\r\n; first\r\n", Between = "\r\n; between\r\n";
  const std::string Ansi = Section("\xC6\xF3\xEA", "\xFF"), Last = Section("C", "");
  std::string Utf8 = Section("Жук", "я");
  Utf8.insert(Utf8.find("Name"), "Encoding = UTF8\r\n");
  Write("F", Mark + Utf8 + Between + Ansi + Between + Last);
  const auto Json = RunJson({"file", "list", "F"});
  ASSERT_EQ(Json["sections"].size(), 3U);
  for (const auto& [Index, Encoding] : {std::pair(0, "utf8"), std::pair(1, "ansi")}) {
    EXPECT_EQ(Json["sections"][static_cast<std::size_t>(Index)]["name"], "Жук");
    EXPECT_EQ(Json["sections"][static_cast<std::size_t>(Index)]["encoding"], Encoding);
  }
  EXPECT_EQ(Run({"file", "remove", "F", "0", "2"}).ExitCode, 0);
  EXPECT_EQ(Read("F"), Mark + Between + Ansi + Between);
}

}  // namespace
}  // namespace velkrund::tests
