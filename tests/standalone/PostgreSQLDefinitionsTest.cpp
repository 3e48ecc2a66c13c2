// What is described of a database of PostgreSQL and made again in an empty one is the same to us and to the engine.

#include <gmock/gmock.h>

#include <fstream>
#include <set>
#include <sstream>

#include "standalone/dictionary/Layout.h"
#include "standalone/drivers/postgresql/PostgreSQLDriver.h"
#include "tests/standalone/Support.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::unique_ptr<TConnection> Connect(const std::string& Url) {
  return TPostgreSQLDriver().Connect(ParseDatabaseUrl(Url).value(), {});
}

/// All that a database holds, as it is described.
struct TDescribedDatabase {
  std::vector<TDicTableDescription> Tables;
  std::vector<TDicGeneratorDescription> Generators;
  std::vector<TDicViewDescription> Views;
  std::vector<TDicProcedureDescription> Procedures;
};

/// As a structure keeps it.
template <typename T, typename TRead>
T ThroughTree(const T& Description, TRead Read) {
  TDSPNode Tree;
  WriteTree(Description, Tree);
  T Kept = Read(Tree);
  EXPECT_TRUE(Kept == Description) << Description.FullName();
  return Kept;
}

TDescribedDatabase Described(TConnection& Connection) {
  TDescribedDatabase Result;
  TDefinitionReader& Reader = Connection.Definitions();
  for (const TDefinedObject& Object : Reader.Objects()) switch (Object.Kind) {
      case TDefinedKind::Table:
        Result.Tables.push_back(ThroughTree(Reader.Table(Object.Table, {}), ReadTable));
        break;
      case TDefinedKind::Generator:
        Result.Generators.push_back(ThroughTree(Reader.Generator(Object.Table), ReadGenerator));
        break;
      case TDefinedKind::View:
        Result.Views.push_back(ThroughTree(Reader.View(Object.Table), ReadView));
        break;
      case TDefinedKind::ExecProcedure:
      case TDefinedKind::SelectProcedure:
        const bool Selects = Object.Kind == TDefinedKind::SelectProcedure;
        Result.Procedures.push_back(ThroughTree(Reader.Procedure(Object.Table),
                                                [=](const TDSPNode& Tree) { return ReadProcedure(Tree, Selects); }));
    }
  return Result;
}

void RunAll(TConnection& Connection, const TScript& Script) {
  for (const TScriptGap& Gap : Script.Gaps) ADD_FAILURE() << Gap.What << ", " << Gap.Why;
  for (const TScriptStatement& Statement : Script.Statements) {
    if (!Statement.Unless.empty() && Connection.Query(Statement.Unless)->Next()) continue;
    EXPECT_EQ(ErrorOf([&] { Connection.Execute(Statement.Text); }), "no error") << Statement.What << "\n"
                                                                                << Statement.Text;
  }
}

void Make(TConnection& Connection, const TDescribedDatabase& Database) {
  const TScriptWriter& Scripts = Connection.Scripts();
  constexpr TTableParts TableOnly = {true, false, false, false, false};
  constexpr TTableParts Rest = {false, true, true, true, true};
  for (const auto& Generator : Database.Generators) RunAll(Connection, Scripts.Generator(Generator, {}));
  for (const auto& Table : Database.Tables) RunAll(Connection, Scripts.Table(Table, TableOnly, Scripts.TablePattern()));
  for (const auto& Procedure : Database.Procedures) RunAll(Connection, Scripts.Procedure(Procedure, false));
  for (const auto& View : Database.Views) RunAll(Connection, Scripts.View(View, false));
  for (const auto& Table : Database.Tables) RunAll(Connection, Scripts.Table(Table, Rest, Scripts.TablePattern()));
}

template <typename T>
void ExpectSame(const std::vector<T>& Before, const std::vector<T>& After) {
  ASSERT_EQ(Before.size(), After.size());
  for (std::size_t I = 0; I < Before.size(); ++I) EXPECT_TRUE(Before[I] == After[I]) << Before[I].FullName();
}

/// What the engine itself says of its objects; the search path is empty, so that every name has its schema.
constexpr const char* EngineQuestions[] = {
    "SELECT c.oid::regclass, k.conname, k.convalidated, pg_get_constraintdef(k.oid) FROM pg_constraint k "
    "JOIN pg_class c ON c.oid = k.conrelid WHERE relnamespace::regnamespace::text NOT LIKE 'pg_%' ORDER BY 1::text, 2",
    "SELECT i.indrelid::regclass, pg_get_indexdef(i.indexrelid) FROM pg_index i JOIN pg_class c ON c.oid = "
    "i.indexrelid "
    "WHERE c.relnamespace::regnamespace::text NOT LIKE 'pg_%' ORDER BY 1::text, 2",
    "SELECT tgrelid::regclass, tgenabled, pg_get_triggerdef(oid) FROM pg_trigger WHERE NOT tgisinternal "
    "ORDER BY 1::text, 3",
    "SELECT a.attrelid::regclass, attname, format_type(atttypid, atttypmod), attnotnull, attidentity, attgenerated, "
    "attcollation::regcollation, pg_get_expr(adbin, adrelid), col_description(attrelid, attnum) FROM pg_attribute a "
    "LEFT JOIN pg_attrdef ON adrelid = attrelid AND adnum = attnum JOIN pg_class c ON c.oid = attrelid "
    "WHERE attnum > 0 AND NOT attisdropped AND relnamespace::regnamespace::text NOT LIKE 'pg_%' "
    "AND relnamespace <> 'information_schema'::regnamespace AND relkind <> 'i' "
    "ORDER BY attrelid::regclass::text, attnum",
    "SELECT oid::regclass, relkind, relpersistence, reloptions, relispartition, pg_get_expr(relpartbound, oid), "
    "CASE WHEN relkind = 'p' THEN pg_get_partkeydef(oid) END, obj_description(oid, 'pg_class') FROM pg_class "
    "WHERE relnamespace::regnamespace::text NOT LIKE 'pg_%' AND relnamespace <> 'information_schema'::regnamespace "
    "ORDER BY oid::regclass::text",
    "SELECT inhrelid::regclass, inhparent::regclass, inhseqno FROM pg_inherits ORDER BY 1::text, 3",
    "SELECT seqrelid::regclass, format_type(seqtypid, NULL), seqstart, seqincrement, seqmax, seqmin, seqcache, "
    "seqcycle, (SELECT refobjid::regclass::text || refobjsubid FROM pg_depend WHERE objid = seqrelid "
    "AND refobjsubid > 0 AND deptype IN ('a', 'i')) FROM pg_sequence ORDER BY 1::text",
    "SELECT oid::regprocedure, pg_get_functiondef(oid), obj_description(oid, 'pg_proc') FROM pg_proc "
    "WHERE pronamespace::regnamespace::text !~ '^pg_|^information' AND prokind IN ('f', 'p') ORDER BY 1::text",
    "SELECT oid::regclass, pg_get_viewdef(oid) FROM pg_class WHERE relkind IN ('v', 'm') "
    "AND relnamespace::regnamespace::text !~ '^pg_|^information' ORDER BY 1::text",
    "SELECT oid::regtype, typtype, typnotnull, typdefault, format_type(typbasetype, typtypmod), "
    "typcollation::regcollation, (SELECT array_agg(enumlabel ORDER BY enumsortorder) FROM pg_enum "
    "WHERE enumtypid = t.oid), (SELECT array_agg(conname || pg_get_constraintdef(k.oid) ORDER BY 1) "
    "FROM pg_constraint k WHERE contypid = t.oid) FROM pg_type t "
    "WHERE typnamespace::regnamespace::text !~ '^pg_|^information' ORDER BY 1::text",
};

/// The lines that one of two texts has and the other has not.
std::string Differences(const std::string& A, const std::string& B) {
  const auto Lines = [](const std::string& Text) {
    std::multiset<std::string> Result;
    std::stringstream Stream(Text);
    for (std::string Line; std::getline(Stream, Line);) Result.insert(Line);
    return Result;
  };
  const auto InA = Lines(A), InB = Lines(B);
  std::string Result;
  for (const std::string& Line : InA)
    if (!InB.contains(Line)) Result += "- " + Line + "\n";
  for (const std::string& Line : InB)
    if (!InA.contains(Line)) Result += "+ " + Line + "\n";
  return Result;
}

std::string TextOf(const std::string& Path) {
  std::ifstream File(Path);
  std::stringstream Text;
  Text << File.rdbuf();
  return Text.str();
}

TEST(PostgreSQLDefinitionsTest, WhatIsMadeAgainIsTheSame) {
  TPostgreSQLDatabase Source, Target;
  Source.Run(TextOf(VELKRUND_SOURCE_DIR "/tests/standalone/traits.postgresql.sql"));
  const auto From = Connect(Source.Url());
  const auto To = Connect(Target.Url());
  const TDescribedDatabase Before = Described(*From);
  ASSERT_GE(Before.Tables.size(), 20U);
  Make(*To, Before);
  const TDescribedDatabase After = Described(*To);
  ExpectSame(Before.Tables, After.Tables);
  ExpectSame(Before.Generators, After.Generators);
  ExpectSame(Before.Views, After.Views);
  ExpectSame(Before.Procedures, After.Procedures);
  for (TPostgreSQLDatabase* Database : {&Source, &Target}) Database->Run("SET search_path = ''");
  for (const char* Question : EngineQuestions) {
    const std::string Rows = Source.Rows(Question);
    EXPECT_NE(Rows, "") << Question;
    EXPECT_EQ(Differences(Rows, Target.Rows(Question)), "") << Question;
  }
}

/// Types of fields, and expressions that have a neutral form, or none since they cut or round.
TEST(PostgreSQLDefinitionsTest, CastsThatChangeValuesStay) {
  TPostgreSQLDatabase Raw;
  Raw.Run("CREATE TABLE base (a text, v varchar(20), n numeric, f double precision, i integer, j integer[])");
  const auto Connection = Connect(Raw.Url());
  const struct {
    std::string Words, Neutral;
  } Conditions[] = {
      {"a <> 'abc'::varchar", R"("a" <> 'abc')"},
      {"v::text <> 'abc'", R"("v" <> 'abc')"},
      {"n > i + 1", ""},
      {"n > 3", R"("n" > 3)"},
      {"a::varchar(2) <> 'x'", ""},
      {"a <> 'abc'::varchar(2)", ""},
      {"v::varchar(2) <> 'x'", ""},
      {"upper(a)::varchar(20) <> 'x'", ""},
      {"a::char(2) <> 'x'", ""},
      {"a IN ('abc'::varchar(2), 'x')", ""},
      {"a = ANY ('{abc}'::varchar(2)[])", ""},
      {"n::numeric(5,0) < 4", ""},
      {"(n + 0.5)::integer < 4", ""},
      {"abs(n)::numeric(5,1) < 4", ""},
      {"coalesce(n, 0.5)::integer < 4", ""},
      {"(CASE WHEN i > 1 THEN n END)::integer < 4", ""},
      {"(f * 2)::numeric < 4", ""},
  };
  for (const auto& [Words, Neutral] : Conditions) {
    Raw.Run("ALTER TABLE base ADD CONSTRAINT c CHECK (" + Words + ")");
    EXPECT_EQ(Connection->Definitions().Table({"base", ""}, {}).Checks.at(0).Text.value_or(""), Neutral) << Words;
    Raw.Run("ALTER TABLE base DROP CONSTRAINT c");
  }
  const struct {
    std::string Field, Neutral;
  } Defaults[] = {
      {"varchar(5) DEFAULT 'abc'::varchar", "'abc'"},
      {"varchar(5) DEFAULT 'abc'::varchar(5)", "'abc'"},
      {"varchar(2) DEFAULT 'abc'::varchar(2)", ""},
      {"varchar(5) DEFAULT 'abc'::varchar(2)", ""},
      {"text DEFAULT 'abc'::varchar(2)", ""},
      {"varchar(2)[] DEFAULT '{abc}'::varchar(2)[]", ""},
      {"text DEFAULT 'abc'::char(2)", ""},
      {"numeric DEFAULT 1.26::numeric(5,1)", ""},
      {"timestamp DEFAULT '2020-01-01 00:00:00.7'::timestamp(0)", ""},
      {"timestamptz DEFAULT '2020-01-01 00:00:00.7Z'::timestamptz(0)", ""},
      {"time DEFAULT '12:00:00.7'::time(0)", ""},
  };
  for (const auto& [Field, Neutral] : Defaults) {
    Raw.Run("CREATE TABLE one (a " + Field + ")");
    EXPECT_EQ(Connection->Definitions().Table({"one", ""}, {}).Fields.at(0).Default.value_or(""), Neutral) << Field;
    Raw.Run("DROP TABLE one");
  }
}

TEST(PostgreSQLDefinitionsTest, NamesThatTheEngineNumbersAreNoNames) {
  TPostgreSQLDatabase Raw;
  Raw.Run(R"(
      CREATE TABLE o (id integer PRIMARY KEY); CREATE TABLE t (a integer REFERENCES o REFERENCES o REFERENCES o, b integer REFERENCES o);
      ALTER TABLE t DROP CONSTRAINT t_a_fkey2, ADD CONSTRAINT t_a_fkey3 FOREIGN KEY (a) REFERENCES o;
      CREATE TABLE u (a integer REFERENCES o REFERENCES o); ALTER TABLE u DROP CONSTRAINT u_a_fkey)");
  const auto Connection = Connect(Raw.Url());
  std::vector<std::string> Names;
  for (const char* Table : {"t", "u"})
    for (const TDicForeignKey& Key : Connection->Definitions().Table({Table, ""}, {}).ForeignKeys)
      Names.push_back(Key.Name);
  EXPECT_THAT(Names, ElementsAre("", "", "t_a_fkey3", "", "u_a_fkey1"));
}

TEST(PostgreSQLDefinitionsTest, CopiesUnderAnotherNameLeaveTheOriginalAlone) {
  TPostgreSQLDatabase Raw;
  Raw.Run(R"(
      CREATE TABLE "T" (a integer PRIMARY KEY, b text UNIQUE CHECK (b <> ''), g integer GENERATED ALWAYS AS IDENTITY);
      CREATE UNIQUE INDEX "ON" ON "T" (b) WHERE a > 0;
      CREATE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END';
      CREATE TRIGGER "TRIGGER ON" BEFORE UPDATE OF b ON "T" FOR EACH ROW WHEN (NEW.b <> ' ON x ') EXECUTE FUNCTION f();
      CREATE VIEW v AS SELECT 1 AS a; CREATE TRIGGER t INSTEAD OF DELETE ON v FOR EACH ROW EXECUTE FUNCTION f())");
  const auto Connection = Connect(Raw.Url());
  const TScriptWriter& Scripts = Connection->Scripts();
  TDicTableDescription Copy = Connection->Definitions().Table({"T", ""}, {});
  Copy.Name = "C";
  Copy.Schema = "s";
  Copy.Indexes[0].Name = "ON 2";
  Copy.Triggers[0].Name = "t2";
  RunAll(*Connection, Scripts.Table(Copy, {}, Scripts.TablePattern()));
  EXPECT_TRUE(Connection->Definitions().Table({"C", "s"}, {}).Keys == Copy.Keys);
  EXPECT_EQ(Raw.Rows("SELECT pg_get_indexdef('s.\"ON 2\"'::regclass)"),
            "CREATE UNIQUE INDEX \"ON 2\" ON s.\"C\" USING btree (b) WHERE (a > 0)\n");
  EXPECT_EQ(Raw.Rows("SELECT tgrelid::regclass, tgname FROM pg_trigger WHERE NOT tgisinternal ORDER BY 2"),
            "\"T\"\tTRIGGER ON\nv\tt\ns.\"C\"\tt2\n");
  const TDicViewDescription View = Connection->Definitions().View({"v", ""});
  RunAll(*Connection, Scripts.View(View, true));
  EXPECT_TRUE(Connection->Definitions().View({"v", ""}) == View);
}

TEST(PostgreSQLDefinitionsTest, ATypeOfTheCurrentSchemaIsNoOtherOfItsName) {
  TPostgreSQLDatabase Raw;
  Raw.Run(R"(
      CREATE SCHEMA s; CREATE TYPE en AS ENUM ('a', 'b'); CREATE TYPE s.en AS ENUM ('b', 'a');
      CREATE TABLE s.t (e s.en, o en))");
  Raw.Run("ALTER DATABASE " + Raw.Rows("SELECT quote_ident(current_database())") + " SET search_path = s, public");
  const TDicTableDescription Table = Connect(Raw.Url())->Definitions().Table({"t", ""}, {});
  Raw.Run("DROP TABLE s.t; DROP TYPE s.en");
  const auto Target = Connect(Raw.Url());
  RunAll(*Target, Target->Scripts().Table(Table, {}, Target->Scripts().TablePattern()));
  EXPECT_EQ(Raw.Rows("SELECT format('%s %s', attname, atttypid::regtype) FROM pg_attribute WHERE attnum > 0 AND "
                     "attrelid = 's.t'::regclass ORDER BY 1"),
            "e s.en\no en\n");
}

TEST(PostgreSQLDefinitionsTest, SeveralAtOnceAreDescribedAsEachAlone) {
  TPostgreSQLDatabase Raw;
  Raw.Run(R"(
      CREATE SCHEMA s; CREATE TYPE colour AS ENUM ('red', 'green'); CREATE DOMAIN small AS integer CHECK (VALUE < 9);
      CREATE TABLE "{a,b}" (id serial PRIMARY KEY, "q""\ ," text UNIQUE, c colour, n small DEFAULT 3);
      CREATE INDEX ON "{a,b}" (lower("q""\ ,")); COMMENT ON COLUMN "{a,b}".c IS 'a colour';
      CREATE TABLE s.t (a integer, b integer, PRIMARY KEY (b, a), CHECK (a > b));
      CREATE TABLE t (a integer REFERENCES "{a,b}", g integer GENERATED ALWAYS AS (a * 2) STORED);
      CREATE TABLE empty (); CREATE TABLE "NULL" (x colour[]) PARTITION BY RANGE (x);
      CREATE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END';
      CREATE TRIGGER g BEFORE INSERT ON s.t FOR EACH ROW EXECUTE FUNCTION f())");
  const auto Connection = Connect(Raw.Url());
  TDefinitionReader& Definitions = Connection->Definitions();
  const std::vector<TTableInfo> Tables = {{"t", ""}, {"NULL", ""}, {"t", "s"}, {"empty", ""}, {"{a,b}", ""}, {"t", ""}};
  const auto ExpectSame = [&] {
    const std::vector<TDicTableDescription> All = Definitions.Tables(Tables, {});
    ASSERT_EQ(All.size(), Tables.size());
    for (std::size_t I = 0; I < Tables.size(); ++I)
      EXPECT_TRUE(All[I] == Definitions.Table(Tables[I], {})) << FullName(Tables[I]);
  };
  ExpectSame();
  const TDicTableDescription Before = Definitions.Table({"t", ""}, {});
  // What hides a name, or shows another schema without its name, changes nothing of what is said.
  for (const char* Statement : {"CREATE TEMPORARY TABLE \"{a,b}\" (other text)", "SET search_path = s, public"}) {
    SCOPED_TRACE(Statement);
    Connection->Execute(Statement);
    ExpectSame();
    EXPECT_TRUE(Definitions.Table({"t", ""}, {}) == Before);
    EXPECT_EQ(Definitions.Table({"t", "s"}, {}).Fields.size(), 2u);
  }
  EXPECT_THAT(ErrorOf([&] {
                Definitions.Tables({{"t", ""}, {"gone", ""}, {"empty", ""}}, {});
              }),
              HasSubstr("Cannot describe table 'gone': there is no table 'gone' in the database"));
}

TEST(PostgreSQLDefinitionsTest, WhatIsLeftBehindIsNamed) {
  TPostgreSQLDatabase Raw;
  Raw.Run(R"(
      CREATE SCHEMA s; CREATE TYPE inner_type AS ENUM ('a'); CREATE TYPE outer_type AS (i inner_type);
      CREATE TYPE span AS RANGE (subtype = date);
      CREATE TABLE t (a integer PRIMARY KEY, o outer_type, w text); CREATE TABLE s."T" (); CREATE VIEW v AS SELECT 1 AS one;
      CREATE TABLE velkrund_structures (a integer); GRANT SELECT ON velkrund_structures TO PUBLIC;
      GRANT SELECT ON t TO PUBLIC; ALTER TABLE t ENABLE ROW LEVEL SECURITY; ALTER TABLE t REPLICA IDENTITY FULL;
      CREATE RULE r AS ON DELETE TO s."T" DO INSTEAD NOTHING; COMMENT ON COLUMN v.one IS 'c';
      COMMENT ON CONSTRAINT t_pkey ON t IS 'c'; ALTER TABLE t ALTER w SET STORAGE PLAIN;
      ALTER TABLE s."T" OWNER TO pg_database_owner; CREATE STATISTICS st ON a, w FROM t; CREATE PUBLICATION p;
      CREATE AGGREGATE total (integer) (SFUNC = int4pl, STYPE = integer);
      CREATE FUNCTION f(integer) RETURNS integer LANGUAGE sql AS 'SELECT 1';
      CREATE FUNCTION f(text) RETURNS integer LANGUAGE sql AS 'SELECT 1';
      CREATE FUNCTION c(real) RETURNS real LANGUAGE internal AS 'float4abs';
      CREATE COLLATION mine (provider = libc, locale = 'C'); CREATE TEMPORARY TABLE of_session (a integer);
      CREATE FUNCTION e() RETURNS event_trigger LANGUAGE plpgsql AS 'BEGIN END';
      CREATE EVENT TRIGGER et ON sql_drop EXECUTE FUNCTION e())");
  const auto Connection = Connect(Raw.Url());
  EXPECT_THAT(
      Connection->Definitions().LeftBehind(),
      ElementsAre("routine in C 'c'", "overloaded routine 'f'", "aggregate 'total'",
                  "owner 'pg_database_owner' of table 's.T'", "grants on table 't'", "policies of table 't'",
                  "rule 'r' of table 's.T'", "storage of column 'w' of table 't'", "replica identity of table 't'",
                  "comment of column 'one' of view 'v'", "comments of keys, indexes or triggers of table 't'",
                  "collation 'mine'", "event trigger 'et'", "publication 'p'", "statistics object 'st'",
                  "type 'inner_type', which no field has by itself", "type 'span', which no field has by itself"));
  std::vector<std::string> Names;
  for (const TDefinedObject& Object : Connection->Definitions().Objects()) Names.push_back(FullName(Object.Table));
  EXPECT_THAT(Names, ElementsAre("t", "s.T", "v", "e"));
}

TEST(PostgreSQLDefinitionsTest, ValuesOfGenerators) {
  TPostgreSQLDatabase Raw;
  Raw.Run(R"(
      CREATE SEQUENCE fresh START 7 INCREMENT 3; CREATE SEQUENCE down INCREMENT -2; CREATE SEQUENCE asked;
      SELECT nextval('asked'), nextval('asked'); CREATE TABLE "T" (a serial); SELECT nextval('"T_a_seq"');
      CREATE SEQUENCE least MINVALUE -9223372036854775808 START -9223372036854775808)");
  const auto Connection = Connect(Raw.Url());
  TDefinitionReader& Reader = Connection->Definitions();
  for (const auto& [Name, Value] : {std::pair("fresh", 4), {"down", 1}, {"asked", 2}, {"T_a_seq", 1}})
    EXPECT_EQ(Reader.GeneratorValue({Name, ""}), Value) << Name;
  for (const std::string Name : {"least", "none", "T"})
    EXPECT_THAT(ErrorOf([&] { Reader.GeneratorValue({Name, ""}); }), HasSubstr("generator '" + Name + "'"));
  TDicGeneratorDescription Generator = Reader.Generator({"fresh", ""});
  Generator.Name = "again";
  RunAll(*Connection, Connection->Scripts().Generator(Generator, 100));
  EXPECT_EQ(Reader.GeneratorValue({"again", ""}), 97);
  EXPECT_EQ(Reader.Generator({"again", ""}).Counter, Generator.Counter);
}

}  // namespace
}  // namespace velkrund::tests
