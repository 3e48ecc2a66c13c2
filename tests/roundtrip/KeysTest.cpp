#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/roundtrip/RoundTrip.h"
#include "velkrund/operations/Comutils.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

/// l refers to o, a and b to each other, x to nothing.
constexpr const char* Tables =
    "DROP TABLE IF EXISTS l; DROP TABLE IF EXISTS o; DROP TABLE IF EXISTS x; CREATE TABLE x (i integer PRIMARY KEY);"
    "CREATE TABLE o (i integer PRIMARY KEY);"
    "CREATE TABLE l (i integer PRIMARY KEY, p integer REFERENCES o ON DELETE SET NULL);";
constexpr const char* SQLiteCircle =
    "DROP TABLE IF EXISTS a; DROP TABLE IF EXISTS b; CREATE TABLE a (i integer PRIMARY KEY, p integer REFERENCES b);"
    "CREATE TABLE b (i integer PRIMARY KEY, p integer REFERENCES a);";
constexpr const char* PostgreSQLCircle =
    "DROP TABLE IF EXISTS a CASCADE; DROP TABLE IF EXISTS b CASCADE;"
    "CREATE TABLE a (i integer PRIMARY KEY, p integer);"
    "CREATE TABLE b (i integer PRIMARY KEY, p integer REFERENCES a DEFERRABLE INITIALLY DEFERRED);"
    "ALTER TABLE a ADD FOREIGN KEY (p) REFERENCES b DEFERRABLE INITIALLY DEFERRED;";

/// Notes what becomes of tables, and may wish to cancel after the section of one.
class THost final : public TImportFileObserver {
 public:
  THost(TUOImportFile& Import, std::string CancelAfter) : FImport(Import), FCancelAfter(std::move(CancelAfter)) {}

  bool BeginSection(const TEIFile&, const TEISection&, TEIObject&) override { return true; }
  void EndSection(const TEIFile&, const TEISection& Section, const TEIObject*, const std::exception*) override {
    Seen += Section.Name() + " ";
    FImport.SetCanceled(Section.Name() == FCancelAfter);
  }
  void TakenBack(const std::vector<TPlace>& Sections, const std::exception* Error) override {
    Seen += "-";
    for (const TPlace& Place : Sections) Seen += Place.Section.Name() + " ";
    if (Error) Seen += "! ";
  }

  std::string Seen;

 private:
  TUOImportFile& FImport;
  const std::string FCancelAfter;
};

/// Imports into tables with foreign keys of both engines: SQLite enforces none, PostgreSQL does.
class Keys : public testing::TestWithParam<const char*> {
 protected:
  bool Enforced() const { return GetParam() == std::string("postgresql"); }

  void Renew(const std::string& Before) {
    Database.Run(std::string(Tables) + (Enforced() ? PostgreSQLCircle : SQLiteCircle) + Before);
  }

  /// The rows of all tables, such as "o1 l1,1".
  std::string Rows() {
    Platform.Manager.Databases().Close(Database.Url);  // what hangs in a transaction is gone
    std::vector<std::string> All;
    for (const char* Table : {"o", "l", "x", "a", "b"}) {
      const auto First = static_cast<std::ptrdiff_t>(All.size());
      const auto Opened = Platform.Manager.GetUserTable(Table, Database.Url, false);
      for (bool Found = Opened->First(); Found; Found = Opened->Next()) {
        All.emplace_back(Table);
        for (int Field = 0; Field < Opened->Record().FieldCount(); ++Field) {
          All.back() += Field > 0 ? "," : "";
          Opened->Record().Fields(Field).Value().AppendAsText(All.back());
        }
      }
      std::sort(All.begin() + First, All.end());
    }
    std::string Result;
    for (const std::string& Row : All) Result += (Result.empty() ? "" : " ") + Row;
    return Result;
  }

  /// Sections: "table:record;record" separated by blanks; the values of a record by commas.
  std::string PutFile(const std::string& Name, const std::string& Sections) {
    std::istringstream Words(Sections);
    std::string Content;
    for (std::string Word; Words >> Word;) {
      const std::string Table = Word.substr(0, Word.find(':'));
      Content += "[SECTION]\r\nName = " + Table + "\r\nType = TableData\r\nVersion = 200\r\nTableName = " + Table +
                 "\r\n[DATA]\r\n[FIELDS]\r\ni\r\n" + (Word.find(',') != Word.npos ? "p\r\n" : "") + "[RECORDS]\r\n";
      std::istringstream Records(Word.substr(Table.size() + 1));
      for (std::string Record; std::getline(Records, Record, ';');) {
        std::replace(Record.begin(), Record.end(), ',', '|');
        Content += "<" + Record + ">\r\n";
      }
      Content += "[END]\r\n";
    }
    Folder.Write(Name, Content);
    return Folder / Name;
  }

  TTemporaryFolder Folder;
  TTestDatabase Database = Enforced() ? PostgreSQLDatabase() : SQLiteDatabase(Folder / "k.db");
  TRealPlatform Platform;
};

INSTANTIATE_TEST_SUITE_P(Engines, Keys, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

TEST_P(Keys, FilesAreOnePlan) {
  const std::string Broken = Enforced() ? "violates foreign key constraint" : "would be broken by what was loaded";
  const std::string Outside = Enforced() ? "also delete or change rows of 'l', which has 1 row" : Broken;
  const std::string None;
  const std::string Filled = "INSERT INTO o VALUES (7), (8); INSERT INTO l VALUES (7, 7);", Before = "o7 o8 l7,7";
  const struct {
    std::vector<const char*> Files;
    std::string Filled;
    int Result;
    std::string Rows, Seen, Error;
    int Questions = 0;
    const char* CancelAfter = "";
  } Cases[] = {
      // Parents come first, wherever they stand.
      {{"l:1,1 o:1"}, None, 1, "o1 l1,1", "o l ", None},
      {{"l:1,1", "x:3 o:1"}, Filled, 1, "o1 l1,1 x3", "o l x ", None},
      {{"L:1,7"}, Filled, 1, "o7 o8 l1,7", "L ", None},
      {{"x:1 x:2"}, "INSERT INTO x VALUES (5)", 1, "x1 x2", "x x ", None},
      {{"a:1,2", "b:2,1"}, None, 1, "a1,2 b2,1", "b a ", None},
      // What refers to nothing.
      {{"l:1,1", "o:2"}, Filled, 1, Before, Enforced() ? "o l -o l " : "o l -o l ! ", Broken, 1},
      {{"a:1,2", "b:2,3"}, None, 1, None, "b a -b a ! ", Broken, 1},
      {{"o:1"}, Filled, Enforced() ? 0 : 1, Before, Enforced() ? "" : "o -o ! ", Outside, Enforced() ? 0 : 1},
      // The failure of one takes back what hangs together with it, and nothing else.
      {{"o:1 l:1,"}, Filled, 1, Before, "o l -o l ", "Field value is missing", 1},
      {{"x:1 o:1 l:1,"}, Filled, 1, "o7 o8 l7,7 x1", "x o l -o l ", None, 1},
      {{"o:1 x:3, l:1,1"}, Filled, 1, "o1 l1,1", "o l x -x ", None, 1},
      // What has no table takes no part.
      {{"o:1 l:1,1 nowhere:1"}, Filled, 1, "o1 l1,1", "nowhere o l ", None, 1},
      {{"x:1 nowhere:1 x:2,"}, None, 1, None, "nowhere x x -x x ", None, 2},
      // Second thoughts.
      {{"o:1 l:1,1"}, Filled, 0, Before, "o -o l ", None, 0, "o"},
      {{"o:1 l:1,1"}, Filled, 0, Before, "o l -o l ", None, 0, "l"},
      {{"x:1 x:2"}, None, 0, None, "x -x x ", None, 0, "x"},
      {{"x:1 o:1"}, None, 0, "x1", "x o -o ", None, 0, "o"},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Files.front());
    Renew(Case.Filled);
    int Questions = 0;
    std::string Told;
    const TMessageBoxGuard Asked([&](TWindowHandle, std::u16string_view Text, auto...) {
      Told = FromUtf16(Text);
      return ++Questions, IDYES;
    });
    TUOImportFilesInterface Interface;
    std::vector<std::string> Names;
    for (const char* File : Case.Files) Names.push_back(PutFile("f" + std::to_string(Names.size()), File));
    Interface.SetFiles(Names);
    Interface.SetDatabaseName(Database.Url);
    auto& Import = static_cast<TUOImportFiles&>(Interface.Operation());
    THost Host(Import, Case.CancelAfter);
    Import.Observer = &Host;
    EXPECT_EQ(Interface.Execute(), Case.Result);
    Told += Interface.LastError();
    EXPECT_NE(Told.find(Case.Error), std::string::npos) << Told;
    EXPECT_EQ(Interface.LastError().empty(), Case.Error.empty() || Case.Questions > 0) << Interface.LastError();
    EXPECT_EQ(Rows(), Case.Rows);
    EXPECT_EQ(Host.Seen, Case.Seen);
    EXPECT_EQ(Questions, Case.Questions);
  }
}

TEST_P(Keys, ASectionAloneMindsThemToo) {
  const struct {
    const char* Section;
    bool Append;
    const char* Filled;
    const char* Rows;
    const char* SQLiteError;
    const char* PostgreSQLError;
  } Cases[] = {
      {"l:1,7", false, "INSERT INTO o VALUES (7); INSERT INTO l VALUES (7, 7)", "o7 l1,7", "", ""},
      {"l:1,7;2,7", true, "INSERT INTO o VALUES (7); INSERT INTO l VALUES (3, 7)", "o7 l1,7 l2,7 l3,7", "", ""},
      {"l:1,7;2,8", false, "INSERT INTO o VALUES (7); INSERT INTO l VALUES (7, 7)", "o7 l7,7",
       "1 value refers to rows that are not there (before: 0), for example row 2", "violates foreign key constraint"},
      {"o:1", false, "INSERT INTO o VALUES (7); INSERT INTO l VALUES (7, 7)", "o7 l7,7", "would be broken",
       "also delete or change rows of 'l'"},
      {"o:1", true, "INSERT INTO o VALUES (7); INSERT INTO l VALUES (7, 7)", "o1 o7 l7,7", "", ""},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Section);
    Renew(Case.Filled);
    TEIFile File;
    File.SetFileName(PutFile("f", Case.Section));
    File.SetReadonly(true);
    File.Open();
    TUOImportTableDataInterface Operation;
    Operation.SetSource(&File);
    Operation.SetDatabaseName(Database.Url);
    Operation.SetAppend(Case.Append);
    const std::string Error = Enforced() ? Case.PostgreSQLError : Case.SQLiteError;
    EXPECT_EQ(Operation.Execute(), Error.empty());
    EXPECT_NE(Operation.LastError().find(Error), std::string::npos) << Operation.LastError();
    EXPECT_EQ(Rows(), Case.Rows);
  }
}

}  // namespace
}  // namespace velkrund::tests
