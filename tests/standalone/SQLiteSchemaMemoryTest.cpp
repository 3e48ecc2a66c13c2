#include <gmock/gmock.h>

#include "tests/standalone/SQLiteFixture.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

class SQLiteSchemaMemoryTest : public SQLiteFixture {
 protected:
  SQLiteSchemaMemoryTest() {
    Connection = Connect(Path);
    Run("CREATE TABLE A (ID INTEGER PRIMARY KEY, V)");
    Run("CREATE TABLE B (ID INTEGER PRIMARY KEY, A REFERENCES a)");
    Run("CREATE INDEX I ON B (A)");
  }

  /// All that is known of a database, read table by table.
  static std::string Known(TConnection& Of) {
    std::string Result;
    for (const TTableInfo& Table : Of.Schema().Tables()) {
      Result +=
          Format("%s %d %d:", Table.Name, static_cast<int>(Table.Kind), Of.Schema().FindTable(Table.Name) == Table);
      for (const TColumnInfo& Column : Of.Schema().Describe(Table).Columns)
        Result += Format(" %s %s %d", Column.Name, Column.DeclaredType, Column.KeyPosition);
      if (Table.Kind == TTableKind::Table) {
        const TDicTableDescription Defined = Of.Definitions().Table(Table, {});
        Result += Format("; %d keys, %d indexes, %d triggers, %d foreign", Defined.Keys.size(), Defined.Indexes.size(),
                         Defined.Triggers.size(), Defined.ForeignKeys.size());
        const auto Words = Defined.Words.find("sqlite");
        if (Words != Defined.Words.end()) Result += " " + Words->second.Text.value_or("");
      }
      Result += "\n";
    }
    for (const TForeignKey& Key : Of.Schema().ForeignKeys()) Result += Format("%s -> %s\n", Key.From.Name, Key.To.Name);
    for (const TTrigger& Trigger : Of.Schema().Triggers())
      Result += Format("%s: %s\n", Trigger.Table.Name, Trigger.Name);
    return Result;
  }

  const std::string Path = Folder / "known.db";
};

// What a connection adds to the schema it knows without reading all of it anew, and nothing else may come of that.
TEST_F(SQLiteSchemaMemoryTest, WhatIsAddedIsKnownAsAnotherConnectionReadsIt) {
  const struct {
    const char* Statement;
    const char* Shows;  // in what is known afterwards
  } Cases[] = {
      {"CREATE TABLE C (X INTEGER PRIMARY KEY, Y TEXT NOT NULL UNIQUE)", "C 0 1: X INTEGER 1 Y TEXT 0; 2 keys"},
      {"CREATE TABLE \"ä b\" (X TEXT PRIMARY KEY) WITHOUT ROWID, STRICT",
       "ä b 0 1: X TEXT 1; 1 keys, 0 indexes, 0 "
       "triggers, 0 foreign STRICT, WITHOUT ROWID"},
      {"create table Auto (X INTEGER PRIMARY KEY AUTOINCREMENT)", "Auto 0 1"},
      {"CREATE TABLE Child (X REFERENCES C, Y REFERENCES Later)", "Child -> C\n"},
      {"CREATE TABLE later (X INTEGER PRIMARY KEY)", "Child -> later\n"},
      {"CREATE TABLE Copied AS SELECT * FROM A", "Copied 0 1: ID INT 0 V  0"},
      {"CREATE UNIQUE INDEX U ON C (Y, X)", "C 0 1: X INTEGER 1 Y TEXT 0; 2 keys, 1 indexes"},
      {"CREATE TRIGGER T AFTER INSERT ON A BEGIN SELECT 1; END", "A: T\n"},
      {"CREATE TABLE IF NOT EXISTS C (Other)", "C 0 1: X INTEGER 1"},
      {"CREATE TABLE IF NOT EXISTS D (Other)", "D 0 1: Other  0"},
      {"/* a table */ CREATE TABLE E (X)", "E 0 1: X  0"},
      {"CREATE TEMP TABLE Temporary (X)", "A 0 1"},
      {"CREATE TABLE temp.Temporary2 (X)", "A 0 1"},
      {"CREATE VIEW V AS SELECT * FROM C", "V 1 1: X INTEGER 0"},
      {"ALTER TABLE C RENAME TO Renamed", "Child -> Renamed\n"},
      {"ALTER TABLE A ADD COLUMN W TEXT", "A 0 1: ID INTEGER 1 V  0 W TEXT 0"},
      {"DROP TABLE D", "A 0 1"},
      {"CREATE TABLE D (Another INTEGER)", "D 0 1: Another INTEGER 0"},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Statement);
    Connection->Begin(TIsolationLevel::RepeatableRead);
    Known(*Connection);
    Run(Case.Statement);
    const std::string Now = Known(*Connection);
    EXPECT_THAT(Now, HasSubstr(Case.Shows));
    Connection->Commit();
    EXPECT_EQ(Now, Known(*Connect(Path)));
  }
}

TEST_F(SQLiteSchemaMemoryTest, WhatIsTakenBackIsForgotten) {
  const std::string Before = Known(*Connection);
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Known(*Connection);
  Connection->SetSavepoint(1);
  Run("CREATE TABLE C (X)");
  EXPECT_TRUE(Connection->Schema().FindTable("c"));
  Connection->RollbackToSavepoint(1);
  EXPECT_EQ(Known(*Connection), Before);
  Run("CREATE TABLE D (X)");
  EXPECT_FALSE(Connection->Schema().FindTable("C"));
  EXPECT_TRUE(Connection->Schema().FindTable("d"));
  Connection->Rollback();
  EXPECT_EQ(Known(*Connection), Before);
  EXPECT_NE(ErrorOf([&] { Run("CREATE TABLE A (X)"); }), "no error");
  EXPECT_EQ(Known(*Connection), Before);
}

TEST_F(SQLiteSchemaMemoryTest, WhatOthersChangeIsSeen) {
  const auto Other = Connect(Path);
  Known(*Connection);
  // The number of the schema is the same as after a table of one's own.
  Other->Execute("CREATE TABLE Theirs (X)");
  Run("CREATE TABLE IF NOT EXISTS A (X)");
  EXPECT_TRUE(Connection->Schema().FindTable("Theirs"));
  Other->Execute("DROP TABLE Theirs");
  Run("CREATE TABLE Mine (X)");
  EXPECT_FALSE(Connection->Schema().FindTable("Theirs"));
  EXPECT_EQ(Known(*Connection), Known(*Other));
}

TEST_F(SQLiteSchemaMemoryTest, SizesAreThoseOfTheMoment) {
  const TTableInfo A = *Connection->Schema().FindTable("A");
  const auto Size = [&] { return Connection->Schema().TableBytes(A).value(); };
  const auto Other = Connect(Path);
  constexpr const char* Fill = "INSERT INTO A (V) VALUES (zeroblob(100000))";
  const std::int64_t Empty = Size();
  Other->Execute(Fill);
  const std::int64_t Filled = Size();
  EXPECT_GT(Filled, Empty + 90'000);
  Run(Fill);
  EXPECT_GT(Size(), Filled + 90'000);
  Run("DELETE FROM A");
  EXPECT_LE(Size(), Empty);
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Run(Fill);
  EXPECT_GT(Size(), Empty + 90'000);
  Connection->Rollback();
  EXPECT_LE(Size(), Empty);
}

}  // namespace
}  // namespace velkrund::tests
