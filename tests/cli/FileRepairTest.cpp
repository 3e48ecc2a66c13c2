#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/CommandTest.h"

namespace velkrund::tests {
namespace {

class TFileRepairTest : public TCommandTest {
 protected:
  TOutcome Repair() { return Run({"file", "repair", "F"}); }

  /// A file of three sections, as the command writes it.
  std::string Exported(const TArguments& Options) {
    if (!Exists("a.db"))
      Query("a.db",
            "CREATE TABLE A(V); CREATE TABLE B(V); CREATE TABLE C(V BLOB); INSERT INTO A VALUES('я'), (1); INSERT "
            "INTO C VALUES(x'0D0A')");
    TArguments Export = {"export", "table", "-d", "sqlite:a.db", "--all", "-o", "new.eif"};
    Export.insert(Export.end(), Options.begin(), Options.end());
    EXPECT_EQ(Run(Export).ExitCode, 0);
    const std::string Result = Read("new.eif");
    unlink(Path("new.eif").c_str());
    return Result;
  }
};

// What is left can be added to and checked, as the file that the command wrote could.
TEST_F(TFileRepairTest, ARepairedFileCanBeAddedTo) {
  for (const TArguments& Options : {TArguments{}, {"--release", "rv17"}}) {
    const std::string Content = Exported(Options);
    const std::size_t Second = Content.find("[SECTION]", Content.find("[END]")), Third = Content.rfind("[SECTION]");
    const struct {
      std::size_t Length, Kept;
    } Cases[] = {{Content.size() - 5, Third}, {Third + 4, Third}, {Second + 40, Second}, {Second, Second}};
    for (const auto& [Length, Kept] : Cases) {
      const std::string Result = Content.substr(0, Kept);
      Write("F", Content.substr(0, Length));
      EXPECT_EQ(Repair().ExitCode, 0);
      ASSERT_EQ(Read("F"), Result) << Length;
      EXPECT_EQ(Read("F.cut"), Content.substr(Kept, Length - Kept)) << Length;
      unlink(Path("F.cut").c_str());
      EXPECT_NE(Repair().Errors.find("nothing to repair: 'F' has "), std::string::npos) << Result;
      EXPECT_EQ(Run({"export", "table", "-d", "sqlite:a.db", "-t", "C", "-o", "F", "--add"}).ExitCode, 0) << Result;
      EXPECT_TRUE(Read("F").starts_with(Result));
      const auto Check = RunJson({"file", "check", "F"});
      EXPECT_EQ(Check["files"][0]["sections"].back()["rows"], 1) << Result;
    }
  }
}

TEST_F(TFileRepairTest, OnlyWhatNeverEndedIsCut) {
  const std::string Broken = "[SECTION]\r\nVersion = x\r\n", Block(256 * 1024 - Broken.size() - 4, '.');
  const std::string Good =
      "[SECTION]\r\nName = G\r\nType = TableData\r\nVersion = 200\r\nTableName = T\r\n[DATA]\r\n[END]\r\n";
  const struct {
    std::string Tail;
    bool IsCut;
  } Cases[] = {
      {Broken, true},
      {Broken + " [END]\r\n[END]x\r\n\n[END]\r\n[ END]\r\n[SECTION ]\r\n[section]\r\n[END", true},
      {Broken + "[SECTION].[END]\r\nA\n[END]\r\n", true},
      {Broken + Block + "[END\r\n]", true},
      {Broken + "[END]", false},
      {Broken + "[END]  \r\n", false},
      {Broken + "A\r[END]\rB", false},
      {Broken + "[SECTION]\r\n", false},
      {Broken + "[SECTION]    ", false},
      {Broken + Block + "\r\n[END]\r\n", false},
      {Broken + Block + "...\r\n[END]\r\n", false},
      {Broken + Block + "\r\n[END]" + std::string(300'000, ' '), false},
  };
  for (const auto& Case : Cases) {
    Write("F", Good + Case.Tail);
    const TOutcome Outcome = Repair();
    EXPECT_EQ(Outcome.ExitCode, Case.IsCut ? 0 : 1) << Case.Tail.substr(0, 99);
    EXPECT_EQ(Read("F"), Case.IsCut ? Good : Good + Case.Tail);
    EXPECT_EQ(Read("F.cut"), Case.IsCut ? Case.Tail : "");
    EXPECT_NE(Outcome.Errors.find("F:9: "), std::string::npos) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find("Version is not numeric value (Position:108)."), std::string::npos);
    EXPECT_EQ(Outcome.Errors.find("cutting cannot mend it; nothing was changed") == std::string::npos, Case.IsCut);
    unlink(Path("F.cut").c_str());
  }
  for (const char* Sound : {"", "; a comment\r\n", "no [SEC", "\n[SEC", "[SECTION]x\r\n[SECTIOM"}) {
    Write("F", Sound);
    const bool IsOurs = *Sound == '\0' || *Sound == ';';
    EXPECT_EQ(Repair().ExitCode, IsOurs ? 0 : 1) << Sound;
    EXPECT_EQ(Read("F"), Sound);
  }
  EXPECT_EQ(Files(), TArguments{"F"});
}

// Whatever part of a file has lost its carriage returns gets them back, and nothing else changes.
TEST_F(TFileRepairTest, LineFeedsAloneBecomeWholeLineEnds) {
  const auto LineFeeds = [](std::string Text) { return std::erase(Text, '\r'), Text; };
  const std::string Table = Exported({}), Form =
                                              "[SECTION]\r\nEncoding = UTF8\r\nName = lone\nfeed\r\nType = "
                                              "DSPStructure\r\nVersion = 200\r\nObjectType = 12\r\n"
                                              "ObjectName = A\r\nTableName =\r\nParentObject =\r\nRootNode "
                                              "=\r\n[DATA]\r\n [REMARKS]\r\n  a\n[END]\r\n [TREE]\r\n"
                                              "  x:string = 'y'\r\n  z\r\n[END]\r\n";
  const std::size_t Record = Table.find("  <"), Start = Table.find("[SECTION]");
  const struct {
    std::string Bytes, Whole;
  } Cases[] = {
      {LineFeeds(Table), Table},
      {Table + LineFeeds(Table), Table + Table},
      {LineFeeds(Table) + Table, Table + Table},
      {Table + LineFeeds(Table) + Table, Table + Table + Table},
      {Form + Table.substr(0, Record) + LineFeeds(Table.substr(Record)), Form + Table},
      {LineFeeds(Table.substr(0, Record)) + Table.substr(Record) + Form, Table + Form},
      {Table.substr(0, Record) + LineFeeds(Table.substr(Record)) + Table, Table + Table},
      {Table + LineFeeds(Table.substr(Start, Record)), Table},  // of what never ended
      {Form.substr(0, Form.rfind("\r\n  z")) + "\n  z\r\n[END]\r\n", Form},
      {std::string(300'000, ' ') + LineFeeds("\r\n" + Table), std::string(300'000, ' ') + "\r\n" + Table},
  };
  for (const auto& [Bytes, Whole] : Cases) {
    Write("F", Bytes);
    chmod(Path("F").c_str(), 0660);
    const TOutcome Before = Run({"file", "check", "F"});
    EXPECT_EQ(Before.ExitCode, 1) << Bytes;
    EXPECT_NE(Before.Errors.find("; velkrund file repair 'F' mends it"), std::string::npos) << Before.Errors;
    EXPECT_GT(RunJson({"file", "repair", "F"}).value("lineFeeds", 0), 0) << Bytes;
    EXPECT_EQ(Read("F"), Whole);
    EXPECT_EQ(Run({"file", "check", "F"}).ExitCode, 0) << Bytes;
    EXPECT_NE(Repair().Errors.find("nothing to repair"), std::string::npos) << Bytes;
    struct stat Status = {};
    stat(Path("F").c_str(), &Status);
    EXPECT_EQ(Status.st_mode & 07777, 0660U);
    unlink(Path("F.cut").c_str());
  }
  EXPECT_EQ(Files(), (TArguments{"F", "a.db"}));
}

TEST_F(TFileRepairTest, NothingIsOverwrittenAndRightsStay) {
  const std::string Tail = "[SECTION]\r\nName = secret\r\n";
  Write("F.cut", "mine");
  Write("F", "; kept\r\n" + Tail);
  chmod(Path("F").c_str(), 0660);
  const auto Json = RunJson({"file", "repair", "F"});
  EXPECT_EQ(Json["cut"]["file"], "F.cut-2");
  EXPECT_EQ(Json["cut"]["position"], 8);
  EXPECT_EQ(Json["cut"]["size"], Tail.size());
  EXPECT_EQ(Json["sectionsLeft"], 0);
  EXPECT_EQ(Read("F.cut"), "mine");
  EXPECT_EQ(Read("F.cut-2"), Tail);
  struct stat Status = {};
  stat(Path("F.cut-2").c_str(), &Status);
  EXPECT_EQ(Status.st_mode & 07777, 0660U);
}

TEST_F(TFileRepairTest, WhatCanNotBeDoneLeavesAllAsItWas) {
  const std::string Content = "[SECTION]\r\n" + std::string(100'000, 'x');
  Write("F", Content);
  mkdir(Path("folder").c_str(), 0700);
  // A file size limit stands in for a full disk.
  const TOutcome Full = Shell("trap '' XFSZ; ulimit -f 8; $V file repair F");
  EXPECT_EQ(Full.ExitCode, 1);
  EXPECT_NE(Full.Errors.find("Cannot write file 'F.cut': File too large"), std::string::npos) << Full.Errors;

  const int Writer = open(Path("F").c_str(), O_RDWR);
  struct flock Lock = {};
  Lock.l_type = F_WRLCK;
  ASSERT_EQ(fcntl(Writer, F_OFD_SETLK, &Lock), 0);
  const struct {
    const char* File;
    int ExitCode;
    const char* Error;
  } Cases[] = {{"F", 1, "Cannot open file 'F': it is in use by another program"},
               {"none", 1, "Cannot open file 'none': No such file or directory"},
               {"folder", 1, "Cannot open file 'folder': Is a directory"},
               {"-", 2, "'-' is a pipe: there is nothing to repair"}};
  for (const auto& Case : Cases) {
    const TOutcome Outcome = Run({"file", "repair", Case.File});
    EXPECT_EQ(Outcome.ExitCode, Case.ExitCode) << Case.File;
    EXPECT_NE(Outcome.Errors.find(Case.Error), std::string::npos) << Outcome.Errors;
  }
  close(Writer);
  EXPECT_EQ(Read("F"), Content);
  EXPECT_EQ(Files(), (TArguments{"F", "folder"}));
}

}  // namespace
}  // namespace velkrund::tests
