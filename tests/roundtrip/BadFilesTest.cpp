#include <gtest/gtest.h>

#include "tests/roundtrip/RoundTrip.h"

namespace velkrund::tests {
namespace {

constexpr const char* Header =
    "[SECTION]\r\nEncoding = UTF8\r\nName = rows\r\nType = TableData\r\nVersion = 200\r\nTableName = T\r\n[DATA]\r\n";
constexpr const char* Fields = " [FIELDS]\r\n  A\r\n  B\r\n [RECORDS]\r\n  <1|'kept'>\r\n";  // lines 8 to 12, 47 bytes

class BadFiles : public testing::TestWithParam<const char*> {
 protected:
  TTemporaryFolder Folder;
  TTestDatabase Database = std::string("sqlite") == GetParam() ? SQLiteDatabase(Folder / "a.db") : PostgreSQLDatabase();
};

INSTANTIATE_TEST_SUITE_P(Engines, BadFiles, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return std::string(Info.param); });

// Faults of every kind that a file can bring to a real table: file and table stay as before. All texts are tested with
// the check of files.
TEST_P(BadFiles, LeaveFileAndTableAsTheyWere) {
  const std::string Record = "Can not import table data. Invalid record data structure. ";
  const struct {
    std::string Body;
    std::string Class, Message;
    int Line;
  } Cases[] = {
      {"", "EDicUtilError", "Can not import table data. Fields section not found", 7},
      {std::string(Fields) + "<2|'x@\r\n", "EDicUtilError", Record + "Unexpected end of data section (Position:55)",
       13},
      {std::string(Fields) + "<2|>\r\n", "EDicUtilError", Record + "Field value is missing (Position:53;Field:'B')",
       13},
      {std::string(Fields) + "<2|'\xFF'>\r\n", "EEIError",
       "The text is not valid UTF-8 (Position:56). Allow losses to read it with replacement characters", 13},
  };
  Database.Run("CREATE TABLE T(A INTEGER, B TEXT); INSERT INTO T VALUES(7, 'before')");
  const std::string Before = Database.Cells("SELECT * FROM T");
  for (const auto& Case : Cases) {
    const std::string Bytes = Header + Case.Body + "[END]\r\n";
    Folder.Write("bad.eif", Bytes);
    {
      TRealPlatform Platform;
      EXPECT_EQ(Platform.Import(Database, Folder / "bad.eif"),
                "EEIError:" + Case.Message + "; FileName: " + (Folder / "bad.eif") + "; Line: " +
                    std::to_string(Case.Line) + " OwnerException: \r\n" + Case.Class + ": " + Case.Message);
    }
    EXPECT_EQ(Folder.Read("bad.eif"), Bytes);
    EXPECT_EQ(Database.Cells("SELECT * FROM T"), Before);
  }
}

// What the engine itself refuses names the record, and undoes the rows before it and the emptying.
TEST_P(BadFiles, RowsThatTheTableRefusesUndoTheImport) {
  const char* Cases[] = {"<1|'kept again'>\r\n", "<2|NULL>\r\n", "<2|'too long for the check'>\r\n", "<'x'|'y'>\r\n",
                         "<18446744073709551615|'y'>\r\n"};
  Database.Run(
      "CREATE TABLE T(A INTEGER PRIMARY KEY, B TEXT NOT NULL CHECK(length(B) < 15)); INSERT INTO T VALUES(7, "
      "'before')");
  const std::string Before = Database.Cells("SELECT * FROM T");
  for (const char* Row : Cases) {
    Folder.Write("bad.eif", std::string(Header) + Fields + Row + "[END]\r\n");
    {
      TRealPlatform Platform;
      const std::string Error = Platform.Import(Database, Folder / "bad.eif");
      EXPECT_NE(Error.find("ecord 2"), std::string::npos) << Error;
      EXPECT_NE(Error.find("; Line: 13 "), std::string::npos) << Error;
    }
    EXPECT_EQ(Database.Cells("SELECT * FROM T"), Before) << Row;
  }
}

TEST_P(BadFiles, ExportsThatFailLeaveTheFile) {
  Database.Run(
      "CREATE TABLE BIG(V BIGINT); INSERT INTO BIG VALUES(2147483648);"
      "CREATE TABLE WIDE(\"V\" TEXT); INSERT INTO WIDE VALUES('日');"
      "CREATE TABLE EDGE(\" x\" TEXT)");
  TRealPlatform Platform;
  const struct {
    const char* Table;
    TExportReleaseVersion Release;
    const char* Error;
  } Cases[] = {
      {"BIG", TExportReleaseVersion::rv17,
       "EDicUtilError:Can not export table data. Field value 2147483648 is out of bounds"},
      {"WIDE", TExportReleaseVersion::rv17,
       "EDicUtilError:A text has characters that code page 1251 lacks (Field:'V';Record:1)."},
      {"EDGE", TExportReleaseVersion::rv20,
       "EDicUtilError:Can not export table data. A field line cannot hold the name ' x'"},
      {"NONE", TExportReleaseVersion::rv20,
       "EDicUtilError:Can not export table data. Error opening table (TableName:'NONE')"},
  };
  for (const auto& Case : Cases) {
    const std::string Error = Platform.Export(Database, Case.Table, Folder / "f.eif", Case.Release);
    EXPECT_TRUE(Error.starts_with(Case.Error)) << Error;
    EXPECT_EQ(Folder.Read("f.eif"), "");
  }
}

}  // namespace
}  // namespace velkrund::tests
