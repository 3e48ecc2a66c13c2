#include "tests/cli/ShopTest.h"
#include "tests/roundtrip/TestDatabase.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

/// Of shop.db a query with a parameter, as sections of q.eif.
class TQueryTest : public TShopTest {
 protected:
  TQueryTest() {
    EXPECT_EQ(Export("q.eif", {"--sql", "SELECT ID, X AS SUM FROM B WHERE ID <= :MOST", "--param", "MOST=integer:9"})
                  .ExitCode,
              0);
  }
  TOutcome Export(const std::string& File, const TArguments& More) {
    TArguments Line = {"export", "query", "-d", "sqlite:shop.db", "-o", File};
    Line.insert(Line.end(), More.begin(), More.end());
    return Run(Line);
  }
};

TEST_F(TQueryTest, WhatIsWrongWithAQueryShowsBeforeTheFileIsTouched) {
  Write("writes.sql", "DELETE FROM A");
  Write("empty.sql", " \n");
  Write("bytes.sql", "SELECT '\xFF'");
  const struct {
    TArguments Options;
    int ExitCode;
    std::string Says;
  } Cases[] = {
      {{"--sql", "SELECT ID, ID FROM A"}, 1, "two fields of the name 'ID'"},
      {{"--sql", "SELECT ID, NAME AS Id FROM A"}, 1, "'ID' and 'Id' differ in case only"},
      {{"--sql", "SELECT ID AS \"#\" FROM A"}, 1, "a field '#', as the column of row numbers"},
      {{"--sql", "DELETE FROM A"}, 1, "it would write"},
      {{"--sql", "INSERT INTO B VALUES (9, 9) RETURNING ID"}, 1, "it would write"},
      {{"--sql-file", "writes.sql"}, 1, "it would write"},
      {{"--sql", "PRAGMA user_version = 3"}, 1, "nor set what a PRAGMA sets"},
      {{"--sql", "SELECT 1 AS A; DELETE FROM A"}, 1, "more than one statement"},
      {{"--sql", "SELECT * FROM NOWHERE"}, 1, "no such table"},
      {{"--sql", "SELECT :P AS A"}, 1, "no value is given for P"},
      {{"--sql", "SELECT :P AS A", "--param", "P=integer:x"}, 1, "none of the type integer: 'x'"},
      {{"--sql", "SELECT :P AS A", "--param", "P=number:1"}, 1, "there is no type 'number'"},
      {{"--sql", "SELECT :P AS A", "--param", "P=integer:1", "--param", "Q=integer:1"}, 1, "'Q' is none of the query"},
      {{"--sql", "SELECT :P AS A", "--param", "P=string:a\nb"}, 1, "its value has a line end inside"},
      {{"--sql-file", "empty.sql"}, 1, "it is empty"},
      {{"--sql-file", "bytes.sql"}, 1, "it is not UTF-8"},
      {{"--sql-file", "none.sql"}, 1, "No such file"},
      {{}, 2, "say which query"},
  };
  const std::string File = Read("q.eif");
  for (const auto& [Options, ExitCode, Says] : Cases)
    for (const std::string Name : {"q.eif", "new.eif"}) {
      const TOutcome Outcome = Export(Name, Options);
      EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Options) << Outcome.Errors;
      EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Joined(Options) << Outcome.Errors;
      EXPECT_EQ(Read("q.eif"), File) << Joined(Options);
      EXPECT_FALSE(Exists("new.eif")) << Joined(Options);
    }
  EXPECT_EQ(Counts("shop.db") + Query("shop.db", "PRAGMA user_version"), "3|20");
}

TEST_F(TQueryTest, OptionsDecideWhereRowsGo) {
  const std::string Ask = "Give --target TABLE, with --map FILEFIELD=TABLEFIELD";
  CheckImports(
      "query",
      {
          {"", {"-i", "q.eif"}, 1, "0|0", Ask},
          {"", {"-i", "q.eif", "--yes"}, 1, "0|0", Ask},
          {"", {"-i", "q.eif", "--target", "B"}, 1, "0|0", "The table 'B' lacks the field 'SUM'"},
          {"", {"-i", "q.eif", "--target", "b", "--missing-fields", "skip"}, 0, "0|2", "left out: SUM"},
          {"",
           {"-i", "q.eif", "--target", "B", "--map", "SUM=X"},
           0,
           "0|2",
           "imported table B, section 'QUERY': 2 rows"},
          {"", {"-i", "q.eif", "--target", "B", "--fields", "ID"}, 0, "0|2", "2 rows"},
          {"", {"-i", "q.eif", "--target", "B", "--map", "SUM=NONE"}, 1, "0|0", "has no field 'NONE' for 'SUM'"},
          {"", {"-i", "q.eif", "--target", "NONE", "--map", "SUM=X"}, 1, "0|0", "There is no table 'NONE'"},
          {"INSERT INTO B VALUES (2, 7)",
           {"-i", "q.eif", "--target", "B", "--map", "SUM=X"},
           1,
           "0|1",
           "'B' has 1 row"},
          {"INSERT INTO B VALUES (2, 7)",
           {"-i", "q.eif", "--target", "B", "--map", "SUM=X", "--replace"},
           0,
           "0|2",
           ""},
          {"INSERT INTO B VALUES (2, 7)",
           {"-i", "q.eif", "--target", "B", "--map", "SUM=X", "--append"},
           1,
           "0|1",
           "failed table B"},
          {"INSERT INTO B VALUES (7, 7)", {"-i", "q.eif", "--target", "B", "--map", "SUM=X", "--append"}, 0, "0|3", ""},
      });
  // A number of the row is a value as any other where it is given a place, be it the only one.
  Query("empty.db", "CREATE TABLE N (V INTEGER)");
  EXPECT_EQ(
      Run(ImportInto("query", {"-i", "q.eif", "--target", "N", "--map", "#=V", "--missing-fields", "skip"})).ExitCode,
      0);
  EXPECT_EQ(Query("empty.db", "SELECT V, typeof(V) FROM N"), "1|integer\n2|integer");
  // Rows of tables take other names too.
  RunJson({"export", "table", "-d", "sqlite:shop.db", "-t", "B", "-o", "b.eif"});
  Query("empty.db", "DELETE FROM B");
  const TArguments Mapped = {"-i", "b.eif", "-t", "B", "--map", "X=ID", "--map", "ID=X"};
  EXPECT_EQ(Run(ImportInto("table", Mapped)).ExitCode, 1) << "a key of 0.1";
  EXPECT_EQ(Counts("empty.db"), "0|0");
  Query("empty.db", "ALTER TABLE B RENAME X TO Y");
  EXPECT_EQ(Run(ImportInto("table", {"-i", "b.eif", "--map", "X=Y"})).ExitCode, 0);
  EXPECT_EQ(Query("empty.db", "SELECT ID, quote(Y) FROM B"), Query("shop.db", "SELECT ID, quote(X) FROM B"));
}

TEST_F(TQueryTest, APersonChoosesAtATerminal) {
  const struct {
    std::string Keys;
    int ExitCode;
    std::string Rows, Says;
  } Cases[] = {
      {"1=B\nX=SUM\nok\n", 0, "1|0.1\n2|1.0e+300\n5|7.0", "imported table B"},
      {"1=B\nX=SUM\ne\nok\n", 0, "1|0.1\n2|1.0e+300", "imported table B"},
      {"1=B\nok\n", 0, "1|NULL\n2|NULL\n5|7.0", "imported table B"},
      {"1=B\nc\n", 0, "5|7.0", "no table was chosen for the rows of the query"},
      {"1=B\nID=SUM\nX=ID\nok\n", 1, "5|7.0", "failed table B"},
      {"\x03", 3, "5|7.0", "Cancelled"},
  };
  // In a file its rows are some among others.
  Write("all.eif", Section("A", {"ID"}, {"1"}) + Read("q.eif"));
  for (const auto& [Keys, ExitCode, Rows, Says] : Cases)
    for (const char* Object : {"query", "file"}) {
      Query("empty.db", "DELETE FROM A; DELETE FROM B; INSERT INTO B VALUES (5, 7)");
      const bool IsFile = Object == std::string("file");
      const TArguments Options = {"-i", IsFile ? "all.eif" : "q.eif", "--on-error", "stop"};
      const TOutcome Outcome = RunOnTerminal(ImportInto(Object, Options), "first ? ", Keys);
      EXPECT_EQ(Outcome.ExitCode, ExitCode) << Keys << Outcome.Output;
      EXPECT_EQ(Query("empty.db", "SELECT * FROM B ORDER BY ID"), Rows) << Keys << Outcome.Output;
      EXPECT_EQ(Query("empty.db", "SELECT count(*) FROM A"), IsFile && ExitCode == 0 ? "1" : "0") << Keys;
      EXPECT_NE(Outcome.Output.find(Says), std::string::npos) << Keys << Outcome.Output;
    }
}

/// The same query on both engines, into tables of both; the cells are those of the tables that it is about.
TEST_F(TQueryTest, CellsCrossEnginesIncludingPostgreSQL) {
  const TTestDatabase Light = SQLiteDatabase(Path("light.db")), Server = PostgreSQLDatabase();
  const std::string Table =
      " (i bigint PRIMARY KEY, t text, r double precision, b %s, f boolean, d date, s timestamp);";
  const std::string Rows =
      "INSERT INTO a VALUES (9223372036854775807, 'a|b#' || %s, 0.1, %s, %s, '2024-02-29', '1999-12-31 23:59:59.500'),"
      "(-2, '', 1e300, NULL, NULL, '0001-01-01', NULL), (7, 'Анна :T', NULL, NULL, NULL, NULL, '2024-03-01 00:00:00');";
  const std::string Lights = Format(Table, "blob"), Servers = Format(Table, "bytea");
  Light.Run("CREATE TABLE a" + Lights + "CREATE TABLE w" + Lights + Format(Rows, "char(10)", "x'00FF7C'", "1"));
  Server.Run("CREATE TABLE a" + Servers + "CREATE TABLE w" + Servers + Format(Rows, "chr(10)", "'\\x00ff7c'", "true"));
  Write("a.sql",
        "SELECT * FROM a -- :C\nWHERE i <> :I AND (t <> ':T' OR t = :T) AND (d IS NULL OR d <> :D) ORDER BY i DESC");
  for (const TTestDatabase* From : {&Light, &Server})
    for (const TTestDatabase* To : {&Light, &Server})
      for (const std::string Release : {"rv20", "rv17"}) {
        SCOPED_TRACE(From->Url + " " + To->Url + " " + Release);
        const TOutcome Out =
            Run({"export", "query", "-d", From->Url, "--sql-file", "a.sql", "--param", "i=Int64:3", "--param",
                 "T=string:x y", "--param", "D=SysDate:2000-01-01", "-o", "a.eif", "--new", "--release", Release});
        // Numbers of 64 bits are more than the older release has.
        EXPECT_EQ(Out.ExitCode, Release == "rv20" ? 0 : 1) << Out.Errors;
        if (Out.ExitCode != 0) continue;
        EXPECT_NE(Read("a.eif").find("[PARAMETRS]\r\n  <Name|Type|Value>\r\n  <I|Int64|3>\r\n  <T|string|x y>\r\n"
                                     "  <D|SysDate|2000-01-01>\r\n [FIELDS]\r\n  #\r\n  i\r\n  t\r\n"),
                  std::string::npos)
            << Read("a.eif");
        const TOutcome In = Run({"import", "query", "-d", To->Url, "-i", "a.eif", "--target", "w", "--replace"});
        EXPECT_EQ(In.ExitCode, 0) << In.Errors;
        EXPECT_EQ(To->Cells("SELECT * FROM w ORDER BY i"), To->Cells("SELECT * FROM a ORDER BY i"));
      }
}

}  // namespace
}  // namespace velkrund::tests
