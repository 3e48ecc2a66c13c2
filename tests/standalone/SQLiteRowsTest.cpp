#include <gmock/gmock.h>

#include <cmath>

#include "tests/standalone/SQLiteFixture.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class SQLiteRowsTest : public SQLiteFixture {};

TEST_F(SQLiteRowsTest, RowsComeInRowOrderThoughAnIndexHoldsAllColumns) {
  Run("CREATE TABLE T (A INTEGER, PAD TEXT)");
  Run("CREATE INDEX I ON T (A)");
  for (const char* Value : {"3", "1", "2"}) Run(std::string("INSERT INTO T (A) VALUES (") + Value + ")");
  const TTableDescription Table = Connection->Schema().Describe(*Connection->Schema().FindTable("T"));
  const int Columns[] = {0};
  const auto Cursor = Connection->Rows().OpenCursor(Table, Columns, {});
  std::vector<std::int64_t> Read;
  TKvVariant Value;
  while (Cursor->Next()) Cursor->Read(0, Value), Read.push_back(Value.AsInteger());
  EXPECT_THAT(Read, ElementsAre(3, 1, 2));
}

TEST_F(SQLiteRowsTest, KeysAreInOneOrderInEveryEncoding) {
  for (const char* Encoding : {"UTF-8", "UTF-16le", "UTF-16be"}) {
    SCOPED_TRACE(Encoding);
    const std::string Path = Folder / Encoding;
    Connection = Connect(Path);
    Run(std::string("PRAGMA encoding = '") + Encoding + "'");
    Run("CREATE TABLE T (K COLLATE NOCASE PRIMARY KEY)");
    Run("INSERT INTO T VALUES ('b'), ('B1'), ('A'), (NULL), (3), (-0.5), (x'00'), ('ä'), ('€'), ('🚚'), ('\uFF01')");
    Connection = Connect(Path);
    TDriverTable Table = Open("T");
    EXPECT_TRUE(Table.OrderByKey());
    std::vector<std::string> Keys;
    for (bool Has = Table.First(); Has; Has = Table.Next())
      Table.Record().Fields(0).Value().AppendAsText(Keys.emplace_back());
    EXPECT_THAT(Keys, ElementsAre("", "-0.5", "3", "A", "B1", "b", "ä", "€", "\uFF01", "🚚", std::string(1, '\0')));
  }
}

TEST_F(SQLiteRowsTest, NoRowIsDroppedWithoutAWord) {
  const auto Key = [](TKvVariant& V) { V.SetInteger(1); };
  const char* const Definitions[] = {"(C INTEGER UNIQUE ON CONFLICT IGNORE)", "(C INTEGER UNIQUE ON CONFLICT REPLACE)",
                                     "(C INTEGER UNIQUE ON CONFLICT ROLLBACK)"};
  for (const char* Definition : Definitions) {
    SCOPED_TRACE(Definition);
    EXPECT_EQ(Store(Definition, Key), "integer 1");
    Connection->Begin(TIsolationLevel::RepeatableRead);
    TDriverTable Table = Open("S");
    Table.BeginAppend();
    Key(Table.Record().Fields(0).Buffer());
    EXPECT_THAT(ErrorOf([&] { Table.AppendRecord(), Table.EndAppend(); }), HasSubstr("UNIQUE constraint failed: S.C"));
    Connection->Commit();
    EXPECT_EQ(Table.RecordCount(), 1);
  }
  Run("CREATE TABLE T (C)");
  Run("CREATE TRIGGER I BEFORE INSERT ON T WHEN new.C = 2 BEGIN SELECT raise(IGNORE); END");
  TDriverTable Table = Open("T");
  Table.BeginAppend();
  Table.Record().Fields(0).Buffer().SetInteger(1);
  Table.AppendRecord();
  Table.Record().Fields(0).Buffer().SetInteger(2);
  EXPECT_EQ(ErrorOf([&] { Table.AppendRecord(); }),
            "EDatabaseError: Cannot append record 2 to table 'T': a trigger has ignored it (I)");
}

// Many rows go to the engine at once; what is wrong with one of them is told as if it had come alone.
TEST_F(SQLiteRowsTest, ARowAmongManyIsBlamedByItsNumber) {
  constexpr int Rows = 150;
  const struct {
    const char* Fault;
    const char* Error;
    void (*Spoil)(TField& Key, TField& Value);
  } Faults[] = {
      {"unique", "UNIQUE constraint failed: T.K", [](TField& Key, TField&) { Key.Buffer().SetInteger(-1); }},
      {"missing", "NOT NULL constraint failed: T.V", [](TField&, TField& Value) { Value.Buffer().SetNull(); }},
      {"refused", "column 'V': the engine has no NaN", [](TField&, TField& V) { V.Buffer().SetReal(std::nan("")); }},
      {"check", "CHECK constraint failed", [](TField&, TField& Value) { Value.Buffer().SetText("wrong"); }},
  };
  Run("CREATE TABLE T (K INTEGER UNIQUE, V NOT NULL CHECK (V <> 'wrong'))");
  Run("INSERT INTO T VALUES (-1, 'there')");
  for (const auto& Fault : Faults) {
    for (const int Bad : {1, 63, 64, 65, 100, Rows}) {
      SCOPED_TRACE(std::string(Fault.Fault) + " in record " + std::to_string(Bad));
      TDriverTable Table = Open("T");
      Connection->Begin(TIsolationLevel::RepeatableRead);
      const std::string Error = ErrorOf([&] {
        Table.BeginAppend();
        for (int Row = 1; Row <= Rows; ++Row) {
          Table.ClearData();
          Table.FieldByName("K").Buffer().SetInteger(Row);
          Table.FieldByName("V").Buffer().SetText("good");
          if (Row == Bad) Fault.Spoil(Table.FieldByName("K"), Table.FieldByName("V"));
          Table.AppendRecord();
        }
        Table.EndAppend();
      });
      EXPECT_THAT(Error, HasSubstr("record " + std::to_string(Bad) + " to table 'T'"));
      EXPECT_THAT(Error, HasSubstr(Fault.Error));
      Connection->Rollback();
      EXPECT_EQ(Table.RecordCount(), 1);
    }
  }
}

TEST_F(SQLiteRowsTest, SmallAndLargeRowsKeepTheirOrder) {
  Run("CREATE TABLE T (N INTEGER, V TEXT)");
  TDriverTable Table = Open("T");
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Table.BeginAppend();
  std::string Text;
  for (int Row = 1; Row <= 500; ++Row) {
    Table.ClearData();
    Text.assign(Row % 90 == 0 ? 100'000U : static_cast<std::size_t>(Row), static_cast<char>('a' + Row % 26));
    Table.FieldByName("N").Buffer().SetInteger(Row);
    Table.FieldByName("V").Buffer().BorrowText(Text);
    Table.AppendRecord();
  }
  Table.EndAppend();
  Connection->Commit();
  Run("DELETE FROM T WHERE N = rowid AND length(V) = iif(N % 90, N, 100000) AND "
      "replace(V, char(97 + N % 26), '') = ''");
  EXPECT_EQ(Table.RecordCount(), 0);
}

TEST_F(SQLiteRowsTest, VirtualTablesAreOneTable) {
  Run("CREATE VIRTUAL TABLE F USING fts5(A, B)");
  Run("CREATE TABLE T (C INTEGER PRIMARY KEY AUTOINCREMENT)");
  std::vector<std::string> Names;
  for (const TTableInfo& Table : Connection->Schema().Tables()) Names.push_back(Table.Name);
  EXPECT_THAT(Names, ElementsAre("F", "T"));
  TDriverTable Table = Open("f");
  EXPECT_EQ(Table.Record().FieldCount(), 3);
  Table.BeginAppend();
  Table.FieldByName("A").Buffer().SetText("one");
  Table.AppendRecord();
  Table.EndAppend();
  EXPECT_THAT(Rows(*Connection, "F"), ElementsAre("18 1|10 one|0 "));
  EXPECT_FALSE(Connection->Schema().TableBytes(Table.Description().Table));
  EXPECT_GT(Connection->Schema().TableBytes(*Connection->Schema().FindTable("T")).value(), 0);
}

TEST_F(SQLiteRowsTest, AnIndexOfWordsIsFoundByItsTableAndMadeAnew) {
  Run("CREATE TABLE D (K INTEGER PRIMARY KEY, A TEXT)");
  Run("CREATE VIRTUAL TABLE \"F 5\" USING fts5(A, content = 'd', content_rowid = K)");
  Run("CREATE VIRTUAL TABLE F4 USING fts4(content=\"D\", A)");
  Run("CREATE VIRTUAL TABLE GONE USING fts5(A, content=[no such])");
  Run("CREATE VIRTUAL TABLE ALONE USING fts5(A, content='')");
  Run("CREATE VIRTUAL TABLE OWN USING fts5(A)");
  Run("INSERT INTO D VALUES (7, 'red fox')");
  std::string Found;
  for (const TTextIndex& Each : Connection->Schema().TextIndexes()) {
    Found += Each.Index.Name + " of " + Each.Table.Name + "; ";
    Connection->RebuildTextIndex(Each.Index);
  }
  EXPECT_EQ(Found, "F 5 of D; F4 of D; ");
  Run("CREATE VIEW V AS SELECT rowid AS R FROM \"F 5\" WHERE A MATCH 'fox' UNION ALL SELECT docid FROM F4 WHERE A "
      "MATCH 'red'");
  EXPECT_THAT(Rows(*Connection, "V"), ElementsAre("18 7", "18 7"));
}

}  // namespace
}  // namespace velkrund::tests
