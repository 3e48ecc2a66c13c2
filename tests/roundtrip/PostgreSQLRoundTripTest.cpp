#include <gmock/gmock.h>

#include "tests/roundtrip/RoundTrip.h"
#include "tests/support/postgresql/TypeCases.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

constexpr TExportReleaseVersion NewVersion = TExportReleaseVersion::rv20;

class PostgreSQLRoundTrip : public testing::Test {
 protected:
  /// A table's way into a file, into an empty copy and into a second file.
  void Check(const std::string& Schema, const std::string& Rows, const std::string& Table = "t",
             TExportReleaseVersion Release = NewVersion) {
    const std::string Query = "SELECT * FROM " + Table;
    const TTestDatabase Source = PostgreSQLDatabase(), Copy = PostgreSQLDatabase();
    Source.Run(Schema + ";" + Rows);
    Copy.Run(Schema);
    ASSERT_EQ(Platform.Export(Source, Table, Folder / "1.eif", Release), "");
    ASSERT_EQ(Platform.Import(Copy, Folder / "1.eif"), "") << Folder.Read("1.eif");
    EXPECT_EQ(Copy.Cells(Query), Source.Cells(Query)) << Folder.Read("1.eif");
    EXPECT_NE(Copy.Cells(Query), "");
    ASSERT_EQ(Platform.Export(Copy, Table, Folder / "2.eif", Release), "");
    EXPECT_EQ(Folder.Read("2.eif"), Folder.Read("1.eif"));
  }

  TTemporaryFolder Folder;
  TRealPlatform Platform;
};

TEST_F(PostgreSQLRoundTrip, ATableOfEveryType) {
  std::string Columns = "id integer GENERATED ALWAYS AS IDENTITY, g bigint GENERATED ALWAYS AS (c3 / 2) STORED";
  std::string Rows = "INSERT INTO t DEFAULT VALUES;";
  int Number = 0;
  for (const TTypeCase& Case : TypeCases()) {
    const std::string Name = "c" + std::to_string(++Number);
    Columns += ", " + Name + " " + Case.Type;
    for (const auto& [Literal, Shown] : Case.Values) Rows += "INSERT INTO t (" + Name + ") VALUES (" + Literal + ");";
  }
  Check(std::string(TypeDefinitions) + "CREATE TABLE t (" + Columns + ")", Rows);
}

// Beside columns of any type all goes as texts.
TEST_F(PostgreSQLRoundTrip, EveryTypeInATableOfItsOwn) {
  std::string Schema = TypeDefinitions, Rows;
  std::vector<std::string> Tables;
  for (const TTypeCase& Case : TypeCases()) {
    const std::string& Table = Tables.emplace_back("t" + std::to_string(Tables.size()));
    Schema += "CREATE TABLE " + Table + " (v " + Case.Type + ");";
    for (const auto& [Literal, Shown] : Case.Values) Rows += "INSERT INTO " + Table + " VALUES (" + Literal + ");";
  }
  const TTestDatabase Source = PostgreSQLDatabase(), Copy = PostgreSQLDatabase();
  Source.Run(Schema + Rows);
  Copy.Run(Schema);
  for (const std::string& Table : Tables) {
    ASSERT_EQ(Platform.Export(Source, Table, Folder / "1.eif"), "");
    ASSERT_EQ(Platform.Import(Copy, Folder / "1.eif"), "") << Folder.Read("1.eif");
    EXPECT_NE(Copy.Cells("SELECT * FROM " + Table), "");
    EXPECT_EQ(Copy.Cells("SELECT * FROM " + Table), Source.Cells("SELECT * FROM " + Table));
  }
}

TEST_F(PostgreSQLRoundTrip, OldVersionForWhatItCanHold) {
  Check(
      "CREATE TABLE t (i integer, r double precision, s text, b bytea, f boolean, d date, h time, m timestamp, n "
      "numeric(12,4))",
      "INSERT INTO t VALUES (NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL), (-2147483648, 0.1, 'Жук #|', "
      "'\\x00017c23ff98', true, '0001-01-01', '23:59:59.999', '1899-12-29 06:00', -0.0001), (2147483647, '-Infinity', "
      "'', '', false, '9999-12-31', '0:00', '1999-12-31 23:59:59.999999', 50000000.25)",
      "t", TExportReleaseVersion::rv17);
}

TEST_F(PostgreSQLRoundTrip, LongRecordsInBothVersions) {
  // The first is longer than what goes to the server in one piece.
  for (const auto& [Length, Release] : {std::pair("2200000", NewVersion), {"100000", TExportReleaseVersion::rv17}})
    Check("CREATE TABLE t (a text, b bytea)",
          "INSERT INTO t VALUES (repeat('Ж', " + std::string(Length) +
              "), decode(repeat('00ff7c', 50000), 'hex')), ('x', '@')",
          "t", Release);
}

// Names go into SQL and into files: none may do anything there.
TEST_F(PostgreSQLRoundTrip, HostileNamesOfSchemasTablesAndColumns) {
  const std::string Names[] = {"a\"b",
                               "x'; DROP TABLE kept; --",
                               "select",
                               "two words",
                               "Both",
                               "BOTH",
                               "a.b",
                               "%s",
                               "$1",
                               "\\",
                               "|<>@#",
                               "Очень длинное имя, в котором 63 б",
                               std::string(63, 'n')};
  const TTestDatabase Database = PostgreSQLDatabase();
  Database.Run("CREATE TABLE kept (a integer)");
  const auto Quoted = [](const std::string& Name) {
    std::string Result = "\"";
    for (const char C : Name) Result.append(C == '"' ? 2 : 1, C);
    return Result + "\"";
  };
  for (const std::string& Name : Names) {
    SCOPED_TRACE(Name);
    const std::string Schema = Quoted("S " + Name.substr(0, 60)), Table = Schema + "." + Quoted(Name);
    Database.Run("CREATE SCHEMA " + Schema + "; CREATE TABLE " + Table + " (" + Quoted(Name) +
                 " text, \"Other\" serial);" + "INSERT INTO " + Table + " VALUES ('value')");
    ASSERT_EQ(Platform.Export(Database, "S " + Name.substr(0, 60) + "." + Name, Folder / "1.eif"), "");
    Database.Run("UPDATE " + Table + " SET " + Quoted(Name) + " = NULL");
    ASSERT_EQ(Platform.Import(Database, Folder / "1.eif"), "") << Folder.Read("1.eif");
    EXPECT_EQ(Database.Cells("SELECT * FROM " + Table), "value\t1\n");
  }
  EXPECT_EQ(Database.Cells("SELECT * FROM kept"), "");
  // What a field line cannot carry is refused by name.
  for (const std::string Name : {" ends ", "a\nb", "[x]"}) {
    Database.Run("DROP TABLE IF EXISTS t; CREATE TABLE t (" + Quoted(Name) + " integer)");
    EXPECT_THAT(Platform.Export(Database, "t", Folder / "1.eif"), HasSubstr("'" + Name + "'"));
  }
}

TEST_F(PostgreSQLRoundTrip, FromEngineToEngineAndBack) {
  const struct {
    const char *SQLite, *PostgreSQL;
    const char* Values;  // for SQLite; for PostgreSQL too, where there are no others
    const char* Others = nullptr;
  } Cases[] = {
      {"BIGINT", "bigint", "(NULL),(-9223372036854775808),(9223372036854775807)"},
      {"INTEGER", "smallint", "(-32768),(32767)"},
      {"REAL", "double precision", "(0.1),(-1.7976931348623157e308),(5e-324),(9e999)",
       "(0.1),('-1.7976931348623157e308'),('5e-324'),('Infinity')"},
      {"REAL", "real", "(0.5),(NULL),(1.401298464324817e-45)", "(0.1),('1e-45')"},
      {"DECIMAL(12,4)", "numeric(12,4)", "(12.5),(-0.0001),(7),(0)"},
      {"TEXT", "numeric", "('12.50'),('1000000000000000000000.1')"},
      {"BOOLEAN", "boolean", "(TRUE),(FALSE)"},
      {"TEXT", "text", "(''),('NULL'),('007'),(' Жук #|<>@ '),('日本 🚚')"},
      {"BLOB", "bytea", "(x''),(x'00FF0A')", "(''),('\\x00ff0a')"},
      {"DATE", "date", "('0001-01-01'),('9999-12-31'),('infinity'),('0044-03-15 BC')"},
      {"TIME", "time", "('00:00:00'),('23:59:59.999999'),('24:00:00')"},
      {"DATETIME", "timestamp", "('1969-12-31 23:59:59.500'),('2024-02-29 00:00:00.000001')"},
      {"DATETIME", "timestamptz", "('2024-02-29 12:00:00')", "('2024-02-29 12:00:00+03')"},
      {"TEXT", "uuid", "('a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11')"},
      {"TEXT", "integer[]", "('{1,NULL,3}')"},
      {"TEXT", "interval", "('1 year -3 days +04:05:06.5')"},
  };
  const TTestDatabase Lite[] = {SQLiteDatabase(Folder / "1.db"), SQLiteDatabase(Folder / "2.db")};
  const TTestDatabase Post[] = {PostgreSQLDatabase(), PostgreSQLDatabase()};
  for (const auto& [SQLite, PostgreSQL, Values, Others] : Cases) {
    SCOPED_TRACE(std::string(SQLite) + " " + PostgreSQL);
    const auto Schema = [](const std::string& Type) {
      return "DROP TABLE IF EXISTS \"T\"; CREATE TABLE \"T\" (\"V\" " + Type + ")";
    };
    for (const TTestDatabase& Database : Lite) Database.Run(Schema(SQLite));
    for (const TTestDatabase& Database : Post) Database.Run(Schema(PostgreSQL));
    const auto Pass = [&](const TTestDatabase& First, const TTestDatabase& Second, const TTestDatabase& Third) {
      const std::string Query = "SELECT * FROM \"T\"";
      ASSERT_EQ(Platform.Export(First, "T", Folder / "1.eif"), "");
      ASSERT_EQ(Platform.Import(Second, Folder / "1.eif"), "") << Folder.Read("1.eif");
      ASSERT_EQ(Platform.Export(Second, "T", Folder / "2.eif"), "");
      ASSERT_EQ(Platform.Import(Third, Folder / "2.eif"), "") << Folder.Read("2.eif");
      EXPECT_EQ(Third.Cells(Query), First.Cells(Query)) << Folder.Read("1.eif") << Folder.Read("2.eif");
      EXPECT_NE(Third.Cells(Query), "");
    };
    Lite[0].Run(std::string("INSERT INTO T VALUES ") + Values);
    Pass(Lite[0], Post[0], Lite[1]);
    Post[0].Run(std::string("DELETE FROM \"T\"; INSERT INTO \"T\" VALUES ") + (Others ? Others : Values));
    Pass(Post[0], Lite[0], Post[1]);
  }
}

TEST_F(PostgreSQLRoundTrip, WhatTheOtherEngineCanNotHoldIsRefusedByRecordAndColumn) {
  const struct {
    bool FromSQLite;
    const char *Source, *Value, *Target;
  } Cases[] = {
      {true, "TEXT", "'a' || char(0)", "text"},
      {true, "TEXT", "CAST(x'EDA080' AS TEXT)", "text"},
      {true, "TEXT", "'три'", "varchar(2)"},
      {true, "BIGINT", "2147483648", "integer"},
      {true, "INTEGER", "'7a'", "integer"},
      {true, "DATE", "'2024-02-30'", "date"},
      {true, "DATE", "'tomorrow'", "date"},
      {true, "TIMESTAMP", "'2024-02-29'", "timestamp"},
      {true, "REAL", "0.1", "real"},
      {true, "REAL", "0.125", "numeric(10,2)"},
      {true, "DECIMAL(12,4)", "0.125", "money"},
      {true, "BLOB", "x'00'", "text"},
      {false, "double precision", "'NaN'", "REAL"},
      {false, "double precision", "'-0'", "REAL"},
      {false, "numeric", "12.50", "NUMERIC"},
      {false, "numeric(30,4)", "922337203685477.5808", "DECIMAL(30,4)"},
      {false, "bigint", "9007199254740993", "REAL"},
      {false, "text", "'007'", "INTEGER"},
  };
  const TTestDatabase Lite = SQLiteDatabase(Folder / "1.db"), Post = PostgreSQLDatabase();
  for (const auto& [FromSQLite, Source, Value, Target] : Cases) {
    SCOPED_TRACE(std::string(Source) + " " + Value + " -> " + Target);
    const TTestDatabase &From = FromSQLite ? Lite : Post, &To = FromSQLite ? Post : Lite;
    const std::string Schema = "DROP TABLE IF EXISTS \"T\"; CREATE TABLE \"T\" (\"V\" ";
    From.Run(Schema + Source + "); INSERT INTO \"T\" VALUES (NULL), (" + Value + "), (NULL)");
    To.Run(Schema + Target + "); INSERT INTO \"T\" VALUES (NULL)");
    const std::string Before = To.Cells("SELECT count(*) FROM \"T\"");
    ASSERT_EQ(Platform.Export(From, "T", Folder / "1.eif"), "");
    const std::string Error = Platform.Import(To, Folder / "1.eif");
    EXPECT_THAT(Error, HasSubstr("record 2 to table 'T', column 'V'"));
    EXPECT_EQ(To.Cells("SELECT count(*) FROM \"T\""), Before);
  }
}

TEST_F(PostgreSQLRoundTrip, WhatTheOtherEngineHoldsTheMostOfIsCountedWhereLossesAreAllowed) {
  const struct {
    const char *Type, *Value, *Stored;
    std::int64_t Lost = 1;
  } Cases[] = {
      {"timestamp", "'2024-05-01'", "2024-05-01 00:00:00"},
      {"timestamptz", "'2024-05-01'", "2024-05-01 00:00:00+00"},
      {"timestamp", "'2024-05-01T12:00Z'", "2024-05-01 12:00:00", 0},
      {"text", "CAST(x'41FFEDA0805A' AS TEXT)", "A\uFFFD\uFFFDZ"},
      {"varchar(3)", "CAST(x'EDA080EDA080C3' AS TEXT)", "\uFFFD\uFFFD\uFFFD"},
  };
  const TTestDatabase Lite = SQLiteDatabase(Folder / "1.db"), Post = PostgreSQLDatabase();
  Post.Run("SET timezone = 'UTC'");
  for (const auto& [Type, Value, Stored, Lost] : Cases) {
    SCOPED_TRACE(std::string(Value) + " -> " + Type);
    Lite.Run(std::string("DROP TABLE IF EXISTS T; CREATE TABLE T (V TIMESTAMP); INSERT INTO T VALUES (") + Value + ")");
    Post.Run(std::string("DROP TABLE IF EXISTS \"T\"; CREATE TABLE \"T\" (\"V\" ") + Type + ")");
    Platform.Manager.ChangeSettings().StrictText = true;
    ASSERT_EQ(Platform.Export(Lite, "T", Folder / "1.eif"), "");
    if (Lost > 0) {
      EXPECT_THAT(Platform.Import(Post, Folder / "1.eif"), HasSubstr("; allow losses to store"));
    }
    Platform.Manager.ChangeSettings().StrictText = false;
    EXPECT_EQ(Platform.Import(Post, Folder / "1.eif"), "");
    EXPECT_EQ(Platform.Lost, Lost);
    EXPECT_EQ(Post.Cells("SELECT * FROM \"T\""), std::string(Stored) + "\n");
  }
}

// In version 100 a whole number in a column of dates is a day number.
TEST_F(PostgreSQLRoundTrip, DayNumbersBecomeDatesInBothEngines) {
  const std::string File = Folder.Write(
      "1.eif",
      "[SECTION]\r\nName = rows\r\nType = TableData\r\nVersion = 100\r\nTableName = T\r\n[DATA]\r\n [FIELDS]\r\n  D\r\n"
      "  M\r\n  T\r\n [RECORDS]\r\n  <45000|45000|0>\r\n  <-1|45000.5|0.5>\r\n[END]\r\n");
  for (const TTestDatabase& Database : {SQLiteDatabase(Folder / "1.db"), PostgreSQLDatabase()}) {
    Database.Run("CREATE TABLE \"T\" (\"D\" DATE, \"M\" TIMESTAMP, \"T\" TIME)");
    EXPECT_EQ(Platform.Import(Database, File), "");
    Database.Run(
        "DELETE FROM \"T\" WHERE \"D\" = '2023-03-15' AND \"M\" = '2023-03-15 00:00:00' AND \"T\" = '00:00:00' OR "
        "\"D\" = '1899-12-29' AND \"M\" = '2023-03-15 12:00:00' AND \"T\" = '12:00:00'");
    EXPECT_EQ(Database.Cells("SELECT * FROM \"T\""), "");
  }
}

TEST_F(PostgreSQLRoundTrip, AnImportThatIsCutOffLeavesTheTable) {
  const TPostgreSQLServer Server;
  const struct {
    const char* Happens;  // at a late record, in a session of the server
    const char* Says;
    bool Crashes = false;
  } Cases[] = {
      {"PERFORM pg_cancel_backend(pg_backend_pid()), pg_sleep(9);", "canceling statement due to user request"},
      {"PERFORM pg_terminate_backend(pg_backend_pid()), pg_sleep(9);", "the server has undone the transaction"},
      {"EXECUTE format('COPY (SELECT) TO PROGRAM ''kill -9 %s''', pg_backend_pid());",
       "the server has undone the transaction", true},
  };
  for (const auto& [Happens, Says, Crashes] : Cases) {
    SCOPED_TRACE(Happens);
    TPostgreSQLDatabase Raw(Server.Url());
    const TTestDatabase Database = {Raw.Url(), nullptr, nullptr};
    // More than what goes to the server in one piece.
    Raw.Run("CREATE TABLE t AS SELECT i, repeat('x', 100000) AS s FROM generate_series(1, 60) AS i");
    ASSERT_EQ(Platform.Export(Database, "t", Folder / "1.eif"), "");
    Raw.Run(std::string("DELETE FROM t; INSERT INTO t VALUES (7, 'before');"
                        "CREATE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS $f$ BEGIN ") +
            Happens +
            " RETURN NEW; END $f$; CREATE TRIGGER g BEFORE INSERT ON t FOR EACH ROW WHEN (NEW.i = 55) EXECUTE "
            "FUNCTION f()");
    EXPECT_THAT(Platform.Import(Database, Folder / "1.eif"), HasSubstr(Says));
    if (Crashes) Raw.AwaitEnd();
    Raw.Reconnect();
    EXPECT_EQ(Raw.Rows("SELECT * FROM t"), "7\tbefore\n");
    Raw.Run("DROP TRIGGER g ON t");
    EXPECT_EQ(Platform.Import(Database, Folder / "1.eif"), "") << "the next one finds a connection in order";
    EXPECT_EQ(Raw.Rows("SELECT count(*) FROM t"), "60\n");
  }
}

}  // namespace
}  // namespace velkrund::tests
