#include <signal.h>

#include "tests/roundtrip/SchemaTest.h"

namespace velkrund::tests {
namespace {

// What a server of PostgreSQL alone can do to a load.

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

/// What a server lets go by when nobody looks.
TEST_F(TSchemaTest, PostgreSQLRefusesOrTellsWhatWouldGoBy) {
  const std::string Parts =
      "CREATE TABLE a (i integer, k integer, PRIMARY KEY (i, k)) PARTITION BY LIST (k);"
      "CREATE TABLE a1 PARTITION OF a FOR VALUES IN (1);"
      "CREATE TABLE c (i integer PRIMARY KEY, x integer, y integer, FOREIGN KEY (x, y) REFERENCES a1 ON DELETE "
      "CASCADE);";
  const std::string Keyed = "CREATE TABLE a (i integer PRIMARY KEY); CREATE TABLE c (i integer REFERENCES a);";
  const std::string Late =
      "CREATE TABLE a (i integer); CREATE TABLE b (i integer PRIMARY KEY, p integer REFERENCES b DEFERRABLE INITIALLY "
      "DEFERRED); ALTER TABLE b ALTER CONSTRAINT b_p_fkey DEFERRABLE INITIALLY DEFERRED;";
  const auto Trigger = [](const std::string& Body, const std::string& On) {
    return "CREATE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN " + Body +
           " RETURN new; END $$; CREATE TRIGGER g " + On + " FOR EACH ROW EXECUTE FUNCTION f();";
  };
  const std::string Moments = "CREATE TABLE a (i integer); CREATE TABLE b (t timestamptz);";
  const std::string Broken = "would be broken by what was loaded";
  const struct {
    std::string Tables, Rows, Target;
    TArguments Options;
    int ExitCode;
    std::string Says, Query, Result;
  } Cases[] = {
      // Keys of parts are keys of the whole.
      {Parts,
       "INSERT INTO a VALUES (1, 1)",
       "INSERT INTO a VALUES (1, 1); INSERT INTO c VALUES (1, 1, 1)",
       {"--section", "a"},
       1,
       "also delete or change rows of 'c'",
       "SELECT count(*) FROM c",
       "1\n"},
      {Parts, "INSERT INTO a VALUES (1, 1); INSERT INTO c VALUES (1, 1, 1)", "", {}, 0, "", "SELECT i FROM c", "1\n"},
      // Without the checks of references those of late keys would be off too.
      {"CREATE TABLE a (i integer PRIMARY KEY DEFERRABLE);",
       "INSERT INTO a VALUES (1)",
       "",
       {"--broken-references", "allow"},
       1,
       "deferrable constraint 'a_pkey'",
       "SELECT count(*) FROM a",
       "0\n"},
      // What a trigger sets is not what values are read by.
      {Moments,
       "INSERT INTO a VALUES (1); INSERT INTO b VALUES ('2024-01-01 12:00+00')",
       Trigger("PERFORM set_config('timezone', 'Asia/Tokyo', true);", "BEFORE INSERT ON a"),
       {},
       0,
       "could fire: 'g'",
       "SELECT t AT TIME ZONE 'UTC' FROM b",
       "2024-01-01 12:00:00\n"},
      // A server that does not look for itself.
      {Keyed,
       "ALTER TABLE c DISABLE TRIGGER ALL; INSERT INTO c VALUES (7)",
       "ALTER TABLE c DISABLE TRIGGER ALL;",
       {},
       1,
       Broken,
       "SELECT count(*) FROM c",
       "0\n"},
      {Keyed,
       "INSERT INTO a VALUES (1); INSERT INTO c VALUES (1)",
       Trigger("PERFORM set_config('session_replication_role', 'replica', true);", "BEFORE INSERT ON a"),
       {},
       1,
       "A trigger has changed session_replication_role",
       "SELECT count(*) FROM a",
       "0\n"},
      // What was late before the load is late in each of its groups.
      {Late,
       "INSERT INTO a VALUES (1); INSERT INTO b SELECT n, 60001 - n FROM generate_series(1, 60000) n",
       "",
       {"--on-error", "continue"},
       0,
       "",
       "SELECT count(*) FROM b",
       "60000\n"},
      {"CREATE TABLE a (i integer PRIMARY KEY); CREATE TABLE c (i integer REFERENCES a DEFERRABLE INITIALLY DEFERRED);",
       "INSERT INTO a VALUES (1); SET session_replication_role = replica; INSERT INTO c VALUES (2)",
       "INSERT INTO a VALUES (1), (2); INSERT INTO c VALUES (1)",
       {"--broken-references", "allow"},
       0,
       "1 value refers to rows that are not there",
       "SELECT i FROM c",
       "2\n"},
      // A trigger behind the rows knows no line of them.
      {Moments,
       "INSERT INTO a SELECT generate_series(1, 500)",
       Trigger("IF new.i = 321 THEN RAISE 'not this'; END IF;", "AFTER INSERT ON a"),
       {},
       1,
       "Cannot append record 321 to table 'a': not this",
       "SELECT count(*) FROM a",
       "0\n"},
      {Moments,
       "INSERT INTO a SELECT generate_series(1, 500)",
       Trigger("new.i = 1 / (new.i - 321);", "BEFORE INSERT ON a"),
       {},
       1,
       "in a trigger (g)",
       "SELECT count(*) FROM a",
       "0\n"},
      // For replicas alone.
      {Moments,
       "INSERT INTO a VALUES (1)",
       Trigger("new.i = 2;", "BEFORE INSERT ON a") + "ALTER TABLE a ENABLE REPLICA TRIGGER g;",
       {"--broken-references", "allow"},
       0,
       "checked no references",
       "SELECT i, tgenabled FROM a, pg_trigger",
       "1\tR\n"},
      {"CREATE TABLE a (i integer PRIMARY KEY, x integer, y integer, UNIQUE (x, y)); CREATE TABLE b (x integer, y "
       "integer,"
       "FOREIGN KEY (x, y) REFERENCES a (x, y) MATCH FULL);",
       "SET session_replication_role = replica; INSERT INTO b VALUES (1, NULL)",
       "",
       {"--broken-references", "allow"},
       0,
       "1 value refers",
       "SELECT x FROM b",
       "1\n"},
      {"CREATE SEQUENCE s; CREATE FUNCTION n() RETURNS bigint LANGUAGE sql AS $$ SELECT nextval('s') $$; "
       "CREATE TABLE a (i bigint DEFAULT n());",
       "INSERT INTO a VALUES (5)",
       "",
       {},
       0,
       "the default of a.i calls a function",
       "SELECT i FROM a",
       "5\n"},
      // To the end, since the database keeps it.
      {Keyed,
       "ALTER TABLE c DISABLE TRIGGER ALL; INSERT INTO c VALUES (7)",
       "DO $$ BEGIN EXECUTE format('ALTER DATABASE %I SET session_replication_role = replica', current_database()); "
       "END "
       "$$",
       {},
       1,
       Broken,
       "SELECT count(*) FROM c",
       "0\n"},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Tables + Case.Rows + Case.Target);
    Export(Made("postgresql", "source", Case.Tables + Case.Rows));
    const TTestDatabase Target = Made("postgresql", "target", Case.Tables + Case.Target);
    const TOutcome Outcome = Run(Import(Target, TArguments{"--replace"} + Case.Options));
    EXPECT_EQ(Outcome.ExitCode, Case.ExitCode) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Case.Says), std::string::npos) << Outcome.Errors;
    EXPECT_EQ(Target.Text(Case.Query), Case.Result) << Outcome.Errors;
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
