// Generators and procedures that catalogue tables keep where the engine has none.

#include <gmock/gmock.h>

#include "standalone/dictionary/CatalogueGenerators.h"
#include "standalone/dictionary/CatalogueProcedures.h"
#include "standalone/drivers/TextLines.h"
#include "tests/standalone/SQLiteFixture.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class CatalogueObjects : public SQLiteFixture {
 protected:
  CatalogueObjects() {
    Connection->Begin(TIsolationLevel::RepeatableRead);
    Run("CREATE TABLE T (A, B)");
  }
  /// The error, if any.
  std::string Create(const std::string& Body, std::vector<TDicParameter> Parameters = {}) {
    TDicProcedureDescription Procedure;
    Procedure.Name = "P";
    Procedure.Parameters = std::move(Parameters);
    Procedure.Words["sqlite"].Lines = SplitLines(Body);
    return ErrorOf([&] { TCatalogueProcedures(*Connection).Create(Procedure); });
  }
};

TEST_F(CatalogueObjects, GeneratorsGiveEachNumberOnce) {
  constexpr std::int64_t Max = INT64_MAX, Min = INT64_MIN;
  const struct {
    TDicCounter Counter;
    std::vector<std::int64_t> Numbers;
    bool Ends;  // there are no more
  } Cases[] = {
      {{}, {1, 2, 3}, false},
      {{.Start = "4", .Step = "-3"}, {}, true},  // it counts from -1 downwards
      {{.Step = "-3"}, {-1, -4}, false},
      {{.Start = "2", .Step = "3", .Max = "6"}, {2, 5}, true},
      {{.Start = "3", .Min = "1", .Max = "4", .Cycle = true}, {3, 4, 1, 2, 3}, false},
      {{.Start = "2", .Step = "-2", .Min = "1", .Max = "4", .Cycle = true}, {2, 4, 2}, false},
      {{.Start = std::to_string(Max - 1)}, {Max - 1, Max}, true},
      {{.Start = std::to_string(Min + 1), .Step = "-1"}, {Min + 1, Min}, true},
  };
  TCatalogueGenerators Generators(*Connection);
  int Number = 0;
  for (const auto& Case : Cases) {
    TDicGeneratorDescription Described;
    Described.Name = "G" + std::to_string(++Number);
    Described.Counter = Case.Counter;
    SCOPED_TRACE(Described.Name);
    if (Case.Numbers.empty()) {
      EXPECT_THAT(ErrorOf([&] { Generators.Create(Described, {}); }), HasSubstr("cannot start with 4"));
      continue;
    }
    Generators.Create(Described, {});
    EXPECT_EQ(Generators.Find(LowerCase(Described.Name)), Described) << "what is not said comes back as not said";
    for (const std::int64_t Expected : Case.Numbers) EXPECT_EQ(Generators.Next(Described), Expected);
    const std::string After = ErrorOf([&] { Generators.Next(Described); });
    EXPECT_EQ(After != "no error", Case.Ends) << After;
  }
  EXPECT_EQ(Generators.List().size(), std::size(Cases) - 1);
  EXPECT_THAT(Connection->Schema().Tables(), testing::SizeIs(1)) << "its tables are no tables of the user";
}

TEST_F(CatalogueObjects, ProceduresAreReadWhenTheyAreMade) {
  const TDicParameter A{.Name = "A"}, Odd{.Name = "B b"};
  const struct {
    std::string Body;
    std::string Says;
  } Cases[] = {
      {"", "there are none"},
      {" -- nothing\n;;", "there are none"},
      {"DELETE FROM T; DELETE FROM NOWHERE", "no such table: NOWHERE"},
      {"DELETE FROM T WHERE A = :C", "no parameter 'C'"},
      {"DELETE FROM T WHERE A = :a", "no parameter 'a'"},
      {"DELETE FROM T WHERE A = ?", "a parameter needs a name"},
      {"DELETE FROM T WHERE A = ?1", "a parameter needs a name"},
      {"DELETE FROM T; COMMIT", "can neither begin nor end"},
      {"/* x */ savepoint s", "can neither begin nor end"},
      {"ATTACH 'x' AS y", "nor reach other databases"},
      {"PRAGMA journal_mode = OFF", "nor set what a PRAGMA sets"},
      {"DELETE FROM T WHERE", "incomplete input"},
  };
  for (const auto& Case : Cases) EXPECT_THAT(Create(Case.Body, {A, Odd}), HasSubstr(Case.Says)) << Case.Body;
  EXPECT_FALSE(Connection->Schema().HasCatalogueTable("velkrund_procedures"));
  const std::string Body =
      "INSERT INTO T VALUES (:A, @A);\n\nCREATE TRIGGER R AFTER INSERT ON T BEGIN SELECT 1; SELECT 2; END;\n";
  ASSERT_EQ(Create(Body, {A, Odd}), "no error");
  EXPECT_THAT(Rows(*Connection, "T"), testing::IsEmpty()) << "it was run";
  EXPECT_EQ(ErrorOf([&] { Run("SAVEPOINT S"); }), "no error") << "of others nothing is refused";
  EXPECT_EQ(JoinedLines(TCatalogueProcedures(*Connection).Find("p")->Words.at("sqlite").Lines), Body);
}

TEST_F(CatalogueObjects, ParametersComeBack) {
  const std::vector<TDicParameter> Parameters = {
      {.Name = "A", .Type = TDicFieldType::Int64},
      {.Name = " b = 'c' ", .Mode = TDicParameterMode::InOut, .Type = TDicFieldType::Decimal, .Size = 10, .Scale = 0},
      {.Name = "", .Mode = TDicParameterMode::Out, .Type = TDicFieldType::Other, .Default = "= 'x'"},
      {.Name = "- 1", .Type = TDicFieldType::String, .Size = 3, .Default = ""},
  };
  ASSERT_EQ(Create("SELECT 1", Parameters), "no error");
  EXPECT_EQ(TCatalogueProcedures(*Connection).Find("P")->Parameters, Parameters);
  for (const char* Lines : {"=1", "x", "0 0 - -", "3 0 - - A", "0 23 - - A", "0 -1 - - A", "0 0 x - A", "\n"}) {
    Run("UPDATE velkrund_procedures SET parameters = '" + std::string(Lines) + "'");
    EXPECT_THAT(ErrorOf([&] { TCatalogueProcedures(*Connection).Find("P"); }), HasSubstr("parameter that is none"))
        << Lines;
  }
  for (TDicParameter Broken : {TDicParameter{.Name = "a\nb"}, TDicParameter{.Name = "a", .Default = "'\n'"}}) {
    Run("DELETE FROM velkrund_procedures");
    EXPECT_THAT(Create("SELECT 1", {Broken}), HasSubstr("line feed"));
  }
}

}  // namespace
}  // namespace velkrund::tests
