// Objects made anew by the command, as their structures describe them.

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <memory>

#include "tests/cli/CommandTest.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// A table that its structure has outgrown, with what stands around it.
class TRecreateTest : public TCommandTest {
 protected:
  static constexpr const char* New =
      "CREATE TABLE T (ID INTEGER PRIMARY KEY AUTOINCREMENT, TITLE TEXT, AMOUNT INTEGER, FRESH TEXT DEFAULT 'f', "
      "COUNTED INTEGER NOT NULL DEFAULT 7); CREATE INDEX T_TITLE ON T (TITLE);";
  static constexpr const char* Around =
      "CREATE VIEW V AS SELECT ID FROM T; CREATE VIEW W AS SELECT * FROM V; CREATE TABLE LOG (N INTEGER);"
      "CREATE TRIGGER KEPT AFTER INSERT ON T BEGIN INSERT INTO LOG VALUES (new.ID); END;"
      "CREATE TABLE CHILD (T_ID INTEGER REFERENCES T (ID));";

  TRecreateTest() {
    Query("db", New);
    EXPECT_EQ(Run({"dictionary", "adopt", "-d", "sqlite:db", "--all"}).ExitCode, 0);
    Query("db",
          std::string("DROP TABLE T; CREATE TABLE T (ID INTEGER PRIMARY KEY AUTOINCREMENT, NAME TEXT, AMOUNT TEXT, "
                      "OLD TEXT); CREATE INDEX GOES ON T (OLD);"
                      "INSERT INTO T VALUES (1, 'one', '10', 'x'), (2, NULL, '-7', NULL), (5, 'five', NULL, 'y');"
                      "DELETE FROM T WHERE ID = 5;") +
              Around + "INSERT INTO CHILD VALUES (1);");
    Before = State();
  }
  static TArguments Recreate(const TArguments& More) {
    TArguments Result = {"recreate", "table", "-d", "sqlite:db", "T"};
    Result.insert(Result.end(), More.begin(), More.end());
    return Result;
  }
  /// All that the table and what stands around it are.
  std::string State() {
    return Query("db",
                 "SELECT sql FROM sqlite_schema WHERE name NOT LIKE 'velkrund%' ORDER BY name; SELECT * FROM T;"
                 "SELECT * FROM sqlite_sequence; SELECT * FROM W; SELECT count(*) FROM LOG");
  }

  std::string Before;
};

TEST_F(TRecreateTest, CarriesTheRowsOverAndKeepsWhatStandsAround) {
  const TOutcome Outcome = Run(Recreate({"--map", "NAME=TITLE", "--missing-fields", "skip", "--overwrite", "yes"}));
  ASSERT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_EQ(Outcome.Errors,
            "recreated T (10): 2 rows\n"
            "gone from table 'T', since its structure does not have it: the index 'GOES'\n"
            "dropped from table 'T' with their values: 'OLD'\n");
  EXPECT_EQ(Query("db", "SELECT ID, TITLE, typeof(AMOUNT), AMOUNT, FRESH, COUNTED FROM T"),
            "1|one|integer|10|f|7\n2|NULL|integer|-7|f|7");
  EXPECT_EQ(Query("db", "SELECT seq FROM sqlite_sequence WHERE name = 'T'"), "5") << "numbers are not given twice";
  EXPECT_EQ(Query("db", "SELECT count(*) FROM LOG"), "0") << "the rows are not new to the trigger";
  EXPECT_EQ(Query("db", "INSERT INTO T (TITLE) VALUES ('z'); SELECT max(ID) FROM W; SELECT N FROM LOG"), "6\n6");
  EXPECT_EQ(Query("db",
                  "SELECT group_concat(name, ' ') FROM (SELECT name FROM sqlite_schema "
                  "WHERE name NOT LIKE 'velkrund%' AND name NOT LIKE 'sqlite%' ORDER BY name)"),
            "CHILD KEPT LOG T T_TITLE V W");
}

TEST_F(TRecreateTest, RefusesWhatWouldBeLostBeforeAnythingIsDropped) {
  const TArguments Whole = {"--map", "NAME=TITLE", "--missing-fields", "skip", "--overwrite", "yes"};
  const struct {
    const char* Change;
    TArguments Options;
    int ExitCode;
    const char* Says;
  } Cases[] = {
      {"", {}, 1, "The table 'T' already exists in the database. Recreate it? Give --overwrite yes"},
      {"", {"--overwrite", "no"}, 0, "left out T (10): it is there already"},
      {"",
       {"--overwrite", "yes"},
       1,
       "has no field for the values of 'NAME', 'OLD'. Map what has another name now; "
       "--missing-fields skip"},
      {"",
       {"--overwrite", "yes", "--map", "NAMES=TITLE", "--missing-fields", "skip"},
       2,
       "--map 'NAMES=TITLE' fits no"},
      {"", {"--overwrite", "yes", "--map", "TITLE"}, 2, "--map takes [TABLE.]OLD=NEW, not 'TITLE'"},
      {"CREATE VIEW OLDER AS SELECT OLD FROM T", Whole, 1, "OLDER"},
      {"CREATE TRIGGER WATCH AFTER UPDATE OF OLD ON T BEGIN SELECT 1; END", Whole, 1, "WATCH"},
      {"CREATE TABLE TEMPTABLEFORRECREATE (A)", Whole, 1, "there is a table 'TEMPTABLEFORRECREATE' in the database"},
      {"", {"--drop-data", "--overwrite", "yes"}, 1, "CHILD"},
      {"",
       {"--dry-run", "--map", "T.NAME=TITLE", "--missing-fields", "skip", "--overwrite", "yes"},
       0,
       "nothing was changed: this was a dry run"},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Joined(Case.Options) + " " + Case.Change);
    Shell("cp db kept");
    Query("db", Case.Change);
    const std::string Changed = State();
    const TOutcome Outcome = Run(Recreate(Case.Options));
    EXPECT_EQ(Outcome.ExitCode, Case.ExitCode) << Outcome.Errors;
    EXPECT_THAT(Outcome.Errors, HasSubstr(Case.Says));
    if (Case.ExitCode != 0) {
      EXPECT_THAT(Outcome.Errors, Not(HasSubstr("dropped from")));
    }
    EXPECT_EQ(State(), Changed);
    Shell("mv kept db");
  }
}

TEST_F(TRecreateTest, ACommitThatIsRefusedLeavesTheTable) {
  Write("velkrund.toml", "busy_seconds = 1\n");
  sqlite3* Handle = nullptr;
  ASSERT_EQ(sqlite3_open(Path("db").c_str(), &Handle), SQLITE_OK);
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> Reader(Handle, &sqlite3_close);
  ASSERT_EQ(sqlite3_exec(Handle, "BEGIN; SELECT count(*) FROM T", nullptr, nullptr, nullptr), SQLITE_OK);
  const TOutcome Outcome =
      Run(Recreate({"--map", "NAME=TITLE", "--missing-fields", "skip", "--overwrite", "yes", "--json"}));
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_THAT(Outcome.Errors, HasSubstr("Cannot commit the transaction"));
  EXPECT_THAT(Outcome.Output, AllOf(HasSubstr("\"database-busy\""), Not(HasSubstr("dropped from"))));
  EXPECT_EQ(State(), Before);
}

TEST_F(TRecreateTest, SeveralTablesAreOneRun) {
  Query("db", "CREATE TABLE U (A INTEGER)");
  ASSERT_EQ(Run({"dictionary", "adopt", "-d", "sqlite:db", "-t", "U"}).ExitCode, 0);
  Query("db", "INSERT INTO U VALUES (1); CREATE VIEW OLDER AS SELECT OLD FROM T");
  const TArguments Both = {"recreate",     "tables",      "-d",  "sqlite:db",        "U",   "T", "--map",
                           "T.NAME=TITLE", "--overwrite", "yes", "--missing-fields", "skip"};
  const auto With = [&](const TArguments& More) {
    TArguments Result = Both;
    Result.insert(Result.end(), More.begin(), More.end());
    return Result;
  };
  const std::string Changed = State();
  TOutcome Outcome = Run(With({"--on-error", "stop"}));
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_THAT(Outcome.Errors,
              AllOf(HasSubstr("taken back U (10)\nfailed T (10)\n"), HasSubstr("the database is as it was before\n")));
  EXPECT_EQ(State(), Changed);
  Outcome = Run(With({"--on-error", "continue"}));
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_THAT(Outcome.Errors, HasSubstr("recreated U (10): 1 row\nfailed T (10)\n"));
  EXPECT_EQ(Query("db", "SELECT NAME, OLD FROM T; SELECT seq FROM sqlite_sequence"), "one|x\nNULL|NULL\n5");
  Query("db", "DROP VIEW OLDER");
  // A slip in the mapping is one, whatever is left out.
  EXPECT_EQ(
      Run({"recreate", "tables", "-d", "sqlite:db", "T", "U", "--map", "NAMES=TITLE", "--overwrite", "no"}).ExitCode,
      2);
  EXPECT_EQ(
      Run({"recreate", "tables", "-d", "sqlite:db", "T", "U", "--map", "T.NAME=TITLE", "--overwrite", "no"}).ExitCode,
      0);
  const nlohmann::json Document = RunJson(With({}));
  EXPECT_EQ(Document["objects"][1]["rows"], 2);
  EXPECT_EQ(Document["objects"][1]["state"], "done");
}

class TRecreateOnPostgreSQLTest : public TCommandTest {
 protected:
  TOutcome Recreate(const TArguments& More) {
    TArguments All = {"recreate", "table", "-d", Database.Url(), "t", "--overwrite", "yes"};
    All.insert(All.end(), More.begin(), More.end());
    return Run(All);
  }
  TPostgreSQLDatabase Database;
};

TEST_F(TRecreateOnPostgreSQLTest, CarriesTheRowsOverAndKeepsWhatStandsAround) {
  Database.Run("CREATE TABLE t (id serial PRIMARY KEY, title text, amount integer, fresh text DEFAULT 'f')");
  ASSERT_EQ(Run({"dictionary", "adopt", "-d", Database.Url(), "-t", "t"}).ExitCode, 0);
  Database.Run(
      "DROP TABLE t; CREATE TABLE t (id serial PRIMARY KEY, name text, amount text);"
      "INSERT INTO t (name, amount) VALUES ('one', '10'), ('two', '-7'); SELECT setval('t_id_seq', 40);"
      "CREATE VIEW v AS SELECT id, name FROM t; GRANT SELECT (name) ON t TO PUBLIC; COMMENT ON TABLE t IS 'kept';"
      "CREATE TABLE child (t_id integer REFERENCES t); INSERT INTO child VALUES (1)");
  TOutcome Outcome = Recreate({"--map", "name=title"});
  ASSERT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_EQ(Database.Rows("SELECT * FROM t ORDER BY id"), "1\tone\t10\tf\n2\ttwo\t-7\tf\n");
  EXPECT_EQ(Database.Rows("SELECT nextval('t_id_seq'), v.name, obj_description('t'::regclass) FROM v WHERE id = 1"),
            "41\tone\tkept\n");
  EXPECT_EQ(Database.Rows("SELECT attname FROM pg_attribute WHERE attrelid = 't'::regclass AND attacl IS NOT NULL"),
            "title\n");
  EXPECT_THROW(Database.Run("INSERT INTO child VALUES (9)"), std::runtime_error);
  // What does not come back leaves everything.
  Outcome = Recreate({"--drop-data"});
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_THAT(Outcome.Errors, HasSubstr("child"));
  Database.Run("ALTER TABLE t ALTER COLUMN amount TYPE text; UPDATE t SET amount = 'much' WHERE id = 2");
  Outcome = Recreate({});
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_THAT(Outcome.Errors, AllOf(HasSubstr("much"), HasSubstr("amount"), HasSubstr("ecord 2")));
  EXPECT_EQ(Database.Rows("SELECT * FROM t ORDER BY id"), "1\tone\t10\tf\n2\ttwo\tmuch\tf\n");
}

class TRecreateObjectsTest : public TCommandTest {
 protected:
  /// Views in the order in which none can be made before the next one.
  void ViewsInTheWorstOrder(const std::string& Url, const std::function<void(const std::string&)>& Sql) {
    Sql("CREATE TABLE t (a INTEGER); CREATE VIEW d AS SELECT 1 AS n FROM t; CREATE VIEW c AS SELECT n FROM d;"
        "CREATE VIEW b AS SELECT n FROM c; CREATE VIEW a AS SELECT n FROM b;");
    ASSERT_EQ(Run({"dictionary", "adopt", "-d", Url, "--all"}).ExitCode, 0);
    Sql("DROP VIEW a; DROP VIEW b; DROP VIEW c; DROP VIEW d;");
    TOutcome Outcome = Run({"recreate", "views", "-d", Url, "a", "b", "c", "d"});
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    EXPECT_EQ(Outcome.Errors, "created A (72)\ncreated B (72)\ncreated C (72)\ncreated D (72)\n");
    // Two that can never work.
    Sql("DROP VIEW a; DROP VIEW b; DROP VIEW c; DROP VIEW d; ALTER TABLE t RENAME TO gone;"
        "CREATE TABLE other (a INTEGER); CREATE VIEW fine AS SELECT a FROM other;");
    ASSERT_EQ(Run({"dictionary", "adopt", "-d", Url, "-t", "fine"}).ExitCode, 0);
    Sql("DROP VIEW fine");
    Outcome = Run({"recreate", "view", "-d", Url, "c", "fine", "d", "--on-error", "continue"});
    EXPECT_EQ(Outcome.ExitCode, 1);
    EXPECT_THAT(Outcome.Errors,
                AllOf(HasSubstr("failed C (72)\n"), HasSubstr("created FINE (72)\n"), HasSubstr("failed D (72)\n"),
                      HasSubstr("could not be created:"), HasSubstr("C;D;"), HasSubstr("Last Error: ")));
    Sql("DROP VIEW fine");
    EXPECT_EQ(Run({"recreate", "view", "-d", Url, "c", "fine", "d", "--on-error", "stop"}).ExitCode, 1);
    EXPECT_EQ(Run({"recreate", "view", "-d", Url, "fine"}).Errors, "created FINE (72)\n") << "it was taken back";
  }
  /// The same by the import of a file that has them in that order.
  void ImportInTheWorstOrder(const std::string& Url, const std::string& Empty,
                             const std::function<void(const std::string&)>& Sql) {
    Sql("CREATE TABLE t (a INTEGER); CREATE VIEW b AS SELECT a FROM t; CREATE VIEW a AS SELECT a FROM b;");
    ASSERT_EQ(Run({"dictionary", "adopt", "-d", Url, "--all"}).ExitCode, 0);
    for (const char* View : {"A", "B"})
      ASSERT_EQ(Run({"export", "structure", "-d", Url, "--type", "72", "--name", View, "-o", "f.eif"}).ExitCode, 0);
    TOutcome Outcome = Run({"import", "file", "-d", Empty, "-i", "f.eif", "--create-tables", "yes"});
    EXPECT_EQ(Outcome.ExitCode, 1) << "there is no table";
    EXPECT_THAT(Outcome.Errors, HasSubstr("the database is as it was before"));
    ASSERT_EQ(Run({"export", "table", "-d", Url, "-t", "t", "--structures", "-o", "f.eif"}).ExitCode, 0);
    Outcome = Run({"import", "file", "-d", Empty, "-i", "f.eif", "--create-tables", "yes"});
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    EXPECT_THAT(Outcome.Errors, HasSubstr("made 2 objects: the view 'A', the view 'B'\n"));
    // Structures that stay leave their objects alone.
    Outcome = Run({"import", "file", "-d", Empty, "-i", "f.eif", "--overwrite", "no", "--append"});
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    EXPECT_THAT(Outcome.Errors, Not(HasSubstr("made ")));
    Outcome = Run({"import", "file", "-d", Empty, "-i", "f.eif", "--overwrite", "yes", "--append"});
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    EXPECT_THAT(Outcome.Errors, HasSubstr("made 2 objects"));
  }
};

TEST_F(TRecreateObjectsTest, ViewsComeInAnyOrder) {
  ViewsInTheWorstOrder("sqlite:db", [&](const std::string& Statements) { Query("db", Statements); });
  Query("empty.db", "");
  ImportInTheWorstOrder("sqlite:from.db", "sqlite:empty.db",
                        [&](const std::string& Statements) { Query("from.db", Statements); });
}

TEST_F(TRecreateObjectsTest, AllKindsComeInOneRunOnSQLite) {
  const auto Structure = [](int Type, const std::string& Name, const std::string& Tree) {
    return "[SECTION]\r\nName = " + Name +
           "\r\nType = DSPStructure\r\nVersion = 200\r\nObjectType = " + std::to_string(Type) +
           "\r\nObjectName = " + Name + "\r\nTableName = \r\nParentObject = \r\nRootNode = " +
           "\r\n[DATA]\r\n [REMARKS]\r\n  \r\n [TREE]\r\n  Layout:integer = 1\r\n  Name:string = '" + Name + "'\r\n" +
           Tree + "[END]\r\n";
  };
  const auto Lines = [](const std::string& Line) {
    return "  sqlite:integer = 1\r\n    L:string = '" + Line + "'\r\n";
  };
  Query("db", "CREATE TABLE t (a INTEGER)");
  Write("f.eif", Structure(73, "P", Lines("INSERT INTO t SELECT count(*) FROM A")) +
                     Structure(72, "A", Lines("SELECT a FROM B")) + Structure(72, "B", Lines("SELECT a FROM t")) +
                     Structure(71, "G", "  Step:string = '5'\r\n"));
  TOutcome Outcome = Run({"import", "file", "-d", "sqlite:db", "-i", "f.eif", "--create-tables", "yes"});
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_THAT(Outcome.Errors,
              HasSubstr("made 4 objects: the procedure 'P', the view 'A', the view 'B', the generator 'G'\n"));
  EXPECT_EQ(Run({"database", "run-procedure", "-d", "sqlite:db", "P"}).ExitCode, 0);
  EXPECT_EQ(Query("db", "SELECT a FROM A"), "0");
  EXPECT_EQ(Run({"recreate", "procedure", "-d", "sqlite:db", "P", "--overwrite", "yes"}).Errors, "recreated P (73)\n");
  EXPECT_EQ(Run({"recreate", "generator", "-d", "sqlite:db", "G", "--overwrite", "yes", "--start-value", "6"}).Errors,
            "recreated G (71)\n");
  EXPECT_EQ(Query("db", "SELECT last_value, step FROM velkrund_generators"), "1|5");
  // What is left alone by an answer stays.
  Outcome = Run({"recreate", "views", "-d", "sqlite:db", "A", "B", "--overwrite", "no"});
  EXPECT_EQ(Outcome.Errors, "left out A (72): it is there already\nleft out B (72): it is there already\n");
}

TEST_F(TRecreateObjectsTest, ViewsComeInAnyOrderOnPostgreSQL) {
  TPostgreSQLDatabase First, From, To;
  ViewsInTheWorstOrder(First.Url(), [&](const std::string& Statements) { First.Run(Statements); });
  ImportInTheWorstOrder(From.Url(), To.Url(), [&](const std::string& Statements) { From.Run(Statements); });
}

TEST_F(TRecreateObjectsTest, ProceduresOfBothKindsComeInAnyOrderOnPostgreSQL) {
  TPostgreSQLDatabase Database;
  Database.Run(
      "CREATE TABLE t (a int); CREATE FUNCTION f() RETURNS SETOF int LANGUAGE sql AS 'SELECT a FROM t';"
      "CREATE PROCEDURE p() LANGUAGE sql AS 'INSERT INTO t SELECT * FROM f()'");
  ASSERT_EQ(Run({"dictionary", "adopt", "-d", Database.Url(), "--all"}).ExitCode, 0);
  Database.Run("DROP PROCEDURE p; DROP FUNCTION f");
  EXPECT_EQ(Run({"recreate", "procedures", "-d", Database.Url(), "p", "f", "--on-error", "stop"}).Errors,
            "created P (73)\ncreated F (74)\n");
}

TEST_F(TRecreateObjectsTest, GeneratorsGoOnWhereTheyStandOnPostgreSQL) {
  TPostgreSQLDatabase Database;
  Database.Run("CREATE SEQUENCE s; SELECT setval('s', 41)");
  ASSERT_EQ(Run({"dictionary", "adopt", "-d", Database.Url(), "-t", "s"}).ExitCode, 0);
  Database.Run("ALTER SEQUENCE s INCREMENT 5");
  const TOutcome Outcome = Run({"recreate", "generator", "-d", Database.Url(), "s", "--overwrite", "yes"});
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_EQ(Outcome.Errors, "recreated S (71)\n");
  EXPECT_EQ(Database.Rows("SELECT nextval('s')"), "42\n");
  EXPECT_EQ(
      Run({"recreate", "generator", "-d", Database.Url(), "s", "--overwrite", "yes", "--start-value", "7"}).ExitCode,
      0);
  EXPECT_EQ(Database.Rows("SELECT nextval('s')"), "7\n");
  EXPECT_EQ(Run({"recreate", "generators", "-d", Database.Url(), "s", "r", "--start-value", "7"}).ExitCode, 2);
}

}  // namespace
}  // namespace velkrund::tests
