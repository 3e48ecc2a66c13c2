#include <gmock/gmock.h>

#include "tests/standalone/SQLiteFixture.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;
using TType = TDicFieldType;

/// Descriptions of other engines as SQLite makes them.
class SQLiteScriptsTest : public SQLiteFixture {};

TEST_F(SQLiteScriptsTest, ATypeKeepsItsValuesAndItsName) {
  const auto Text = [](std::string_view T) { return [T](TKvVariant& V) { V.SetText(T); }; };
  const auto Integer = [](std::int64_t N) { return [N](TKvVariant& V) { V.SetInteger(N); }; };
  const auto Real = [](double R) { return [R](TKvVariant& V) { V.SetReal(R); }; };
  const auto Amount = [](std::int64_t N) { return [N](TKvVariant& V) { V.SetCurrency({N}); }; };
  const auto Top = [](TKvVariant& V) { V.SetUnsigned(0xFFFF'FFFF'FFFF'FFFF); };
  const auto True = [](TKvVariant& V) { V.SetBoolean(true); };
  const auto Bytes = [](TKvVariant& V) { V.SetText("12", TKvKind::Bytes); };
  struct TCase {
    TDicField Field;
    std::string Declared;
    std::function<void(TKvVariant&)> Value;
    std::string Stored;
    bool ComesBack = true;  // the declared type says the same again
  };
  constexpr std::int64_t Least = std::numeric_limits<std::int64_t>::min();
  const TCase Cases[] = {
      {{.Type = TType::Any}, "", Text("1.50"), "text '1.50'"},
      {{.Type = TType::Int16}, "SMALLINT", Integer(-32768), "integer -32768", false},
      {{.Type = TType::Int32}, "INT", Integer(2147483647), "integer 2147483647", false},
      {{.Type = TType::Int64}, "BIGINT", Integer(Least), "integer -9223372036854775808"},
      {{.Type = TType::UInt64}, "UNSIGNED TEXT", Top, "text '18446744073709551615'"},
      {{.Type = TType::Real32}, "FLOAT", Real(0.1F), "real 1.00000001490116119384e-01", false},
      {{.Type = TType::Real64}, "DOUBLE PRECISION", Real(0.1), "real 0.1"},
      {{.Type = TType::Decimal, .Size = 15, .Scale = 4},
       "DECIMAL(15, 4)",
       Amount(999'999'999'999'999),
       "real 99999999999.9999"},
      {{.Type = TType::Decimal, .Size = 9}, "DECIMAL(9)", Amount(9'999'999'990'000), "integer 999999999"},
      {{.Type = TType::Decimal, .Size = 18, .Scale = 4},
       "DECIMAL TEXT(18, 4)",
       Amount(999'999'999'999'999'999),
       "text '99999999999999.9999'"},
      {{.Type = TType::Decimal, .Size = 12, .Scale = 6}, "NUMBER TEXT(12, 6)", Text("1.500000"), "text '1.500000'"},
      {{.Type = TType::Decimal, .Size = 3, .Scale = -2}, "NUMBER TEXT(3, -2)", Text("12300"), "text '12300'"},
      {{.Type = TType::Decimal}, "NUMBER TEXT", Text("1e5"), "text '1e5'"},
      {{.Type = TType::Money}, "MONEY TEXT", Amount(Least), "text '-922337203685477.5808'"},
      {{.Type = TType::Boolean}, "BOOLEAN", True, "integer 1"},
      {{.Type = TType::String}, "TEXT", Text("007"), "text '007'"},
      {{.Type = TType::String, .Size = 20}, "VARCHAR(20)", Text("1e5"), "text '1e5'"},
      {{.Type = TType::FixedString, .Size = 4}, "PADDED CHAR(4)", Text("1   "), "text '1   '"},
      {{.Type = TType::Bytes, .Size = 4}, "BLOB(4)", Bytes, "blob X'3132'"},
      {{.Type = TType::Date}, "DATE", Text("2024-02-29"), "text '2024-02-29'"},
      {{.Type = TType::Time, .Scale = 3}, "TIME(3)", Text("23:59:59.250"), "text '23:59:59.250'"},
      {{.Type = TType::DateTime}, "TIMESTAMP", Text("2024-02-29 01:02:03"), "text '2024-02-29 01:02:03'"},
      {{.Type = TType::ZonedDateTime, .Scale = 0},
       "TIMESTAMP WITH TIME ZONE(0)",
       Text("2024-02-29 01:02:03"),
       "text '2024-02-29 01:02:03'"},
      {{.Type = TType::ZonedTime}, "TIMETZ TEXT", Text("12:00:00+02"), "text '12:00:00+02'"},
      {{.Type = TType::Interval, .Scale = 6}, "DURATION TEXT(6)", Text("1"), "text '1'"},
      {{.Type = TType::Uuid}, "UUID TEXT", Text("12345678"), "text '12345678'"},
      {{.Type = TType::Json}, "JSON TEXT", Text("1.0"), "text '1.0'"},
      {{.Type = TType::Other}, "TEXT", Text("7"), "text '7'", false},
  };
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(Case.Declared);
    TDicTableDescription Table;
    Table.Name = "D";
    Table.Fields = {Case.Field};
    Table.Fields[0].Name = "C";
    const TScript Script = Connection->Scripts().Table(Table, {}, "CREATE TABLE {table} ({items})");
    EXPECT_EQ(Script.Statements.at(0).Text,
              "CREATE TABLE \"D\" (\n  \"C\"" + (Case.Declared.empty() ? "" : " " + Case.Declared) + "\n)");
    EXPECT_EQ(Store("(C " + Case.Declared + ")", Case.Value), Case.Stored);
    const TDicField Again = Connection->Definitions().Table({"S", {}}, {}).Fields.at(0);
    const bool IsSame =
        Again.Type == Case.Field.Type && Again.Size == Case.Field.Size && Again.Scale == Case.Field.Scale;
    EXPECT_EQ(IsSame, Case.ComesBack);
  }
}

TDicWords Words(const std::string& Text, std::map<std::string, std::string, std::less<>> Parts = {}) {
  return {.Text = Text, .Parts = std::move(Parts)};
}

TEST_F(SQLiteScriptsTest, WhatOtherEnginesSayIsMadeOrNamed) {
  struct TCase {
    std::function<void(TDicTableDescription&)> Change;  // of T (A Int64, B Decimal)
    std::string Made;
    std::vector<std::string> Gaps = {};
    std::string More = "";  // further statements
  };
  const std::string A = "\"A\" BIGINT";
  const std::string B = "\"B\" NUMBER TEXT";
  const TCase Cases[] = {
      {[](auto& T) { T.Fields[1].Default = "1.50"; }, A + ", " + B + " DEFAULT '1.50'"},
      {[](auto& T) { T.Fields[0].Default = "-5", T.Fields[0].NotNull = true; }, A + " NOT NULL DEFAULT -5, " + B},
      {[](auto& T) {
         T.Fields[0].Words["postgresql"] = Words("bigint", {{"Default", "f()"}, {"Collate", "de"}});
       },
       A + ", " + B,
       {"defaults: the default of field 'A' of table 'T'", "collations: the collation of field 'A' of table 'T'"}},
      {[](auto& T) { T.Fields[0].Computed = "", T.Fields[0].Words["postgresql"].Parts["Computed"] = "f(1)"; },
       A + ", " + B,
       {"computed: the computation of field 'A' of table 'T'"}},
      {[](auto& T) { T.Fields[0].Computed = "CASE WHEN \"B\" > 1 THEN 2 END", T.Fields[0].Stored = true; },
       A + " GENERATED ALWAYS AS (CASE WHEN CAST(\"B\" AS NUMERIC) > 1 THEN 2 END) STORED, " + B},
      {[](auto& T) {
         T.Fields[0].Words["postgresql"].Lines = {"red", "blue"};
       },
       A + ", " + B,
       {"types: the allowed values of field 'A' of table 'T' (harmless)"}},
      {[](auto& T) { T.Fields[0].Type = TType::Other; },
       "\"A\" TEXT, " + B,
       {"types: the type of field 'A' of table 'T' (harmless)"}},
      {[](auto& T) { T.Fields[0].Size = 5; },
       A + ", " + B,
       {"types: the lengths and precisions of 1 field of table 'T' (harmless)"}},
      {[](auto& T) { T.Fields[0].Auto = TDicAutoKey::ByDefault; },
       A + ", " + B,
       {"defaults: the automatic numbers of field 'A' of table 'T'"}},
      {[](auto& T) {
         T.Fields[0].Auto = TDicAutoKey::Always, T.Fields[0].Counter.Start = "500";
         T.Keys = {{.Name = "k", .Primary = true, .Columns = {{"A"}}}};
       },
       "\"A\" INTEGER CONSTRAINT \"k\" PRIMARY KEY AUTOINCREMENT, " + B,
       {"keys: the refusal of rows that bring a number for the automatic field 'A' of table 'T' (harmless)"},
       "; INSERT INTO sqlite_sequence (name, seq) VALUES ('T', 499)"},
      {[](auto& T) {
         T.Fields[0].Auto = TDicAutoKey::ByDefault, T.Fields[0].Counter.Step = "-2", T.Fields[0].Counter.Start = "-1";
         T.Keys = {{.Primary = true, .Columns = {{"A"}}}};
       },
       "\"A\" INTEGER PRIMARY KEY AUTOINCREMENT, " + B,
       {"keys: the step and limits of the automatic field 'A' of table 'T'",
        "keys: the start -1 of the automatic key 'A' of table 'T'"}},
      {[](auto& T) {
         T.Fields[0].Auto = TDicAutoKey::RowNumber;
         T.Keys = {{.Primary = true, .Columns = {{"A"}}}};
       },
       "\"A\" INTEGER PRIMARY KEY, " + B},
      {[](auto& T) {
         T.Keys = {{.Primary = true, .Columns = {{"A"}}, .Deferrable = TDicDeferrable::Immediate},
                   {.Name = "u", .Columns = {{"B", false, true}}, .Words = {{"postgresql", Words("INCLUDE (a)")}}},
                   {.Name = "x", .Words = {{"postgresql", Words("EXCLUDE")}}}};
       },
       A + ", " + B + ", PRIMARY KEY (\"A\"), CONSTRAINT \"u\" UNIQUE (\"B\" DESC)",
       {"keys: the deferred check of the primary key of table 'T'",
        "keys: 'INCLUDE (a)' of the unique key 'u' of table 'T'", "keys: the unique key 'x' of table 'T'"}},
      {[](auto& T) {
         T.ForeignKeys = {{.Name = "f",
                           .Table = "O",
                           .Schema = "s",
                           .Columns = {{"A", "X"}, {"B", "Y"}},
                           .OnDelete = TDicKeyAction::SetNull,
                           .Words = {{"postgresql", Words("SET NULL (A)")}}}};
       },
       A + ", " + B +
           ", CONSTRAINT \"f\" FOREIGN KEY (\"A\", \"B\") REFERENCES \"s.O\" (\"X\", \"Y\") ON DELETE SET NULL",
       {"references: 'SET NULL (A)' of the foreign key 'f' of table 'T'"}},
      {[](auto& T) {
         T.Checks = {{.Name = "c", .Text = "\"A\" > 1"},
                     {.Text = "\"B\" > 9"},
                     {.Words = {{"postgresql", Words("f(a)")}}},
                     {.Text = "\"A\" > 2", .Words = {{"sqlite", Words("A > 02")}}}};
       },
       A + ", " + B + ", CONSTRAINT \"c\" CHECK (\"A\" > 1), CHECK (CAST(\"B\" AS NUMERIC) > 9), CHECK (A > 02)",
       {"checks: a check of table 'T'"}},
      {[](auto& T) {
         T.Indexes = {
             {.Name = "i", .Unique = true, .Columns = {{"A"}, {"ABS(\"A\")", true, true}}},
             {.Name = "j", .Columns = {{"A"}}, .Words = {{"postgresql", Words("CREATE INDEX ... WHERE")}}},
             {.Name = "k", .Columns = {{"A"}}, .Words = {{"sqlite", Words("CREATE INDEX o ON x (A) WHERE A > 0")}}}};
       },
       A + ", " + B,
       {"indexes: the index 'j' of table 'T'"},
       "; CREATE UNIQUE INDEX \"i\" ON \"T\" (\"A\", (ABS(\"A\")) DESC)"
       "; CREATE INDEX \"k\" ON \"T\" (A) WHERE A > 0"},
      {[](auto& T) {
         T.Triggers = {{.Name = "t", .Words = {{"postgresql", {.Lines = {"CREATE"}}}}}};
       },
       A + ", " + B,
       {"triggers: the trigger 't' of table 'T'"}},
      {[](auto& T) {
         T.Words["postgresql"] = Words("UNLOGGED", {{"Inherits", "p"}});
       },
       A + ", " + B,
       {"options: 'UNLOGGED' of table 'T'", "options: Inherits 'p' of table 'T'"}},
      {[](auto& T) { T.Comment = "c", T.Fields[0].Comment = "d"; },
       A + ", " + B,
       {"comments: the comments of table 'T' (harmless)"}},
  };
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(Case.Made);
    TDicTableDescription Table;
    Table.Name = "T";
    Table.Fields = {{.Name = "A", .Type = TType::Int64}, {.Name = "B", .Type = TType::Decimal}};
    Case.Change(Table);
    const TScript Script = Connection->Scripts().Table(Table, {}, Connection->Scripts().TablePattern());
    EXPECT_EQ(OneLine(Script), "CREATE TABLE \"T\" (" + Case.Made + ")" + Case.More);
    std::vector<std::string> Gaps;
    for (const TScriptGap& Gap : Script.Gaps)
      Gaps.push_back(Gap.Kind + ": " + Gap.What + (Gap.Harmless ? " (harmless)" : ""));
    EXPECT_EQ(Gaps, Case.Gaps);
    for (const TScriptStatement& Statement : Script.Statements) Run(Statement.Text);
    Run("DROP TABLE T");
  }
}

TEST_F(SQLiteScriptsTest, ACopyMayHaveAnotherName) {
  Run("CREATE TABLE T (A, B)");
  Run("CREATE INDEX I ON t (A) WHERE B = 't'");
  Run("CREATE TRIGGER G AFTER UPDATE OF A, \"on\" ON T BEGIN SELECT 't'; END");
  TDicTableDescription Table = Connection->Definitions().Table({"T", {}}, {});
  Table.Name = "O\"ther";
  Table.Schema = "s";
  Table.Indexes[0].Name = "J";
  Table.Triggers[0].Name = "H";
  EXPECT_EQ(OneLine(Connection->Scripts().Table(Table, {}, "CREATE TABLE {table} ({items})")),
            R"(CREATE TABLE "s.O""ther" ("A", "B"); CREATE INDEX "J" ON "s.O""ther" (A) WHERE B = 't'; )"
            R"(CREATE TRIGGER "H" AFTER UPDATE OF A, "on" ON "s.O""ther" BEGIN SELECT 't'; END)");
}

TEST_F(SQLiteScriptsTest, ViewsAreMadeOfOwnWordsElseOfOthers) {
  TDicViewDescription View;
  View.Name = "V";
  View.Columns = {"x"};
  View.Materialized = true;
  View.Indexes = {{.Name = "i", .Columns = {{"x"}}}};
  const TScriptWriter& Writer = Connection->Scripts();
  EXPECT_THAT(ErrorOf([&] { Writer.View(View, false); }), HasSubstr("'V'"));
  View.Words["postgresql"] = {.Parts = {{"Options", "security_barrier"}}, .Lines = {"SELECT 1", "FROM a"}};
  const TScript Foreign = Writer.View(View, false);
  EXPECT_EQ(OneLine(Foreign), "CREATE VIEW \"V\" (\"x\") AS SELECT 1\nFROM a");
  std::string Kinds;
  for (const TScriptGap& Gap : Foreign.Gaps) Kinds += Gap.Kind + (Gap.Harmless ? "! " : " ");
  EXPECT_EQ(Kinds, "views! indexes options ");
  View.Words["sqlite"].Lines = {"SELECT 2"};
  EXPECT_EQ(OneLine(Writer.View(View, false)), "CREATE VIEW \"V\" (\"x\") AS SELECT 2");
}

TEST_F(SQLiteScriptsTest, WhatIsNoTableOfItsOwnIsAGap) {
  TDicTableDescription Part, Bare;
  Part.Name = Bare.Name = "T";
  Part.Fields = {{.Name = "A"}};
  Part.Indexes = {{.Name = "I", .Columns = {{"A"}}}};
  Part.Words["postgresql"].Parts["PartitionOf"] = "whole DEFAULT";
  for (const TDicTableDescription* Table : {&Part, &Bare}) {
    const TScript Script = Connection->Scripts().Table(*Table, {}, Connection->Scripts().TablePattern());
    EXPECT_TRUE(Script.Statements.empty());
    ASSERT_EQ(Script.Gaps.size(), 1U);
    EXPECT_EQ(Script.Gaps[0].Kind + ": " + Script.Gaps[0].What, "options: all of table 'T'");
    EXPECT_FALSE(Script.Gaps[0].Harmless);
  }
}

/// What PostgreSQL computes exactly, and rounds to the type of a field.
TEST_F(SQLiteScriptsTest, ValuesThatTheOtherEngineComputesOtherwise) {
  const struct {
    TDicField Computed;
    const char* Expression;
    bool Stands;
  } Cases[] = {
      {{.Type = TType::Int32}, R"("n" * 2)", true},
      {{.Type = TType::Int32}, R"("r" * 2)", false},
      {{.Type = TType::Decimal, .Size = 5, .Scale = 1}, R"("a")", false},
      {{.Type = TType::Decimal, .Size = 5, .Scale = 2}, R"("a")", true},
      {{.Type = TType::Decimal, .Size = 9, .Scale = 3}, R"("a" * "a")", false},
      {{.Type = TType::Decimal}, R"("d" + 1)", false},
      {{.Type = TType::Decimal}, R"(COALESCE("m", 0))", false},
      {{.Type = TType::Boolean}, R"("d" > 1)", true},
      {{.Type = TType::Boolean}, R"("d" * 3 > 1)", false},
      {{.Type = TType::String}, R"(UPPER("s"))", true},
      {{.Type = TType::Boolean}, R"("c" < 'x')", false},
  };
  const TScriptWriter& Writer = Connection->Scripts();
  for (const bool WasHere : {false, true})
    for (const auto& [Computed, Expression, Stands] : Cases) {
      TDicTableDescription Table;
      Table.Name = "T";
      Table.Fields = {{.Name = "n", .Type = TType::Int64},
                      {.Name = "r", .Type = TType::Real64},
                      {.Name = "a", .Type = TType::Decimal, .Size = 10, .Scale = 2},
                      {.Name = "d", .Type = TType::Decimal},
                      {.Name = "m", .Type = TType::Money},
                      {.Name = "s", .Type = TType::String},
                      {.Name = "c", .Type = TType::String, .Words = {{"postgresql", {.Parts = {{"Collate", "de"}}}}}},
                      Computed};
      Table.Fields.back().Name = "v";
      Table.Fields.back().Computed = Expression;
      if (WasHere)
        for (TDicField& Field : Table.Fields) Field.Words["sqlite"].Text = "";
      const TScript Script = Writer.Table(Table, {}, Writer.TablePattern());
      const auto IsOfComputed = [](const TScriptGap& Gap) { return Gap.Kind == "computed" && !Gap.Harmless; };
      EXPECT_EQ(std::ranges::none_of(Script.Gaps, IsOfComputed), Stands || WasHere) << Expression;
    }
}

TEST_F(SQLiteScriptsTest, WhatCannotBeMadeIsAnError) {
  TDicTableDescription Table;
  Table.Name = "T";
  const TScriptWriter& Writer = Connection->Scripts();
  Table.Fields = {{.Name = "A"}};
  for (const char* Pattern :
       {"CREATE TABLE {table}", "({items})", "{table} ({items}) {space}", "{table} ({items}) {wo"})
    EXPECT_THAT(ErrorOf([&] { Writer.Table(Table, {}, Pattern); }), HasSubstr("its pattern")) << Pattern;
  Table.Fields[0].Default = "f(1)";
  EXPECT_THAT(ErrorOf([&] { Writer.Table(Table, {}, Writer.TablePattern()); }), HasSubstr("f(1)"));
}

}  // namespace
}  // namespace velkrund::tests
