#include "tests/cli/CommandTest.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

/// Tables described in one database and made in another one, by the command.
class TDictionaryTest : public TCommandTest {
 protected:
  TDictionaryTest() {
    Query("shop.db",
          "CREATE TABLE ORDERS (ID INTEGER PRIMARY KEY, CUSTOMER INTEGER NOT NULL REFERENCES CUSTOMERS (ID),"
          "  TOTAL DECIMAL(10,2) DEFAULT 0 CHECK (TOTAL >= 0), NOTE TEXT);"
          "CREATE TABLE CUSTOMERS (ID INTEGER PRIMARY KEY, \"FULL NAME\" VARCHAR(40) NOT NULL UNIQUE);"
          "CREATE TABLE EMPTY (A TEXT);"
          "CREATE INDEX BY_CUSTOMER ON ORDERS (CUSTOMER, TOTAL DESC);"
          "INSERT INTO CUSTOMERS VALUES (1, 'one'), (2, 'two');"
          "INSERT INTO ORDERS VALUES (10, 2, 1.5, NULL), (11, 1, 0.25, 'x');");
    EXPECT_EQ(Run({"export", "table", "-d", "sqlite:shop.db", "--all", "--structures", "-o", "shop.eif"}).ExitCode, 0);
  }

  TOutcome Import(const std::string& Database, TArguments More, const std::string& File = "shop.eif") {
    TArguments Line = {"import", "file", "-d", Database, "-i", File};
    Line.insert(Line.end(), More.begin(), More.end());
    return Run(Line);
  }
  /// The rows of the shop's tables, as the file has them; and whether anything else came along.
  std::string RowsOf(const std::string& Database) {
    remove(Path("rows.eif").c_str());
    EXPECT_EQ(Run({"export", "table", "-d", Database, "--all", "-o", "rows.eif"}).ExitCode, 0);
    return Read("rows.eif");
  }
  std::string TablesOf(const std::string& File) {
    return Query(
        File,
        "SELECT coalesce(group_concat(name), '') FROM (SELECT name FROM sqlite_schema WHERE name NOT LIKE 'sqlite%' "
        "AND name NOT LIKE 'velkrund%' ORDER BY type DESC, name)");
  }
};

TEST_F(TDictionaryTest, TwoCommandsMoveADatabaseToPostgreSQLAndBack) {
  TPostgreSQLDatabase Server;
  const std::string Rows = RowsOf("sqlite:shop.db");
  ASSERT_EQ(Import(Server.Url(), {"--create-tables", "yes"}).ExitCode, 0);
  EXPECT_EQ(RowsOf(Server.Url()), Rows);
  EXPECT_EQ(
      Server.Rows("SELECT conrelid::regclass, pg_get_constraintdef(k.oid) FROM pg_constraint k JOIN pg_class c ON "
                  "c.oid = conrelid WHERE c.relname IN ('ORDERS', 'CUSTOMERS') AND contype <> 'p' "
                  "ORDER BY c.relname, contype"),
      "\"CUSTOMERS\"\tUNIQUE (\"FULL NAME\")\n"
      "\"ORDERS\"\tCHECK ((\"TOTAL\" >= (0)::numeric))\n"
      "\"ORDERS\"\tFOREIGN KEY (\"CUSTOMER\") REFERENCES \"CUSTOMERS\"(\"ID\")\n");
  EXPECT_EQ(Server.Rows("SELECT indexdef FROM pg_indexes WHERE indexname = 'BY_CUSTOMER'"),
            "CREATE INDEX \"BY_CUSTOMER\" ON public.\"ORDERS\" USING btree (\"CUSTOMER\", \"TOTAL\" DESC)\n");

  EXPECT_EQ(Run({"export", "table", "-d", Server.Url(), "--all", "--structures", "-o", "back.eif"}).ExitCode, 0);
  const TOutcome Back = Import("sqlite:back.db", {"--create", "--create-tables", "yes"}, "back.eif");
  ASSERT_EQ(Back.ExitCode, 0) << Back.Errors;
  EXPECT_NE(Back.Errors.find("made 3 tables, whose structures stay in the catalogue"), std::string::npos)
      << Back.Errors;
  EXPECT_EQ(RowsOf("sqlite:back.db"), Rows);
  // The way back gives the very same tables: described without what the catalogue keeps, they are those of the shop.
  Query("back.db", "DROP TABLE velkrund_structures; DROP TABLE velkrund_catalogue");
  EXPECT_EQ(Run({"export", "table", "-d", "sqlite:back.db", "--all", "--structures", "-o", "again.eif"}).ExitCode, 0);
  EXPECT_EQ(Read("again.eif"), Read("shop.eif"));
}

TEST_F(TDictionaryTest, TablesAreMadeOrNothingIsChanged) {
  const struct {
    TArguments Line;
    int ExitCode;
    std::string Tables, Says;
  } Cases[] = {
      {{},
       1,
       "",
       "Tables that are not there, and that structures describe: 'CUSTOMERS', 'EMPTY', 'ORDERS'. Give "
       "--create-tables yes to make them"},
      {{"--create-tables", "no"},
       0,
       "",
       "left out table ORDERS, section 'ORDERS': the table is not there, and making "
       "it was declined"},
      {{"--create-tables", "yes", "--dry-run"}, 0, "", "nothing was changed"},
      {{"--create-tables", "yes"}, 0, "CUSTOMERS,EMPTY,ORDERS,BY_CUSTOMER", "made 3 tables"},
      {{"--create-tables", "yes", "--names", "lower"}, 0, "customers,empty,orders,by_customer", "made 3 tables"},
      {{"--create-tables", "yes", "--commit", "each"}, 0, "CUSTOMERS,EMPTY,ORDERS,BY_CUSTOMER", "made 3 tables"},
      {{"--create-tables", "yes", "--allow-missing", "chekcs"}, 2, "", "'chekcs'"},
  };
  for (const auto& [Line, ExitCode, Tables, Says] : Cases) {
    remove(Path("new.db").c_str());
    Query("new.db", "PRAGMA user_version = 1");
    const TOutcome Outcome = Import("sqlite:new.db", Line);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Line) << Outcome.Errors;
    EXPECT_EQ(TablesOf("new.db"), Tables) << Joined(Line);
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Joined(Line) << Outcome.Errors;
  }
}

TEST_F(TDictionaryTest, ADryRunShowsTheStatementsInOrder) {
  Query("some.db",
        "CREATE TABLE CUSTOMERS (ID INTEGER PRIMARY KEY, \"FULL NAME\" TEXT); INSERT INTO CUSTOMERS VALUES (1, 'x')");
  const std::string Before = Read("some.db");
  const TOutcome Outcome = Import("sqlite:some.db", {"--create-tables", "yes", "--replace", "--dry-run"});
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  std::size_t At = 0;
  for (const char* Part : {"-- add the structure ORDERS (10)", "CREATE TABLE \"EMPTY\"", "CREATE TABLE \"ORDERS\"",
                           "-- delete the rows of table 'CUSTOMERS': 1 row\nDELETE FROM \"CUSTOMERS\";",
                           "-- load the section 'ORDERS' into table 'ORDERS'", "CREATE INDEX \"BY_CUSTOMER\""}) {
    At = Outcome.Output.find(Part, At);
    ASSERT_NE(At, std::string::npos) << Part << "\n" << Outcome.Output;
  }
  EXPECT_EQ(Read("some.db"), Before);
  const struct {
    TArguments Line;
    std::string Shows;
  } Others[] = {
      {{"export", "table", "-d", "sqlite:shop.db", "-t", "ORDERS", "-o", "shop.eif", "--overwrite", "yes", "--dry-run"},
       "-- replace the section 'ORDERS' of 'shop.eif'"},
      {{"file", "remove", "shop.eif", "0", "--dry-run"}, "-- remove section 0"},
      {{"dictionary", "adopt", "-d", "sqlite:some.db", "--all", "--dry-run"}, "-- add the structure CUSTOMERS (10)"},
  };
  const std::string File = Read("shop.eif");
  for (const auto& [Line, Shows] : Others) {
    const TOutcome Shown = Run(Line);
    EXPECT_EQ(Shown.ExitCode, 0) << Joined(Line) << Shown.Errors;
    EXPECT_NE(Shown.Output.find(Shows), std::string::npos) << Joined(Line) << Shown.Output;
  }
  EXPECT_EQ(Read("shop.eif"), File);
  EXPECT_EQ(Read("some.db"), Before);
}

TEST_F(TDictionaryTest, WhatCannotBeMadeTakesTheRunBackOrItsTable) {
  // An index that the rows break: they are in the table when it is made.
  Query("index.db",
        "CREATE TABLE T (A INTEGER PRIMARY KEY, B INT); CREATE TABLE U (A INTEGER PRIMARY KEY);"
        "CREATE UNIQUE INDEX I ON T (B); INSERT INTO T VALUES (1, 5), (2, 6); INSERT INTO U VALUES (1)");
  EXPECT_EQ(Run({"export", "table", "-d", "sqlite:index.db", "--all", "--structures", "-o", "index.eif"}).ExitCode, 0);
  const std::string Good = Read("index.eif");
  std::string File = Good;
  File.replace(File.find("<2|6>"), 5, "<2|5>");
  Write("index.eif", File);
  const struct {
    TArguments Line;
    std::string Tables, Says;
  } Cases[] = {
      {{}, "", "the database is as it was before"},
      {{"--on-error", "continue"}, "U", "failed table T"},
      {{"--on-error", "continue", "--commit", "each"}, "T,U", "warning: 1 table waits for indexes"},
  };
  for (const auto& [More, Tables, Says] : Cases) {
    remove(Path("new.db").c_str());
    Query("new.db", "PRAGMA user_version = 1");
    TArguments Line = {"--create-tables", "yes"};
    Line.insert(Line.end(), More.begin(), More.end());
    const TOutcome Outcome = Import("sqlite:new.db", Line, "index.eif");
    EXPECT_EQ(Outcome.ExitCode, 1) << Joined(More) << Outcome.Errors;
    EXPECT_EQ(TablesOf("new.db"), Tables) << Joined(More) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find("UNIQUE constraint failed: T.B"), std::string::npos) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Joined(More) << Outcome.Errors;
  }
  // Until then nothing drops it, or takes what somebody has put into it.
  Query("new.db", "INSERT INTO T VALUES (50, 50)");
  for (const char* const Commit : {"run", "each"}) {
    const TOutcome Again = Import(
        "sqlite:new.db", {"--append", "--overwrite", "yes", "--on-error", "continue", "--commit", Commit}, "index.eif");
    EXPECT_EQ(Again.ExitCode, 1) << Again.Errors;
    EXPECT_EQ(Again.Errors.find("completed"), std::string::npos) << Again.Errors;
    EXPECT_EQ(TablesOf("new.db"), "T,U") << Again.Errors;
    EXPECT_EQ(Query("new.db", "SELECT group_concat(B) FROM (SELECT B FROM T ORDER BY A)"), "5,5,50") << Again.Errors;
  }
  // What was committed is completed by the next run, once its rows let it.
  Write("index.eif", Good);
  const TOutcome Later = Import("sqlite:new.db", {"--replace", "--overwrite", "yes"}, "index.eif");
  EXPECT_EQ(Later.ExitCode, 0) << Later.Errors;
  EXPECT_NE(Later.Errors.find("completed 1 table that an earlier run had left"), std::string::npos) << Later.Errors;
  EXPECT_EQ(TablesOf("new.db"), "T,U,I");
}

TEST_F(TDictionaryTest, ATableThatFailsOnPostgreSQLTakesThoseThatReferToItAlong) {
  TPostgreSQLDatabase Server;
  Query("keys.db",
        "CREATE TABLE A (I INTEGER PRIMARY KEY, Z INTEGER REFERENCES Z (I)); CREATE TABLE Z (I INTEGER PRIMARY KEY);"
        "CREATE TABLE B (I INTEGER PRIMARY KEY, A INTEGER REFERENCES A (I)); CREATE TABLE C (I INTEGER);"
        "INSERT INTO A VALUES (1, 99); INSERT INTO B VALUES (1, 1)");
  EXPECT_EQ(Run({"export", "table", "-d", "sqlite:keys.db", "--all", "--structures", "-o", "keys.eif"}).ExitCode, 0);
  const TOutcome Outcome = Import(Server.Url(), {"--create-tables", "yes", "--on-error", "continue"}, "keys.eif");
  EXPECT_EQ(Outcome.ExitCode, 1) << Outcome.Errors;
  EXPECT_NE(Outcome.Errors.find("failed table A"), std::string::npos) << Outcome.Errors;
  EXPECT_NE(Outcome.Errors.find("taken back table B"), std::string::npos) << Outcome.Errors;
  EXPECT_EQ(Server.Rows(
                "SELECT tablename FROM pg_tables WHERE schemaname = 'public' AND tablename !~ '^velkrund' ORDER BY 1"),
            "C\nZ\n");
}

TEST_F(TDictionaryTest, AStructureMakesTheTableOfItsOwnName) {
  Query("named.db", "CREATE TABLE T (A INTEGER)");
  Query("victim.db", "CREATE TABLE T (A INTEGER); INSERT INTO T VALUES (77); ");
  EXPECT_EQ(Run({"export", "table", "-d", "sqlite:named.db", "--all", "--structures", "-o", "named.eif"}).ExitCode, 0);
  std::string Copy = Read("named.eif");
  for (const char* Line : {"ObjectName = T", "TableName = T"})
    for (std::size_t At = 0; (At = Copy.find(std::string(Line) + "\r\n", At)) != std::string::npos; ++At)
      Copy.insert(At + std::string(Line).size(), "WO");
  Write("copy.eif", Copy);
  const TOutcome Outcome = Import("sqlite:victim.db", {"--create-tables", "yes"}, "copy.eif");
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_EQ(TablesOf("victim.db"), "T,TWO");
  EXPECT_EQ(Query("victim.db", "SELECT group_concat(A) FROM T"), "77");
  // Names that are none, which SQLite would take for texts.
  std::string Wrong = Read("shop.eif");
  const std::string Column = "Column:string = 'CUSTOMER'";
  Wrong.replace(Wrong.rfind(Column), Column.size(), "Column:string = 'NOPE'");
  Write("wrong.eif", Wrong);
  const TOutcome Refused = Import("sqlite:wrong.db", {"--create", "--create-tables", "yes"}, "wrong.eif");
  EXPECT_EQ(Refused.ExitCode, 1);
  EXPECT_NE(Refused.Errors.find("names the field 'NOPE', which is none"), std::string::npos) << Refused.Errors;
}

TEST_F(TDictionaryTest, WhatPostgreSQLHasNoWordsForIsAllowedByItsKind) {
  TPostgreSQLDatabase Server;
  Query("own.db", "CREATE TABLE T (A TEXT COLLATE NOCASE CHECK (A GLOB 'x*'), B INT REFERENCES NOWHERE (X))");
  EXPECT_EQ(Run({"export", "table", "-d", "sqlite:own.db", "--all", "--structures", "-o", "own.eif"}).ExitCode, 0);
  const TOutcome Refused = Import(Server.Url(), {"--create-tables", "yes"}, "own.eif");
  EXPECT_EQ(Refused.ExitCode, 1);
  EXPECT_NE(Refused.Errors.find("--allow-missing checks,collations,references goes on without"), std::string::npos)
      << Refused.Errors;
  EXPECT_EQ(Server.Rows("SELECT count(*) FROM pg_tables WHERE schemaname = 'public'"), "0\n");
  const TOutcome Made =
      Import(Server.Url(), {"--create-tables", "yes", "--allow-missing", "checks,collations,references"}, "own.eif");
  EXPECT_EQ(Made.ExitCode, 0) << Made.Errors;
  for (const char* Line : {"not made: the check of table 'T'", "not made: the order of field 'A' of table 'T'",
                           "not made: the foreign key of table 'T' to the table 'NOWHERE'"})
    EXPECT_NE(Made.Errors.find(Line), std::string::npos) << Line << Made.Errors;
}

TEST_F(TDictionaryTest, NamesThatSchemasOfPostgreSQLKeepApartMeetBeforeAnythingIsMade) {
  TPostgreSQLDatabase Server;
  Server.Run(
      "CREATE SCHEMA a; CREATE TABLE a.t (i int); CREATE INDEX by_i ON a.t (i);"
      "CREATE SCHEMA b; CREATE TABLE b.t (i int); CREATE INDEX \"BY_I\" ON b.t (i)");
  EXPECT_EQ(Run({"export", "table", "-d", Server.Url(), "--all", "--structures", "-o", "meet.eif"}).ExitCode, 0);
  const TOutcome Outcome = Import("sqlite:meet.db", {"--create", "--create-tables", "yes"}, "meet.eif");
  EXPECT_EQ(Outcome.ExitCode, 1) << Outcome.Errors;
  EXPECT_NE(Outcome.Errors.find("'b.t' comes with the name of a table, index, key or sequence that 'a.t' comes with"),
            std::string::npos)
      << Outcome.Errors;
}

TEST_F(TDictionaryTest, StructuresThatAreStoredMakeTablesToo) {
  EXPECT_EQ(Run({"dictionary", "adopt", "-d", "sqlite:shop.db", "--all"}).ExitCode, 0);
  EXPECT_EQ(Run({"export", "structure", "-d", "sqlite:shop.db", "--all", "-o", "structures.eif"}).ExitCode, 0);
  EXPECT_EQ(Run({"export", "table", "-d", "sqlite:shop.db", "-t", "CUSTOMERS", "-o", "customers.eif"}).ExitCode, 0);
  // Structures alone: import structure stores them, and the rows of a later run make the table.
  EXPECT_EQ(Run({"import", "structure", "-d", "sqlite:later.db", "--create", "-i", "structures.eif"}).ExitCode, 0);
  EXPECT_EQ(TablesOf("later.db"), "");
  const TOutcome Later = Import("sqlite:later.db", {"--create-tables", "yes"}, "customers.eif");
  EXPECT_EQ(Later.ExitCode, 0) << Later.Errors;
  EXPECT_EQ(TablesOf("later.db"), "CUSTOMERS");
  EXPECT_EQ(Query("later.db", "SELECT count(*) FROM CUSTOMERS"), "2");
  // A read-only source without a catalogue stays as it is.
  Query("plain.db", "CREATE TABLE T (A INTEGER)");
  const std::string Before = Read("plain.db");
  EXPECT_EQ(Run({"export", "table", "-d", "sqlite:plain.db", "--all", "--structures", "-o", "p.eif"}).ExitCode, 0);
  EXPECT_EQ(Read("plain.db"), Before);
}

TEST_F(TDictionaryTest, AdoptedStructuresFollowTheDatabase) {
  const auto Adopt = [this](TArguments More) {
    TArguments Line = {"dictionary", "adopt", "-d", "sqlite:shop.db"};
    Line.insert(Line.end(), More.begin(), More.end());
    return Run(Line);
  };
  EXPECT_NE(Adopt({"--all"}).Errors.find("in all 3 added, 0 replaced, 0 unchanged, 0 left out"), std::string::npos);
  EXPECT_NE(Adopt({"--all"}).Errors.find("in all 0 added, 0 replaced, 3 unchanged, 0 left out"), std::string::npos);
  Query("shop.db", "ALTER TABLE EMPTY ADD COLUMN B INT");
  const TOutcome Refused = Adopt({"-t", "empty"});
  EXPECT_EQ(Refused.ExitCode, 1);
  EXPECT_NE(Refused.Errors.find("Structures that describe what has changed: EMPTY (10). Give --overwrite yes"),
            std::string::npos)
      << Refused.Errors;
  EXPECT_NE(Adopt({"--all", "--overwrite", "no"}).Errors.find("2 unchanged, 1 left out"), std::string::npos);
  EXPECT_NE(Adopt({"--all", "--overwrite", "yes"}).Errors.find("1 replaced, 2 unchanged"), std::string::npos);
  EXPECT_NE(Run({"dictionary", "script", "-d", "sqlite:shop.db", "--engine", "postgresql", "--name", "empty"})
                .Output.find("\"B\" bigint"),
            std::string::npos);
  const TOutcome Misspelt = Adopt({"-t", "ORDER"});
  EXPECT_EQ(Misspelt.ExitCode, 1);
  EXPECT_NE(Misspelt.Errors.find("There is no table, view, generator or procedure 'ORDER'"), std::string::npos)
      << Misspelt.Errors;
}

}  // namespace
}  // namespace velkrund::tests
