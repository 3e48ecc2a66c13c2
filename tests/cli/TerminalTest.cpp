#include <signal.h>
#include <unistd.h>

#include "tests/cli/ShopTest.h"
#include "tests/cli/UnseenFile.h"

namespace velkrund::tests {
namespace {

using TTerminalTest = TShopTest;

constexpr const char* Interrupt = "\x03";
constexpr const char* EndOfInput = "\x04";

TEST_F(TTerminalTest, OverwriteQuestion) {
  struct TCase {
    std::string Keys;
    int ExitCode;
    std::string Names;  // of A and B in the file before
    std::string Says;
  };
  const TCase Cases[] = {
      {"y\ny\n", 0, "A B", "in all 2 sections"},     {"n\ny\n", 0, "A B", "left out table A"},
      {"y\nn\n", 0, "B A", "left out table B"},      {"A\n", 0, "A B", "in all 2 sections"},
      {"none\n", 0, "A B", "left out table B"},      {"what\nALL\n", 0, "A B", "in all 2 sections"},
      {"c\n", 3, "A B", "velkrund: Cancelled"},      {"y\nc\n", 3, "A B", "velkrund: Cancelled"},
      {EndOfInput, 3, "A B", "velkrund: Cancelled"}, {Interrupt, 3, "A B", "velkrund: Cancelled"},
  };
  for (const auto& [Keys, ExitCode, Expected, Says] : Cases) {
    unlink(Path("F").c_str());
    const TArguments Export = {"export", "table", "-d", "sqlite:shop.db", "--all", "-o", "F"};
    RunJson(Export);
    const TOutcome Outcome = RunOnTerminal(Export, "[y]es [n]o [A]ll n[O]ne [c]ancel", Keys);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Keys << Outcome.Output;
    EXPECT_NE(Outcome.Output.find(Says), std::string::npos) << Keys << Outcome.Output;
    EXPECT_EQ(Names("F"), Expected) << Keys;
  }
}

TEST_F(TTerminalTest, RowsAreThereQuestion) {
  RunJson({"export", "table", "-d", "sqlite:shop.db", "-t", "B", "-o", "F"});
  struct TCase {
    std::string Keys;
    int ExitCode;
    std::string Counts;
  };
  const TCase Cases[] = {
      {"y\n", 0, "0|2"}, {"n\n", 0, "0|1"}, {"p\n", 0, "0|3"}, {"O\n", 0, "0|1"}, {"c\n", 3, "0|1"},
  };
  for (const auto& [Keys, ExitCode, Expected] : Cases) {
    Query("empty.db", "DELETE FROM B; INSERT INTO B(ID) VALUES (100)");
    const TOutcome Outcome =
        RunOnTerminal({"import", "table", "-d", "sqlite:empty.db", "-i", "F"}, "Table 'B' has 1 row.", Keys);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Keys << Outcome.Output;
    EXPECT_EQ(Counts("empty.db"), Expected) << Keys;
  }
}

TEST_F(TTerminalTest, GoOnQuestion) {
  Query("shop.db", "UPDATE A SET NAME = '東京'");
  struct TCase {
    std::string Keys;
    bool Made;
    int ExitCode;
  };
  for (const auto& [Keys, Made, ExitCode] : {TCase{"y\n", true, 1}, TCase{"n\n", false, 1}, TCase{"c\n", false, 3}}) {
    const TOutcome Outcome = RunOnTerminal(
        {"export", "table", "-d", "sqlite:shop.db", "--all", "-o", "F", "--encoding", "ansi"}, "Go on", Keys);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Outcome.Output;
    EXPECT_EQ(Exists("F"), Made) << Outcome.Output;
    EXPECT_NE(Outcome.Output.find("failed table A"), std::string::npos) << Outcome.Output;
    unlink(Path("F").c_str());
  }
}

/// A table that takes long enough for a signal to arrive in the middle.
class TInterruptTest : public TShopTest {
 protected:
  TInterruptTest() {
    Query("shop.db",
          "WITH RECURSIVE C(N) AS (SELECT 3 UNION ALL SELECT N + 1 FROM C WHERE N < 600000)"
          "INSERT INTO B SELECT N, N / 3.0 FROM C");
  }
};

// Rows that take the engine a while, so that the signal comes before the last one.
TEST_F(TInterruptTest, CtrlCUndoesAnExport) {
  Query("shop.db", "ALTER TABLE B RENAME TO BIG");
  Query("shop.db",
        "CREATE VIEW B AS SELECT ID, hex(zeroblob(500)) AS X, "
        "(SELECT sum(S.ID) FROM BIG S WHERE S.ID < 2000 AND S.ID <> BIG.ID) AS Y FROM BIG");
  for (const int Signal : {SIGINT, SIGTERM}) {
    const pid_t Process = Start({"export", "table", "-d", "sqlite:shop.db", "-t", "B", "-o", "F"});
    ASSERT_TRUE(WaitUntil([&] { return WritesUnseen(Process, Path(".")); }));
    kill(Process, Signal);
    const TOutcome Outcome = Finish(Process);
    EXPECT_EQ(Outcome.ExitCode, 3) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find("cancelled table B"), std::string::npos) << Outcome.Errors;
    EXPECT_EQ(Files(), (TArguments{"empty.db", "shop.db"}));
  }
  // In a file that was there, the sections before stay, and so does one that was to be replaced.
  const TArguments Export = {"export", "table", "-d", "sqlite:shop.db", "-t", "A", "-t", "B", "-o", "F", "--overwrite"};
  TArguments Small = Export, Again = Export;
  Small.insert(Small.end(), {"yes", "--json"});
  Again.insert(Again.end(), {"yes", "--json"});
  const std::string View = Query("shop.db", "SELECT sql FROM sqlite_schema WHERE name = 'B'");
  Query("shop.db", "DROP VIEW B; CREATE TABLE B (ID INTEGER); INSERT INTO B VALUES (42)");
  EXPECT_EQ(Run(Small).ExitCode, 0);
  const std::size_t Before = Read("F").size();
  Query("shop.db", "DROP TABLE B; " + View);
  const pid_t Process = Start(Again);
  ASSERT_TRUE(WaitUntil([&] { return Read("F").size() > Before + 100'000; }));
  kill(Process, SIGINT);
  const TOutcome Outcome = Finish(Process);
  EXPECT_EQ(Outcome.ExitCode, 3) << Outcome.Errors;
  EXPECT_EQ(nlohmann::json::parse(Outcome.Output, nullptr, false)["sections"][1]["state"], "cancelled");
  EXPECT_EQ(Names("F"), "B A");
  EXPECT_EQ(Read("F").size(), Before);
  EXPECT_NE(Read("F").find("<42>"), std::string::npos);
}

TEST_F(TInterruptTest, CtrlCUndoesAnImport) {
  RunJson({"export", "table", "-d", "sqlite:shop.db", "-t", "B", "-o", "F"});
  Query("empty.db", "INSERT INTO B VALUES (100, 1.5)");
  Query("empty.db",
        "CREATE TABLE S AS WITH RECURSIVE C(N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM C WHERE N < 2000) "
        "SELECT N FROM C; CREATE TRIGGER SLOW AFTER INSERT ON B BEGIN SELECT sum(N) FROM S; END");
  const pid_t Process = Start({"import", "table", "-d", "sqlite:empty.db", "-i", "F", "--replace"});
  ASSERT_TRUE(WaitUntil([&] { return Exists("empty.db-journal") || Exists("empty.db-wal"); }));
  kill(Process, SIGINT);
  const TOutcome Outcome = Finish(Process);
  EXPECT_EQ(Outcome.ExitCode, 3) << Outcome.Errors;
  EXPECT_EQ(Exact("empty.db", "B"), "100|real|1.5");
}

TEST_F(TInterruptTest, ProgressIsShownAsAsked) {
  const TArguments Export = {"export", "table", "-d", "sqlite:shop.db", "-t", "B", "-o", "F", "--overwrite", "yes"};
  for (const auto& [Style, Bar] : {std::pair{"auto", true}, std::pair{"bar", true}, std::pair{"none", false}}) {
    TArguments Arguments = Export;
    Arguments.insert(Arguments.end(), {"--progress", Style});
    const TOutcome Outcome = RunOnTerminal(Arguments, "exported", "");
    EXPECT_EQ(Outcome.ExitCode, 0) << Style;
    EXPECT_EQ(Outcome.Output.find("rows/s") != std::string::npos, Bar) << Style << Outcome.Output;
    EXPECT_EQ(Run(Arguments).Errors.find("rows/s") != std::string::npos, Style == std::string("bar")) << Style;
  }
}

}  // namespace
}  // namespace velkrund::tests
