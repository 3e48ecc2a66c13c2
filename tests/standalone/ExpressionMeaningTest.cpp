// A neutral expression means on every engine what was written for one of them, and both give it back.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "standalone/drivers/expressions/NeutralExpression.h"
#include "tests/standalone/SQLiteFixture.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

const char* const Rows = "(1,0,1,2,'x','X'),(2,-1,3,0,'','it''s'),(3,NULL,1,1,NULL,'x'),(4,2,2,NULL,'X','x')";

TExpressionSource Source() {
  return {.Column = [](std::string_view Name, bool) { return std::optional<std::string>(Name); },
          .IsIdleCast = [](std::string_view Type) { return Type == "text"; }};
}

TExpressionWords Words() {
  return {.Quoted = [](std::string_view Name) { return Format("\"%s\"", Name); },
          .Bytes = [](std::string_view Digits) { return Format("x'%s'", Digits); }};
}

/// Conditions of the columns a, b, c, numbers, and s, t, texts, as people write them.
class TRandomConditions {
 public:
  /// Brackets: around everything, so that engines that disagree about the order of operators agree, and all is well
  /// typed.
  TRandomConditions(unsigned Seed, bool Brackets) : FRandom(Seed), FBrackets(Brackets) {}

  std::string Condition(int Depth = 3) {
    if (Depth == 0) return Comparison(0);
    const auto Below = [&] { return Condition(Depth - 1); };
    switch (Pick(7)) {
      case 0:
        return In(Below() + " and " + Below());
      case 1:
        return In(Below() + " OR " + Below());
      case 2:
        return In("not " + Below());
      case 3:
        return In("case when " + Below() + " then " + Below() + " end");
      default:
        return Comparison(Depth - 1);
    }
  }

 private:
  std::string Comparison(int Depth) {
    const auto N = [&] { return Number(Depth); };
    const std::string Not = Pick(2) ? " NOT " : " ";
    switch (Pick(7)) {
      case 0:
        return In(N() + Not + "between " + N() + " AND " + N());
      case 1:
        return In(N() + Not + "in (" + N() + "," + N() + ")");
      case 2:
        return In(N() + Not + "in (1, " + N() + ", 2)");
      case 3:
        return In(N() + (Pick(2) ? " IS NULL" : " is not null"));
      case 4:
        return In(Text() + (Pick(2) ? " = " : " <> ") + Text());
      default:
        return In(N() + Any({"<", "<=", ">", ">=", "=", "<>", "!="}) + N());
    }
  }
  std::string Number(int Depth) {
    if (Depth <= 0) return Any({"a", "b", "c", "0", "1", "2", "-1"});
    const auto N = [&] { return Number(Depth - 1); };
    switch (Pick(8)) {
      case 0:
        return In(N() + Any({" + ", " - ", " * "}) + N());
      case 1:
        return In(N() + Any({" + ", " - ", " * "}) + N());
      case 2:
        return In("- " + N());
      case 3:
        return "abs(" + N() + ")";
      case 4:
        return "coalesce(" + N() + ", " + N() + ")";
      case 5:
        return "nullif(" + N() + "," + N() + ")";
      case 6:
        return In("CASE " + N() + " WHEN " + N() + " THEN " + N() + " ELSE " + N() + " END");
      default:
        return N();
    }
  }
  std::string Text() {
    return Any({"s", "t", "'x'", "'it''s'", "lower(s)", "UPPER(t)", "coalesce(s, t)", "nullif(s, 'x')"});
  }

  std::string In(std::string Text) { return FBrackets || Pick(3) == 0 ? "(" + std::move(Text) + ")" : Text; }
  std::string Any(const std::vector<std::string>& Words) { return Words[static_cast<std::size_t>(Pick(Words.size()))]; }
  int Pick(std::size_t Limit) { return static_cast<int>(FRandom() % Limit); }

  std::mt19937 FRandom;
  bool FBrackets;
};

/// What the conditions are for the rows: T, F or N for each.
std::string Answers(const std::string& Condition) {
  return Format("CASE WHEN (%s) THEN 'T' WHEN NOT (%s) THEN 'F' ELSE 'N' END", Condition, Condition);
}

class ExpressionMeaning : public SQLiteFixture {
 protected:
  void SetUp() override {
    Run("CREATE TABLE T (id INTEGER PRIMARY KEY, a INTEGER, b INTEGER, c INTEGER, s TEXT, t TEXT)");
    Run(Format("INSERT INTO T VALUES %s", Rows));
  }
  std::string OnSQLite(const std::string& Condition) {
    Run("DROP VIEW IF EXISTS V");
    Run(Format(
        "CREATE VIEW V AS SELECT CAST(group_concat(R, '') AS TEXT) AS R FROM (SELECT %s AS R FROM T ORDER BY id)",
        Answers(Condition)));
    return velkrund::tests::Rows(*Connection, "V").at(0).substr(3);
  }
};

TEST_F(ExpressionMeaning, TheNeutralFormIsTheSameToSQLite) {
  for (unsigned Seed = 0; Seed < 500; ++Seed) {
    const std::string Written = TRandomConditions(Seed, false).Condition();
    const auto Neutral = NeutralExpression(Written, Source());
    ASSERT_TRUE(Neutral) << Written;
    EXPECT_EQ(OnSQLite(*ExpressionIn(*Neutral, Words())), OnSQLite(Written)) << Written << "\n" << *Neutral;
    EXPECT_EQ(NeutralExpression(*Neutral, Source()), Neutral) << Written;
  }
}

TEST_F(ExpressionMeaning, PostgreSQLGivesItBackAndMeansTheSame) {
  TPostgreSQLDatabase Database;
  std::vector<std::string> Neutral;
  std::string Checks, Columns;
  for (unsigned Seed = 0; Seed < 300; ++Seed) {
    const std::string Written = TRandomConditions(Seed, true).Condition();
    Neutral.push_back(NeutralExpression(Written, Source()).value());
    const std::string Made = ExpressionIn(Neutral.back(), Words()).value();
    Checks += Format(", CONSTRAINT c%d CHECK (%s)", 1000 + static_cast<int>(Seed), Made);
    Columns += Format("%sstring_agg(%s, '' ORDER BY id)", Columns.empty() ? "" : ", ", Answers(Made));
  }
  Database.Run("CREATE TABLE t (id integer, a integer, b integer, c integer, s text, t text" + Checks + ")");
  Database.Run(
      Format("CREATE TABLE r (id integer, a integer, b integer, c integer, s text, t text); INSERT INTO r "
             "VALUES %s",
             Rows));
  const std::string Kept = Database.Rows(
      "SELECT replace(pg_get_expr(conbin, conrelid), chr(10), ' ') FROM pg_constraint WHERE contype = 'c' ORDER BY "
      "conname");
  const std::string Answered = Database.Rows(Format("SELECT %s FROM r", Columns));
  std::size_t Line = 0, Column = 0;
  for (const std::string& Condition : Neutral) {
    const std::size_t End = Kept.find('\n', Line);
    EXPECT_EQ(NeutralExpression(Kept.substr(Line, End - Line), Source()), Condition);
    Line = End + 1;
    EXPECT_EQ(Answered.substr(Column, 4), OnSQLite(Condition)) << Condition;
    Column += 5;
  }
}

}  // namespace
}  // namespace velkrund::tests
