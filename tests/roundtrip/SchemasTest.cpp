#include <algorithm>
#include <iterator>
#include <optional>

#include "tests/roundtrip/SchemaTest.h"

namespace velkrund::tests {
namespace {

/// The parameter: engine and schema, such as "sqlite/shop".
class TSchemasTest : public TSchemaTest, public testing::WithParamInterface<std::string> {
 protected:
  TSchemasTest()
      : Engine(GetParam().substr(0, GetParam().find('/'))),
        Schema(ReadSchema(GetParam().substr(Engine.size() + 1), Engine)) {}

  std::string SameResults(const TTestDatabase& Database) const {
    std::string Result;
    for (const std::string& Query : Schema.Same) Result += Query + "\n" + Database.Text(Query);
    return Result;
  }

  /// What is there now is what the source has, but for the tables of But.
  void ExpectSource(const TTestDatabase& Target, const TDatabaseState& Before, const std::set<std::string>& But) const {
    TDatabaseState Expected = Original, Now = StateOf(Target);
    for (const std::string& Table : But) Expected.Rows[Table] = Now.Rows[Table];
    Expected.Counters = Furthest(Before, Original);
    if (!But.empty()) Now.Counters = Expected.Counters;
    ExpectState(Now, Expected);
    EXPECT_EQ(SameResults(Target), SameResults(*Source));
  }

  void ExpectRefusal(const TTestDatabase& Target, const TDatabaseState& Before, const TArguments& Options) {
    const TOutcome Outcome = Run(Import(Target, Options));
    EXPECT_EQ(Outcome.ExitCode, 1) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Schema.Refused), std::string::npos) << Outcome.Errors;
    ExpectState(StateOf(Target), Before);
  }

  /// An import over what is there, with its triggers, which the report names.
  void ExpectTriggers(const TTestDatabase& Target) {
    const TDatabaseState Before = StateOf(Target);
    const TOutcome Outcome = Run(Import(Target, {"--replace"}));
    ASSERT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    ExpectSource(Target, Before, Left(Schema.Changes));
    for (const std::string& Table : Schema.Fires)
      EXPECT_TRUE(Outcome.Errors.find("trigger") != std::string::npos &&
                  Outcome.Errors.find(Table) != std::string::npos)
          << Table << ":\n"
          << Outcome.Errors;
  }

  std::set<std::string> Left(std::set<std::string> More) const {
    More.insert(Schema.LeftOut.begin(), Schema.LeftOut.end());
    return More;
  }

  const std::string Engine;
  const TSchema Schema;
  std::optional<TTestDatabase> Source;
  TDatabaseState Original;
};

TEST_P(TSchemasTest, ComesBackAsItWas) {
  Source = Made(Engine, "source", Schema, Schema.Rows);
  Original = StateOf(*Source);
  const TOutcome Exported = Export(*Source);
  for (const std::string& Table : Schema.LeftOut)
    EXPECT_NE(Exported.Errors.find(Table), std::string::npos) << Table << ":\n" << Exported.Errors;
  for (const bool Full : {false, true}) {
    SCOPED_TRACE(Full ? "over other rows" : "into empty tables");
    const TTestDatabase Target = Made(Engine, "target", Schema, Full ? Schema.OtherRows : "");
    const TDatabaseState Before = StateOf(Target);
    const TArguments Replace = Full ? TArguments{"--replace"} : TArguments();
    if (!Schema.Refused.empty()) ExpectRefusal(Target, Before, Replace);
    const TOutcome Outcome = Run(Import(Target, Replace + Schema.Options, Full ? "file" : "table"));
    ASSERT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Schema.Says), std::string::npos) << Outcome.Errors;
    ExpectSource(Target, Before, Schema.LeftOut);
    Export(Target, "G");
    EXPECT_TRUE(Read("G") == Read("F")) << "the same content gives another text\n" << Read("G");
    if (!Schema.Fires.empty()) ExpectTriggers(Target);
  }
}

std::vector<std::string> Of(const std::string& Engine) {
  std::vector<std::string> Result = SchemaNames(Engine);
  for (std::string& Name : Result) Name = Engine + "/" + Name;
  return Result;
}

std::string Readable(const testing::TestParamInfo<std::string>& Info) {
  std::string Result = Info.param;
  std::replace(Result.begin(), Result.end(), '/', '_');
  return Result;
}

INSTANTIATE_TEST_SUITE_P(Schema, TSchemasTest, testing::ValuesIn(Of("sqlite")), Readable);
INSTANTIATE_TEST_SUITE_P(SchemaOfPostgreSQL, TSchemasTest, testing::ValuesIn(Of("postgresql")), Readable);

/// Schemas that both engines have, with the same rows.
class TPostgreSQLSchemasTest : public TSchemaTest, public testing::WithParamInterface<std::string> {};

TEST_P(TPostgreSQLSchemasTest, MovesFromEngineToEngine) {
  const std::string Engines[] = {"sqlite", "postgresql"};
  const TSchema Schemas[] = {ReadSchema(GetParam(), Engines[0]), ReadSchema(GetParam(), Engines[1])};
  const TTestDatabase Sources[] = {Made(Engines[0], "source", Schemas[0], Schemas[0].Rows),
                                   Made(Engines[1], "source", Schemas[1], Schemas[1].Rows)};
  for (const int From : {0, 1}) {
    const int To = 1 - From;
    SCOPED_TRACE("to " + Engines[To]);
    Export(Sources[From]);
    const TTestDatabase Target = Made(Engines[To], "target", Schemas[To], Schemas[To].OtherRows);
    const TOutcome Outcome = Run(Import(Target, TArguments{"--replace"} + Schemas[To].Options));
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    if (Outcome.ExitCode == 0) ExpectState(StateOf(Target), StateOf(Sources[To]));
  }
}

std::vector<std::string> Common() {
  std::vector<std::string> Result;
  const std::vector<std::string> One = SchemaNames("sqlite"), Other = SchemaNames("postgresql");
  std::set_intersection(One.begin(), One.end(), Other.begin(), Other.end(), std::back_inserter(Result));
  std::erase(Result, "odd_tables");  // each engine's own oddities
  return Result;
}

INSTANTIATE_TEST_SUITE_P(Schema, TPostgreSQLSchemasTest, testing::ValuesIn(Common()), Readable);

}  // namespace
}  // namespace velkrund::tests
