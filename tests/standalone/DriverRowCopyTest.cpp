// Rows copied inside a database by the engine's own statement.

#include <gmock/gmock.h>

#include <chrono>
#include <optional>

#include "standalone/tables/DriverBaseManager.h"
#include "tests/standalone/DriverFixture.h"

namespace velkrund::tests {
namespace {

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::StartsWith;

using TStrings = std::vector<std::string>;

/// The parts between "|".
TStrings Parts(const std::string& Text) {
  TStrings Result = {""};
  for (const char C : Text) C == '|' ? static_cast<void>(Result.emplace_back()) : Result.back().push_back(C);
  return Result;
}

/// What an engine has of columns and values.
struct TStock {
  TStrings Types;  // what follows the name of a column; behind ")" what follows the table
  TStrings Values;
  std::string Shown;  // a value as it is stored
  TStrings Exact;     // "from > to" where both differ
  TStrings InDoubt;   // of which nothing is known even where both are the same
};

const TStock SQLiteStock = {
    Parts("INTEGER|REAL|TEXT|BLOB||DECIMAL(9,2)|BOOLEAN|DATE|DATETIME TEXT|TIME BLOB|INTEGER PRIMARY KEY|"
          "INT PRIMARY KEY|INT NOT NULL|ANY)STRICT|REAL)STRICT|INTEGER AS (1+z)"),
    Parts("NULL|0|1|-7|9223372036854775807|9007199254740993|1.5|3.0|0.1|1e300|-0.0|12345678901234.5|''|'abc'|'12'|"
          "'12.50'|'007'|' 12'|'1e3'|'2024-02-29'|'2024-02-29 10:00:00.50'|'10:00:00'|'TRUE'|x''|x'00FF'|"
          "CAST(x'41FF42' AS TEXT)|CAST(x'410042' AS TEXT)"),
    "typeof(c) || ' ' || quote(CAST(c AS BLOB))",
    Parts("INTEGER > DECIMAL(9,2)|DECIMAL(9,2) > BOOLEAN|TEXT > BLOB|REAL > ANY)STRICT|REAL > REAL)STRICT|"
          "DATE > INTEGER|INTEGER PRIMARY KEY > INTEGER|INT NOT NULL > INTEGER PRIMARY KEY|INTEGER AS (1+z) > INTEGER"),
    Parts("INTEGER AS (1+z)")};

const TStock PostgreSQLStock = {
    Parts("smallint|integer|bigint|real|double precision|numeric|numeric(6,2)|numeric(9,3)|text|varchar(3)|char(3)|"
          "boolean|bytea|date|time|timestamp(1)|timestamp|money|interval|jsonb|integer[]|xml|\"char\"|pg_catalog.name|"
          "information_schema.cardinal_number"),
    Parts("NULL|'0'|'1'|'-7'|'32767'|'9223372036854775807'|'1.5'|'1.50'|'0.1'|'1e22'|'NaN'|'-0'|'Infinity'|''|'abc'|"
          "'a  '|' a'|'ab \\'|'true'|'2024-02-29'|'12:00:00.5'|'24:00:00'|'2024-02-29 12:00:00.5'|'20000-01-01'|"
          "'0044-03-15 BC'|'1 day 0.5 seconds'|'{\"a\": [1, \"\\u00e9\"]}'|"
          "'[0:1]={1,NULL}'|'<a b=\"c\">d</a>'"),
    "c::text",
    Parts("smallint > integer|integer > bigint|smallint > real|real > double precision|integer > numeric|"
          "integer > double precision|bigint > numeric(6,2)|numeric(6,2) > numeric(9,3)|varchar(3) > text|"
          "timestamp(1) > timestamp"),
    Parts("xml|\"char\"|information_schema.cardinal_number")};

class DriverRowCopyTest : public DriverFixture {
 protected:
  /// A table with a field c of that type, and one for what it is computed from where it is computed.
  TTableDescription Made(const std::string& Prefix, const std::string& Type) {
    const TTableInfo Table{Prefix + std::to_string(++FCount), {}};
    const std::size_t End = std::min(Type.find(")S"), Type.size());
    const std::string Others = Type.find(" AS ") == std::string::npos ? "" : ", z INTEGER";
    Run("CREATE TABLE " + Table.Name + " (c " + Type.substr(0, End) + Others +
        (End < Type.size() ? Type.substr(End) : ")"));
    return Connection->Schema().Describe(Table);
  }
  /// The only rows.
  void Put(const TTableDescription& Table, const TStrings& Values) {
    Run("DELETE FROM " + Table.Table.Name);
    for (const std::string& Value : Values)
      Run("INSERT INTO " + Table.Table.Name + " (" + Table.Columns.back().Name + ") VALUES (" + Value + ")");
  }
  /// Those of the stock's values that the table takes.
  TStrings Taken(const TTableDescription& Table) {
    TStrings Result;
    for (const std::string& Value : Stock.Values)
      if (ErrorOf([&] { Put(Table, {Value}); }) == "no error") Result.push_back(Value);
    return Result;
  }
  /// What Target holds then, or that it refused the row. Undone.
  template <typename TCall>
  std::string After(const TTableDescription& Target, TCall Copy) {
    Connection->Begin(TIsolationLevel::RepeatableRead);
    std::string Result = ErrorOf(Copy);
    if (Result == "no error") {
      const auto Cursor = Connection->Query("SELECT " + Stock.Shown + " FROM " + Target.Table.Name);
      TKvVariant Value;
      while (Cursor->Next()) Cursor->Read(0, Value), Result += "; " + Shown(Value);
    } else {
      Result = "refused";
    }
    Connection->Rollback();
    return Result;
  }
  void CopyRecords(const TTableDescription& From, const TTableDescription& To) {
    TDriverTable Source(*Connection, From.Table, false), Target(*Connection, To.Table, true);
    Target.BeginAppend();
    for (bool Is = Source.First(); Is; Is = Source.Next()) {
      Target.ClearData();
      Target.FieldByName("c").SetValue(Source.FieldByName("c").Value());
      Target.AppendRecord();
    }
    Target.EndAppend();
  }

  /// False: it was refused, both ways, or the source does not take such rows together.
  bool ExpectTheSame(const TTableDescription& Source, const TTableDescription& Target, TColumnPair Pair,
                     const TStrings& Values) {
    SCOPED_TRACE(Values.size() == 1 ? Values.front() : "all together");
    if (ErrorOf([&] { Put(Source, Values); }) != "no error") return false;
    const std::string Copied = After(Target, [&] { Connection->Rows().CopyRows(Source, Target, std::span(&Pair, 1)); });
    EXPECT_EQ(Copied, After(Target, [&] { CopyRecords(Source, Target); }));
    return Copied != "refused";
  }

  const TStock& Stock = GetParam().Name == "sqlite" ? SQLiteStock : PostgreSQLStock;
  int FCount = 0;
  TDriverBaseManager Manager{*Connection};
};

INSTANTIATE_TEST_SUITE_P(Engines, DriverRowCopyTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(DriverRowCopyTest, WhatIsCopiedExactlyIsWhatRecordsMakeOfIt) {
  TStrings Exact, InDoubt;
  std::vector<TTableDescription> Sources, Targets;
  for (const std::string& Type : Stock.Types) Sources.push_back(Made("a", Type)), Targets.push_back(Made("b", Type));
  for (std::size_t From = 0; From < Sources.size(); ++From) {
    const TTableDescription& Source = Sources[From];
    const TStrings Values = Taken(Source);
    EXPECT_GT(Values.size(), 1U) << Stock.Types[From];
    for (std::size_t To = 0; To < Targets.size(); ++To) {
      const TTableDescription& Target = Targets[To];
      const TColumnPair Pairs[] = {{IndexOf(Source, "c"), IndexOf(Target, "c")}};
      bool IsExact = false;
      const std::string Refused = ErrorOf([&] { IsExact = Connection->Rows().CopiesExactly(Source, Target, Pairs); });
      if (Refused != "no error") {
        EXPECT_THAT(Refused, HasSubstr("the engine would cut values"));
        continue;
      }
      const std::string Both = Stock.Types[From] + " > " + Stock.Types[To];
      if (From == To && !IsExact) InDoubt.push_back(Stock.Types[From]);
      if (From != To && IsExact) Exact.push_back(Both);
      SCOPED_TRACE(Both);
      if (!IsExact || ExpectTheSame(Source, Target, Pairs[0], Values)) continue;
      for (const std::string& Value : Values) ExpectTheSame(Source, Target, Pairs[0], {Value});
    }
  }
  EXPECT_THAT(Exact, IsSupersetOf(Stock.Exact));
  EXPECT_EQ(InDoubt, Stock.InDoubt);
}

TEST_P(DriverRowCopyTest, RowsGoWholeInTheirOrderAndComputedFieldsAreComputed) {
  Run(R"(CREATE TABLE "a.""b" ("A" BIGINT, "sel ect" VARCHAR(9), "ü" BIGINT))");
  Run(R"(INSERT INTO "a.""b" VALUES (3, 'c', 1), (1, NULL, 2), (2, '', 3))");
  Run(R"(CREATE TABLE "T" ("ü" BIGINT, "SEL ECT" VARCHAR(9), A BIGINT, B BIGINT DEFAULT 7, )" +
      GetParam().GeneratedColumn + ")");
  EXPECT_EQ(Manager.CopyTableData("a.\"b", "T", false), 3);
  EXPECT_EQ(Manager.CopyTableData("a.\"b", "T", true), 3);
  EXPECT_EQ(Manager.CopyFields("", "a.\"b", "T", {{"ü", "ü"}, {"A", "A"}}, false), 3);
  EXPECT_THAT(Rows(*Connection, "T"),
              ElementsAre("18 1|10 c|18 3|18 7|18 4", "18 2|0 |18 1|18 7|18 2", "18 3|10 |18 2|18 7|18 3",
                          "18 1|0 |18 3|18 7|18 4", "18 2|0 |18 1|18 7|18 2", "18 3|0 |18 2|18 7|18 3"));
  Manager.DropTable("T");
  EXPECT_FALSE(Connection->Schema().FindTable("T"));
}

TEST_P(DriverRowCopyTest, WhatCannotBeCopiedIsNamedAndNothingIsChanged) {
  Run(R"(CREATE TABLE "A" ("N" BIGINT))");
  Run(R"(INSERT INTO "A" VALUES (1), (NULL))");
  Run(R"(CREATE TABLE "B" ("N" BIGINT NOT NULL))");
  Run(R"(CREATE TABLE "C" ("N" BIGINT))");
  Run(R"(CREATE TABLE "D" (A BIGINT, )" + GetParam().GeneratedColumn + ")");
  Run(R"(CREATE VIEW "V" AS SELECT * FROM "A")");
  Run(GetParam().Name == "sqlite"
          ? R"(CREATE TRIGGER "the trigger" BEFORE INSERT ON "C" BEGIN SELECT RAISE(IGNORE); END)"
          : R"(CREATE RULE "the trigger" AS ON INSERT TO "C" DO INSTEAD NOTHING)");
  const struct {
    std::string Target;
    std::vector<TColumnPair> Pairs;
    std::string Error;
  } Cases[] = {{"V", {{0, 0}}, "'V' is no table"},
               {"C", {{0, 0}}, "(the trigger)"},
               {"D", {{0, 1}}, "computes the field '"},
               {"B", {}, "no field is named"}};
  TSchemaReader& Schema = Connection->Schema();
  const TTableDescription From = Schema.Describe(*Schema.FindTable("A"));
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Error);
    const TTableDescription To = Schema.Describe(*Schema.FindTable(Case.Target));
    EXPECT_FALSE(Connection->Rows().CopiesExactly(From, To, Case.Pairs));
    const std::string Error = ErrorOf([&] { Connection->Rows().CopyRows(From, To, Case.Pairs); });
    EXPECT_THAT(Error, StartsWith("EDatabaseError: Cannot copy the rows of table 'A' into table '" + Case.Target));
    EXPECT_THAT(Error, HasSubstr(Case.Error));
  }
  const auto CopyNull = [&] { Manager.CopyFields("", "A", "B", {{"N", "N"}}, false); };
  EXPECT_THAT(ErrorOf(CopyNull), ContainsRegex("Cannot copy the rows of table 'A' into table 'B': .*N"));
  EXPECT_EQ(InfoOf(CopyNull).Code, TErrorCode::RowRefused);
  EXPECT_EQ(InfoOf(CopyNull).Table, "B");
  EXPECT_FALSE(Schema.HasRows(*Schema.FindTable("B")));
}

TEST_P(DriverRowCopyTest, ALongCopyEndsWhenItIsToldTo) {
  using TClock = std::chrono::steady_clock;
  std::optional<TClock::time_point> Wish;  // when it is made
  TConnected Other = GetParam().Connect(Folder, {.Canceled = [&] { return Wish && TClock::now() >= *Wish; }});
  for (const char* Name : {"A", "B"}) Other.Connection->Execute(std::string("CREATE TABLE ") + Name + " (N BIGINT)");
  Other.Connection->Execute(
      "INSERT INTO A WITH RECURSIVE S (N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM S WHERE N < 1500) "
      "SELECT X.N FROM S X, S Y");
  Other.Connection->Begin(TIsolationLevel::RepeatableRead);
  Wish = TClock::now() + std::chrono::milliseconds(50);
  const std::string Error = ErrorOf([&] {
    TDriverBaseManager(*Other.Connection).CopyFields("", "A", "B", {{"N", "N"}}, false);
  });
  EXPECT_LT(TClock::now() - *Wish, std::chrono::seconds(2));
  EXPECT_THAT(Error, StartsWith("EAbort: Cannot copy the rows"));
  Wish.reset();
  Other.Connection->Rollback();
  EXPECT_FALSE(Other.Connection->Schema().HasRows(*Other.Connection->Schema().FindTable("B")));
}

}  // namespace
}  // namespace velkrund::tests
