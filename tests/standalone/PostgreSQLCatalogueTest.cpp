#include <gmock/gmock.h>

#include "tests/standalone/PostgreSQLFixture.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// All that is told of a table: its exact place, its columns and their kinds.
std::string Told(TSchemaReader& Schema, const std::string& Name) {
  const std::optional<TTableInfo> Table = Schema.FindTable(Name);
  if (!Table) return "none";
  std::string Result = Table->Schema + "/" + FullName(*Table) + (Table->HasHeirs ? "+" : "") + ":";
  for (const TColumnInfo& Column : Schema.Describe(*Table).Columns)
    Result += Format(" %s %s %d%s%d", Column.Name, Column.DeclaredType, static_cast<int>(Column.Kind),
                     Column.Nullable ? "?" : "", Column.KeyPosition);
  return Result;
}

class PostgreSQLCatalogueTest : public PostgreSQLFixture {
 protected:
  /// Asked so often that the server keeps the questions ready.
  std::vector<std::string> Fields() {
    std::vector<std::string> Result;
    for (int Again = 0; Again < 3; ++Again) {
      Result.clear();
      for (const TColumnInfo& Column : Connection->Schema().Describe(*Connection->Schema().FindTable("t")).Columns)
        Result.push_back(Column.Name);
    }
    return Result;
  }
};

TEST_F(PostgreSQLCatalogueTest, WhatIsKeptReadyMayBeThrownAway) {
  Raw.Run("CREATE TABLE t (a integer)");
  Raw.Run("CREATE FUNCTION forget() RETURNS integer LANGUAGE plpgsql AS $$ BEGIN DEALLOCATE ALL; RETURN 1; END $$");
  for (const char* const Statement : {"DEALLOCATE ALL", "DISCARD ALL", "SELECT forget()"}) {
    EXPECT_THAT(Fields(), ElementsAre("a"));
    Connection->Execute(Statement);
    EXPECT_THAT(Fields(), ElementsAre("a")) << Statement;
  }
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Connection->Execute("DEALLOCATE ALL");
  EXPECT_THAT(Fields(), ElementsAre("a"));
  Connection->Rollback();
  EndSession();
  EXPECT_THAT(Fields(), ElementsAre("a"));
}

TEST_F(PostgreSQLCatalogueTest, WhatIsKnownHoldsAsLongAsAReadingTransaction) {
  Raw.Run("CREATE TABLE t (a integer)");
  Connection->BeginReading();
  EXPECT_THAT(Fields(), ElementsAre("a"));
  Raw.Run("ALTER TABLE t ADD COLUMN b integer");
  EXPECT_THAT(Fields(), ElementsAre("a"));
  Connection->Rollback();
  EXPECT_THAT(Fields(), ElementsAre("a", "b"));
  Connection->BeginReading();
  EXPECT_THAT(Fields(), ElementsAre("a", "b"));
  EndSession();
  Connection->Rollback();
  Raw.Run("ALTER TABLE t DROP COLUMN a");
  Connection->BeginReading();
  EXPECT_THAT(Fields(), ElementsAre("b"));
  Connection->Rollback();
  Connection->Begin(TIsolationLevel::RepeatableRead);
  EXPECT_THAT(Fields(), ElementsAre("b"));
  Connection->Execute("ALTER TABLE t ADD COLUMN c integer");
  EXPECT_THAT(Fields(), ElementsAre("b", "c"));
  Connection->Rollback();
  EXPECT_THAT(Fields(), ElementsAre("b"));
}

/// The server itself shows such a table as empty, or another one's rows.
TEST_F(PostgreSQLCatalogueTest, RowsThatOthersTakeAwayFromTheMomentAreAnError) {
  const struct {
    const char *Meanwhile, *Error;
  } Cases[] = {
      {"INSERT INTO t VALUES (3); DELETE FROM p; ALTER TABLE t ADD COLUMN b integer", "no error"},
      {"TRUNCATE t", "somebody else has emptied or rewritten the table 't' since this run began"},
      {"ALTER TABLE t ALTER a TYPE bigint", "emptied or rewritten the table 't'"},
      {"ALTER TABLE t RENAME TO x; ALTER TABLE u RENAME TO t", "renamed or replaced the table '\"public\".\"t\"'"},
      {"TRUNCATE p1", "emptied or rewritten the table 'p1'"},
      {"TRUNCATE v1", "emptied or rewritten the table 'v1'"},
  };
  for (const auto& [Meanwhile, Error] : Cases) {
    SCOPED_TRACE(Meanwhile);
    Raw.Run(R"(
        DROP TABLE IF EXISTS t, u, x, p, v1 CASCADE; CREATE TABLE t (a integer PRIMARY KEY); INSERT INTO t VALUES (1), (2);
        CREATE TABLE u (a integer PRIMARY KEY); CREATE TABLE p (a integer) PARTITION BY LIST (a);
        CREATE TABLE p1 PARTITION OF p FOR VALUES IN (1); INSERT INTO p VALUES (1); CREATE TABLE v1 (a integer);
        INSERT INTO v1 VALUES (7); CREATE VIEW v AS SELECT a FROM v1)");
    Connection->BeginReading();
    EXPECT_THAT(Fields(), ElementsAre("a"));
    Raw.Run(Meanwhile);
    int Rows = 0;
    const std::string Met = ErrorOf([&] {
      for (const char* const Name : {"t", "p", "v"}) {
        const TTableDescription Table = Connection->Schema().Describe(*Connection->Schema().FindTable(Name));
        const int First[] = {0};
        const auto Cursor = Connection->Rows().OpenCursor(Table, First, {});
        while (Cursor->Next()) ++Rows;
      }
    });
    EXPECT_THAT(Met, HasSubstr(Error));
    EXPECT_EQ(Rows == 4, Met == "no error");
    Connection->Rollback();
  }
}

TEST_F(PostgreSQLCatalogueTest, NamesAreFoundWhateverStandsInThem) {
  Raw.Run(
      "CREATE SCHEMA s; CREATE SCHEMA \"x.y\"; CREATE TABLE s.t (a integer); CREATE TABLE \"s.u\" (a integer); "
      "CREATE TABLE \"x.y\".\"a.b\" (a integer); CREATE TABLE \"q\"\"{,}\\\" (a integer); "
      "CREATE TABLE \"ключ\" (a integer); CREATE TABLE \"Other.Key\" (a integer)");
  const struct {
    const char *Name, *Found;
  } Cases[] = {
      {"s.t", "s.t"},        {"s.u", "s.u"},     {"x.y.a.b", "x.y.a.b"}, {"q\"{,}\\", "q\"{,}\\"},
      {"S.T", "s.t"},        {"y.a.b", nullptr}, {"t", nullptr},         {"s.", nullptr},
      {".", nullptr},        {"u", nullptr},     {"КЛЮЧ", "ключ"},       {"OTHER.KEY", "Other.Key"},
      {"ther.key", nullptr},
  };
  for (const auto& Case : Cases) {
    const std::optional<TTableInfo> Found = Connection->Schema().FindTable(Case.Name);
    EXPECT_EQ(Found ? DottedName(*Found) : "none", Case.Found ? Case.Found : "none") << Case.Name;
  }
}

TEST_F(PostgreSQLCatalogueTest, WhoAsksForManyTablesIsToldTheSameOfEach) {
  std::string Statements =
      "CREATE SCHEMA s; CREATE DOMAIN d AS varchar(7) NOT NULL; CREATE TABLE t_empty (); CREATE TABLE \"s.t5\" (b "
      "date); CREATE TABLE \"s.t9\" (b date); "
      "CREATE TABLE t_parent (a d); CREATE TABLE t_heir (c money[]) INHERITS (t_parent); CREATE VIEW v AS SELECT 1 AS "
      "x; "
      "CREATE TABLE p (k integer PRIMARY KEY) PARTITION BY RANGE (k); CREATE TABLE p1 PARTITION OF p DEFAULT; "
      "CREATE TABLE \"{,\"\"}\\\" (\"{}\" integer);";
  std::vector<std::string> Asked{"t_empty", "t_parent", "t_heir", "v",  "p",    "p1",    "{,\"}\\",
                                 "s.t5",    "s.t9",     "S.T6",   "T7", "none", "s.t77", "t_heir"};
  for (int Number = 0; Number < 150; ++Number) {
    Statements += Format("CREATE TABLE %st%d (a%d numeric(12,%d) NOT NULL, PRIMARY KEY (a%d));",
                         Number % 3 == 0 ? "s." : "", Number, Number, Number % 9, Number);
    Asked.push_back(Format(Number % 3 == 0 ? "s.t%d" : "t%d", Number));
  }
  Raw.Run(Statements);
  const auto Ask = [&](const std::string& Name) {
    std::string Answer;
    const std::string Error = ErrorOf([&] { Answer = Told(Connection->Schema(), Name); });
    return Answer + Error;
  };
  std::vector<std::string> Alone;
  for (const std::string& Name : Asked) Alone.push_back(Ask(Name));
  for (const bool Backwards : {false, true}) {
    Connection->BeginReading();
    for (std::size_t Index = 0; Index < Asked.size(); ++Index) {
      const std::size_t At = Backwards ? Asked.size() - 1 - Index : Index;
      EXPECT_EQ(Ask(Asked[At]), Alone[At]);
    }
    Connection->Rollback();
  }
}

TEST_F(PostgreSQLCatalogueTest, WhatATransactionDoesIsSeenByItAtOnceAmongManyTables) {
  std::string Statements =
      "CREATE FUNCTION make() RETURNS integer LANGUAGE plpgsql AS "
      "$$ BEGIN CREATE TABLE made (a integer); RETURN 1; END $$;";
  for (int Number = 0; Number < 40; ++Number) Statements += Format("CREATE TABLE t%d (a integer);", Number);
  Raw.Run(Statements);
  const auto AskForAll = [&] {
    for (int Number = 0; Number < 40; ++Number) Told(Connection->Schema(), Format("T%d", Number));
  };
  for (const TIsolationLevel Level :
       {TIsolationLevel::ReadCommitted, TIsolationLevel::RepeatableRead, TIsolationLevel::Serializable}) {
    Connection->Begin(Level);
    AskForAll();
    EXPECT_EQ(Told(Connection->Schema(), "made"), "none");
    Connection->SetSavepoint(1);
    Connection->Execute("ALTER TABLE t7 RENAME TO u7");
    Connection->Execute("ALTER TABLE t8 RENAME COLUMN a TO b");
    EXPECT_EQ(Told(Connection->Schema(), "t7"), "none");
    EXPECT_THAT(Told(Connection->Schema(), "U7"), HasSubstr(" a integer"));
    EXPECT_THAT(Told(Connection->Schema(), "t8"), HasSubstr(" b integer"));
    AskForAll();
    Connection->RollbackToSavepoint(1);
    EXPECT_THAT(Told(Connection->Schema(), "t7"), HasSubstr(" a integer"));
    EXPECT_THAT(Told(Connection->Schema(), "t8"), HasSubstr(" a integer"));
    AskForAll();
    Connection->Query("SELECT make()")->Next();
    EXPECT_THAT(Told(Connection->Schema(), "made"), HasSubstr(" a integer"));
    Connection->Rollback();
    EXPECT_EQ(Told(Connection->Schema(), "made"), "none");
  }
}

}  // namespace
}  // namespace velkrund::tests
