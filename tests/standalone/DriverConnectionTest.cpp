// Transactions, statements and the schema, as every driver has them.

#include <gmock/gmock.h>

#include "tests/standalone/DriverFixture.h"

namespace velkrund::tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

class DriverConnectionTest : public DriverFixture {};

INSTANTIATE_TEST_SUITE_P(Engines, DriverConnectionTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(DriverConnectionTest, TransactionsEndAsAsked) {
  Run("CREATE TABLE T (N BIGINT)");
  Connection->Begin(TIsolationLevel::RepeatableRead);
  EXPECT_EQ(Connection->Execute("INSERT INTO T VALUES (1)"), 1);
  Connection->Commit();
  Connection->Begin(TIsolationLevel::ReadCommitted);
  EXPECT_EQ(Connection->Execute("UPDATE T SET N = 2"), 1);
  if (Connection->Capabilities().TransactionalSchema) Run("CREATE TABLE GONE (N BIGINT)");
  Connection->Rollback();
  EXPECT_THAT(Rows(*Connection, "T"), ElementsAre("18 1"));
  EXPECT_FALSE(Connection->Schema().FindTable("GONE"));
  Connection->Rollback();
}

TEST_P(DriverConnectionTest, StatementsTakeParametersOneStatementAtATime) {
  Run("CREATE TABLE T (A BIGINT, B VARCHAR(20))");
  const TKvVariant Values[] = {Made([](TKvVariant& V) { V.SetInteger(5); }),
                               Made([](TKvVariant& V) { V.SetText("x'); --"); })};
  const std::string Marks = Connection->Dialect().ParameterMark(1) + ", " + Connection->Dialect().ParameterMark(2);
  EXPECT_EQ(Connection->Execute("INSERT INTO T VALUES (" + Marks + ")", Values), 1);
  EXPECT_THAT(Rows(*Connection, "T"), ElementsAre("18 5|10 x'); --"));
  EXPECT_EQ(Connection->Execute("CREATE TABLE U (A BIGINT)"), 0);
  EXPECT_THAT(ErrorOf([&] { Run("DELETE FROM T; DELETE FROM T"); }), HasSubstr("more than one statement"));
  EXPECT_THAT(ErrorOf([&] { Run("DELETE FROM NOWHERE"); }), HasSubstr("statement: DELETE FROM NOWHERE"));
  EXPECT_EQ(Rows(*Connection, "T").size(), 1U);
}

TEST_P(DriverConnectionTest, NamesOfEveryKindAreQuoted) {
  for (const std::string Name :
       {"select", "a\"b", "x'; DROP TABLE Y; --", "Заказы", " blanks ", "[brackets]", "%s", "a.b", "tables"}) {
    SCOPED_TRACE(Name);
    Run("CREATE TABLE " + Connection->Dialect().QuoteName(Name) + " (" + Connection->Dialect().QuoteName(Name) +
        " BIGINT)");
    TDriverTable Table = Open(Name);
    EXPECT_EQ(Table.TableName(), Name);
    Table.BeginAppend();
    Table.FieldByName(Name).Buffer().SetInteger(5);
    Table.AppendRecord();
    Table.EndAppend();
    EXPECT_EQ(
        Connection->Execute("UPDATE " + Table.SQLName() + " SET " + Connection->Dialect().QuoteName(Name) + " = 6"), 1);
    EXPECT_THAT(Rows(*Connection, Name), ElementsAre("18 6"));
  }
}

TEST_P(DriverConnectionTest, TablesAreFoundIgnoringCaseExactNameFirst) {
  Run("CREATE TABLE " + Connection->Dialect().QuoteName("Орёл") + " (N BIGINT)");
  Run("CREATE TABLE " + Connection->Dialect().QuoteName("ОРЁЛ") + " (N BIGINT)");
  Run("CREATE TABLE " + Connection->Dialect().QuoteName("velkrund_structures") + " (N BIGINT)");
  EXPECT_EQ(Connection->Schema().FindTable("Орёл")->Name, "Орёл");
  EXPECT_EQ(Connection->Schema().FindTable("ОРЁЛ")->Name, "ОРЁЛ");
  EXPECT_THAT(ErrorOf([&] { Connection->Schema().FindTable("орёл"); }),
              AllOf(HasSubstr("\"Орёл\""), HasSubstr("\"ОРЁЛ\"")));
  Run("DROP TABLE " + Connection->Dialect().QuoteName("ОРЁЛ"));
  EXPECT_EQ(Connection->Schema().FindTable("орёл")->Name, "Орёл");
  EXPECT_FALSE(Connection->Schema().FindTable("орел"));
  EXPECT_FALSE(Connection->Schema().FindTable("velkrund_STRUCTURES"));
  EXPECT_EQ(Connection->Schema().Tables().size(), 1U);
}

TEST_P(DriverConnectionTest, CatalogueTablesAreAskedButNotSeen) {
  EXPECT_FALSE(Connection->Schema().HasCatalogueTable("velkrund_structures"));
  Run("CREATE TABLE velkrund_structures (n " + Connection->Dialect().ColumnType(TKvKind::Int64) + ", t " +
      Connection->Dialect().ColumnType(TKvKind::String) + ", b " + Connection->Dialect().ColumnType(TKvKind::Bytes) +
      ")");
  const TKvVariant Values[] = {Made([](TKvVariant& V) { V.SetInteger(INT64_MIN); }),
                               Made([](TKvVariant& V) { V.SetText("Ж'"); }),
                               Made([](TKvVariant& V) { V.SetBytes(std::string_view("\0\xFF", 2)); })};
  const auto Mark = [&](int Number) { return Connection->Dialect().ParameterMark(Number); };
  // The marks carry numbers, so that their order is free.
  Connection->Execute(
      "INSERT INTO velkrund_structures (b, t, n) VALUES (" + Mark(3) + ", " + Mark(2) + ", " + Mark(1) + ")", Values);
  Connection->Execute("INSERT INTO velkrund_structures VALUES (1, NULL, NULL)");
  EXPECT_TRUE(Connection->Schema().HasCatalogueTable("velkrund_structures"));
  EXPECT_FALSE(Connection->Schema().FindTable("velkrund_structures"));
  EXPECT_THAT(Connection->Schema().Tables(), testing::IsEmpty());

  const std::string Question = "SELECT n, t, b FROM velkrund_structures WHERE n = ";
  const auto Found = Connection->Query(Question + Mark(1), std::span(Values).first(1));
  ASSERT_TRUE(Found->Next());
  TKvVariant Cell;
  for (int Column = 0; Column < 3; ++Column) {
    Found->Read(Column, Cell);
    EXPECT_TRUE(Cell == Values[Column]) << Shown(Cell);
  }
  EXPECT_FALSE(Found->Next());
  const auto Nulls = Connection->Query(Question + "1");
  ASSERT_TRUE(Nulls->Next());
  Nulls->Read(2, Cell);
  EXPECT_TRUE(Cell.IsNull());
  EXPECT_FALSE(Connection->Query(Question + "2")->Next());
  EXPECT_THAT(ErrorOf([&] { Connection->Query("SELECT 1 FROM nowhere")->Next(); }), HasSubstr("FROM nowhere"));
}

TEST_P(DriverConnectionTest, ViewsAreReadAndNotWritten) {
  Run("CREATE TABLE T (A BIGINT)");
  Run("INSERT INTO T VALUES (4)");
  Run("CREATE VIEW \"V\" AS SELECT A FROM T");
  EXPECT_EQ(Connection->Schema().FindTable("v")->Kind, TTableKind::View);
  EXPECT_THAT(Rows(*Connection, "V"), ElementsAre("18 4"));
  EXPECT_EQ(ErrorOf([&] { Open("V").BeginAppend(); }), "EDatabaseError: Cannot append to table 'V': it is a view");
}

}  // namespace
}  // namespace velkrund::tests
