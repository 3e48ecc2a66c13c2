#include <gtest/gtest.h>

#include "tests/roundtrip/RoundTrip.h"

namespace velkrund::tests {
namespace {

/// A table's way into a file, into an empty copy and into a second file.
class SQLiteRoundTrip : public testing::Test {
 protected:
  void Check(const std::string& Schema, const std::string& Rows, TExportReleaseVersion Release) {
    TTemporaryFolder Folder;
    const TTestDatabase Source = SQLiteDatabase(Folder / "a.db"), Copy = SQLiteDatabase(Folder / "b.db");
    Source.Run(Schema + ";" + Rows);
    Copy.Run(Schema);
    TRealPlatform Platform;
    ASSERT_EQ(Platform.Export(Source, "T", Folder / "1.eif", Release), "");
    ASSERT_EQ(Platform.Import(Copy, Folder / "1.eif"), "") << Folder.Read("1.eif");
    EXPECT_EQ(Copy.Cells("SELECT * FROM T"), Source.Cells("SELECT * FROM T")) << Folder.Read("1.eif");
    ASSERT_EQ(Platform.Export(Copy, "T", Folder / "2.eif", Release), "");
    EXPECT_EQ(Folder.Read("2.eif"), Folder.Read("1.eif"));
  }
};

// Every value that is awkward, as SQL.
constexpr const char* Integers[] = {"0",
                                    "-1",
                                    "1",
                                    "255",
                                    "2147483647",
                                    "-2147483648",
                                    "4294967295",
                                    "9007199254740993",
                                    "9223372036854775807",
                                    "-9223372036854775808",
                                    "1704067200"};
constexpr const char* Reals[] = {"0.0",
                                 "-0.0",
                                 "0.1",
                                 "12.5",
                                 "-12.3456",
                                 "1e308",
                                 "-1.7976931348623157e308",
                                 "5e-324",
                                 "1e999",
                                 "-1e999",
                                 "0.30000000000000004",
                                 "9007199254740993.0",
                                 "2460340.5",
                                 "1e15",
                                 "922337203685477.5807",
                                 "123456789.12345678"};
constexpr const char* Texts[] = {"''",
                                 "' '",
                                 "' both ends  '",
                                 "'NULL'",
                                 "'TRUE'",
                                 "'0x0A'",
                                 "'$1.5'",
                                 "'it''s \"quoted\"'",
                                 "'a#b|c@d<e>'",
                                 "'@'",
                                 "'#'",
                                 "'#0041'",
                                 "'007'",
                                 "'1e5'",
                                 "' 12'",
                                 "'2024-01-31'",
                                 "'2024-01-31 10:00:00.5'",
                                 "'10:00'",
                                 "'1898-12-31 23:59:59.000001'",
                                 "'Жук'",
                                 "'日本 😀'",
                                 "char(10)",
                                 "char(13,10,9,27,127,133,160)",
                                 "'a'||char(0)||'b'",
                                 "char(0)",
                                 "CAST(x'EDA0BD' AS TEXT)",
                                 "CAST(x'EDA0BDEDB880FF41C328F09F9880F09F98' AS TEXT)",
                                 "CAST(x'EFBFBD' AS TEXT)",
                                 "'[END]'",
                                 "'9223372036854775808'",
                                 "'922337203685477.5807'"};
constexpr const char* Blobs[] = {"x''", "x'00'", "x'0A0D7C23'", "x'FF00EDA0BD'", "zeroblob(100000)"};
constexpr const char* DeclaredTypes[] = {
    "",          "TEXT",  "INTEGER",         "REAL",          "BLOB",     "NUMERIC",     "BOOLEAN",
    "DATE",      "TIME",  "DATETIME",        "DECIMAL(10,4)", "CURRENCY", "VARCHAR(10)", "DOUBLE PRECISION",
    "TIMESTAMP", "MONEY", "UNSIGNED BIG INT"};

std::string InsertAll() {
  std::string Statements = "INSERT INTO T VALUES(NULL);";
  for (const auto& Values : {std::span<const char* const>(Integers), std::span<const char* const>(Reals),
                             std::span<const char* const>(Texts), std::span<const char* const>(Blobs)})
    for (const char* Value : Values) Statements += std::string("INSERT INTO T VALUES(") + Value + ");";
  return Statements;
}

TEST_F(SQLiteRoundTrip, EveryValueInEveryKindOfColumn) {
  for (const char* Type : DeclaredTypes) {
    SCOPED_TRACE(Type);
    Check(std::string("CREATE TABLE T(V ") + Type + ")", InsertAll(), TExportReleaseVersion::rv20);
  }
}

// SQLite stores NaN as NULL: so it goes out and comes back.
TEST_F(SQLiteRoundTrip, NotANumberIsNullAlready) {
  Check("CREATE TABLE T(V REAL)", "INSERT INTO T VALUES(1e999 - 1e999)", TExportReleaseVersion::rv20);
}

TEST_F(SQLiteRoundTrip, OldVersionForWhatItCanHold) {
  const struct {
    const char* Type;
    const char* Rows;
  } Cases[] = {
      {"INTEGER", "VALUES(NULL),(0),(-2147483648),(2147483647)"},
      {"REAL", "VALUES(NULL),(-0.0),(0.1),(1e308),(5e-324),(1e999),(-1e999)"},
      {"TEXT",
       "VALUES(NULL),(''),(' a '),('a#b|c''@<>'),(char(1,9,10,13,31,127)),('a'||char(0)),('Жук №'),('NULL'),('1.5')"},
      {"BLOB", "VALUES(x''),(x'00017C23FF98'),(zeroblob(100000))"},
      {"BOOLEAN", "VALUES(0),(1),(5)"},
      {"DATE", "VALUES('2024-01-31'),('1899-12-29'),('0001-01-01')"},
      {"TIME", "VALUES('00:00:00'),('23:59:59.999')"},
      {"DATETIME", "VALUES('2024-01-31 10:11:12'),('1899-12-29 06:00:00'),('1999-12-31 23:59:59.999999')"},
      {"DECIMAL(10,4)", "VALUES(12.5),(-0.0001),(7),(5000000000.25)"},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Type);
    Check(std::string("CREATE TABLE T(V ") + Case.Type + ")", std::string("INSERT INTO T ") + Case.Rows,
          TExportReleaseVersion::rv17);
  }
}

TEST_F(SQLiteRoundTrip, TablesOfAllShapes) {
  const struct {
    const char* Schema;
    const char* Rows;
  } Cases[] = {
      {"CREATE TABLE T(A)", ""},
      {"CREATE TABLE T(A INTEGER PRIMARY KEY AUTOINCREMENT, B)",
       "INSERT INTO T VALUES(5,1),(-3,2),(9223372036854775807,3)"},
      {"CREATE TABLE T(K TEXT PRIMARY KEY, V) WITHOUT ROWID", "INSERT INTO T VALUES('b',1),('a',2)"},
      {"CREATE TABLE T(A INTEGER, B TEXT, C REAL, D BLOB, E ANY) STRICT", "INSERT INTO T VALUES(1,'x',2,x'00',3.0)"},
      {"CREATE TABLE T(A INT, G INT AS (A*2) STORED, H INT AS (A*3) VIRTUAL)", "INSERT INTO T VALUES(1),(2)"},
      {"CREATE TABLE T(\"select\", \"a;b\", \"it's \"\"q\"\"\", Ключ, \"a b\", \"]\", \"|<>@\")",
       "INSERT INTO T VALUES(1,2,3,4,5,6,7)"},
      {"CREATE TABLE T(A NOT NULL DEFAULT 1, B CHECK(B > 0), UNIQUE(A, B))", "INSERT INTO T VALUES(1,2),(1,3)"},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Schema);
    Check(Case.Schema, Case.Rows, TExportReleaseVersion::rv20);
  }
}

TEST_F(SQLiteRoundTrip, MalformedTextFailsTheOldExportAndLeavesTheFile) {
  TTemporaryFolder Folder;
  const TTestDatabase Database = SQLiteDatabase(Folder / "a.db");
  Database.Run("CREATE TABLE BAD(V TEXT); INSERT INTO BAD VALUES('ok'),(CAST(x'C328' AS TEXT))");
  TRealPlatform Platform;
  const std::string Error = Platform.Export(Database, "BAD", Folder / "f.eif", TExportReleaseVersion::rv17);
  EXPECT_TRUE(Error.starts_with("EDicUtilError:A text has characters that code page 1251 lacks (Field:'V';Record:2)."))
      << Error;
  EXPECT_EQ(Folder.Read("f.eif"), "");
}

TEST_F(SQLiteRoundTrip, LongRecordsInBothVersions) {
  const std::string Rows =
      "INSERT INTO T VALUES(replace(hex(zeroblob(60000)),'0','Ж'), randomblob(150000)),('x', x'40')";
  Check("CREATE TABLE T(A TEXT, B BLOB)", Rows, TExportReleaseVersion::rv20);
  Check("CREATE TABLE T(A TEXT, B BLOB)", Rows, TExportReleaseVersion::rv17);
}

// Texts to search for and boxes travel with the numbers by which others know them.
TEST_F(SQLiteRoundTrip, VirtualTablesThatKeepTheirRows) {
  const struct {
    const char *Schema, *Rows, *Cells, *Search;
  } Cases[] = {
      {"fts5(A, B UNINDEXED)",
       "(rowid, A, B) VALUES (7, 'red fox', 1.5), (-3, 'grey fox', NULL), (9007199254740993, '', x'00')", "rowid, A, B",
       "A MATCH 'fox'"},
      {"fts5(A, tokenize = \"unicode61 tokenchars ',()'\", prefix = '2 3')", "(rowid, A) VALUES (2, 'one'), (5, 'two')",
       "rowid, A", "A MATCH 'tw*'"},
      {"fts4(A, rowid, languageid=\"L\", tokenize=porter)",
       "(docid, A, rowid, L) VALUES (9, 'runs', 'x', 1), (4, 'run', NULL, 0)", "docid, A, rowid, L",
       "A MATCH 'running' AND L = 1"},
      {"fts3(content = x, B)", "(docid, B) VALUES (3, 'fox'), (1, 'box')", "docid, *", "B MATCH 'box'"},
      {"rtree(I, X0, X1, +NOTE TEXT)", "VALUES (5, 0.1, 0.2, 'a'), (2, -1e30, 1e30, NULL)", "*", "X0 > 0"},
      {"rtree_i32(I, X0, X1)", "VALUES (5, 1, 2), (2, -7, 8)", "*", "X0 > 0"},
  };
  for (const auto& [Schema, Rows, Cells, Search] : Cases) {
    SCOPED_TRACE(Schema);
    const TTemporaryFolder Folder;
    const TTestDatabase Source = SQLiteDatabase(Folder / "a.db"), Copy = SQLiteDatabase(Folder / "b.db");
    for (const TTestDatabase& Database : {Source, Copy})
      Database.Run(std::string("CREATE VIRTUAL TABLE \"T (1)\" USING ") + Schema);
    Source.Run(std::string("INSERT INTO \"T (1)\" ") + Rows);
    TRealPlatform Platform;
    ASSERT_EQ(Platform.Export(Source, "T (1)", Folder / "1.eif"), "");
    ASSERT_EQ(Platform.Import(Copy, Folder / "1.eif"), "") << Folder.Read("1.eif");
    for (const std::string& Where : {std::string(), std::string(" WHERE ") + Search}) {
      const std::string Query = std::string("SELECT ") + Cells + " FROM \"T (1)\"" + Where + " ORDER BY 1";
      EXPECT_EQ(Copy.Cells(Query), Source.Cells(Query)) << Folder.Read("1.eif");
      EXPECT_NE(Copy.Cells(Query), "") << Query;
    }
  }
}

}  // namespace
}  // namespace velkrund::tests
