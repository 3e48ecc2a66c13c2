#include <signal.h>

#include <atomic>
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

// What empties the last table deletes the rows of the first one too.
TEST_F(TSchemaTest, PostgreSQLKeepsWhatWasLoadedWhenRowsGoWithOthers) {
  const std::string Tables =
      "CREATE TABLE first (i integer); CREATE TABLE last (i integer); INSERT INTO last VALUES (1);";
  const std::string Function =
      "CREATE FUNCTION g() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN DELETE FROM first; RETURN OLD; END'; ";
  Export(Made("postgresql", "source", Tables + "INSERT INTO first VALUES (1), (2)"));
  for (const std::string& Deletes :
       {Function + "CREATE TRIGGER g BEFORE DELETE ON last FOR EACH ROW EXECUTE FUNCTION g()",
        Function + "CREATE TRIGGER g AFTER DELETE ON last EXECUTE FUNCTION g()",
        Function + "CREATE CONSTRAINT TRIGGER g AFTER DELETE ON last DEFERRABLE INITIALLY DEFERRED FOR EACH ROW "
                   "EXECUTE FUNCTION g()",
        std::string("CREATE RULE g AS ON DELETE TO last DO ALSO DELETE FROM first")}) {
    for (const TArguments& Options : {TArguments(), TArguments{"--commit", "each"}}) {
      SCOPED_TRACE(Deletes + Joined(Options));
      const TTestDatabase Target = Made("postgresql", "target", Tables + Deletes);
      const TOutcome Outcome = Run(Import(Target, TArguments{"--replace"} + Options));
      EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
      EXPECT_EQ(Target.Text("SELECT count(*) FROM first"), "2\n") << Outcome.Errors;
    }
  }
}

/// The middle of a run over the tables of a schema: a table more, whose one row is kept waiting or refused.
class TPostgreSQLMiddleTest : public TSchemaTest {
 protected:
  static constexpr const char* Waits = "SELECT pg_sleep(60)";
  static constexpr const char* Refuses = "SELECT 1 / 0";

  static std::string LastTable(const std::string& Does) {
    return "CREATE OR REPLACE FUNCTION comes(i integer) RETURNS boolean LANGUAGE plpgsql AS $$ BEGIN IF "
           "current_setting('application_name') = 'velkrund' THEN EXECUTE '" +
           Does + "'; END IF; RETURN true; END $$; CREATE TABLE IF NOT EXISTS zz (i integer CHECK (comes(i)));";
  }

  /// Ends as the signal or the refusal wants it, with everything as before; counters may stand further on.
  void ExpectAsBefore(const TTestDatabase& Target, const TArguments& Options, int Signal) {
    SCOPED_TRACE(Joined(Options) + " and signal " + std::to_string(Signal));
    Target.Run(LastTable(Signal == 0 ? Refuses : Waits));
    const TDatabaseState Before = StateOf(Target);
    const pid_t Process = Start(Import(Target, TArguments{"--replace"} + Options));
    if (Signal != 0) {
      EXPECT_TRUE(
          WaitUntil([&] { return Target.Text(Sessions + "AND wait_event = 'PgSleep'") != "" || Ended(Process); }));
      kill(Process, Signal);
    }
    const TOutcome Outcome = Finish(Process);
    EXPECT_EQ(Outcome.ExitCode, Signal == SIGKILL ? 128 + SIGKILL : Signal == SIGINT ? 3 : 1) << Outcome.Errors;
    // The server itself looks after a lost client sooner or later.
    if (Signal == SIGKILL) Target.Text("SELECT pg_terminate_backend(pid) FROM (" + Sessions + ") AS s");
    EXPECT_TRUE(WaitUntil([&] { return Target.Text(Sessions).empty(); }));
    TDatabaseState Now = StateOf(Target);
    EXPECT_EQ(Furthest(Before, Now), Now.Counters);
    Now.Counters = Before.Counters;
    ExpectState(Now, Before);
  }

  const std::string Sessions =
      "SELECT pid FROM pg_stat_activity WHERE application_name = 'velkrund' AND datname = current_database() ";

 private:
  static bool Ended(pid_t Process) {
    siginfo_t Info = {};
    return waitid(P_PID, static_cast<id_t>(Process), &Info, WEXITED | WNOHANG | WNOWAIT) != 0 || Info.si_pid != 0;
  }
};

TEST_F(TPostgreSQLMiddleTest, IsAsBefore) {
  const struct {
    const char* Schema;
    std::vector<TArguments> Options;
  } Cases[] = {
      {"circles", {{}}},
      {"partitions", {{"--triggers", "off"}}},
      {"trigger_states", {{"--triggers", "off"}, {"--broken-references", "allow"}}},
      {"sequences", {{}}},
  };
  for (const auto& [Name, AllOptions] : Cases) {
    SCOPED_TRACE(Name);
    const TSchema Schema = ReadSchema(Name, "postgresql");
    const TTestDatabase Source = Made("postgresql", "source", Schema, Schema.Rows);
    Source.Run(LastTable(Refuses) + "INSERT INTO zz VALUES (1)");
    Export(Source);
    const TTestDatabase Target = Made("postgresql", "target", Schema, Schema.OtherRows);
    for (const TArguments& Options : AllOptions)
      for (const int Signal : {0, SIGINT, SIGKILL}) ExpectAsBefore(Target, Options, Signal);
  }
}

TEST_F(TSchemaTest, PostgreSQLSaysWhichRightIsLacking) {
  const struct {
    const char* Schema;
    TArguments Options;
    const char* Says;
  } Cases[] = {
      {"circles", {}, "Works in"},
      {"broken_references", {"--broken-references", "allow"}, "session_replication_role"},
      {"trigger_states", {"--triggers", "off"}, "items"},
  };
  for (const auto& [Name, Options, Says] : Cases) {
    SCOPED_TRACE(Name);
    const TSchema Schema = ReadSchema(Name, "postgresql");
    Export(Made("postgresql", "source", Schema, Schema.Rows));
    TTestDatabase Target = Made("postgresql", "target", Schema, Schema.OtherRows);
    std::string Clerk = Target.Text("SELECT 'clerk_of_' || current_database()");
    Clerk.pop_back();  // the line's end
    Target.Run("CREATE ROLE " + Clerk + " LOGIN; GRANT ALL ON ALL TABLES IN SCHEMA public TO " + Clerk);
    const TDatabaseState Before = StateOf(Target);
    Target.Url.replace(Target.Url.find("postgres@"), std::string("postgres").size(), Clerk);
    const TOutcome Outcome = Run(Import(Target, TArguments{"--replace"} + Options));
    EXPECT_EQ(Outcome.ExitCode, 1) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Outcome.Errors;
    ExpectState(StateOf(Target), Before);
    Target.Run("DROP OWNED BY " + Clerk + "; DROP ROLE " + Clerk);
  }
}

}  // namespace
}  // namespace velkrund::tests
