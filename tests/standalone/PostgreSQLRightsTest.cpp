// What a role may and may not, and what others who may less can make it do.

#include <gmock/gmock.h>

#include "standalone/drivers/postgresql/PostgreSQLDriver.h"
#include "standalone/tables/DriverTable.h"
#include "tests/standalone/Support.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class PostgreSQLRightsTest : public testing::Test {
 protected:
  /// As the superuser, or as a role with the rights that Grants give it, with %s for its name.
  void Connect(const std::string& Grants = {}) {
    std::string Url = Raw.Url();
    if (!Grants.empty()) {
      const std::string Role = "clerk_of_" + Url.substr(Url.rfind('/') + 1);
      Raw.Run("CREATE ROLE " + Role + " LOGIN; " + Format(Grants, Role, Role));
      Url.replace(Url.find("postgres@"), 8, Role);
    }
    TConnectOptions Options;
    Options.Warn = [this](const std::string& Text) { Warnings.push_back(Text); };
    Connection = TPostgreSQLDriver().Connect(ParseDatabaseUrl(Url).value(), Options);
  }
  std::string Append(const std::string& Name, std::int64_t Key) {
    return ErrorOf([&] {
      TDriverTable Table(*Connection, Connection->Schema().FindTable(Name).value(), true);
      Table.SetCanRecreateAutoSequence(true);
      Table.BeginAppend();
      Table.Record().Fields(0).Buffer().SetInteger(Key);
      Table.AppendRecord();
      Table.EndAppend();
    });
  }

  TPostgreSQLDatabase Raw;
  std::unique_ptr<TConnection> Connection;
  std::vector<std::string> Warnings;
};

TEST_F(PostgreSQLRightsTest, WhatOthersPlantOnTheSearchPathIsNeverRun) {
  Raw.Run(
      "CREATE TABLE t (a serial PRIMARY KEY, m money, n numeric(10,2), i interval);"
      "CREATE TABLE p (a integer) PARTITION BY LIST (a); CREATE TABLE q PARTITION OF p DEFAULT;"
      "INSERT INTO t VALUES (1, 2, 3, '4 days')");
  // Operators for all pairs of types that the catalogue is made of, types of the same names, and a view.
  Raw.Run(R"(
      DO $do$ DECLARE l text; r text; o text; BEGIN
        FOREACH l IN ARRAY ARRAY['oid', 'name', '"char"', 'text', 'boolean', 'smallint', 'integer', 'bigint', 'regclass',
                                 'regproc', 'money', 'bit'] LOOP
          FOREACH r IN ARRAY ARRAY['oid', 'name', '"char"', 'text', 'boolean', 'smallint', 'integer', 'bigint',
                                   'regclass', 'regproc', 'money', 'bit'] LOOP
            EXECUTE format('CREATE FUNCTION public.evil(%s, %s) RETURNS boolean LANGUAGE plpgsql AS '
                           '$f$BEGIN RAISE EXCEPTION ''planted''; END$f$', l, r);
            FOREACH o IN ARRAY ARRAY['=', '<>', '<', '>', '<=', '>=', '||', '~', '!~', '~~', '+', '-'] LOOP
              EXECUTE format('CREATE OPERATOR public.%s (LEFTARG = %s, RIGHTARG = %s, FUNCTION = public.evil)', o, l, r);
            END LOOP;
          END LOOP;
        END LOOP;
      END $do$;
      CREATE VIEW public.velkrund_structures AS SELECT public.evil(1, 1);
      CREATE TYPE public.text AS (planted integer); CREATE TYPE public.oid AS (planted integer);
      CREATE TYPE public.regclass AS (planted integer); CREATE TYPE public.money AS (planted integer))");
  for (const char* Path : {"public", "public, pg_catalog"}) {
    SCOPED_TRACE(Path);
    Raw.Run("DO $do$ BEGIN EXECUTE pg_catalog.format($q$ALTER DATABASE %I SET search_path = " + std::string(Path) +
            "$q$, pg_catalog.current_database()); END $do$");
    Connect();
    EXPECT_EQ(Connection->Schema().Tables().size(), 2U);
    EXPECT_FALSE(Connection->Schema().FindTable("none"));
    EXPECT_FALSE(Connection->Schema().HasCatalogueTable("velkrund_structures"));
    EXPECT_GT(Connection->Schema().TableBytes(*Connection->Schema().FindTable("P")), -1);
    EXPECT_THAT(Rows(*Connection, "t"), ElementsAre("5 1|20 2|20 3|10 4 days"));
    TDefinitionReader& Definitions = Connection->Definitions();
    EXPECT_EQ(Definitions.Objects().size(), 3U);
    EXPECT_EQ(Definitions.Table({"t", ""}, {}).Fields.size(), 4U);
    EXPECT_EQ(Definitions.Table({"q", ""}, {}).Words.at("postgresql").Parts.at("PartitionOf"), "p DEFAULT");
    EXPECT_GT(Definitions.GeneratorValue({"t_a_seq", ""}), -1);
    EXPECT_THAT(Definitions.LeftBehind(), testing::Contains("overloaded routine 'evil'"));
    Connection->Begin(TIsolationLevel::RepeatableRead);
    EXPECT_EQ(Append("t", 7), "no error");
    EXPECT_EQ(Connection->Schema().RowCount(*Connection->Schema().FindTable("t")), 2);
    Connection->Rollback();
  }
}

TEST_F(PostgreSQLRightsTest, RowsThatAPolicyHidesAreAnErrorInBothDirections) {
  Raw.Run(
      "CREATE TABLE t AS SELECT generate_series(1, 10) AS a; ALTER TABLE t ENABLE ROW LEVEL SECURITY;"
      "CREATE POLICY few ON t USING (a <= 3)");
  Connect("GRANT ALL ON t TO %s");
  for (const std::string& Error : {ErrorOf([&] { Rows(*Connection, "t"); }), Append("t", 1),
                                   ErrorOf([&] { Connection->Execute("DELETE FROM t"); })})
    EXPECT_THAT(Error, testing::AllOf(HasSubstr("\"t\""), HasSubstr("BYPASSRLS")));
  EXPECT_EQ(Raw.Rows("SELECT count(*) FROM t"), "10\n");
}

TEST_F(PostgreSQLRightsTest, MissingRightsOnASequenceAreNamed) {
  Raw.Run("CREATE TABLE t (a serial)");
  Connect("GRANT ALL ON t TO %s; GRANT USAGE ON SEQUENCE t_a_seq TO %s");
  EXPECT_EQ(Append("t", 7), "no error");
  EXPECT_THAT(Warnings, testing::ElementsAre(AllOf(HasSubstr("t.a has reached 7"),
                                                   HasSubstr("GRANT SELECT, UPDATE ON SEQUENCE t_a_seq"))));
}

}  // namespace
}  // namespace velkrund::tests
