#include "tests/cli/CommandTest.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

/// Databases with what one engine alone has, described and made by the command.
class TPostgreSQLDefinitionsTest : public TCommandTest {
 protected:
  void Succeed(const TArguments& Line) {
    const TOutcome Outcome = Run(Line);
    EXPECT_EQ(Outcome.ExitCode, 0) << Joined(Line) << "\n" << Outcome.Errors;
  }
  /// The script of all that is in the database.
  std::string ScriptOf(const std::string& Database) {
    Succeed({"dictionary", "adopt", "-d", Database, "--all", "--overwrite", "yes"});
    const TOutcome Outcome = Run({"dictionary", "script", "-d", Database});
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    return Outcome.Output;
  }
  std::string TraitsOf(const std::string& Engine) {
    return Shell("cat " VELKRUND_SOURCE_DIR "/tests/standalone/traits." + Engine + ".sql").Output;
  }
};

// Two tables whose schemas and names make one: each is moved by its exact name, and neither by the other's.
TEST_F(TPostgreSQLDefinitionsTest, TablesThatShareADottedName) {
  TPostgreSQLDatabase Server, Target;
  const std::string Tables =
      "CREATE SCHEMA a; CREATE TABLE a.b (n integer PRIMARY KEY); CREATE TABLE \"a.b\" (n integer);";
  Server.Run(Tables + "INSERT INTO a.b VALUES (1); INSERT INTO \"a.b\" VALUES (2), (3)");
  Target.Run(Tables + "INSERT INTO a.b VALUES (7)");
  const TOutcome Both = Run({"export", "table", "-d", Server.Url(), "-t", "a.b", "-o", "f.eif"});
  EXPECT_EQ(Both.ExitCode, 1);
  EXPECT_NE(Both.Errors.find("\"a\".\"b\""), std::string::npos) << Both.Errors;
  EXPECT_NE(Both.Errors.find("\"a.b\""), std::string::npos) << Both.Errors;
  EXPECT_FALSE(Exists("f.eif"));
  const auto Counts = [&](TPostgreSQLDatabase& Database) {
    return Database.Rows("SELECT (SELECT sum(n) FROM a.b), (SELECT sum(n) FROM \"a.b\")");
  };
  ASSERT_EQ(Run({"export", "table", "-d", Server.Url(), "-t", "\"a.b\"", "-o", "f.eif"}).ExitCode, 0);
  ASSERT_EQ(Run({"import", "table", "-d", Target.Url(), "-i", "f.eif", "--append"}).ExitCode, 0);
  EXPECT_EQ(Counts(Target), "7\t5\n");
  ASSERT_EQ(Run({"export", "table", "-d", Server.Url(), "--all", "-o", "all.eif"}).ExitCode, 0);
  const TOutcome All = Run({"import", "file", "-d", Target.Url(), "-i", "all.eif", "--replace"});
  EXPECT_EQ(All.ExitCode, 0) << All.Errors;
  EXPECT_EQ(Counts(Target), "1\t5\n");
  const TOutcome Copied = Run({"copy", "table", "--from", Server.Url(), "--to", Target.Url(), "-t", "\"a\".\"b\"",
                               "--replace", "--to-table", "\"a.b\""});
  EXPECT_EQ(Copied.ExitCode, 0) << Copied.Errors;
  EXPECT_EQ(Counts(Target), "1\t1\n");
}

TEST_F(TPostgreSQLDefinitionsTest, AScriptRunInAnEmptyDatabaseMakesTheSame) {
  TPostgreSQLDatabase Source, Target;
  Source.Run(TraitsOf("postgresql"));
  const std::string Script = ScriptOf(Source.Url());
  ASSERT_NO_THROW(Target.Run(Script)) << Script;
  EXPECT_EQ(ScriptOf(Target.Url()), Script);
  EXPECT_EQ(Script.find("-- not made"), std::string::npos);

  ASSERT_EQ(Query("from.db", TraitsOf("sqlite")), "");
  const std::string Own = ScriptOf("sqlite:from.db");
  Query("to.db", Own);
  EXPECT_EQ(ScriptOf("sqlite:to.db"), Own);
  EXPECT_EQ(Own.find("-- not made"), std::string::npos);
}

TEST_F(TPostgreSQLDefinitionsTest, AScriptForAnotherEngineLeavesOutWhatThatCannotMake) {
  TPostgreSQLDatabase Server;
  Server.Run(
      "CREATE TYPE mood AS ENUM ('a'); CREATE TABLE z (m mood); CREATE TABLE a (m mood); CREATE TABLE none ();"
      "CREATE TABLE whole (i integer) PARTITION BY LIST (i); CREATE TABLE a_part PARTITION OF whole FOR VALUES IN (1);"
      "CREATE INDEX of_part ON a_part (i); CREATE VIEW z_first AS SELECT 1 AS x; CREATE VIEW later AS TABLE z_first;"
      "CREATE FUNCTION fine(i integer) RETURNS boolean LANGUAGE sql AS 'SELECT i > 0';"
      "CREATE TABLE b_calls (i integer CHECK (fine(i)))");
  std::string Script = ScriptOf(Server.Url());
  std::size_t At = 0;
  for (const char* Part :
       {"CREATE TYPE mood", "CREATE TABLE \"whole\"", "CREATE TABLE \"a_part\"", "CREATE FUNCTION \"fine\"",
        "CREATE TABLE \"b_calls\"", "CREATE VIEW \"z_first\"", "CREATE VIEW \"later\"", "CREATE INDEX \"of_part\""}) {
    At = Script.find(Part, At);
    ASSERT_NE(At, std::string::npos) << Part << "\n" << Script;
  }
  EXPECT_EQ(Script.find("CREATE TYPE mood"), Script.rfind("CREATE TYPE mood"));
  Script = Run({"dictionary", "script", "-d", Server.Url(), "--engine", "sqlite"}).Output;
  Query("made.db", Script);
  EXPECT_EQ(Query("made.db", "SELECT group_concat(name) FROM (SELECT name FROM sqlite_schema ORDER BY name)"),
            "a,b_calls,later,whole,z,z_first");
  for (const char* Gap : {"all of table 'none'", "all of table 'a_part'"})
    EXPECT_NE(Script.find(std::string("-- not made: ") + Gap), std::string::npos) << Script;
}

TEST_F(TPostgreSQLDefinitionsTest, APartitionedTableMovesWhole) {
  TPostgreSQLDatabase Source, Target;
  Source.Run(
      "CREATE TABLE z (id integer, day date, PRIMARY KEY (id, day)) PARTITION BY RANGE (day);"
      "CREATE TABLE b PARTITION OF z FOR VALUES FROM ('2020-01-01') TO ('2021-01-01') PARTITION BY LIST (id);"
      "CREATE SCHEMA s; CREATE TABLE s.a PARTITION OF b FOR VALUES IN (1, 2); CREATE TABLE \"A b\" PARTITION OF z "
      "DEFAULT;"
      "CREATE TABLE other (id integer);"
      "INSERT INTO z VALUES (1, '2020-05-05'), (2, '2020-06-06'), (3, '2030-01-01')");
  Succeed({"export", "table", "-d", Source.Url(), "-t", "z", "--structures", "-o", "z.eif"});
  Succeed({"import", "file", "-d", Target.Url(), "-i", "z.eif", "--create-tables", "yes"});
  constexpr const char* Rows = "SELECT tableoid::regclass, * FROM z ORDER BY id";
  EXPECT_EQ(Target.Rows(Rows), Source.Rows(Rows));
  EXPECT_EQ(Target.Rows("SELECT to_regclass('other')"), "\\N\n");

  TArguments Line = {"import", "file", "-d", "sqlite:z.db", "--create", "-i", "z.eif", "--create-tables", "yes"};
  const TOutcome Refused = Run(Line);
  EXPECT_EQ(Refused.ExitCode, 1);
  EXPECT_NE(Refused.Errors.find("--allow-missing options"), std::string::npos) << Refused.Errors;
  Line.insert(Line.end(), {"--allow-missing", "options"});
  const TOutcome Made = Run(Line);
  EXPECT_EQ(Made.ExitCode, 0) << Made.Errors;
  for (const char* Note : {"made 1 table,", "not made: all of table 's.a'"})
    EXPECT_NE(Made.Errors.find(Note), std::string::npos) << Note << "\n" << Made.Errors;
  EXPECT_EQ(Query("z.db",
                  "SELECT count(*), (SELECT group_concat(name) FROM sqlite_schema WHERE name NOT LIKE "
                  "'velkrund%' AND name NOT LIKE 'sqlite%') FROM z"),
            "3|z");
}

TEST_F(TPostgreSQLDefinitionsTest, APrimaryKeyWithNullsIsOneWhereTheEngineTakesIt) {
  Query("from.db",
        "CREATE TABLE used (a TEXT, b TEXT, c INT, CONSTRAINT pk PRIMARY KEY (a, b) ON CONFLICT IGNORE);"
        "CREATE TABLE refers (x TEXT, y TEXT, FOREIGN KEY (x, y) REFERENCES used);"
        "CREATE TABLE down (id INTEGER PRIMARY KEY DESC); CREATE TABLE full (id TEXT PRIMARY KEY);"
        "INSERT INTO used VALUES (NULL, 'b', 1), (NULL, 'b', 2), ('a', 'b', 3); INSERT INTO refers VALUES ('a', 'b');"
        "INSERT INTO down VALUES (NULL), (1); INSERT INTO full VALUES ('x')");
  const TArguments Export = {"export", "table", "--all", "--structures", "--columns", "scanned", "-d"};
  const auto ExportFrom = [&](const std::string& Database, const std::string& File) {
    TArguments Line = Export;
    Line.insert(Line.end(), {Database, "-o", File});
    Succeed(Line);
  };
  ExportFrom("sqlite:from.db", "from.eif");
  TPostgreSQLDatabase Server;
  Succeed(
      {"import", "file", "-d", Server.Url(), "-i", "from.eif", "--create-tables", "yes", "--allow-missing", "keys"});
  EXPECT_EQ(Server.Rows("SELECT conrelid::regclass, contype FROM pg_constraint WHERE conrelid::regclass::text IN "
                        "('used', 'down', '\"full\"', 'refers') ORDER BY conrelid::regclass::text COLLATE \"C\""),
            "\"full\"\tp\ndown\tu\nrefers\tf\nused\tu\n");
  EXPECT_EQ(Server.Rows("SELECT count(*), (SELECT count(*) FROM down) FROM used"), "3\t2\n");

  Succeed({"import", "file", "-d", "sqlite:to.db", "--create", "-i", "from.eif", "--create-tables", "yes"});
  constexpr const char* Keys =
      "SELECT t.name, c.name, c.pk FROM sqlite_schema t, pragma_table_info(t.name) c WHERE t.name IN "
      "('used', 'down', 'full') ORDER BY 1, c.cid";
  EXPECT_EQ(Query("to.db", Keys), Query("from.db", Keys));
  EXPECT_EQ(Query("to.db", "INSERT INTO used VALUES ('a', 'b', 4); SELECT count(*) FROM used"), "3");
  ExportFrom("sqlite:to.db", "to.eif");
  EXPECT_EQ(Read("to.eif"), Read("from.eif"));
}

}  // namespace
}  // namespace velkrund::tests
