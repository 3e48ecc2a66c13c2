#include <gmock/gmock.h>

#include "tests/standalone/PostgreSQLFixture.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

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

}  // namespace
}  // namespace velkrund::tests
