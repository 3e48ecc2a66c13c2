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

// Who describes many tables has all read at once, which must make no difference to any of them.
TEST_F(SQLiteSchemaMemoryTest, ManyTablesAreDescribedLikeEachForItself) {
  for (int Table = 0; Table < 20; ++Table)
    Run(Format("CREATE TABLE T%d (X%d INTEGER PRIMARY KEY, Y TEXT)", Table, Table));
  for (const char* Statement : {"CREATE TABLE Z1 (A TEXT NOT NULL, B DATE, C, PRIMARY KEY (C, A)) WITHOUT ROWID",
                                "CREATE TABLE Z2 (A INT, B AS (A + 1), C INT AS (A * 2) STORED)",
                                "CREATE TABLE \"z 'ä\"\"\" (\"x y\" \"my type\")",
                                "CREATE VIEW Z3 AS SELECT X1 AS N, Y FROM T1", "CREATE VIEW Z4 AS SELECT Gone FROM T2",
                                "CREATE VIRTUAL TABLE Z5 USING fts5(A, B)", "CREATE TEMP TABLE T3 (Hides INTEGER)"})
    Run(Statement);
  const auto Described = [](TConnection& Of, const TTableInfo& Table) {
    std::string Result = Table.Name + ":";
    const std::string Error = ErrorOf([&] {
      for (const TColumnInfo& Column : Of.Schema().Describe(Table).Columns)
        Result += Format(" %s %s %d %d %d %d", Column.Name, Column.DeclaredType, static_cast<int>(Column.Kind),
                         Column.Nullable, Column.Generated, Column.KeyPosition);
    });
    return Result + " " + Error;
  };
  const std::vector<TTableInfo> Tables = Connection->Schema().Tables();
  ASSERT_EQ(Tables.size(), 28U);
  for (const TTableInfo& Table : Tables) EXPECT_EQ(Described(*Connection, Table), Described(*Connect(Path), Table));
  Run("ALTER TABLE T5 ADD COLUMN Z DATE");
  EXPECT_THAT(Described(*Connection, *Connection->Schema().FindTable("T5")), HasSubstr("Z DATE"));
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
