#include <signal.h>

#include "tests/cli/CommandTest.h"
#include "tests/roundtrip/TestDatabase.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

/// Two databases of an engine. In the source o has three rows, of which l refers to two; the target has a row of each,
/// and tables that take others.
class TCopyTableTest : public TCommandTest, public testing::WithParamInterface<const char*> {
 protected:
  bool IsServer() const { return GetParam() == std::string("postgresql"); }
  TTestDatabase Open(const std::string& Name) { return IsServer() ? PostgreSQLDatabase() : SQLiteDatabase(Path(Name)); }

  /// A trigger of o that adds a row to k.
  std::string Trigger(const std::string& When) const {
    return IsServer() ? "CREATE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN INSERT INTO k VALUES (NEW.n); "
                        "RETURN NEW; END'; CREATE TRIGGER g AFTER " +
                            When + " ON o FOR EACH ROW EXECUTE FUNCTION f();"
                      : "CREATE TRIGGER g AFTER " + When + " ON o BEGIN INSERT INTO k VALUES (NEW.n); END;";
  }
  void Renew(const std::string& InSource, const std::string& InTarget) {
    const std::string Drop =
        "DROP TABLE IF EXISTS l; DROP TABLE IF EXISTS o; DROP TABLE IF EXISTS c;"
        "DROP TABLE IF EXISTS k; DROP TABLE IF EXISTS lone;" +
        std::string(IsServer() ? "DROP FUNCTION IF EXISTS f();" : "");
    const std::string Key = IsServer() ? "serial PRIMARY KEY" : "INTEGER PRIMARY KEY AUTOINCREMENT";
    const std::string Tables = Drop + "CREATE TABLE c (i " + Key + ", n text);";
    Source.Run(Tables +
               "CREATE TABLE o (i integer PRIMARY KEY, n text); CREATE TABLE l (i integer PRIMARY KEY, p integer);"
               "CREATE TABLE lone (z text); INSERT INTO o VALUES (1, 'one'), (2, 'two'), (3, NULL);"
               "INSERT INTO l VALUES (1, 2), (2, 1), (3, NULL); INSERT INTO c VALUES (41, 'x');" +
               InSource);
    Target.Run(Tables +
               "CREATE TABLE o (i integer PRIMARY KEY, n text CHECK (n <> 'bad'), x text DEFAULT 'd');"
               "CREATE TABLE l (i integer PRIMARY KEY, p integer REFERENCES o); CREATE TABLE k (n text);"
               "INSERT INTO o VALUES (7, 'old', 'kept'); INSERT INTO l VALUES (8, 7);" +
               InTarget);
  }
  /// The rows of a table, in short.
  std::string RowsOf(const std::string& Table, const std::string& Fields = "*") {
    std::string Result = Target.Text("SELECT " + Fields + " FROM " + Table + " ORDER BY 1");
    std::replace(Result.begin(), Result.end(), '\t', ',');
    std::replace(Result.begin(), Result.end(), '\n', ' ');
    return Result;
  }
  TArguments Copy(const TArguments& More) const {
    TArguments Result = {"copy", "table", "--from", Source.Url, "--to", Target.Url};
    Result.insert(Result.end(), More.begin(), More.end());
    return Result;
  }

  TTestDatabase Source = Open("source.db"), Target = Open("target.db");
};

INSTANTIATE_TEST_SUITE_P(Engines, TCopyTableTest, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

TEST_P(TCopyTableTest, OptionsDecideWhatArrives) {
  const std::string All = "1,one,d 2,two,d 3,\\N,d ", Was = "7,old,kept ", Both = All + Was;
  const std::string Lines = "1,2 2,1 3,\\N ", OldLine = "8,7 ";
  const std::string Free = "DELETE FROM l; DELETE FROM o;", Bad = "INSERT INTO o VALUES (4, 'bad'), (5, 'five');";
  const std::string Broken = IsServer() ? "violates foreign key" : "values refer to rows that are not there";
  const struct {
    std::string InSource, InTarget;
    TArguments Options;
    int ExitCode;
    std::string Rows, LineRows, Says;  // of o and l
  } Cases[] = {
      {"", "", {"-t", "o"}, 1, Was, OldLine, "Table 'o' has 1 row. Give --replace to delete them first, --append to"},
      {"", Free, {"-t", "l", "-t", "o"}, 0, All, Lines, "in all 2 tables: 6 rows"},
      {"", "", {"-t", "l", "-t", "o", "--replace"}, 0, All, Lines, "1 row deleted that was there"},
      {"", "", {"-t", "O", "-t", "o", "--append"}, 0, Both, OldLine, "copied table o: 3 rows"},
      {"", "INSERT INTO o VALUES (2, 'here', 'kept')", {"-t", "o", "--append"}, 1, "2,here,kept " + Was, OldLine, "o"},
      {"",
       "INSERT INTO o VALUES (2, 'here', 'kept')",
       {"-t", "o", "--update"},
       0,
       "1,one,d 2,two,kept 3,\\N,d " + Was,
       OldLine,
       "1 row of them took the place of others"},
      {"", "", {"-t", "o", "--append", "--where", "n IS NOT NULL"}, 0, "1,one,d 2,two,d " + Was, OldLine, "2 rows"},
      {"", "", {"-t", "o", "--append", "--where", "i = 1 OR i = 2 -- two"}, 0, "1,one,d 2,two,d " + Was, OldLine, ""},
      {"", "", {"-t", "o", "--append", "--map", "n=x"}, 0, "1,one,one 2,two,two 3,\\N,\\N " + Was, OldLine, ""},
      {"",
       "",
       {"-t", "o", "--append", "--map", "o.i=n", "--map", "i=i", "--missing-fields", "skip"},
       0,
       "1,1,d 2,2,d 3,3,d " + Was,
       OldLine,
       "left out: n"},
      {"ALTER TABLE o ADD y text;",
       "",
       {"-t", "o", "--append", "--missing-fields", "skip"},
       0,
       Both,
       OldLine,
       "the table lacks these fields, which were left out: y"},
      // Nothing is changed where something is known to be wrong.
      {"ALTER TABLE o ADD y text;", "", {"-t", "l", "-t", "o", "--replace"}, 1, Was, OldLine, "has no field for 'y'"},
      {"", "", {"-t", "o", "-t", "gone", "--replace"}, 1, Was, OldLine, "no table 'gone'"},
      {"", "", {"-t", "o", "-t", "lone", "--replace"}, 1, Was, OldLine, "no table 'lone'"},
      {"",
       "",
       {"-t", "lone", "--to-table", "o", "--append", "--missing-fields", "skip"},
       1,
       Was,
       OldLine,
       "The table 'o' has none of the fields of 'lone': z"},
      {"",
       "",
       {"-t", "o", "--to-table", "k", "--update", "--missing-fields", "skip"},
       1,
       Was,
       OldLine,
       "it has no primary key to find them by"},
      {"ALTER TABLE o RENAME i TO j;",
       "",
       {"-t", "o", "--update", "--missing-fields", "skip"},
       1,
       Was,
       OldLine,
       "'o' has no field for 'i' of its primary key"},
      {"", "", {"-t", "o", "--append", "--map", "n=nowhere"}, 2, Was, OldLine, "n=nowhere"},
      {"", "", {"-t", "o", "-t", "l", "--to-table", "o", "--replace"}, 2, Was, OldLine, "is about one table"},
      {"", "", {"-t", "o", "-t", "l", "--where", "i = 1", "--replace"}, 2, Was, OldLine, "is about one table"},
      {"", "", {"-t", "o", "--update", "--replace"}, 2, Was, OldLine, "--replace"},
      {"", "", {"--all", "--replace", "--dry-run"}, 1, Was, OldLine, "no table 'lone'"},
      {"", "", {"-t", "l", "-t", "o", "--replace", "--dry-run"}, 0, Was, OldLine, "nothing was changed"},
      // What fails, or refers to nothing, leaves everything as it was.
      {"", "", {"-t", "o", "--replace", "--where", "i >"}, 1, Was, OldLine, "selection 'i >'"},
      {Bad, "", {"-t", "c", "-t", "l", "-t", "o", "--replace"}, 1, Was, OldLine, "the database is as it was before"},
      {Bad, "", {"-t", "o", "--update"}, 1, Was, OldLine, "failed table o"},
      {"UPDATE l SET p = 70;", "", {"-t", "l", "--replace"}, 1, Was, OldLine, Broken},
      {"", "", {"-t", "o", "--replace"}, 1, Was, OldLine, "failed table o"},
      {"",
       "INSERT INTO o VALUES (3, '', '')",
       {"-t", "l", "-t", "o", "--append", "--on-error", "continue"},
       1,
       "3,, " + Was,
       OldLine,
       "failed table o"},
  };
  for (const auto& Case : Cases) {
    Renew(Case.InSource, Case.InTarget);
    const TOutcome Outcome = Run(Copy(Case.Options));
    SCOPED_TRACE(Joined(Case.Options) + "\n" + Outcome.Errors);
    EXPECT_EQ(Outcome.ExitCode, Case.ExitCode);
    EXPECT_EQ(RowsOf("o"), Case.Rows);
    EXPECT_EQ(RowsOf("l"), Case.LineRows);
    EXPECT_NE(Outcome.Errors.find(Case.Says), std::string::npos);
  }
}

TEST_P(TCopyTableTest, GroupsThatFailAreUndoneAlone) {
  const std::string Bad = "INSERT INTO o VALUES (4, 'bad');";
  const struct {
    TArguments Options;
    std::string Counters;  // of c, which comes with the others
  } Cases[] = {{{}, ""}, {{"--on-error", "continue"}, "41,x "}, {{"--on-error", "stop", "--commit", "each"}, "41,x "}};
  for (const auto& [Options, Counters] : Cases) {
    Renew(Bad, "");
    TArguments Line = Copy({"-t", "c", "-t", "l", "-t", "o", "--replace"});
    Line.insert(Line.end(), Options.begin(), Options.end());
    const TOutcome Outcome = Run(Line);
    EXPECT_EQ(Outcome.ExitCode, 1);
    EXPECT_EQ(RowsOf("c"), Counters) << Joined(Line) << Outcome.Errors;
    EXPECT_EQ(RowsOf("o") + RowsOf("l"), "7,old,kept 8,7 ") << Joined(Line) << Outcome.Errors;
  }
  Target.Run("INSERT INTO c (n) VALUES ('next')");
  EXPECT_EQ(RowsOf("c"), "41,x 42,next ") << "counters follow the rows";
}

TEST_P(TCopyTableTest, NothingIsLostAndNothingGuessed) {
  Renew("", "DELETE FROM l; DROP VIEW IF EXISTS w; CREATE VIEW w AS SELECT * FROM o");
  // Rows that would go before they are read.
  const TOutcome Emptied =
      Run({"copy", "table", "--from", Target.Url, "--to", Target.Url, "-t", "w", "--to-table", "o", "--replace"});
  EXPECT_EQ(RowsOf("o"), "7,old,kept ") << Emptied.Errors;
  Target.Run("DROP VIEW w");
  // Two fields that would fill one.
  Renew("", "");
  const TOutcome Twice = Run(Copy({"-t", "o", "--append", "--map", "n=x", "--map", "i=x"}));
  EXPECT_NE(Twice.ExitCode, 0);
  EXPECT_EQ(RowsOf("o"), "7,old,kept ") << Twice.Errors;
  if (!IsServer()) return;
  // Names that differ in case alone: one of the two would stay behind.
  Renew("ALTER TABLE o ADD \"N\" text;", "");
  const TOutcome Cases = Run(Copy({"-t", "o", "--append"}));
  EXPECT_NE(Cases.ExitCode, 0);
  EXPECT_EQ(RowsOf("o"), "7,old,kept ") << Cases.Errors;
}

TEST_P(TCopyTableTest, TriggersFireOrAreOff) {
  const struct {
    std::string When;
    TArguments Options;
    std::string Rows;  // of k
  } Cases[] = {{"INSERT", {"--append"}, "one two \\N "},
               {"INSERT", {"--append", "--triggers", "off"}, ""},
               {"INSERT", {"--update"}, "two \\N "},
               {"UPDATE", {"--update"}, "one "},
               {"UPDATE", {"--update", "--triggers", "off"}, ""}};
  for (const auto& [When, Options, Rows] : Cases) {
    Renew("", Trigger(When) + (Options[0] == "--update" ? "INSERT INTO o VALUES (1, '', '')" : ""));
    if (Options[0] == "--update" && When == "INSERT") Target.Run("DELETE FROM k");
    TArguments Line = Copy({"-t", "o"});
    Line.insert(Line.end(), Options.begin(), Options.end());
    const TOutcome Outcome = Run(Line);
    EXPECT_EQ(Outcome.ExitCode, 0) << Joined(Line) << Outcome.Errors;
    std::string Found = Target.Text("SELECT n FROM k ORDER BY n IS NULL, n");
    std::replace(Found.begin(), Found.end(), '\n', ' ');
    EXPECT_EQ(Found, Rows) << When << Joined(Line) << Outcome.Errors;
  }
}

// At a row in the middle, one engine sleeps and the other counts for a while at each.
TEST_P(TCopyTableTest, ASignalLeavesTheTargetAsItWas) {
  Renew(
      "DELETE FROM o; INSERT INTO o WITH RECURSIVE r(n) AS (SELECT 8 UNION ALL SELECT n + 1 FROM r WHERE n < 100000) "
      "SELECT n, 'row' FROM r",
      "");
  Target.Run(IsServer() ? "CREATE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN PERFORM pg_sleep(60); RETURN "
                          "NEW; END'; CREATE TRIGGER g BEFORE INSERT ON o FOR EACH ROW WHEN (NEW.i = 50000) EXECUTE "
                          "FUNCTION f();"
                        : "CREATE TRIGGER g AFTER INSERT ON o BEGIN WITH RECURSIVE r(n) AS (SELECT 1 UNION ALL SELECT "
                          "n + 1 FROM r WHERE n < 1000) SELECT sum(n) FROM r; END");
  const auto IsOnItsWay = [&] {
    if (!IsServer()) return Read(".captured/err").find("\"progress\"") != std::string::npos;
    return Target.Text(
               "SELECT count(*) FROM pg_stat_activity WHERE datname = current_database() AND wait_event = "
               "'PgSleep'") == "1\n";
  };
  for (const char* Option : {"--append", "--update"}) {
    Write(".captured/err", "");
    const pid_t Process = Start(Copy({"-t", "o", Option, "--progress", "json"}));
    EXPECT_TRUE(WaitUntil(IsOnItsWay));
    kill(Process, SIGINT);
    const TOutcome Outcome = Finish(Process);
    EXPECT_EQ(Outcome.ExitCode, 3) << Option << Outcome.Errors;
    EXPECT_EQ(RowsOf("o"), "7,old,kept ") << Option;
  }
}

/// Values by hand in either engine, and what they have to be after a copy.
class TCopyCellsTest : public TCommandTest {
 protected:
  void Copy(const TTestDatabase& From, const TTestDatabase& To, TArguments More) {
    More.insert(More.begin(), {"copy", "table", "--from", From.Url, "--to", To.Url});
    const TOutcome Outcome = Run(More);
    EXPECT_EQ(Outcome.ExitCode, 0) << Joined(More) << Outcome.Errors;
  }
};

TEST_F(TCopyCellsTest, EveryCellArrivesAsSQLCopiesIt) {
  const std::string Table =
      " (i INTEGER PRIMARY KEY, t TEXT, r REAL, n DECIMAL(12,4), b BLOB, d DATE, a, s TIMESTAMP);";
  const std::string Rows =
      "INSERT INTO w VALUES (1, 'a|b#c' || char(10, 9), 0.1, 12.5, x'00FF7C', '2024-02-29', 'x', '1999-12-31 "
      "23:59:59.5'),"
      "(2, '', -0.0, 9223372036854775807, x'', 45000, 1.5, ''), (-9223372036854775808, NULL, NULL, NULL, NULL, NULL, "
      "NULL, NULL), (9007199254740993, 'Анна', 1e300, 'abc', zeroblob(70000), 'no day', x'0A', 1.25),"
      "(5, CAST(x'41FF42' AS TEXT), 5e-324, '007', 'text', x'01', 9007199254740993, 0);";
  const TTestDatabase One = SQLiteDatabase(Path("one.db")), Two = SQLiteDatabase(Path("two.db"));
  One.Run("CREATE TABLE w" + Table + Rows + "CREATE TABLE hand" + Table + "CREATE TABLE copy" + Table +
          "INSERT INTO hand SELECT * FROM w");
  Two.Run("CREATE TABLE w" + Table);
  const auto CellsOf = [](const TTestDatabase& Database, const std::string& Name) {
    return Database.Cells("SELECT * FROM " + Name + " ORDER BY i");
  };
  const std::string Hand = CellsOf(One, "hand");
  for (const TArguments& Options : {TArguments{"--replace"}, {"--replace", "--where", "1 = 1"}, {"--update"}}) {
    TArguments Within = {"-t", "w", "--to-table", "copy"};
    Within.insert(Within.end(), Options.begin(), Options.end());
    Copy(One, One, Within);
    EXPECT_EQ(CellsOf(One, "copy"), Hand) << Joined(Options);
    TArguments Across = {"-t", "w"};
    Across.insert(Across.end(), Options.begin(), Options.end());
    Copy(One, Two, Across);
    EXPECT_EQ(CellsOf(Two, "w"), Hand) << Joined(Options);
  }
}

TEST_F(TCopyCellsTest, EveryCellCrossesToPostgreSQLAndBack) {
  const TTestDatabase Light = SQLiteDatabase(Path("light.db")), Server = PostgreSQLDatabase(),
                      Third = PostgreSQLDatabase();
  const auto Types = [](const char* Real, const char* Bytes) {
    return Format("(i bigint PRIMARY KEY, t text, r %s, n decimal(14,2), b %s, f boolean, d date, s timestamp);", Real,
                  Bytes);
  };
  const std::string LightTable = Types("double", "blob"), ServerTable = Types("double precision", "bytea");
  const std::string Shared =
      "INSERT INTO hand VALUES (9223372036854775807, 'a|b' || %s, 0.1, 12.5, %s, %s, '2024-02-29', '1999-12-31 "
      "23:59:59.500'),"
      "(-2, '', 1e300, -0.01, %s, %s, '0001-01-01', '2024-03-01 00:00:00'), (0, NULL, NULL, NULL, NULL, NULL, NULL, "
      "NULL),"
      "(3, 'Анна 東京', -2.5, 123456789012.34, NULL, NULL, NULL, NULL);";
  Light.Run("CREATE TABLE hand " + LightTable + "CREATE TABLE w " + LightTable + "CREATE TABLE back " + LightTable +
            Format(Shared, "char(10, 9)", "x'00FF7C5C'", "1", "x''", "0"));
  for (const TTestDatabase* Database : {&Server, &Third})
    Database->Run("CREATE TABLE hand " + ServerTable + "CREATE TABLE w " + ServerTable + "CREATE TABLE back " +
                  ServerTable + Format(Shared, "chr(10) || chr(9)", "'\\x00ff7c5c'", "true", "''", "false"));
  const auto CellsOf = [](const TTestDatabase& Database, const std::string& Name) {
    return Database.Cells("SELECT * FROM " + Name + " ORDER BY i");
  };
  for (const char* Option : {"--replace", "--update"}) {
    Copy(Light, Server, {"-t", "hand", "--to-table", "w", Option});
    Copy(Server, Light, {"-t", "hand", "--to-table", "w", Option});
    Copy(Server, Third, {"-t", "w", Option});
    Copy(Server, Server, {"-t", "w", "--to-table", "back", Option});
    for (const auto& [Database, Name] : {std::pair{&Server, "w"}, {&Server, "back"}, {&Light, "w"}, {&Third, "w"}})
      EXPECT_EQ(CellsOf(*Database, Name), CellsOf(*Database, "hand")) << Name << " of " << Database->Url << Option;
  }
  // Names that differ in case alone.
  Server.Run("CREATE TABLE \"HAND\" (i bigint)");
  const TOutcome Both = Run({"copy", "table", "--from", Server.Url, "--to", Light.Url, "-t", "hand", "-t", "HAND",
                             "--replace", "--missing-fields", "skip"});
  EXPECT_EQ(Both.ExitCode, 1);
  EXPECT_NE(Both.Errors.find("The tables 'hand' and 'HAND' would both go into 'hand'"), std::string::npos)
      << Both.Errors;
  EXPECT_EQ(CellsOf(Light, "hand"), CellsOf(Light, "w"));
}

}  // namespace
}  // namespace velkrund::tests
