#include <signal.h>
#include <unistd.h>

#include "tests/cli/ShopTest.h"
#include "tests/cli/UnseenFile.h"

namespace velkrund::tests {
namespace {

class TUnfinishedTest : public TShopTest {
 protected:
  static TArguments ExportQuery(const std::string& Sql, const std::string& File, const TArguments& More) {
    TArguments Result = {"export", "query", "-d", "sqlite:shop.db", "--section", "Q", "--sql", Sql, "-o", File};
    Result.insert(Result.end(), More.begin(), More.end());
    return Result;
  }
  /// Writes enough to be handed to the system, and comes to no end.
  static TArguments Endless(const std::string& File, const TArguments& More) {
    return ExportQuery(
        "SELECT hex(zeroblob(400000)) AS V UNION ALL SELECT (WITH RECURSIVE C(I) AS (SELECT 1 UNION ALL SELECT I + 1 "
        "FROM C WHERE I < 1e12) SELECT max(I) FROM C)",
        File, More);
  }
  static TArguments Short(const std::string& File, const TArguments& More) {
    return ExportQuery("SELECT 7 AS V", File, More);
  }
  void KillWhen(const TArguments& Job, const std::function<bool(pid_t)>& Condition) {
    const pid_t Process = Start(Job);
    EXPECT_TRUE(WaitUntil([&] { return Condition(Process); })) << Joined(Job);
    kill(Process, SIGKILL);
    EXPECT_EQ(Finish(Process).ExitCode, 128 + SIGKILL);
  }
  void ExpectSays(const TArguments& Job, int ExitCode, const std::string& Text) {
    const TOutcome Outcome = Run(Job);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Job) << "\n" << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Text), std::string::npos) << Joined(Job) << "\n" << Outcome.Errors;
  }
};

TEST_F(TUnfinishedTest, AKilledExportLeavesWhatItWasAndAnEndThatIsKnown) {
  ASSERT_EQ(Run(Short("F", {})).ExitCode, 0);
  const std::string Table = Section("B", {"ID", "X"}, {"5|0.5"});
  Write("F", Read("F") + Table);
  const std::string Before = Read("F");
  for (const TArguments& How : {TArguments{"--add"}, {"--overwrite", "yes"}}) {
    KillWhen(Endless("F", How), [&](pid_t) { return Read("F").size() > Before.size(); });
    const std::string Left = Read("F");
    EXPECT_TRUE(Left.starts_with(Before + ";SECTION]\r\nEncoding = UTF8\r\nName = Q\r\n")) << Left.substr(0, 900);
    EXPECT_EQ(Files(), (TArguments{"F", "empty.db", "shop.db"}));
    EXPECT_EQ(Names("F"), "Q B");
    const auto Listed = RunJson({"file", "list", "F"});
    EXPECT_EQ(Listed["unfinished"]["position"], Before.size());
    EXPECT_EQ(Listed["unfinished"]["size"], Left.size() - Before.size());
    const std::string Bytes = std::to_string(Left.size() - Before.size()) + " bytes";
    const std::string Position = std::to_string(Before.size());
    ExpectSays({"file", "list", "F"}, 0, "an unfinished section, from position " + Position + " on: " + Bytes);
    ExpectSays({"file", "check", "F"}, 1, "ends with an unfinished section (Position:" + Position + ")");
    // All of it was asked for, and cannot be had.
    const TArguments Import = ImportInto("table", {"-i", "F", "--append"});
    ExpectSays(Import, 1, "; --unfinished skip loads the sections before it");
    ExpectSays(ImportInto("file", {"-i", "F", "--append", "--target", "A"}), 1, "--unfinished skip");
    EXPECT_EQ(Counts("empty.db"), "0|0");
    for (const TArguments& Said : {TArguments{"--section", "B"}, {"--unfinished", "skip"}}) {
      TArguments Part = Import;
      Part.insert(Part.end(), Said.begin(), Said.end());
      ExpectSays(Part, 0, "left out an unfinished section at the end of 'F': " + Bytes);
      EXPECT_EQ(Counts("empty.db"), "0|1");
      Query("empty.db", "DELETE FROM B");
    }
    ExpectSays(Short("F", {"--add"}), 0, "an unfinished section at the end of 'F' was cut off first: " + Bytes);
    EXPECT_TRUE(Read("F").starts_with(Before + "[SECTION]\r\n"));
    EXPECT_EQ(Run({"file", "check", "F"}).ExitCode, 0);
    Write("F", Left);
    EXPECT_EQ(RunJson({"file", "repair", "F"})["cut"]["position"], Before.size());
    EXPECT_EQ(Read("F"), Before);
    EXPECT_EQ(Read("F.cut"), Left.substr(Before.size()));
    unlink(Path("F.cut").c_str());
  }
}

TEST_F(TUnfinishedTest, AKilledFirstExportLeavesNothing) {
  Write("OLD", Section("B", {"X"}, {"1"}));
  const std::string Old = Read("OLD");
  for (const TArguments& Job : {Endless("F", {}), Endless("F", {"--new"}), Endless("OLD", {"--new"})}) {
    KillWhen(Job, [this](pid_t Process) { return WritesUnseen(Process, Path(".")); });
    EXPECT_EQ(Files(), (TArguments{"OLD", "empty.db", "shop.db"})) << Joined(Job);
    EXPECT_EQ(Read("OLD"), Old);
  }
  // What is finished has a name.
  Query("shop.db",
        "CREATE VIEW Z AS SELECT hex(zeroblob(400000)) AS V UNION ALL SELECT (WITH RECURSIVE C(I) AS (SELECT 1 UNION "
        "ALL SELECT I + 1 FROM C WHERE I < 1e12) SELECT max(I) FROM C)");
  KillWhen({"export", "table", "-d", "sqlite:shop.db", "-t", "B", "-t", "Z", "-o", "F"},
           [this](pid_t) { return Exists("F"); });
  EXPECT_EQ(Names("F"), "B");
}

TEST_F(TUnfinishedTest, ReplacedSectionsAreOldOrNew) {
  const std::string Before = Section("B", {"X"}, {"1"}) + "; kept\r\n" + Section("C", {"X"}, {"2"});
  const TArguments Job = {"export", "table", "-d", "sqlite:shop.db", "-t", "A", "-t",
                          "B",      "-o",    "F",  "--overwrite",    "yes"};
  Write("F", Before);
  Write("F.velkrund-new", "mine");
  EXPECT_EQ(Run(Job).ExitCode, 0);
  EXPECT_EQ(Names("F"), "C A B");
  EXPECT_TRUE(Read("F").starts_with("; kept\r\n[SECTION]"));
  EXPECT_EQ(Read("F").find(";SECTION]"), std::string::npos);
  // What stands in the way is told before the file has grown.
  Write("F", Before);
  ASSERT_EQ(link(Path("F").c_str(), Path("second").c_str()), 0);
  for (const TArguments& Refused : {Job,
                                    TArguments{"file", "remove", "F", "0"},
                                    {"export", "table", "-d", "sqlite:shop.db", "-t", "A", "-o", "F", "--new"}}) {
    ExpectSays(Refused, 1, "Cannot replace file 'F': it has 2 names (hard links)");
    EXPECT_EQ(Read("F"), Before);
  }
  EXPECT_EQ(Run({"export", "table", "-d", "sqlite:shop.db", "-t", "A", "-o", "F"}).ExitCode, 0);
  EXPECT_EQ(Names("second"), "B C A");
  EXPECT_EQ(Read("F.velkrund-new"), "mine");
  EXPECT_EQ(Files(), (TArguments{"F", "F.velkrund-new", "empty.db", "second", "shop.db"}));
}

TEST_F(TUnfinishedTest, NamesThatAreLongOrLeadNowhere) {
  const std::string Longest(255, 'n');
  for (const TArguments& Job : {TArguments{}, {"--overwrite", "yes"}, {"--new"}}) {
    EXPECT_EQ(Run(Short(Longest, Job)).ExitCode, 0) << Joined(Job);
    EXPECT_EQ(Names(Longest), "Q");
  }
  Write(Longest, Read(Longest) + "[SECTION]\r\n");
  EXPECT_EQ(RunJson({"file", "repair", Longest})["cut"]["file"], Longest.substr(4) + ".cut");
  EXPECT_EQ(Run({"file", "remove", Longest, "0"}).ExitCode, 0);
  ASSERT_EQ(symlink("nowhere", Path("L").c_str()), 0);
  for (const TArguments& Job : {TArguments{}, {"--new"}})
    ExpectSays(Short("L", Job), 1, "'L': it is a link to 'nowhere', where there is no file");
}

}  // namespace
}  // namespace velkrund::tests
