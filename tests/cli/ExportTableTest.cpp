#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/ShopTest.h"

namespace velkrund::tests {
namespace {

class TExportTableTest : public TShopTest {
 protected:
  TArguments Export(const TArguments& More) const {
    TArguments Result = {"export", "table", "-d", "sqlite:shop.db"};
    Result.insert(Result.end(), More.begin(), More.end());
    return Result;
  }
};

TEST_F(TExportTableTest, EveryWayOfWritingComesBackTheSame) {
  const TArguments Ways[] = {{}, {"--encoding", "ansi"}, {"--release", "rv20"}, {"--encoding", "utf8"}};
  for (const TArguments& Way : Ways) {
    TArguments Arguments = Export({"--all", "-o", "shop.eif"});
    Arguments.insert(Arguments.end(), Way.begin(), Way.end());
    EXPECT_EQ(RunJson(Arguments)["rows"], 5) << Joined(Way);
    EXPECT_EQ(RunJson({"import", "table", "-d", "sqlite:empty.db", "-i", "shop.eif", "--replace"})["rows"], 5);
    for (const char* Table : {"A", "B"}) EXPECT_EQ(Exact("empty.db", Table), Exact("shop.db", Table)) << Joined(Way);
    unlink(Path("shop.eif").c_str());
  }
}

TEST_F(TExportTableTest, OptionsShowInTheFile) {
  Query("shop.db", "CREATE VIEW V AS SELECT * FROM B");
  struct TCase {
    TArguments Options;
    std::string Sections;  // name, type, version and encoding of each
    std::string Holds;
  };
  const TCase Cases[] = {
      {{"-t", "a"}, "A TableData 200 utf8", "TableName = A\r\n"},
      {{"-t", "B", "-t", "A", "-t", "b"},
       "B TableData 200 utf8, A TableData 200 utf8",
       "\xEF\xBB\xBF\r\n[SECTION]\r\n"},
      {{"--all"}, "A TableData 200 utf8, B TableData 200 utf8", "<1|0.1>"},
      {{"-t", "V"}, "V TableData 200 utf8", "<1|0.1>"},
      {{"-t", "A", "--section", "Other name"}, "Other name TableData 200 utf8", "TableName = A\r\n"},
      {{"-t", "A", "--encoding", "ansi"}, "A TableData 200 ansi", "\xC0\xED\xED\xE0"},
      {{"-t", "B", "--release", "rv17"}, "B TableData 100 ansi", "[FIELDS]\r\n  ID\r\n  X\r\n"},
      {{"-t", "A", "--fields", "price, id", "--fields", "BIN"},
       "A TableData 200 utf8",
       " [FIELDS]\r\n  BIN\r\n  id\r\n  price\r\n [RECORDS]\r\n  <0x0A00FF|1|$12.5>\r\n"},
  };
  for (const auto& [Options, Sections, Holds] : Cases) {
    TArguments Arguments = Export({"-o", "F"});
    Arguments.insert(Arguments.end(), Options.begin(), Options.end());
    RunJson(Arguments);
    std::string Found;
    const auto List = RunJson({"file", "list", "F"});
    for (const auto& Section : List["sections"])
      Found += (Found.empty() ? "" : ", ") + Section["name"].get<std::string>() + " " +
               Section["type"].get<std::string>() + " " + Section["version"].dump() + " " +
               Section["encoding"].get<std::string>();
    EXPECT_EQ(Found, Sections) << Joined(Options);
    EXPECT_NE(Read("F").find(Holds), std::string::npos) << Joined(Options) << "\n" << Read("F");
    unlink(Path("F").c_str());
  }
}

TEST_F(TExportTableTest, TheSameRowsGiveTheSameTextUnlessAnyOrderWillDo) {
  const std::string Keyed = "CREATE TABLE K (ID TEXT PRIMARY KEY); CREATE TABLE N (V);";
  Query("one.db", Keyed + "INSERT INTO K VALUES ('b'), ('a'); INSERT INTO N VALUES (1), (1)");
  Query("two.db", Keyed + "INSERT INTO K VALUES ('a'), ('b'); INSERT INTO N VALUES (1), (1)");
  const auto Rows = [&](const std::string& Database, const TArguments& More) {
    unlink(Path("F").c_str());
    TArguments Line = {"export", "table", "-d", "sqlite:" + Database, "--all", "-o", "F"};
    Line.insert(Line.end(), More.begin(), More.end());
    const std::string Notes = RunJson(Line)["notes"].dump();
    return Notes + Read("F");
  };
  const std::string InOrder = Rows("one.db", {});
  EXPECT_EQ(InOrder, Rows("two.db", {}));
  EXPECT_NE(InOrder.find("<'a'>\r\n  <'b'>"), std::string::npos) << InOrder;
  EXPECT_NE(InOrder.find("never NULL: N\"]"), std::string::npos) << InOrder;
  const std::string Any = Rows("one.db", {"--row-order", "any"});
  EXPECT_NE(Any.find("<'b'>\r\n  <'a'>"), std::string::npos) << Any;
  EXPECT_EQ(Any.rfind("[]", 0), 0U) << Any;
}

TEST_F(TExportTableTest, WhatIsLeftOutOfAllIsNamedWithItsReason) {
  Query("shop.db",
        "CREATE VIEW V AS SELECT * FROM B; CREATE VIRTUAL TABLE F USING fts5(X); CREATE VIRTUAL TABLE R USING "
        "rtree(I, X0, X1); CREATE VIRTUAL TABLE E USING fts5(X, content = 'B'); CREATE VIRTUAL TABLE C USING "
        "fts4(X, content=\"\"); CREATE VIRTUAL TABLE W USING fts5vocab(F, row)");
  const auto Report = RunJson(Export({"--all", "-o", "F"}));
  EXPECT_EQ(Names("F"), "A B F R");
  EXPECT_EQ(Report["notes"],
            nlohmann::json({"left out, being views: V",
                            "left out, being indexes of words over the rows of other tables, to be rebuilt when these "
                            "are loaded: E",
                            "left out, being indexes of words that do not keep the texts: C",
                            "left out, being virtual tables whose rows are computed or kept elsewhere: W"}));
  for (const char* Name : {"E", "C"}) {
    const TOutcome Outcome = Run(Export({"-t", Name, "-o", "G"}));
    EXPECT_EQ(Outcome.ExitCode, 1);
    EXPECT_NE(Outcome.Errors.find("has no rows of its own"), std::string::npos) << Outcome.Errors;
    EXPECT_FALSE(Exists("G"));
  }
}

TEST_F(TExportTableTest, SectionsThatAreThere) {
  struct TCase {
    TArguments Options;
    int ExitCode;
    std::string Names;  // afterwards
    bool OldIsThere, NewIsThere;
    std::string Says;
  };
  const TCase Cases[] = {
      {{}, 1, "B A X", true, false, "the section 'A'. Give --overwrite yes"},
      {{"--overwrite", "ask"}, 1, "B A X", true, false, "--add"},
      {{"--overwrite", "no"}, 0, "B A X", true, false, "left out table A"},
      {{"--overwrite", "yes"}, 0, "B X A", false, true, "exported table A"},
      {{"--add"}, 0, "B A X A", true, true, "exported table A"},
      {{"--section", "x", "--overwrite", "yes"}, 0, "B A x", true, true, "exported table A"},
      {{"--overwrite", "yes", "-t", "B"}, 0, "X A B", false, true, "in all 2 sections"},
  };
  for (const auto& [Options, ExitCode, Expected, OldIsThere, NewIsThere, Says] : Cases) {
    unlink(Path("F").c_str());
    Query("shop.db", "UPDATE A SET NAME = 'old' WHERE ID = 1");
    RunJson(Export({"-t", "B", "-t", "A", "-o", "F"}));
    RunJson(Export({"-t", "B", "-o", "F", "--section", "X"}));
    Query("shop.db", "UPDATE A SET NAME = 'new' WHERE ID = 1");
    TArguments Arguments = Export({"-t", "A", "-o", "F"});
    Arguments.insert(Arguments.end(), Options.begin(), Options.end());
    const TOutcome Outcome = Run(Arguments);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Options);
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Outcome.Errors;
    EXPECT_EQ(Names("F"), Expected) << Joined(Options);
    EXPECT_EQ(Read("F").find("'old'") != std::string::npos, OldIsThere) << Joined(Options);
    EXPECT_EQ(Read("F").find("'new'") != std::string::npos, NewIsThere) << Joined(Options);
  }
  EXPECT_EQ(Files(), (TArguments{"F", "empty.db", "shop.db"}));
}

TEST_F(TExportTableTest, AFailureLeavesEverythingAsItWas) {
  // What the code page lacks is an error in the middle of the third row.
  Query("shop.db", "UPDATE A SET NAME = '東京' WHERE ID = 3");
  const std::string Before =
      "; a comment\r\n[SECTION]\r\nName = A\r\nType = TableData\r\nVersion = 200\r\n[DATA]\r\n[END]";
  struct TCase {
    TArguments Options;
    bool FileIsThere;
    std::string Says;
  };
  const TCase Cases[] = {
      {{"-t", "A", "--encoding", "ansi", "--section", "N"}, false, "velkrund: A text has characters"},
      {{"-t", "A", "--encoding", "ansi", "--overwrite", "yes"}, true, "velkrund: A text has characters"},
      {{"-t", "NONE"}, false, "no table 'NONE' in the database sqlite:shop.db: it has A, B\n"},
      {{"-t", "B", "-t", "NONE"}, true, "no table 'NONE'"},
      {{"-t", "B", "--fields", "ID,WRONG"}, false, "no field 'WRONG' in the table 'B': it has ID, X\n"},
      {{"-t", "A", "--fields", "ID,naem"}, false, "it has ID, NAME, PRICE, BIN, AT; did you mean 'NAME'?\n"},
  };
  for (const auto& [Options, FileIsThere, Says] : Cases) {
    unlink(Path("F").c_str());
    if (FileIsThere) Write("F", Before + "\r\n");
    TArguments Arguments = Export({"-o", "F"});
    Arguments.insert(Arguments.end(), Options.begin(), Options.end());
    const TOutcome Outcome = Run(Arguments);
    EXPECT_EQ(Outcome.ExitCode, 1) << Joined(Options);
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Outcome.Errors;
    EXPECT_EQ(Read("F"), FileIsThere ? Before + "\r\n" : "") << Joined(Options);
    EXPECT_EQ(Exists("F"), FileIsThere) << Joined(Options);
  }

  const auto Report = RunJson(Export({"-t", "A", "--encoding", "ansi", "--allow-loss", "-o", "G"}));
  EXPECT_EQ(Report["sections"][0]["charactersLost"], 2);
  EXPECT_NE(Read("G").find("'?"
                           "?'"),
            std::string::npos);

  // A last line without its end must not swallow the next section.
  Write("F", Before);
  RunJson(Export({"-t", "B", "-o", "F"}));
  EXPECT_EQ(Names("F"), "A B");

  // One that fails does not take the others along.
  const TOutcome Outcome = Run(Export({"--all", "--encoding", "ansi", "-o", "H", "--on-error", "continue", "--json"}));
  EXPECT_EQ(Outcome.ExitCode, 1);
  const auto Document = nlohmann::json::parse(Outcome.Output, nullptr, false);
  EXPECT_EQ(Document["sections"][0]["state"], "failed");
  EXPECT_EQ(Document["sections"][1]["state"], "done");
  EXPECT_EQ(Names("H"), "B");

  // What the old version would bring back as another value is named, or counted.
  Query("shop.db", "CREATE TABLE D(V DATE); INSERT INTO D VALUES('2024-05-01'), (45000), (x'00')");
  const TArguments Old = Export({"-t", "D", "-o", "D", "--release", "rv17"});
  const std::string Refusal = Run(Old).Errors;
  EXPECT_NE(Refusal.find("the number would come back as a date or time (Field:'V';Record:2)"), std::string::npos);
  EXPECT_NE(Refusal.find("--allow-loss"), std::string::npos) << Refusal;
  TArguments Allowed = Old;
  Allowed.emplace_back("--allow-loss");
  EXPECT_NE(Run(Allowed).Errors.find("2 values could not be kept"), std::string::npos);
  Allowed.insert(Allowed.end(), {"--overwrite", "yes"});
  EXPECT_EQ(RunJson(Allowed)["valuesChanged"], 2);
}

TEST_F(TExportTableTest, AFileMadeAfreshHoldsAllThatWasAskedForOrIsAsItWas) {
  Query("shop.db", "UPDATE A SET NAME = '東京' WHERE ID = 3");
  RunJson(Export({"-t", "B", "-o", "old", "--section", "OLD"}));
  const std::string Old = Read("old"), Torn = Old.substr(0, Old.size() - 9);
  RunJson(Export({"--all", "-o", "both"}));
  const struct {
    std::string Before;  // in F; empty: it is not there
    TArguments Options;
    int ExitCode;
    std::string After;
    std::string Says;
  } Cases[] = {
      {Old, {"--all"}, 0, Read("both"), "in all 2 sections"},
      {"", {"--all"}, 0, Read("both"), "in all 2 sections"},
      {Torn, {"--all"}, 0, Read("both"), "in all 2 sections"},
      {Old, {"-t", "B", "-t", "A", "--encoding", "ansi"}, 1, Old, "taken back"},
      {Old, {"--all", "--encoding", "ansi", "--on-error", "continue"}, 1, Old, "'link' is left as it was"},
      {"", {"--all", "--encoding", "ansi", "--on-error", "continue"}, 1, "", "'F' is left as it was"},
      {"Dear diary", {"--all"}, 1, "Dear diary", "is not an export/import file: it is not replaced"},
  };
  symlink("F", Path("link").c_str());
  for (const auto& [Before, Options, ExitCode, After, Says] : Cases) {
    SCOPED_TRACE(Before + Joined(Options));
    unlink(Path("F").c_str());
    if (!Before.empty()) Write("F", Before);
    if (!Before.empty()) chmod(Path("F").c_str(), 0640);
    TArguments Arguments = Export({"-o", Before.empty() ? "F" : "link", "--new"});
    Arguments.insert(Arguments.end(), Options.begin(), Options.end());
    const TOutcome Outcome = Run(Arguments);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Outcome.Errors;
    EXPECT_EQ(Read("F"), After);
    EXPECT_EQ(Exists("F"), !After.empty());
    struct stat Status = {};
    if (!Before.empty() && stat(Path("F").c_str(), &Status) == 0) {
      EXPECT_EQ(Status.st_mode & 0777, 0640U);
    }
  }
  unlink(Path("link").c_str());
  EXPECT_EQ(Files(), (TArguments{"F", "both", "empty.db", "old", "shop.db"}));
}

TEST_F(TExportTableTest, FilesThatCanNotBeUsed) {
  Write("text.txt", "Dear diary,\r\n");
  RunJson(Export({"-t", "A", "-o", "locked.eif"}));
  const std::string Before = Read("locked.eif");
  const int Locked = open(Path("locked.eif").c_str(), O_RDWR | O_CLOEXEC);
  struct flock Lock = {};
  Lock.l_type = F_WRLCK;
  ASSERT_EQ(fcntl(Locked, F_OFD_SETLK, &Lock), 0);
  struct TCase {
    TArguments Arguments;
    std::string Says;
  };
  const TCase Cases[] = {
      {Export({"-t", "A", "-o", "text.txt"}), "is not an export/import file"},
      {Export({"-t", "A", "-o", "shop.db"}), "is an SQLite database: nothing is added to it"},
      {Export({"-t", "A", "-o", "missing/F"}), "there is no folder 'missing'"},
      {Export({"-t", "A", "-o", ".captured"}), "Is a directory"},
      {Export({"-t", "A", "-o", "locked.eif", "--add"}), "in use"},
      {Export({"-t", "A", "-o", "/dev/full"}), "No space left on device"},
      {{"file", "remove", "locked.eif", "0"}, "in use"},
      {{"import", "table", "-d", "sqlite:empty.db", "-i", "missing"}, "Cannot open file 'missing': No such file"},
      {{"import", "table", "-d", "sqlite:empty.db", "-i", "text.txt"}, "is not an export/import file: no line of it"},
      {{"export", "table", "-d", "sqlite:none.db", "-t", "A", "-o", "F"}, "does not exist"},
      {{"export", "table", "-d", "other:x", "-t", "A", "-o", "F"}, "unknown scheme"},
      {{"database", "info", "-d", "sqlite:text.txt"}, "text.txt"},
      {{"database", "info", "--config", "missing.toml", "-d", "x"}, "missing.toml"},
  };
  for (const auto& [Arguments, Says] : Cases) {
    const TOutcome Outcome = Run(Arguments);
    EXPECT_EQ(Outcome.ExitCode, 1) << Joined(Arguments);
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Joined(Arguments) << "\n" << Outcome.Errors;
  }
  EXPECT_EQ(RunJson({"file", "list", "locked.eif"})["sections"].size(), 1U) << "readers take no lock";
  close(Locked);
  EXPECT_EQ(Read("locked.eif"), Before);
  EXPECT_EQ(Read("text.txt"), "Dear diary,\r\n");
  EXPECT_EQ(Files(), (TArguments{"empty.db", "locked.eif", "shop.db", "text.txt"}));
}

TEST_F(TExportTableTest, Pipes) {
  RunJson(Export({"--all", "-o", "F"}));
  const std::string ToOther = " | $V import table -d sqlite:empty.db -i - --replace";
  const std::string Full =
      "velkrund: Cannot write to standard output: No space left on device; make room, then run it again\n";
  struct TCase {
    std::string Line;
    int ExitCode;
    std::string Counts;       // of empty.db afterwards
    std::string Errors = {};  // empty: whatever they are
  };
  const TCase Cases[] = {
      {"$V export table -d sqlite:shop.db --all -o - >G && cmp F G", 0, "0|0"},
      {"$V export table -d sqlite:shop.db --all -o - | $V file list - | grep -c utf8", 0, "0|0"},
      {"$V export table -d sqlite:shop.db --all -o -" + ToOther, 0, "3|2"},
      {"$V export table -d sqlite:shop.db -t NONE -o -" + ToOther, 1, "3|2"},
      {"sed s/1e+300/7.5/ F | $V import table -d sqlite:empty.db -i /dev/stdin --replace", 0, "3|2"},
      {"$V export table -d sqlite:shop.db -t A -o - >/dev/full", 1, "3|2", Full + "failed table A, section 'A'\n"},
      {"$V file list F --json >/dev/full", 1, "3|2",
       "velkrund: Cannot write to standard output: No space left on device; the document is missing; what the run has "
       "done stays\n"},
      {"$V file list F >&-", 1, "3|2"},
      // The reader is gone before a byte is written; the command's own exit code is what counts.
      {"{ sleep 0.2; $V file list F --json; echo $? >code; } | true; exit $(cat code)", 1, "3|2"},
      {"{ sleep 0.2; $V export table -d sqlite:shop.db --all -o -; echo $? >code; } | true; exit $(cat code)", 1,
       "3|2"},
  };
  for (const auto& [Line, ExitCode, Expected, Errors] : Cases) {
    const TOutcome Outcome = Shell(Line);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Line << "\n" << Outcome.Errors;
    EXPECT_EQ(Counts("empty.db"), Expected) << Line;
    if (!Errors.empty()) {
      EXPECT_EQ(Outcome.Errors, Errors) << Line;
    }
  }
  EXPECT_EQ(Query("empty.db", "SELECT X FROM B WHERE ID = 2"), "7.5");
}

}  // namespace
}  // namespace velkrund::tests
