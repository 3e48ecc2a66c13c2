// What every driver has to keep. An engine joins by an entry of Engines(); what it does otherwise than others is said
// there, so that no driver leaves a case out.

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <map>

#include "standalone/drivers/postgresql/PostgreSQLDriver.h"
#include "standalone/drivers/sqlite/SQLiteDriver.h"
#include "standalone/tables/DriverTable.h"
#include "tests/standalone/Support.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

struct TConnected {
  std::shared_ptr<void> Database;  // what has to live as long as the connection
  std::unique_ptr<TConnection> Connection;
};

struct TEngine {
  std::string Name;
  std::function<TConnected(const TTemporaryFolder&, TConnectOptions)> Connect;
  std::map<TKvKind, std::string> Types;        // words of CREATE TABLE
  std::map<std::string, std::string> ReadsAs;  // Shown of what was written: Shown of what comes back
  std::string GeneratedColumn;                 // declares G as A + 1
};

void PrintTo(const TEngine& Engine, std::ostream* Out) { *Out << Engine.Name; }

const std::vector<TEngine>& Engines() {
  static const std::vector<TEngine> Result = {
      {.Name = "sqlite",
       .Connect =
           [](const TTemporaryFolder& Folder, TConnectOptions Options) {
             Options.CreateMissing = true;
             auto Opened = TSQLiteDriver().Connect({"sqlite", Folder / "contract.db"}, Options);
             Opened->Execute("PRAGMA synchronous = OFF");
             return TConnected{nullptr, std::move(Opened)};
           },
       .Types = {{TKvKind::Int64, "BIGINT"},
                 {TKvKind::Double, "DOUBLE PRECISION"},
                 {TKvKind::Currency, "DECIMAL(18,4)"},
                 {TKvKind::Boolean, "BOOLEAN"},
                 {TKvKind::String, "VARCHAR(200)"},
                 {TKvKind::Bytes, "BLOB"},
                 {TKvKind::SysDate, "DATE"},
                 {TKvKind::SysTime, "TIME"},
                 {TKvKind::DateTime, "TIMESTAMP"}},
       // Whole amounts are stored as integers.
       .ReadsAs = {{"20 -7", "18 -7"}, {"20 0", "18 0"}},
       .GeneratedColumn = "G BIGINT AS (A + 1)"},
      {.Name = "postgresql",
       .Connect =
           [](const TTemporaryFolder&, const TConnectOptions& Options) {
             auto Database = std::make_shared<TPostgreSQLDatabase>();
             return TConnected{Database, TPostgreSQLDriver().Connect(*ParseDatabaseUrl(Database->Url()), Options)};
           },
       .Types = {{TKvKind::Int64, "BIGINT"},
                 {TKvKind::Double, "DOUBLE PRECISION"},
                 {TKvKind::Currency, "DECIMAL(18,4)"},
                 {TKvKind::Boolean, "BOOLEAN"},
                 {TKvKind::String, "VARCHAR(200)"},
                 {TKvKind::Bytes, "BYTEA"},
                 {TKvKind::SysDate, "DATE"},
                 {TKvKind::SysTime, "TIME"},
                 {TKvKind::DateTime, "TIMESTAMP"}},
       .ReadsAs = {},
       .GeneratedColumn = "G BIGINT GENERATED ALWAYS AS (A + 1) STORED"},
  };
  return Result;
}

class DriverContractTest : public testing::TestWithParam<TEngine> {
 protected:
  void Run(const std::string& Statement) { Connection->Execute(Statement); }
  std::string Type(TKvKind Kind) const { return GetParam().Types.at(Kind); }
  TDriverTable Open(const std::string& Name) {
    return {*Connection, Connection->Schema().FindTable(Name).value(), true};
  }

  TTemporaryFolder Folder;
  TConnected Connected = GetParam().Connect(Folder, {});
  TConnection* const Connection = Connected.Connection.get();
};

INSTANTIATE_TEST_SUITE_P(Engines, DriverContractTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

template <typename TSetter>
TKvVariant Made(TSetter Set) {
  TKvVariant Result;
  Set(Result);
  return Result;
}

/// Values of every kind, extremes among them.
std::vector<std::pair<TKvKind, TKvVariant>> Samples() {
  using V = TKvVariant;
  std::vector<std::pair<TKvKind, TKvVariant>> Result;
  const auto Add = [&](TKvKind Column, auto Set) { Result.emplace_back(Column, Made(Set)); };
  for (const std::int64_t Integer : {INT64_MIN, INT64_MAX, std::int64_t{0}, std::int64_t{-1}})
    Add(TKvKind::Int64, [&](V& Value) { Value.SetInteger(Integer); });
  for (const double Real : {0.1, -1e308, 5e-324, 0.30000000000000004, 3.0, 1e22})
    Add(TKvKind::Double, [&](V& Value) { Value.SetReal(Real); });
  for (const std::int64_t Amount : {125'000L, -1L, -70'000L, 0L, 999'999'999'999L})
    Add(TKvKind::Currency, [&](V& Value) { Value.SetCurrency({Amount}); });
  for (const bool Boolean : {true, false}) Add(TKvKind::Boolean, [&](V& Value) { Value.SetBoolean(Boolean); });
  for (const std::string_view Text : {"", "007", "NULL", "  ends  ", "a'b\"c;\r\n\t", "имя 東京 🚚", "12.50"})
    Add(TKvKind::String, [&](V& Value) { Value.SetText(Text); });
  for (const std::string_view Bytes : {std::string_view(), std::string_view("\0\xFF\r\n\x1A", 5)})
    Add(TKvKind::Bytes, [&](V& Value) { Value.SetBytes(Bytes); });
  Add(TKvKind::SysDate, [](V& Value) { Value.SetSysDate(*StrToSysDate("0001-01-01")); });
  Add(TKvKind::SysDate, [](V& Value) { Value.SetSysDate(*StrToSysDate("9999-12-31")); });
  Add(TKvKind::SysTime, [](V& Value) { Value.SetSysTime(MicrosecondsPerDay - 1); });
  Add(TKvKind::SysTime, [](V& Value) { Value.SetSysTime(0); });
  for (const char* Text : {"2024-02-29 23:59:59.999999", "1969-12-31 23:59:59.500", "2024-03-01 09:15:00"})
    Add(TKvKind::DateTime, [&](V& Value) { Value.SetDateTime(*SysStrToDateTime(Text)); });
  for (const auto& [Kind, Word] : Engines().front().Types) Add(Kind, [](V& Value) { Value.SetNull(); });
  return Result;
}

TEST_P(DriverContractTest, EveryValueComesBack) {
  int Number = 0;
  for (const auto& [Kind, Value] : Samples()) {
    const std::string Name = "T" + std::to_string(++Number);
    SCOPED_TRACE(Type(Kind) + ": " + Shown(Value));
    Run("CREATE TABLE " + Name + " (C " + Type(Kind) + ")");
    TDriverTable Table = Open(Name);
    EXPECT_EQ(Table.Record().Fields(0).Kind(), Kind);
    Table.BeginAppend();
    Table.FieldByName("c").SetValue(Value);
    Table.AppendRecord();
    Table.EndAppend();
    ASSERT_TRUE(Table.First());
    const TKvVariant& Read = Table.FieldByName("C").Value();
    const auto Exception = GetParam().ReadsAs.find(Shown(Value));
    if (Exception == GetParam().ReadsAs.end())
      EXPECT_TRUE(Read == Value) << Shown(Read);
    else
      EXPECT_EQ(Shown(Read), Exception->second);
    EXPECT_FALSE(Table.Next());
  }
}

TEST_P(DriverContractTest, WhatTheEngineLacksIsRefusedWhatItHasComesBack) {
  const TCapabilities& Can = Connection->Capabilities();
  Run(R"(CREATE TABLE "T" ("R" )" + Type(TKvKind::Double) + R"(, "S" )" + Type(TKvKind::String) + ")");
  struct TCase {
    std::string Column;
    TKvVariant Value;
    bool Can;
  };
  const TCase Cases[] = {
      {"R", Made([](TKvVariant& V) { V.SetReal(std::nan("")); }), Can.NotANumber},
      {"R", Made([](TKvVariant& V) { V.SetReal(-0.0); }), Can.NegativeZero},
      {"S", Made([](TKvVariant& V) { V.SetText(std::string_view("a\0b", 3)); }), Can.NulInText},
      {"S", Made([](TKvVariant& V) { V.SetBytes("b"); }), Can.MixedKinds},
  };
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(Shown(Case.Value));
    Run("DELETE FROM \"T\"");
    TDriverTable Table = Open("T");
    const std::string Error = ErrorOf([&] {
      Table.BeginAppend();
      Table.FieldByName(Case.Column).SetValue(Case.Value);
      Table.AppendRecord();
      Table.EndAppend();
    });
    if (!Case.Can) {
      EXPECT_THAT(Error, HasSubstr("record 1 to table 'T', column '" + Case.Column + "'"));
      continue;
    }
    EXPECT_EQ(Error, "no error");
    ASSERT_TRUE(Table.First());
    EXPECT_EQ(Shown(Table.FieldByName(Case.Column).Value()), Shown(Case.Value));
  }
}

TEST_P(DriverContractTest, EightBitTextsAreOfTheConnectionsCodePage) {
  const TKvVariant Value = Made([](TKvVariant& V) { V.SetText("\xB3", TKvKind::AnsiString); });
  const TKvVariant* const Row[] = {&Value};
  const int Columns[] = {0};
  for (const auto& [Page, Text] : {std::pair(1250, "10 ł"), std::pair(1253, "10 ³")}) {
    const TConnected Opened = GetParam().Connect(Folder, {.CodePage = TCodePage::Find(Page)});
    TConnection& Other = *Opened.Connection;
    Other.Execute("CREATE TABLE " + Other.Dialect().QuoteName(Text) + " (S VARCHAR(9))");
    const TTableDescription Table = Other.Schema().Describe(*Other.Schema().FindTable(Text));
    const auto Appender = Other.Rows().OpenAppender(Table, Columns, {});
    Appender->Append(Row);
    Appender->Finish();
    const std::string Insert = "INSERT INTO " + Other.Dialect().SQLName(Table.Table) + " VALUES (";
    Other.Execute(Insert + Other.Dialect().ParameterMark(1) + ")", {&Value, 1});
    EXPECT_THAT(Rows(Other, Text), ElementsAre(Text, Text));
  }
}

TEST_P(DriverContractTest, ATableIsReadWhileAnotherIsWrittenAndCommitted) {
  Run("CREATE TABLE A (N BIGINT)");
  Run("CREATE TABLE B (N BIGINT)");
  Connection->Begin(TIsolationLevel::RepeatableRead);
  for (int I = 1; I <= 1000; ++I) Run("INSERT INTO A VALUES (" + std::to_string(I) + ")");
  Connection->Commit();
  TDriverTable Source = Open("A");
  TDriverTable Target = Open("B");
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Target.BeginAppend();
  std::int64_t Rows = 0;
  std::int64_t Sum = 0;
  for (bool Found = Source.First(); Found; Found = Source.Next()) {
    Sum += Source.FieldByName("N").Value().AsInteger();
    Target.ClearData();
    Target.FieldByName("N").SetValue(Source.FieldByName("N").Value());
    Target.AppendRecord();
    if (++Rows == 500) Connection->Execute("UPDATE B SET N = N");
  }
  Target.EndAppend();
  Connection->Commit();
  EXPECT_EQ(Sum, 500'500);
  EXPECT_EQ(Target.RecordCount(), 1000);
  ASSERT_TRUE(Target.First());
  EXPECT_EQ(Target.FieldByName("N").Value().AsInteger(), 1);
}

TEST_P(DriverContractTest, TwoTablesAreFilledInTurn) {
  Run("CREATE TABLE A (N BIGINT)");
  Run("CREATE TABLE B (N BIGINT)");
  TDriverTable Tables[] = {Open("A"), Open("B")};
  Connection->Begin(TIsolationLevel::RepeatableRead);
  for (TDriverTable& Table : Tables) Table.BeginAppend();
  for (int I = 0; I < 100; ++I)
    for (TDriverTable& Table : Tables) {
      Table.FieldByName("N").Buffer().SetInteger(I);
      Table.AppendRecord();
    }
  for (TDriverTable& Table : Tables) Table.EndAppend();
  Connection->Commit();
  for (TDriverTable& Table : Tables) EXPECT_EQ(Table.RecordCount(), 100);
}

TEST_P(DriverContractTest, WhatIsLeftHalfWayLeavesTheConnectionInOrder) {
  Run("CREATE TABLE T (N BIGINT, S VARCHAR(1000))");
  const TTableDescription Table = Connection->Schema().Describe(*Connection->Schema().FindTable("T"));
  const int Columns[] = {0, 1};
  const TKvVariant Number = Made([](TKvVariant& V) { V.SetInteger(1); });
  const TKvVariant Text = Made([](TKvVariant& V) { V.SetText(std::string(1000, 'x')); });
  const TKvVariant* const Row[] = {&Number, &Text};
  Connection->Begin(TIsolationLevel::RepeatableRead);
  const auto Appender = Connection->Rows().OpenAppender(Table, Columns, {});
  for (int I = 0; I < 10'000; ++I) Appender->Append(Row);
  Appender->Finish();
  Connection->Commit();
  for (const bool InTransaction : {false, true}) {
    if (InTransaction) Connection->Begin(TIsolationLevel::RepeatableRead);
    TKvVariant Value;
    {
      const auto Cursor = Connection->Rows().OpenCursor(Table, Columns);
      ASSERT_TRUE(Cursor->Next());
      Cursor->Read(0, Value);
      EXPECT_TRUE(Value == Number);
    }
    EXPECT_EQ(Connection->Schema().RowCount(Table.Table), 10'000);
    Connection->Rows().OpenAppender(Table, Columns, {})->Append(Row);
    EXPECT_EQ(Connection->Execute("UPDATE T SET S = NULL WHERE N = 2"), 0);
    if (InTransaction) Connection->Rollback();
  }
}

TEST_P(DriverContractTest, TransactionsEndAsAsked) {
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

TEST_P(DriverContractTest, UnassignedColumnsGetTheirDefaultAndGeneratedOnesAreOnlyRead) {
  Run("CREATE TABLE T (A BIGINT DEFAULT 7, B VARCHAR(9) DEFAULT 'none', " + GetParam().GeneratedColumn + ")");
  TDriverTable Table = Open("T");
  Table.BeginAppend();
  const auto Append = [&](std::initializer_list<std::pair<const char*, int>> Values) {
    Table.ClearData();
    for (const auto& [Name, Value] : Values) {
      if (Value == 0)
        Table.FieldByName(Name).Buffer().SetNull();
      else
        Table.FieldByName(Name).Buffer().SetInteger(Value);
    }
    Table.AppendRecord();
  };
  Append({});
  Append({{"A", 1}});
  Append({{"A", 2}, {"B", 0}});
  Append({{"A", 3}, {"G", 99}});
  Append({{"A", 0}});
  Table.EndAppend();
  EXPECT_THAT(Rows(*Connection, "T"), ElementsAre("18 7|10 none|18 8", "18 1|10 none|18 2", "18 2|0 |18 3",
                                                  "18 3|10 none|18 4", "0 |10 none|0 "));
}

TEST_P(DriverContractTest, NamesOfEveryKindAreQuoted) {
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

TEST_P(DriverContractTest, TablesAreFoundIgnoringCaseExactNameFirst) {
  Run("CREATE TABLE " + Connection->Dialect().QuoteName("Орёл") + " (N BIGINT)");
  Run("CREATE TABLE " + Connection->Dialect().QuoteName("ОРЁЛ") + " (N BIGINT)");
  Run("CREATE TABLE " + Connection->Dialect().QuoteName(std::string(CataloguePrefix) + "own") + " (N BIGINT)");
  EXPECT_EQ(Connection->Schema().FindTable("Орёл")->Name, "Орёл");
  EXPECT_EQ(Connection->Schema().FindTable("ОРЁЛ")->Name, "ОРЁЛ");
  EXPECT_THAT(ErrorOf([&] { Connection->Schema().FindTable("орёл"); }),
              AllOf(HasSubstr("\"Орёл\""), HasSubstr("\"ОРЁЛ\"")));
  Run("DROP TABLE " + Connection->Dialect().QuoteName("ОРЁЛ"));
  EXPECT_EQ(Connection->Schema().FindTable("орёл")->Name, "Орёл");
  EXPECT_FALSE(Connection->Schema().FindTable("орел"));
  EXPECT_FALSE(Connection->Schema().FindTable("velkrund_OWN"));
  EXPECT_EQ(Connection->Schema().Tables().size(), 1U);
}

TEST_P(DriverContractTest, AnEngineErrorNamesRecordAndColumnAndIsUndoneByRollingBack) {
  Run(R"(CREATE TABLE "T" (A INTEGER NOT NULL PRIMARY KEY, "B" INTEGER NOT NULL))");
  Connection->Begin(TIsolationLevel::RepeatableRead);
  TDriverTable Table = Open("T");
  Table.BeginAppend();
  const auto Append = [&](int Key, bool WithB) {
    Table.ClearData();
    Table.FieldByName("A").Buffer().SetInteger(Key);
    if (WithB) Table.FieldByName("B").Buffer().SetInteger(1);
    Table.AppendRecord();
  };
  Append(1, true);
  Append(2, true);
  const std::string Error = ErrorOf([&] { Append(3, false), Table.EndAppend(); });
  EXPECT_THAT(Error, HasSubstr("EDatabaseError: Can not append record 3 to table 'T'"));
  EXPECT_THAT(Error, HasSubstr("B"));
  Connection->Rollback();
  EXPECT_EQ(Connection->Schema().RowCount(Table.Description().Table), 0);
  // The same table takes another append, and nothing that the failed one has left.
  Table.BeginAppend();
  Append(4, true);
  Table.EndAppend();
  EXPECT_EQ(Connection->Schema().RowCount(Table.Description().Table), 1);
}

TEST_P(DriverContractTest, StatementsTakeParametersOneStatementAtATime) {
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

TEST_P(DriverContractTest, CatalogueTablesAreAskedButNotSeen) {
  EXPECT_FALSE(Connection->Schema().HasCatalogueTable("velkrund_t"));
  Run("CREATE TABLE velkrund_t (n " + Connection->Dialect().ColumnType(TKvKind::Int64) + ", t " +
      Connection->Dialect().ColumnType(TKvKind::String) + ", b " + Connection->Dialect().ColumnType(TKvKind::Bytes) +
      ")");
  const TKvVariant Values[] = {Made([](TKvVariant& V) { V.SetInteger(INT64_MIN); }),
                               Made([](TKvVariant& V) { V.SetText("Ж'"); }),
                               Made([](TKvVariant& V) { V.SetBytes(std::string_view("\0\xFF", 2)); })};
  const auto Mark = [&](int Number) { return Connection->Dialect().ParameterMark(Number); };
  // The marks carry numbers, so that their order is free.
  Connection->Execute("INSERT INTO velkrund_t (b, t, n) VALUES (" + Mark(3) + ", " + Mark(2) + ", " + Mark(1) + ")",
                      Values);
  Connection->Execute("INSERT INTO velkrund_t VALUES (1, NULL, NULL)");
  EXPECT_TRUE(Connection->Schema().HasCatalogueTable("velkrund_t"));
  EXPECT_FALSE(Connection->Schema().FindTable("velkrund_t"));
  EXPECT_THAT(Connection->Schema().Tables(), testing::IsEmpty());

  const std::string Question = "SELECT n, t, b FROM velkrund_t WHERE n = ";
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

TEST_P(DriverContractTest, ViewsAreReadAndNotWritten) {
  Run("CREATE TABLE T (A BIGINT)");
  Run("INSERT INTO T VALUES (4)");
  Run("CREATE VIEW \"V\" AS SELECT A FROM T");
  EXPECT_EQ(Connection->Schema().FindTable("v")->Kind, TTableKind::View);
  EXPECT_THAT(Rows(*Connection, "V"), ElementsAre("18 4"));
  EXPECT_EQ(ErrorOf([&] { Open("V").BeginAppend(); }), "EDatabaseError: Can not append to table 'V': it is a view");
}

}  // namespace
}  // namespace velkrund::tests
