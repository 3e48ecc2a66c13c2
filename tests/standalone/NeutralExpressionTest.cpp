// Expressions as every engine understands them: what people write for SQLite, and what PostgreSQL prints of the same.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "standalone/drivers/expressions/NeutralExpression.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

/// Columns a, b, c, "Odd ""one" of texts and numbers.
TExpressionSource Source() {
  return {.Column = [](std::string_view Name, bool Quoted) -> std::optional<std::string> {
            for (const std::string_view Column : {"a", "b", "c", "Odd \"one"})
              if (Quoted ? Name == Column : SameText(Name, Column)) return std::string(Column);
            return std::nullopt;
          },
          .IsIdleCast =
              [](std::string_view Type) {
                return Type == "text" || Type == "character varying" || Type == "date" || Type == "integer" ||
                       Type == "numeric";
              }};
}

TExpressionWords SQLite() {
  return {.Quoted = [](std::string_view Name) { return '[' + std::string(Name) + ']'; },
          .Bytes = [](std::string_view Digits) { return "X'" + std::string(Digits) + "'"; },
          .Now = "CURRENT_TIMESTAMP",
          .Today = "CURRENT_DATE",
          .Time = "CURRENT_TIME"};
}

TExpressionWords PostgreSQL() {
  return {
      .Quoted =
          [](std::string_view Name) { return '"' + (Name == "Odd \"one" ? "Odd \"\"one" : std::string(Name)) + '"'; },
      .True = "true",
      .False = "false",
      .Bytes = [](std::string_view Digits) { return R"('\x)" + std::string(Digits) + "'::bytea"; },
      .Now = "now()",
      .Today = "CURRENT_DATE",
      .Time = "LOCALTIME",
      .Uuid = "gen_random_uuid()"};
}

struct TCase {
  std::string SQLite;
  std::string PostgreSQL;
  std::string Neutral;
};

const std::vector<TCase> Conditions = {
    {"a>0", "(a > 0)", R"("a" > 0)"},
    {"A > -1 -- not less\n", "(a > '-1'::integer)", R"("a" > -1)"},
    {"/* x */ [a]==`b`", "(a = b)", R"("a" = "b")"},
    {R"("Odd ""one" != 1e3)", R"(("Odd ""one" <> 1000.0))", R"("Odd ""one" <> 1000.0)"},
    {"a < .5 or a >= 0x1F", "((a < 0.5) OR (a >= 31))", R"("a" < 0.5 OR "a" >= 31)"},
    {"a = 5. and a <> 007", "((a = 5.0) AND (a <> 7))", R"("a" = 5.0 AND "a" <> 7)"},
    {"a=1 and (b=2 and c=3)", "((a = 1) AND ((b = 2) AND (c = 3)))", R"("a" = 1 AND "b" = 2 AND "c" = 3)"},
    {"a=1 and (b=2 or c=3)", "((a = 1) AND ((b = 2) OR (c = 3)))", R"("a" = 1 AND ("b" = 2 OR "c" = 3))"},
    {"not a=1", "(NOT (a = 1))", R"(NOT "a" = 1)"},
    {"not (a=1 or b=2)", "(NOT ((a = 1) OR (b = 2)))", R"(NOT ("a" = 1 OR "b" = 2))"},
    {"a between 1 and 5", "((a >= 1) AND (a <= 5))", R"("a" >= 1 AND "a" <= 5)"},
    {"a not between 1 and b or c", "(((a < 1) OR (a > b)) OR c)", R"("a" < 1 OR "a" > "b" OR "c")"},
    {"a in ('x','it''s')", "(a = ANY (ARRAY['x'::text, 'it''s'::text]))", R"("a" IN ('x', 'it''s'))"},
    {"a in ('x')", "((a)::text = 'x'::text)", R"("a" = 'x')"},
    {"a not in (1,2)", "(a <> ALL (ARRAY[1, 2]))", R"("a" NOT IN (1, 2))"},
    {"a in (1, b, 2)", "((a = ANY (ARRAY[1, 2])) OR (a = b))", R"("a" IN (1, 2) OR "a" = "b")"},
    {"a not in (b, 2)", "((a <> b) AND (a <> 2))", R"("a" <> "b" AND "a" <> 2)"},
    {"a in ('x','y')", "((a)::text = ANY ((ARRAY['x'::character varying, 'y'::character varying])::text[]))",
     R"("a" IN ('x', 'y'))"},
    {"a isnull or b notnull", "((a IS NULL) OR (b IS NOT NULL))", R"("a" IS NULL OR "b" IS NOT NULL)"},
    {"a not null", "(a IS NOT NULL)", R"("a" IS NOT NULL)"},
    {"(a = 1) is null", "((a = 1) IS NULL)", R"(("a" = 1) IS NULL)"},
    {"a = null", "(a = NULL::integer)", R"("a" = NULL)"},
    {"a = true", "(a = true)", R"("a" = TRUE)"},
    {"a < b = c", "((a < b) = c)", R"(("a" < "b") = "c")"},
    {"a+b*c-1", "((a + (b * c)) - 1)", R"("a" + "b" * "c" - 1)"},
    {"a-(b-c)", "(a - (b - c))", R"("a" - ("b" - "c"))"},
    {"-(-a) * -2", "((- (- a)) * '-2'::integer)", R"(-(-"a") * -2)"},
    {"- -1 + +2", "(1 + 2)", "1 + 2"},
    {"(a + b) * c > 1.50", "(((a + b) * c) > 1.50)", R"(("a" + "b") * "c" > 1.50)"},
    {"a > 2 and a > -0.5", "((a > (2)::numeric) AND (a > '-0.5'::numeric))", R"("a" > 2 AND "a" > -0.5)"},
    {"lower(a)=Upper([b])", "(lower((a)::text) = upper((b)::text))", R"(LOWER("a") = UPPER("b"))"},
    {"ifnull(a,0)<>abs(b)", "(COALESCE(a, 0) <> abs(b))", R"(COALESCE("a", 0) <> ABS("b"))"},
    {"coalesce(nullif(a,''),b,c)", "COALESCE(NULLIF(a, ''::text), b, c)", R"(COALESCE(NULLIF("a", ''), "b", "c"))"},
    {"case when a>0 then 'p' end", "CASE\n    WHEN (a > 0) THEN 'p'::text\n    ELSE NULL::text\nEND",
     R"(CASE WHEN "a" > 0 THEN 'p' END)"},
    {"case a when 1 then b else c end=1", "(CASE a\n    WHEN 1 THEN b\n    ELSE c\nEND = 1)",
     R"(CASE "a" WHEN 1 THEN "b" ELSE "c" END = 1)"},
    {"a <> X'00fF'", R"((a <> '\x00ff'::bytea))", R"("a" <> x'00ff')"},
    {"a >= '2020-01-01'", "(a >= '2020-01-01'::date)", R"("a" >= '2020-01-01')"},
};

TEST(NeutralExpressionTest, BothEnginesSayTheSameConditionInTheirWords) {
  for (const TCase& Case : Conditions) {
    SCOPED_TRACE(Case.SQLite);
    EXPECT_EQ(NeutralExpression(Case.SQLite, Source()), Case.Neutral);
    EXPECT_EQ(NeutralExpression(Case.PostgreSQL, Source()), Case.Neutral);
    for (const TExpressionWords& Words : {SQLite(), PostgreSQL()})
      EXPECT_EQ(NeutralExpression(*ExpressionIn(Case.Neutral, Words), Source()), Case.Neutral);
  }
}

TEST(NeutralExpressionTest, WhatOneEngineAloneUnderstandsHasNoNeutralForm) {
  std::string Sum = "a";
  for (int I = 0; I < 1000; ++I) Sum += "+a";
  std::string Between = "a";
  for (int I = 0; I < 100; ++I) Between = "(" + Between + ") between 1 and 2";
  for (const std::string& Text : std::vector<std::string>{"",
                                                          "a >",
                                                          "(a",
                                                          "a)",
                                                          "a b",
                                                          "d = 1",
                                                          R"("text" = a)",
                                                          "a LIKE 'x'",
                                                          "a || b",
                                                          "a / 2",
                                                          "a % 2",
                                                          "a & 1",
                                                          "a = 'x' COLLATE NOCASE",
                                                          "a IN (SELECT 1)",
                                                          "a IN ()",
                                                          "(a, b) = (1, 2)",
                                                          "a IS 5",
                                                          "a IS TRUE",
                                                          "a = ANY (b)",
                                                          "a < ANY (ARRAY[1])",
                                                          "length(a) > 1",
                                                          "abs(a, b)",
                                                          "coalesce(a)",
                                                          "CAST(a AS TEXT)",
                                                          "(a)::bigint = 1",
                                                          "(1.5)::integer = a",
                                                          "'NaN'::numeric = a",
                                                          "(1)::text = a",
                                                          "'x'::integer = a",
                                                          "(a + 1)::text = b",
                                                          "a = B'0'",
                                                          "a = E'x'",
                                                          "a = x'0'",
                                                          "a = x'0g'",
                                                          "a = 1a",
                                                          "a = 1e400",
                                                          "a = 1_000",
                                                          "a = ?1",
                                                          "a == = b",
                                                          "a <=> b",
                                                          "a ~ 'x'",
                                                          "a.b = 1",
                                                          "+a",
                                                          "current_date > a",
                                                          "a = 'x",
                                                          "a = \"a",
                                                          "case a end",
                                                          "a = not b",
                                                          "a = 0x10000000000000000",
                                                          std::string(100000, '('),
                                                          std::string(100000, '-') + "a",
                                                          "a = " + std::string(100000, '+') + "1",
                                                          Sum,
                                                          Between})
    EXPECT_EQ(NeutralExpression(Text, Source()), std::nullopt) << Text.substr(0, 80);

  TExpressionSource True = Source();
  True.Column = [](std::string_view Name, bool) { return std::optional<std::string>(Name); };
  EXPECT_EQ(NeutralExpression("true = 1", True), std::nullopt);
  EXPECT_EQ(NeutralExpression("\"true\" = 1", True), R"("true" = 1)");
}

TEST(NeutralExpressionTest, NumbersThatAreTruthsBecomeThemAndOthersHaveNoNeutralForm) {
  TExpressionSource Numbers = Source();
  Numbers.IsBoolean = [](std::string_view Column) { return Column == "b"; };
  const std::vector<std::pair<std::string, std::optional<std::string>>> Texts = {
      {"b in (0, 1)", R"("b" IN (FALSE, TRUE))"},
      {"b in (1)", R"("b" = TRUE)"},
      {"b = 1 or not b", R"("b" = TRUE OR NOT "b")"},
      {"1 <> b", R"(TRUE <> "b")"},
      {"(a > 1) = 0", R"(("a" > 1) = FALSE)"},
      {"a in (0, 1)", R"("a" IN (0, 1))"},
      {"b between 0 and 1", R"("b" >= FALSE AND "b" <= TRUE)"},
      {"case b when 1 then a else 0 end > 0", R"(CASE "b" WHEN TRUE THEN "a" ELSE 0 END > 0)"},
      {"case when 1 then a end", R"(CASE WHEN TRUE THEN "a" END)"},
      {"b = null", R"("b" = NULL)"},
      {"b = 2", {}},
      {"b = a", {}},
      {"b in (0, 'x')", {}},
      {"a or b", {}},
      {"not a", {}},
      {"abs(a) and b", {}},
      {"case when a then 1 end", {}},
      {"a + b > 1", {}},
      {"-(a > 1) = 1", {}},
  };
  for (const auto& [Text, Neutral] : Texts) EXPECT_EQ(NeutralExpression(Text, Numbers), Neutral) << Text;
}

struct TDefault {
  TDicFieldType Type;
  std::string Text;
  std::optional<std::string> Neutral;
};

TEST(NeutralExpressionTest, DefaultsAreLiteralsOrMoments) {
  using enum TDicFieldType;
  const std::vector<TDefault> Defaults = {
      {String, "'it''s'", "'it''s'"},
      {String, "'x'::character varying", "'x'"},
      {String, "\"said so\"", "'said so'"},
      {String, "('x')", "'x'"},
      {String, "(NULL)", "NULL"},
      {String, "NULL::character varying", "NULL"},
      {String, "5", "5"},
      {String, "word", {}},
      {String, "CURRENT_USER", {}},
      {FixedString, "'x'::bpchar", "'x'"},
      {Int32, "'5'", "5"},
      {Int32, "(-5)", "-5"},
      {Int64, "'-9223372036854775808'::bigint", "-9223372036854775808"},
      {Int32, "1 + 2", {}},
      {Int32, "nextval('s'::regclass)", {}},
      {Int32, "'x'", "'x'"},
      {Real64, "1.5e-3", "0.0015"},
      {Real64, "'1e+20'::double precision", "100000000000000000000.0"},
      {Real64, "'NaN'::double precision", {}},
      {Real32, "0.1::real", "0.1"},
      {Real32, "'0.1'::real", "0.1"},
      {Real32, "'Infinity'::real", {}},
      {Decimal, "(0)::numeric", "0"},
      {Decimal, "'-0.00'", "0.00"},
      {Boolean, "0", "FALSE"},
      {Boolean, "true", "TRUE"},
      {Boolean, "2", "2"},
      {Bytes, "X'AB'", "x'ab'"},
      {Bytes, R"('\xab'::bytea)", "x'ab'"},
      {Bytes, "''::bytea", {}},
      {Bytes, R"('\x'::bytea)", "x''"},
      {Date, "'2020-01-01'::date", "'2020-01-01'"},
      {Date, "date('now')", "TODAY"},
      {Date, "CURRENT_DATE", "TODAY"},
      {Date, "CURRENT_TIMESTAMP", {}},
      {DateTime, "current_timestamp", "NOW"},
      {DateTime, "( datetime ( 'now' ) )", "NOW"},
      {DateTime, "datetime('now','localtime')", {}},
      {DateTime, "(now())::timestamp without time zone", "NOW"},
      {DateTime, "timezone('utc'::text, now())", {}},
      {DateTime, "clock_timestamp()", {}},
      {ZonedDateTime, "now()", "NOW"},
      {String, "(CURRENT_TIMESTAMP)", {}},  // each engine writes the moment in its own form
      {Int64, "CURRENT_TIMESTAMP", {}},
      {Time, "LOCALTIME", "TIME"},
      {Uuid, "gen_random_uuid()", "UUID"},
      {String, "(gen_random_uuid())::text", "UUID"},
      {Uuid, "'00000000-0000-0000-0000-000000000000'::uuid", "'00000000-0000-0000-0000-000000000000'"},
      {Json, "'{}'::jsonb", "'{}'"},
      {Other, "'{}'::integer[]", {}},
  };
  for (const auto& [Type, Text, Neutral] : Defaults) {
    SCOPED_TRACE(Text);
    EXPECT_EQ(NeutralDefault(Text, Type, {}), Neutral);
    if (!Neutral) continue;
    EXPECT_EQ(NeutralDefault(*ExpressionIn(*Neutral, PostgreSQL()), Type, {}), Neutral);
  }
}

TEST(NeutralExpressionTest, WordsThatAnEngineLacksAndTextsOfOthersAreNoNeutralOnes) {
  EXPECT_EQ(ExpressionIn("UUID", SQLite()), std::nullopt);
  EXPECT_EQ(ExpressionIn(R"("a" = x'00' AND TRUE)", SQLite()), "[a] = X'00' AND TRUE");
  EXPECT_EQ(ExpressionIn(R"("a" = x'00' AND TRUE)", PostgreSQL()), R"("a" = '\x00'::bytea AND true)");
  for (const char* const Text : {"", "a = 1", "NOW ", "\"a\" || 'x'", "'x'::text"})
    EXPECT_THROW(ExpressionIn(Text, SQLite()), EDatabaseError) << Text;
}

}  // namespace
}  // namespace velkrund::tests
