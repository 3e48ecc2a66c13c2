#include <atomic>
#include <chrono>
#include <thread>

#include "tests/roundtrip/SchemaTest.h"

namespace velkrund::tests {
namespace {

/// Runs over related tables that do not go as they should.
class TSchemaRunsTest : public TSchemaTest, public testing::WithParamInterface<const char*> {
 protected:
  static std::string TriggerThatDeletes(const std::string& Table, const std::string& From) {
    if (GetParam() == std::string("sqlite"))
      return "CREATE TRIGGER g AFTER DELETE ON " + Table + " BEGIN DELETE FROM " + From + " WHERE i = OLD.i; END;";
    return "CREATE FUNCTION g() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN DELETE FROM " + From +
           " WHERE i = OLD.i; RETURN NULL; END $$; CREATE TRIGGER g AFTER DELETE ON " + Table +
           " FOR EACH ROW EXECUTE FUNCTION g();";
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, TSchemaRunsTest, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

// Parents and children are tied by a key, the child 3 is refused, and nothing ties the other table.
TEST_P(TSchemaRunsTest, WhatFailsTakesItsGroupBack) {
  const std::string Tables =
      "CREATE TABLE alone (i INTEGER PRIMARY KEY); CREATE TABLE parents (i INTEGER PRIMARY KEY);"
      "CREATE TABLE children (i INTEGER PRIMARY KEY, p INTEGER REFERENCES parents (i)";
  Export(Made(GetParam(), "source",
              Tables + "); INSERT INTO alone VALUES (5); INSERT INTO parents VALUES (1), (2);"
                       "INSERT INTO children VALUES (1, 1), (2, 2), (3, 2);"));
  const struct {
    bool Tied;  // by a trigger that deletes
    TArguments Options;
    const char* Rows;  // of alone, parents and children
    const char* Says;
  } Cases[] = {
      {false, {}, "9\n7\n8\n", "children"},
      {false, {"--commit", "run"}, "9\n7\n8\n", "children"},
      {false, {"--on-error", "continue"}, "5\n7\n8\n", "parents"},
      {false, {"--commit", "each"}, "5\n7\n8\n", "parents"},
      {false, {"--commit", "each", "--on-error", "continue"}, "5\n7\n8\n", "parents"},
      {true, {"--on-error", "continue"}, "9\n7\n8\n", "alone"},
      {true, {"--commit", "each"}, "9\n7\n8\n", "alone"},
      {true, {"--on-error", "continue", "--triggers", "off"}, "5\n7\n8\n", "parents"},
  };
  for (const auto& [Tied, Options, Rows, Says] : Cases) {
    SCOPED_TRACE(Joined(Options) + (Tied ? " with a trigger" : ""));
    const TTestDatabase Target =
        Made(GetParam(), "target",
             Tables + ", CHECK (i <> 3)); " + (Tied ? TriggerThatDeletes("alone", "parents") : "") +
                 "INSERT INTO alone VALUES (9); INSERT INTO parents VALUES (7);"
                 "INSERT INTO children VALUES (8, 7);");
    const TOutcome Outcome = Run(Import(Target, TArguments{"--replace"} + Options));
    EXPECT_EQ(Outcome.ExitCode, 1) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Outcome.Errors;
    EXPECT_EQ(Target.Text("SELECT i FROM alone") + Target.Text("SELECT i FROM parents") +
                  Target.Text("SELECT i FROM children ORDER BY i"),
              Rows)
        << Outcome.Errors;
  }
}

// Lines are no part of the run, and refer to an order that the run takes away.
TEST_P(TSchemaRunsTest, WhatRefersFromOutsideIsCheckedToo) {
  const std::string Tables =
      "CREATE TABLE orders (i INTEGER PRIMARY KEY); CREATE TABLE lines (i INTEGER, p INTEGER REFERENCES orders (i));";
  Export(Made(GetParam(), "source", Tables + "INSERT INTO orders VALUES (1);"));
  const TTestDatabase Target =
      Made(GetParam(), "target", Tables + "INSERT INTO orders VALUES (7); INSERT INTO lines VALUES (1, 7);");
  const TDatabaseState Before = StateOf(Target);
  const TArguments Replace = {"--section", "orders", "--replace"};
  for (const char* const Rule : {"refuse", "allow"}) {
    const TOutcome Outcome = Run(Import(Target, Replace + TArguments{"--broken-references", Rule}));
    EXPECT_EQ(Outcome.ExitCode, 1);
    EXPECT_NE(Outcome.Errors.find("lines"), std::string::npos) << Outcome.Errors;
    EXPECT_EQ(Outcome.Errors.find("allow lets"), std::string::npos) << "it is no help\n" << Outcome.Errors;
    ExpectState(StateOf(Target), Before);
  }
}

TEST_P(TSchemaRunsTest, ManySmallTables) {
  const int Count = GetParam() == std::string("sqlite") ? 400 : 100;
  std::string Tables, Rows, OtherRows;
  for (int I = 1; I <= Count; ++I) {
    const std::string Name = "t" + std::to_string(I);
    // Every tenth refers to the one before it.
    Tables += "CREATE TABLE " + Name + " (i INTEGER PRIMARY KEY" +
              (I % 10 == 0 ? " REFERENCES t" + std::to_string(I - 1) + " (i)" : "") + ", s TEXT);";
    Rows += "INSERT INTO " + Name + " VALUES ";
    for (int Row = 1; Row <= 10; ++Row)
      Rows += "(" + std::to_string(Row) + ", '" + Name + "')" + (Row < 10 ? "," : ";");
    OtherRows += "INSERT INTO " + Name + " VALUES (11, 'other');";
  }
  const TTestDatabase Source = Made(GetParam(), "source", Tables + Rows);
  const TDatabaseState Original = StateOf(Source);
  Export(Source);
  const TTestDatabase Target = Made(GetParam(), "target", Tables);
  for (const TArguments& Options : {TArguments(), TArguments{"--replace"}}) {
    const TOutcome Outcome = Run(Import(Target, Options));
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    ExpectState(StateOf(Target), Original);
    Target.Run("BEGIN; " + OtherRows + "COMMIT");
  }
}

// Somebody adds children to a parent that is there before and afterwards, all the time.
TEST_P(TSchemaRunsTest, WritersGoOn) {
  const std::string Tables =
      "CREATE TABLE parents (i INTEGER PRIMARY KEY, s TEXT);"
      "CREATE TABLE children (i INTEGER PRIMARY KEY, p INTEGER REFERENCES parents (i));";
  const auto Numbers = [](const std::string& Upto) {
    return "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + Upto + ") ";
  };
  const auto Fill = [&](const std::string& Text) {
    return Numbers("500") + "INSERT INTO parents SELECT i, '" + Text + "' FROM n;" + Numbers("20000") +
           "INSERT INTO children SELECT i, 1 + i % 500 FROM n;";
  };
  Export(Made(GetParam(), "source", Tables + Fill("new")));
  const TTestDatabase Target = Made(GetParam(), "target", Tables + Fill("old"));
  std::atomic<bool> Done = false;
  std::atomic<int> Written = 0;
  std::string Refused;
  std::thread Writer([&] {
    while (!Done) {
      try {
        Target.Run("INSERT INTO children VALUES (" + std::to_string(1'000'000 + Written) + ", 7)");
        ++Written;
        // SQLite's locks are taken by chance: who writes without a pause may keep everybody out.
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
      } catch (const std::exception& Error) {
        Refused = Error.what();
        return;
      }
    }
  });
  EXPECT_TRUE(WaitUntil([&] { return Written > 0; }));
  const TOutcome Outcome = Run(Import(Target, {"--replace"}));
  const int AtEnd = Written;
  EXPECT_TRUE(WaitUntil([&] { return Written > AtEnd || !Refused.empty(); }));
  Done = true;
  Writer.join();
  EXPECT_EQ(Refused, "");
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_EQ(Target.Text("SELECT count(*), min(s), max(s) FROM parents"), "500\tnew\tnew\n");
  EXPECT_EQ(Target.Text("SELECT count(*), sum(p) FROM children WHERE i < 1000000"), "20000\t5010000\n");
  EXPECT_NE(Target.Text("SELECT count(*) FROM children WHERE i >= 1000000"), "0\n");
}

}  // namespace
}  // namespace velkrund::tests
