// Rows in and out, as every driver moves them.

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "tests/standalone/DriverFixture.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class DriverRowsTest : public DriverFixture {};

INSTANTIATE_TEST_SUITE_P(Engines, DriverRowsTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

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

TEST_P(DriverRowsTest, EveryValueComesBack) {
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

TEST_P(DriverRowsTest, WhatTheEngineLacksIsRefusedWhatItHasComesBack) {
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

TEST_P(DriverRowsTest, EightBitTextsAreOfTheConnectionsCodePage) {
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

TEST_P(DriverRowsTest, ATableIsReadWhileAnotherIsWrittenAndCommitted) {
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

TEST_P(DriverRowsTest, TwoTablesAreFilledInTurn) {
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

TEST_P(DriverRowsTest, RowsInTheOrderOfTheKeyDoNotDependOnHowTheyCameIn) {
  const std::string Number = Type(TKvKind::Int64), Text = Type(TKvKind::String);
  const struct {
    std::string Columns, More;               // a statement behind the table's own; empty: none
    std::vector<std::string> Rows, InOrder;  // the texts of the first column; empty: no key
  } Cases[] = {
      {"A " + Number + " PRIMARY KEY", "", {"2", "10", "-1"}, {"-1", "2", "10"}},
      // By bytes, whatever a language thinks of it.
      {"A " + Text + " PRIMARY KEY",
       "",
       {"'b'", "'ä'", "'B'", "'a-c'", "'ab'", "''"},
       {"", "B", "a-c", "ab", "b", "ä"}},
      {"A " + Number + ", B " + Number + ", PRIMARY KEY (B, A)", "", {"1, 2", "2, 1", "3, 1"}, {"2", "3", "1"}},
      {"A " + Number + " NOT NULL UNIQUE", "", {"2", "1"}, {"1", "2"}},
      {"A " + Number + ", B " + Number + " NOT NULL", "CREATE UNIQUE INDEX I ON T (B)", {"1, 2", "2, 1"}, {"2", "1"}},
      // The fewest columns, then the first name, in whatever order they were made.
      {"A " + Number + ", C " + Number + " NOT NULL UNIQUE, B " + Number + " NOT NULL UNIQUE",
       "",
       {"1, 1, 2", "2, 2, 1"},
       {"2", "1"}},
      {"A " + Number + " NOT NULL, B " + Number + " NOT NULL, UNIQUE (A, B), UNIQUE (B)",
       "",
       {"1, 2", "2, 1"},
       {"2", "1"}},
      {"A " + Number + " UNIQUE", "", {"1"}, {}},
      {"A " + Number + " NOT NULL", "CREATE INDEX I ON T (A)", {"1"}, {}},
      {"A " + Number + " NOT NULL", "CREATE UNIQUE INDEX I ON T (A) WHERE A > 0", {"1"}, {}},
      {"A " + Number + " NOT NULL", "CREATE UNIQUE INDEX I ON T (A, (A + 1))", {"1"}, {}},
  };
  for (const auto& [Columns, More, Given, InOrder] : Cases) {
    SCOPED_TRACE(Columns + More);
    Run("CREATE TABLE T (" + Columns + ")");
    if (!More.empty()) Run(More);
    for (const std::string& Row : Given) Run("INSERT INTO T VALUES (" + Row + ")");
    // Inside a transaction another way of reading is taken.
    for (const bool InTransaction : {false, true}) {
      if (InTransaction) Connection->Begin(TIsolationLevel::RepeatableRead);
      TDriverTable Table = Open("T");
      EXPECT_EQ(Table.OrderByKey(), !InOrder.empty());
      std::vector<std::string> Found;
      for (bool Has = !InOrder.empty() && Table.First(); Has; Has = Table.Next())
        Table.Record().Fields(0).Value().AppendAsText(Found.emplace_back());
      EXPECT_EQ(Found, InOrder);
      if (InTransaction) Connection->Rollback();
    }
    Run("DROP TABLE T");
  }
}

TEST_P(DriverRowsTest, WhatIsLeftHalfWayLeavesTheConnectionInOrder) {
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
      const auto Cursor = Connection->Rows().OpenCursor(Table, Columns, {});
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

TEST_P(DriverRowsTest, UnassignedColumnsGetTheirDefaultAndGeneratedOnesAreOnlyRead) {
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

TEST_P(DriverRowsTest, AnEngineErrorNamesRecordAndColumnAndIsUndoneByRollingBack) {
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
  EXPECT_THAT(Error, HasSubstr("EDatabaseError: Cannot append record 3 to table 'T'"));
  EXPECT_THAT(Error, HasSubstr("B"));
  Connection->Rollback();
  EXPECT_EQ(Connection->Schema().RowCount(Table.Description().Table), 0);
  // The same table takes another append, and nothing that the failed one has left.
  Table.BeginAppend();
  Append(4, true);
  Table.EndAppend();
  EXPECT_EQ(Connection->Schema().RowCount(Table.Description().Table), 1);
}

}  // namespace
}  // namespace velkrund::tests
