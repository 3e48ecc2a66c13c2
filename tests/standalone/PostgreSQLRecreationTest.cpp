// What hangs on generators, views and functions of PostgreSQL that are created again.

#include <gmock/gmock.h>

#include "standalone/dictionary/DicDatabase.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "standalone/drivers/TextLines.h"
#include "standalone/structures/StructureStore.h"
#include "tests/standalone/PostgreSQLFixture.h"
#include "tests/standalone/Support.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"
#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class PostgreSQLRecreationTest : public testing::Test {
 protected:
  PostgreSQLRecreationTest() { Raw.Run("CREATE ROLE " + Role + "; CREATE TABLE \"T\" (\"A\" integer, \"B\" integer)"); }

  void Run(const std::string& Statements) { Raw.Run(Statements); }
  TDicProcedureDescription Function(const std::string& Body, TDicFieldType Result, const std::string& Argument = "N") {
    TDicProcedureDescription Made;
    Made.Name = "F";
    Made.Selects = true;
    Made.Language = "sql";
    Made.Parameters = {{.Name = Argument, .Type = TDicFieldType::Int32}};
    Made.Result = {{.Name = "R", .Type = Result}};
    Made.Words["postgresql"].Lines = SplitLines(Body);
    return Made;
  }
  std::string Recreate(const TDicProcedureDescription& Function) {
    StoreDescription(Url, Function);
    return ErrorOf([&] { Objects.CreateSelectStoredProc("F", true); });
  }

  TPostgreSQLDatabase Raw;
  const std::string Url = Raw.Url();
  const std::string Role = "keeper_of_" + Url.substr(Url.rfind('/') + 1);
  TStandaloneManager Manager{TConfiguration()};
  TStructureStore Structures{Manager.Databases()};
  const TServiceGuard<TApplicationManager> ManagerGuard{&Manager};
  const TServiceGuard<TDSPContainer> StructuresGuard{&Structures};
  TGapBook Gaps;
  TStandaloneDicDatabases Databases{Manager, Gaps};
  TStandaloneDicDatabase& Objects = Databases.Database(Url);
};

TEST_F(PostgreSQLRecreationTest, GeneratorsAndViewsKeepOwnerRightsAndComments) {
  Run("CREATE SEQUENCE \"G\"; CREATE VIEW \"V\" AS SELECT \"A\" FROM \"T\"; CREATE VIEW \"ON V\" AS SELECT * FROM "
      "\"V\"; "
      "COMMENT ON SEQUENCE \"G\" IS 'counts'; COMMENT ON VIEW \"V\" IS 'shows'; GRANT USAGE ON SEQUENCE \"G\" TO " +
      Role + "; GRANT SELECT ON \"V\" TO " + Role + "; ALTER VIEW \"V\" OWNER TO " + Role +
      "; GRANT SELECT ON \"T\" TO " + Role + "; ALTER SEQUENCE \"G\" OWNER TO " + Role);
  const auto State = [&] {
    return Raw.Rows(
        "SELECT relname, relowner::regrole, relacl, obj_description(oid, 'pg_class') FROM pg_class "
        "WHERE relname IN ('G', 'V', 'ON V') ORDER BY 1");
  };
  const std::string Before = State();
  TDicGeneratorDescription Generator;
  Generator.Name = "g";
  Generator.Counter = {.Step = "3", .Max = "900"};
  Generator.Words["postgresql"].Text = "AS smallint";
  StoreDescription(Url, Generator);
  TDicViewDescription View;
  View.Name = "V";
  View.Words["postgresql"].Lines = {"SELECT \"A\", \"B\" FROM \"T\""};
  StoreDescription(Url, View);
  EXPECT_EQ(Raw.Rows("SELECT nextval('\"G\"'), nextval('\"G\"')"), "1\t2\n");
  Objects.CreateGenerator("G", std::nullopt, true);
  Objects.CreateView("V", true, true);
  EXPECT_EQ(State(), Before);
  EXPECT_EQ(Raw.Rows("SELECT nextval('\"G\"'), max_value, data_type FROM pg_sequences"), "5\t900\tsmallint\n");
  EXPECT_EQ(Raw.Rows("SELECT count(*) FROM pg_attribute WHERE attrelid = '\"V\"'::regclass"), "2\n");
}

TEST_F(PostgreSQLRecreationTest, ViewsKeepTheirTriggersAndChangeThoseThatAreOthers) {
  Run("CREATE VIEW \"V\" AS SELECT \"A\" FROM \"T\"; CREATE FUNCTION fire() RETURNS trigger LANGUAGE plpgsql AS "
      "'BEGIN RETURN NEW; END'; CREATE TRIGGER same INSTEAD OF DELETE ON \"V\" FOR EACH ROW EXECUTE FUNCTION fire(); "
      "CREATE TRIGGER other INSTEAD OF INSERT ON \"V\" FOR EACH ROW EXECUTE FUNCTION fire(); "
      "COMMENT ON TRIGGER same ON \"V\" IS 'commented'");
  const auto Triggers = [&] {
    return Raw.Rows(
        "SELECT tgname, tgtype & 4 <> 0, tgtype & 8 <> 0, obj_description(oid, 'pg_trigger') IS NOT NULL "
        "FROM pg_trigger WHERE tgrelid = '\"V\"'::regclass ORDER BY 1");
  };
  EXPECT_EQ(Triggers(), "other\tt\tf\tf\nsame\tf\tt\tt\n");
  TDicViewDescription View = Connect(Url)->Definitions().View({"V", "", TTableKind::View});
  for (TDicTrigger& Trigger : View.Triggers)
    if (Trigger.Name == "other")
      Trigger.Words["postgresql"].Lines = {
          "CREATE TRIGGER other INSTEAD OF DELETE ON \"V\" FOR EACH ROW EXECUTE FUNCTION fire()"};
  StoreDescription(Url, View);
  Objects.CreateView("V", true, true);
  EXPECT_EQ(Triggers(), "other\tf\tt\tf\nsame\tf\tt\tt\n");
}

TEST_F(PostgreSQLRecreationTest, FunctionsKeepWhatBelongsToThem) {
  ASSERT_EQ(Recreate(Function("SELECT 1", TDicFieldType::Int32)), "no error");
  Run("COMMENT ON FUNCTION \"F\" IS 'it''s'; REVOKE ALL ON FUNCTION \"F\" FROM PUBLIC; GRANT EXECUTE ON FUNCTION \"F\" "
      "TO " +
      Role +
      " WITH GRANT OPTION; ALTER FUNCTION \"F\" SET search_path TO \"$user\", 'a b'; ALTER FUNCTION \"F\" SET work_mem "
      "TO '1MB'; ALTER FUNCTION \"F\" OWNER TO " +
      Role + "; CREATE ROLE second_" + Role + "; GRANT EXECUTE ON FUNCTION \"F\" TO second_" + Role);
  const auto State = [&] {
    return Raw.Rows(
        "SELECT proowner::regrole, array(SELECT a::text FROM unnest(proacl) a ORDER BY 1), array(SELECT c FROM "
        "unnest(proconfig) c ORDER BY 1), obj_description(oid, 'pg_proc') FROM pg_proc WHERE proname = 'F'");
  };
  const std::string Before = State();
  EXPECT_THAT(Before, AllOf(HasSubstr("a b"), HasSubstr("work_mem=1MB"), HasSubstr("it's")));
  const struct {
    const char* Body;
    TDicFieldType Result;
    const char* Argument;
    const char* Answer;
  } Cases[] = {
      {"SELECT 2", TDicFieldType::Int32, "N", "2\n"},        // redefined
      {"SELECT 'x'", TDicFieldType::String, "N", "x\n"},     // another result: made anew
      {"SELECT 'y'", TDicFieldType::String, "OTHER", "y\n"}  // as a parameter of another name
  };
  for (const auto& Case : Cases) {
    ASSERT_EQ(Recreate(Function(Case.Body, Case.Result, Case.Argument)), "no error");
    EXPECT_EQ(State(), Before) << Case.Body;
    EXPECT_EQ(Raw.Rows("SELECT * FROM \"F\"(1)"), Case.Answer);
  }
  TDicProcedureDescription More = Function("SELECT 'z'", TDicFieldType::String);
  More.Parameters.push_back({.Name = "M", .Type = TDicFieldType::Int32});
  ASSERT_EQ(Recreate(More), "no error");
  EXPECT_EQ(State(), Before) << "one alone, not another one beside it";
}

TEST_F(PostgreSQLRecreationTest, WhatDependsOnAFunctionIsNamed) {
  ASSERT_EQ(Recreate(Function("SELECT 1", TDicFieldType::Int32)), "no error");
  Run("CREATE VIEW \"NEEDS F\" AS SELECT * FROM \"F\"(1)");
  EXPECT_EQ(Recreate(Function("SELECT 2", TDicFieldType::Int32)), "no error");
  EXPECT_THAT(
      Recreate(Function("SELECT 'x'", TDicFieldType::String)),
      AllOf(HasSubstr("nor can the one that is there be dropped first"), HasSubstr("view \"NEEDS F\" depends")));
  EXPECT_EQ(Raw.Rows("SELECT * FROM \"NEEDS F\""), "2\n");
}

TEST_F(PostgreSQLRecreationTest, RightsThatNobodyCanGiveBackAreNamed) {
  ASSERT_EQ(Recreate(Function("SELECT 1", TDicFieldType::Int32)), "no error");
  Run("GRANT EXECUTE ON FUNCTION \"F\" TO " + Role + " WITH GRANT OPTION; CREATE ROLE second_" + Role + "; SET ROLE " +
      Role + "; GRANT EXECUTE ON FUNCTION \"F\" TO second_" + Role);
  EXPECT_THAT(Recreate(Function("SELECT 'x'", TDicFieldType::String)), HasSubstr("granted by others than its owner"));
  EXPECT_EQ(Raw.Rows("SELECT * FROM \"F\"(1)"), "1\n");
}

}  // namespace
}  // namespace velkrund::tests
