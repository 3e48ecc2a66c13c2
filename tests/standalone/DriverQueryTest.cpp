// Queries, as every driver runs them.

#include <gmock/gmock.h>

#include <span>

#include "standalone/tables/DriverQuery.h"
#include "tests/standalone/DriverFixture.h"
#include "tests/standalone/PostgreSQLFixture.h"
#include "tests/support/postgresql/TypeCases.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using TRowTexts = std::vector<std::string>;

/// As Rows of Support.h.
TRowTexts RowsOf(TSelectQuery& Query) {
  TRowTexts Result;
  for (bool Has = Query.First(); Has; Has = Query.Next()) {
    std::string& Row = Result.emplace_back();
    for (int I = 0; I < Query.Record().FieldCount(); ++I)
      Row += (I ? "|" : "") + Shown(Query.Record().Fields(I).Value());
  }
  return Result;
}

/// One after the other for the parameters in their order.
void Give(TSelectQuery& Query, const std::vector<TKvVariant>& Values) {
  for (std::size_t I = 0; I < Values.size(); ++I) {
    Query.Parameters().at(I).DataType = Values[I].Kind();
    Query.Parameters().at(I).Value = Values[I];
  }
}

TKvVariant TextOf(std::string_view Value) {
  return Made([&](TKvVariant& V) { V.SetText(Value); });
}
TKvVariant IntegerOf(std::int64_t Value) {
  return Made([&](TKvVariant& V) { V.SetInteger(Value); });
}

/// What the engine reads through in a walk, and whether it may write then.
enum class TState { None, Reading, Writing };
constexpr TState States[] = {TState::None, TState::Reading, TState::Writing};

class DriverQueryTest : public DriverFixture {
 protected:
  DriverQueryTest() {
    std::string Columns;
    for (const auto& [Name, Kind] :
         {std::pair("ID", TKvKind::Int64), std::pair("NAME", TKvKind::String), std::pair("R", TKvKind::Double),
          std::pair("PRICE", TKvKind::Currency), std::pair("GOOD", TKvKind::Boolean),
          std::pair("DAY", TKvKind::SysDate), std::pair("HOUR", TKvKind::SysTime), std::pair("AT", TKvKind::DateTime),
          std::pair("DATA", TKvKind::Bytes)})
      Columns += (Columns.empty() ? "" : ", ") + std::string(Name) + " " + Type(Kind);
    Run("CREATE TABLE T (" + Columns + ")");
    TDriverTable Table = Open("t");
    Table.BeginAppend();
    for (int I = 1; I <= 3; ++I) {
      Table.ClearData();
      Table.FieldByName("ID").Buffer().SetInteger(I);
      if (I < 3) {
        Table.FieldByName("NAME").Buffer().SetText(I == 1 ? "it's\\n" : "ж:A");
        Table.FieldByName("R").Buffer().SetReal(I * 0.1);
        Table.FieldByName("PRICE").Buffer().SetCurrency({I * 12'345});
        Table.FieldByName("GOOD").Buffer().SetBoolean(I == 1);
        Table.FieldByName("DAY").Buffer().SetSysDate(*StrToSysDate(I == 1 ? "2024-02-29" : "2024-03-01"));
        Table.FieldByName("HOUR").Buffer().SetSysTime(I * 1'000'000);
        Table.FieldByName("AT").Buffer().SetDateTime(
            *SysStrToDateTime(I == 1 ? "2024-02-29 01:00:00" : "2024-03-01 00:00:00.5"));
        Table.FieldByName("DATA").Buffer().SetBytes(I == 1 ? std::string_view("\0'", 2) : std::string_view("\\"));
      }
      Table.AppendRecord();
    }
    Table.EndAppend();
  }

  void Begin(TState State) {
    if (State == TState::Reading) Connection->BeginReading();
    if (State == TState::Writing) Connection->Begin(TIsolationLevel::RepeatableRead);
  }
  void End(TState State) {
    if (State != TState::None) Connection->Rollback();
  }
  TDriverQuery Query(const std::string& Text) { return {*Connection, Text}; }
  bool IsSQLite() const { return GetParam().Name == "sqlite"; }
};

INSTANTIATE_TEST_SUITE_P(Engines, DriverQueryTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(DriverQueryTest, ValuesAreThoseOfTheTableInEveryTransaction) {
  const TRowTexts Expected = Rows(*Connection, "t");
  ASSERT_EQ(Expected.size(), 3U);
  for (const TState State : States) {
    Begin(State);
    TDriverQuery Same = Query("SELECT * FROM T ORDER BY ID -- all");
    EXPECT_EQ(RowsOf(Same), Expected);
    EXPECT_EQ(RowsOf(Same), Expected) << "again";
    EXPECT_EQ(Same.FieldByName("price").Kind(), TKvKind::Currency);
    TDriverQuery Computed = Query("SELECT ID, -ID, NAME AS ID FROM T WHERE ID < 3 ORDER BY 1 DESC;");
    EXPECT_THAT(RowsOf(Computed), ElementsAre("18 2|18 -2|10 ж:A", "18 1|18 -1|10 it's\\n"));
    TDriverQuery None = Query("SELECT NAME FROM T WHERE ID > 3");
    None.Open();
    EXPECT_EQ(None.Record().FieldCount(), 1);
    EXPECT_THAT(RowsOf(None), ElementsAre());
    End(State);
  }
}

TEST_P(DriverQueryTest, ParametersOfEveryKindFindTheirRows) {
  const TKvVariant Day = Made([](TKvVariant& V) { V.SetSysDate(*StrToSysDate("2024-03-01")); });
  const struct {
    std::string Condition;
    std::vector<TKvVariant> Values;
    std::string Found;  // their IDs
  } Cases[] = {
      {"ID = :ID", {IntegerOf(2)}, "2"},
      {"ID = :ID OR ID + 1 = :id OR :Id IS NULL", {IntegerOf(2)}, "12"},
      {"ID < :MORE AND ID > :LESS", {IntegerOf(INT64_MAX), IntegerOf(INT64_MIN)}, "123"},
      {"ID - :A = :B", {IntegerOf(-1), IntegerOf(2)}, "1"},
      {"ID IN (:A, :B)", {IntegerOf(1), IntegerOf(3)}, "13"},
      {"NAME = :NAME", {TextOf("it's\\n")}, "1"},
      {"NAME LIKE :NAME OR :NAME IS NULL", {TextOf("%:A")}, "2"},
      {"NAME = :NAME", {Made([](TKvVariant& V) { V.SetText("\xE6:A", TKvKind::AnsiString); })}, "2"},
      {"SUBSTR(NAME, :FROM) = :REST", {IntegerOf(2), TextOf(":A")}, "2"},
      {"R = :R", {Made([](TKvVariant& V) { V.SetReal(0.1); })}, "1"},
      {"PRICE = :PRICE", {Made([](TKvVariant& V) { V.SetCurrency({24'690}); })}, "2"},
      {"GOOD = :GOOD", {Made([](TKvVariant& V) { V.SetBoolean(false); })}, "2"},
      {"DAY >= :DAY", {Day}, "2"},
      {"DAY >= :DAY", {TextOf("2024-03-01")}, "2"},
      {"HOUR = :HOUR", {Made([](TKvVariant& V) { V.SetSysTime(1'000'000); })}, "1"},
      {"AT > :AT", {Made([](TKvVariant& V) { V.SetDateTime(*SysStrToDateTime("2024-02-29 12:00:00")); })}, "2"},
      {"DATA = :DATA", {Made([](TKvVariant& V) { V.SetBytes(std::string_view("\0'", 2)); })}, "1"},
      {"':A' <> \"name\" AND NAME = :A -- :B", {TextOf("ж:A")}, "2"},
      {"ID = :ID", {TKvVariant()}, ""},
      {"COALESCE(DAY, :DAY) IS NULL", {TKvVariant()}, "3"},
  };
  for (const TState State : States)
    for (const auto& [Condition, Values, Found] : Cases) {
      SCOPED_TRACE(Condition);
      Begin(State);
      TDriverQuery Asked = Query("SELECT ID FROM T WHERE " + Condition + "\nORDER BY ID");
      Give(Asked, Values);
      // A kind without a value is NULL.
      if (Values[0].IsNull())
        Asked.Parameters()[0].DataType = Condition.find("DAY") != std::string::npos ? TKvKind::SysDate : TKvKind::Int64;
      std::string IDs;
      for (const std::string& Row : RowsOf(Asked)) IDs += Row.substr(3);
      EXPECT_EQ(IDs, Found);
      End(State);
    }
}

TEST_P(DriverQueryTest, WhatIsNoQueryOrWouldWriteIsRefusedAndNothingIsHarmed) {
  const std::string Open = IsSQLite() ? "unrecognized token" : "unterminated quoted string";
  const std::string Writes = IsSQLite() ? "it would write" : "are queries";
  std::vector<std::pair<std::string, std::string>> Cases = {
      {"", "Cannot run a query: it is empty"},
      {"/* nothing */;", "it is empty"},
      {"SELECT 1; SELECT 2", "more than one statement"},
      {"SELECT 1; DELETE FROM T", "more than one statement"},
      {"SELECT ID FROM T WHERE NAME = 'x", Open},
      {"SELECT ID FROM T\n WHERE",
       IsSQLite() ? "incomplete input (SQLite error 1)" : "syntax error at end of input (PostgreSQL error 42601)"},
      {"SELECT 1) AS T, (SELECT 2", "Cannot run the query 'SELECT 1) AS T, (SELECT 2': "},
      {"SELECT NONE FROM T", IsSQLite() ? "no such column" : "does not exist (PostgreSQL error 42703)"},
      {"SELECT ID FROM T WHERE ID = :ID OR NAME = :Other OR ID = :id",
       "no value is given for ID, Other; its parameters are ID, Other"},
      {std::string("SELECT 1\0 FROM T", 16), "U+0000"},
      {"SELECT ID FROM T WHERE ID = $1", "$1 is no parameter here: write :NAME"},
      {"INSERT INTO T (ID) VALUES (4)", Writes},
      {"DELETE FROM T RETURNING ID", Writes},
      {"UPDATE T SET ID = 4", Writes},
      {"CREATE TABLE N (A INTEGER)", Writes},
      {"DROP TABLE T", Writes},
      {"WITH X AS (SELECT 4 AS A) INSERT INTO T (ID) SELECT A FROM X RETURNING ID", Writes},
      {"BEGIN", IsSQLite() ? "can neither begin nor end one" : "are queries"},
      {"COMMIT", IsSQLite() ? "can neither begin nor end one" : "are queries"},
      {"SAVEPOINT S", IsSQLite() ? "can neither begin nor end one" : "are queries"},
  };
  if (IsSQLite()) {
    for (const char* Text : {"ATTACH ':memory:' AS M", "PRAGMA user_version = 5", "PRAGMA query_only = ON",
                             "SELECT * FROM Pragma_Optimize"})
      Cases.emplace_back(Text, "nor reach other databases");
    for (const char* Text : {"VACUUM", "ANALYZE", "REPLACE INTO T (ID) VALUES (4)"}) Cases.emplace_back(Text, Writes);
  } else {
    Run("CREATE SEQUENCE S");
    Run("CREATE FUNCTION W() RETURNS integer LANGUAGE plpgsql AS 'BEGIN INSERT INTO T (ID) VALUES (4); RETURN 1; END'");
    Run("CREATE VIEW V AS SELECT W() AS A");
    for (const char* Text :
         {"SELECT nextval('S')", "SELECT W()", "SELECT * FROM V", "TABLE V", "SELECT ID FROM T FOR UPDATE"})
      Cases.emplace_back(Text, "in a read-only transaction (PostgreSQL error 25006)");
    Cases.emplace_back("SELECT set_config('transaction_read_only', 'off', true), W()", "read-write mode");
    for (const char* Text : {"WITH X AS (DELETE FROM T RETURNING ID) SELECT ID FROM X", "SHOW datestyle",
                             "EXPLAIN ANALYZE INSERT INTO T (ID) VALUES (4)", "COPY T TO STDOUT", "CALL W()",
                             "DO 'BEGIN END'", "LOCK TABLE T"})
      Cases.emplace_back(Text, Writes);
    Cases.emplace_back("SELECT ID INTO N FROM T", "it yields no rows");
  }
  const TRowTexts Before = Rows(*Connection, "t");
  for (const TState State : States)
    for (const auto& [Text, Words] : Cases) {
      SCOPED_TRACE(Text);
      Begin(State);
      if (State == TState::Writing) Run("INSERT INTO T (ID) VALUES (7)");
      TDriverQuery Refused = Query(Text);
      EXPECT_THAT(ErrorOf([&] { RowsOf(Refused); }),
                  testing::AllOf(HasSubstr("EDatabaseError: Cannot run "), HasSubstr(Words)));
      // The caller's transaction goes on.
      TDriverQuery After = Query("SELECT COUNT(*) FROM T");
      EXPECT_THAT(RowsOf(After), ElementsAre(State == TState::Writing ? "18 4" : "18 3"));
      if (State == TState::Writing) Run("DELETE FROM T WHERE ID = 7");
      EXPECT_EQ(Rows(*Connection, "t"), Before);
      if (State == TState::Writing)
        Connection->Commit();
      else
        End(State);
    }
}

TEST_P(DriverQueryTest, RowsAreWrittenWhileAQueryGoesOn) {
  Run("CREATE TABLE A (N BIGINT)");
  Connection->Begin(TIsolationLevel::RepeatableRead);
  for (int I = 1; I <= 300; ++I) Run("INSERT INTO A VALUES (" + std::to_string(I) + ")");
  Run("CREATE TABLE B (N BIGINT)");
  Connection->SetSavepoint(1);
  TDriverQuery Source = Query("SELECT X.N * :F FROM A AS X, A AS Y WHERE Y.N <= 100");
  Give(Source, {IntegerOf(2)});
  TDriverTable Target = Open("b");
  Target.BeginAppend();
  for (bool Has = Source.First(); Has; Has = Source.Next()) {
    Target.ClearData();
    Target.FieldByName("N").SetValue(Source.Record().Fields(0).Value());
    Target.AppendRecord();
  }
  Target.EndAppend();
  Run("UPDATE B SET N = N + 1 WHERE N = 2");
  TDriverQuery Left = Query("SELECT N FROM A ORDER BY N");
  EXPECT_TRUE(Left.First());
  Connection->ReleaseSavepoint(1);
  Connection->Commit();
  Left.Close();
  TDriverQuery Sum = Query("SELECT CAST(SUM(N) AS BIGINT), COUNT(*) FROM B");
  EXPECT_THAT(RowsOf(Sum), ElementsAre("18 9030100|18 30000"));
}

TEST_P(DriverQueryTest, WhatIsLeftHalfWayLeavesTheConnectionInOrder) {
  Run("CREATE TABLE A (N BIGINT)");
  for (int I = 0; I < 100; ++I) Run("INSERT INTO A VALUES (1)");
  for (const TState State : States) {
    Begin(State);
    TDriverQuery Left = Query("SELECT X.N, :A FROM A AS X, A AS Y, A AS Z");
    Give(Left, {TextOf("x")});
    ASSERT_TRUE(Left.First());
    ASSERT_TRUE(Left.Next());
    EXPECT_EQ(Shown(Left.Record().Fields(1).Value()), "10 x");
    Left.Close();
    EXPECT_THAT(ErrorOf([&] { Left.Record().Fields(0).Value(); }), HasSubstr("stands on no row"));
    EXPECT_EQ(Rows(*Connection, "a").size(), 100U);
    Left.SetSQL("SELECT N FROM A WHERE N = :B");
    EXPECT_THAT(ErrorOf([&] { Left.Open(); }), HasSubstr("no value is given for B"));
    End(State);
    Run("INSERT INTO A VALUES (1)");
    Run("DELETE FROM A WHERE N = 1");
    for (int I = 0; I < 100; ++I) Run("INSERT INTO A VALUES (1)");
  }
}

TEST(SQLiteQueryTest, DeclaredTypesLeadThroughViewsAndSubqueries) {
  const TTemporaryFolder Folder;
  const TConnected Opened = Engines().front().Connect(Folder, {});
  Opened.Connection->Execute("CREATE TABLE T (D DATE, B BOOLEAN, M MONEY, X)");
  Opened.Connection->Execute("CREATE VIEW V AS SELECT M, D FROM T");
  Opened.Connection->Execute("INSERT INTO T VALUES ('2024-02-29', 1, 1.5, 7), ('soon', 2, 'much', x'00')");
  TDriverQuery Query(*Opened.Connection,
                     "SELECT D, (SELECT B), S.M, S.D || '', X, 1.5, NULL FROM T JOIN V AS S USING (D)");
  EXPECT_THAT(RowsOf(Query), ElementsAre("14 2024-02-29|11 TRUE|20 1.5|10 2024-02-29|18 7|7 1.5|0 ",
                                         HasSubstr("10 soon|18 2|10 much|10 soon|23 ")));
  EXPECT_EQ(Query.Record().Fields(2).Kind(), TKvKind::Currency);
  EXPECT_EQ(Query.Record().Fields(5).Kind(), TKvKind::Null);
}

class PostgreSQLQueryTest : public PostgreSQLFixture {};

TEST_F(PostgreSQLQueryTest, EveryTypeIsReadAsTheTableReadsIt) {
  Raw.Run(TypeDefinitions);
  int Number = 0;
  for (const TTypeCase& Case : TypeCases()) {
    SCOPED_TRACE(Case.Type);
    const std::string Name = "t" + std::to_string(++Number);
    std::string Values;
    TRowTexts Expected;
    for (const auto& [Literal, Shown] : Case.Values) {
      Values += "(" + Literal + "),";
      Expected.push_back(Shown);
    }
    Expected.push_back("0 ");
    Raw.Run("CREATE TABLE " + Name + " (v " + Case.Type + "); INSERT INTO " + Name + " VALUES " + Values + "(NULL)");
    TDriverQuery Query(*Connection, "SELECT v FROM " + Name);
    EXPECT_EQ(RowsOf(Query), Expected);
    Connection->Begin(TIsolationLevel::RepeatableRead);
    EXPECT_EQ(RowsOf(Query), Expected);
    Connection->Rollback();
    TDriverTable Table = Open(Name);
    EXPECT_EQ(Query.Record().Fields(0).Kind(), Table.Record().Fields(0).Kind());
  }
}

TEST_F(PostgreSQLQueryTest, ValuesWithoutAColumnAreRead) {
  Raw.Run("CREATE TABLE t (a integer, b text); INSERT INTO t VALUES (1, 'x')");
  const std::pair<const char*, const char*> Cases[] = {
      {"SELECT t FROM t", "10 (1,x)"},
      {"SELECT ROW(1, NULL, 'a b')", "10 (1,,\"a b\")"},
      {"SELECT NULL, 'a', 1.50, current_date > 'yesterday'", "0 |10 a|10 1.50|11 TRUE"},
      {"VALUES (1, now() IS NULL)", "5 1|11 FALSE"},
      {"TABLE t", "5 1|10 x"},
      {"(SELECT 1 UNION SELECT 1)", "5 1"},
      {"WITH RECURSIVE r (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM r WHERE n < 3) SELECT sum(n) FROM r", "18 6"},
      {"SELECT most_common_vals FROM pg_stats WHERE false UNION ALL SELECT NULL", "0 "},
      {"SELECT pg_sleep(0)", "10 "},
      {"SELECT a AS \"x\"\"y\", a AS \"x\"\"y\" FROM t ORDER BY 1 LIMIT 1", "5 1|5 1"},
      {"SELECT (ARRAY[1,2,3])[2:3]", "10 {2,3}"},
      {"SELECT $$:A$$ || ' -- ' /* ; */", "10 :A -- "},
  };
  for (const auto& [Text, Row] : Cases) {
    SCOPED_TRACE(Text);
    TDriverQuery Query(*Connection, Text);
    TRowTexts Found;
    EXPECT_EQ(ErrorOf([&] { Found = RowsOf(Query); }), "no error");
    EXPECT_THAT(Found, ElementsAre(Row));
  }
}

TEST_F(PostgreSQLQueryTest, OutsideOfTransactionsItHoldsTheConnectionUntilItsEnd) {
  TDriverQuery Query(*Connection, "SELECT * FROM generate_series(1, 3)");
  Query.Open();
  for (const auto& Call : std::vector<std::function<void()>>{[&] { Connection->Execute("SELECT 1"); },
                                                             [&] { Connection->Begin(TIsolationLevel::Serializable); }})
    EXPECT_THAT(ErrorOf(Call), HasSubstr("the rows of a query are still being read through this connection"));
  EXPECT_THAT(RowsOf(Query), ElementsAre("5 1", "5 2", "5 3"));
  Connection->Begin(TIsolationLevel::Serializable);
  Connection->Execute("CREATE TABLE t (a integer)");
  Connection->Commit();
  EXPECT_THAT(Names(), ElementsAre("t"));
  // A connection that is lost is made again, as for every statement.
  Query.Open();
  EndSession();
  ErrorOf([&] { RowsOf(Query); });
  Query.Close();
  EXPECT_THAT(RowsOf(Query), ElementsAre("5 1", "5 2", "5 3"));
}

}  // namespace
}  // namespace velkrund::tests
