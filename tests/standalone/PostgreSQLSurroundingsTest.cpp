// What stands around a table or view is the same before and after it is dropped and made again.

#include <gmock/gmock.h>

#include "standalone/drivers/postgresql/PostgreSQLDriver.h"
#include "tests/standalone/Support.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

/// A line for everything that the catalogue knows of the database, but for numbers of objects.
constexpr const char* Snapshot = R"(
WITH own AS (SELECT oid FROM pg_namespace WHERE nspname !~ '^pg_' AND nspname <> 'information_schema'),
r AS (SELECT c.*, c.oid::regclass::text AS name FROM pg_class c WHERE relnamespace IN (SELECT oid FROM own) AND relkind <> 'c')
SELECT line FROM (
  SELECT concat_ws('|', 'relation', name, relkind, relowner::regrole, relpersistence, amname, spcname, relreplident,
    relrowsecurity, relforcerowsecurity, relispopulated, pg_get_expr(relpartbound, r.oid), reloftype::regtype,
    (SELECT string_agg(o, ',' ORDER BY o) FROM unnest(r.reloptions) o),
    (SELECT string_agg(o, ',' ORDER BY o) FROM pg_class w, unnest(w.reloptions) o WHERE w.oid = r.reltoastrelid),
    (SELECT string_agg(x::text, ',' ORDER BY x::text) FROM aclexplode(coalesce(relacl, acldefault(
      (CASE relkind WHEN 'S' THEN 's' ELSE 'r' END)::"char", relowner))) x), obj_description(r.oid, 'pg_class'),
    obj_description(r.reltype, 'pg_type'), CASE WHEN relkind IN ('v', 'm') THEN pg_get_viewdef(r.oid) END,
    CASE relkind WHEN 'S' THEN regexp_replace(query_to_xml(format(
      'SELECT last_value, is_called FROM %s', name), false, false, '')::text, '<[^>]*>|\s', '', 'g') END,
    CASE relkind WHEN 'S' THEN (SELECT concat_ws('|', s.seqtypid, s.seqstart, s.seqincrement, s.seqmax, s.seqcache)
      FROM pg_sequence s WHERE s.seqrelid = r.oid) END,
    CASE relkind WHEN 'S' THEN (SELECT concat_ws('.', d.refobjid::regclass, a.attname) FROM pg_depend d JOIN pg_attribute a
      ON a.attrelid = d.refobjid AND a.attnum = d.refobjsubid WHERE d.objid = r.oid AND d.deptype IN ('a', 'i')) END) AS line
  FROM r LEFT JOIN pg_am m ON m.oid = relam LEFT JOIN pg_tablespace p ON p.oid = reltablespace
  UNION ALL
  SELECT concat_ws('|', 'column', name, a.attname, format_type(atttypid, atttypmod), attnotnull, attstattarget, attstorage,
    attcompression, attoptions, pg_get_expr(d.adbin, d.adrelid),
    (SELECT string_agg(x::text, ',' ORDER BY x::text) FROM aclexplode(attacl) x), col_description(r.oid, attnum))
  FROM r JOIN pg_attribute a ON a.attrelid = r.oid AND (attnum > 0) AND NOT attisdropped
  LEFT JOIN pg_attrdef d ON d.adrelid = r.oid AND d.adnum = attnum
  UNION ALL
  SELECT concat_ws('|', 'constraint', conrelid::regclass, conname, pg_get_constraintdef(k.oid), convalidated,
    coninhcount, obj_description(k.oid, 'pg_constraint')) FROM pg_constraint k WHERE connamespace IN (SELECT oid FROM own)
  UNION ALL
  SELECT concat_ws('|', 'index', pg_get_indexdef(indexrelid), indisclustered, indisreplident)
  FROM pg_index i JOIN r ON r.oid = indrelid
  UNION ALL
  SELECT concat_ws('|', 'trigger', pg_get_triggerdef(t.oid), tgenabled, tgparentid <> 0, obj_description(t.oid, 'pg_trigger'))
  FROM pg_trigger t JOIN r ON r.oid = tgrelid WHERE NOT tgisinternal
  UNION ALL
  SELECT concat_ws('|', 'rule', pg_get_ruledef(w.oid), ev_enabled, obj_description(w.oid, 'pg_rewrite'))
  FROM pg_rewrite w JOIN r ON r.oid = ev_class
  UNION ALL
  SELECT concat_ws('|', 'policy', polrelid::regclass, polname, polpermissive, polcmd, polroles::regrole[],
    pg_get_expr(polqual, polrelid), pg_get_expr(polwithcheck, polrelid), obj_description(p.oid, 'pg_policy')) FROM pg_policy p
  UNION ALL
  SELECT concat_ws('|', 'statistics', pg_get_statisticsobjdef(s.oid), stxowner::regrole, stxstattarget,
    obj_description(s.oid, 'pg_statistic_ext')) FROM pg_statistic_ext s
  UNION ALL
  SELECT concat_ws('|', 'published', pubname, prrelid::regclass, pg_get_expr(prqual, prrelid), (SELECT string_agg(attname, ','
    ORDER BY attname) FROM pg_attribute WHERE attrelid = prrelid AND attnum = ANY (prattrs)))
  FROM pg_publication_rel JOIN pg_publication b ON b.oid = prpubid
  UNION ALL
  SELECT concat_ws('|', 'parent', inhrelid::regclass, inhparent::regclass) FROM pg_inherits
  UNION ALL
  SELECT concat_ws('|', 'function', pg_get_functiondef(f.oid), proowner::regrole, proacl, obj_description(f.oid, 'pg_proc'))
  FROM pg_proc f WHERE pronamespace IN (SELECT oid FROM own)) all_of_it ORDER BY line)";

/// A table with everything around it.
constexpr const char* Everything = R"(
CREATE SCHEMA "S.ö"; CREATE SCHEMA other; SET search_path = "S.ö", public;
GRANT ALL ON SCHEMA "S.ö" TO PUBLIC;
CREATE FUNCTION fire() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END';
CREATE TABLE "T ""x" (id integer GENERATED ALWAYS AS IDENTITY PRIMARY KEY, n serial, w integer, "A.b" text,
  c numeric(8,2) DEFAULT 1, d date, CONSTRAINT sane CHECK (c > 0), CONSTRAINT one UNIQUE (n), CONSTRAINT self FOREIGN KEY (w) REFERENCES "T ""x");
CREATE INDEX "I 1" ON "T ""x" ("A.b"); CREATE UNIQUE INDEX marked ON "T ""x" (id, n);
CREATE SEQUENCE "Own W" CACHE 5; ALTER SEQUENCE "Own W" OWNED BY "T ""x".w;
INSERT INTO "T ""x" ("A.b", w) VALUES ('one', 1), ('two', 1);
SELECT setval('"T ""x_id_seq"', 70), setval('"T ""x_n_seq"', 80), setval('"Own W"', 90, false);
COMMENT ON SEQUENCE "T ""x_id_seq" IS 'of id'; COMMENT ON SEQUENCE "Own W" IS 'of w'; COMMENT ON SEQUENCE "T ""x_n_seq" IS 'of n';
GRANT USAGE ON SEQUENCE "T ""x_n_seq" TO $reader; GRANT SELECT ON SEQUENCE "T ""x_id_seq", "Own W" TO $reader;
ALTER TABLE "T ""x" SET (fillfactor = 70, autovacuum_enabled = false, toast.autovacuum_enabled = false);
ALTER TABLE "T ""x" SET UNLOGGED; ALTER TABLE "T ""x" REPLICA IDENTITY USING INDEX marked; ALTER TABLE "T ""x" CLUSTER ON "I 1";
ALTER TABLE "T ""x" ALTER "A.b" SET STATISTICS 7, ALTER "A.b" SET STORAGE EXTERNAL, ALTER "A.b" SET COMPRESSION pglz,
  ALTER c SET (n_distinct = 5, n_distinct_inherited = -0.5), ALTER c SET STORAGE MAIN;
COMMENT ON TABLE "T ""x" IS E'it''s\\ a table'; COMMENT ON COLUMN "T ""x"."A.b" IS 'a column'; COMMENT ON INDEX "I 1" IS 'an index';
COMMENT ON CONSTRAINT sane ON "T ""x" IS 'a check'; COMMENT ON TYPE "T ""x" IS 'a type';
CREATE TRIGGER "Tr" AFTER UPDATE OF "A.b" ON "T ""x" FOR EACH ROW WHEN (OLD."A.b" IS DISTINCT FROM NEW."A.b") EXECUTE FUNCTION fire('a', 'b"');
CREATE CONSTRAINT TRIGGER late AFTER INSERT ON "T ""x" DEFERRABLE INITIALLY DEFERRED FOR EACH ROW EXECUTE FUNCTION fire();
CREATE TRIGGER structural BEFORE INSERT ON "T ""x" FOR EACH ROW EXECUTE FUNCTION fire();
CREATE TRIGGER replica BEFORE DELETE ON "T ""x" EXECUTE FUNCTION fire();
ALTER TABLE "T ""x" DISABLE TRIGGER "Tr", ENABLE ALWAYS TRIGGER late, ENABLE REPLICA TRIGGER replica;
COMMENT ON TRIGGER "Tr" ON "T ""x" IS 'a trigger';
CREATE TABLE log (what text); CREATE RULE "R" AS ON DELETE TO "T ""x" DO ALSO INSERT INTO log VALUES (OLD."A.b");
ALTER TABLE "T ""x" DISABLE RULE "R"; COMMENT ON RULE "R" ON "T ""x" IS 'a rule';
CREATE STATISTICS other."St" (dependencies, mcv) ON "A.b", c FROM "T ""x"; ALTER STATISTICS other."St" SET STATISTICS 33;
COMMENT ON STATISTICS other."St" IS 'statistics'; ALTER STATISTICS other."St" OWNER TO $reader;
CREATE VIEW v1 ("Name", doubled) WITH (security_barrier) AS SELECT "A.b", c * 2 FROM "T ""x" WHERE c <> 3;
CREATE VIEW other."V 2" AS SELECT v."Name", t.* FROM v1 v JOIN "T ""x" t ON t."A.b" = v."Name";
CREATE VIEW grouped AS SELECT id, "A.b", count(*) FROM "T ""x" GROUP BY id;
CREATE OR REPLACE VIEW whole AS SELECT t, t.id FROM "T ""x" t; CREATE VIEW checked AS SELECT id, c FROM "T ""x" WHERE c > 0 WITH LOCAL CHECK OPTION;
CREATE VIEW plain AS SELECT 1 AS one; CREATE VIEW on_plain AS SELECT * FROM plain; CREATE OR REPLACE VIEW plain AS SELECT c::integer AS one FROM "T ""x";
ALTER VIEW v1 ALTER "Name" SET DEFAULT 'none'; COMMENT ON VIEW v1 IS 'a view'; COMMENT ON COLUMN v1.doubled IS 'twice';
CREATE TRIGGER instead INSTEAD OF INSERT ON v1 FOR EACH ROW EXECUTE FUNCTION fire(); CREATE RULE onv AS ON UPDATE TO v1 DO INSTEAD SELECT "Name" FROM other."V 2";
CREATE MATERIALIZED VIEW m WITH (fillfactor = 50) AS SELECT "A.b", c FROM "T ""x"; CREATE MATERIALIZED VIEW other.empty AS SELECT * FROM m WITH NO DATA;
CREATE UNIQUE INDEX mi ON m ((lower("A.b"))) WHERE c > 0; ALTER INDEX mi ALTER COLUMN 1 SET STATISTICS 9; COMMENT ON INDEX mi IS 'of m';
ALTER MATERIALIZED VIEW m ALTER c SET STATISTICS 3; COMMENT ON MATERIALIZED VIEW m IS 'filled'; CREATE INDEX mc ON m (c); ALTER TABLE m CLUSTER ON mc;
CREATE STATISTICS of_m ON "A.b", c FROM m;
CREATE VIEW next AS SELECT nextval('"Own W"') AS w, nextval('"T ""x_n_seq"') AS n;
CREATE UNLOGGED TABLE child (a integer REFERENCES "T ""x" ON DELETE CASCADE DEFERRABLE INITIALLY DEFERRED, b integer DEFAULT nextval('"T ""x_n_seq"'),
  e integer, CONSTRAINT "Fk" FOREIGN KEY (e) REFERENCES "T ""x" (n) MATCH FULL);
ALTER TABLE child ADD CONSTRAINT unchecked FOREIGN KEY (b) REFERENCES "T ""x" NOT VALID; COMMENT ON CONSTRAINT "Fk" ON child IS 'a key';
CREATE POLICY seen ON child FOR SELECT TO $reader USING (a IN (SELECT id FROM "T ""x"));
COMMENT ON POLICY seen ON child IS 'of others'; CREATE RULE to_t AS ON INSERT TO log DO ALSO UPDATE "T ""x" SET c = 1;
CREATE CONSTRAINT TRIGGER from_t AFTER INSERT ON child FROM "T ""x" FOR EACH ROW EXECUTE FUNCTION fire(); COMMENT ON TRIGGER from_t ON child IS 'from';
CREATE FUNCTION body(a integer DEFAULT 3) RETURNS bigint STABLE SECURITY DEFINER SET work_mem = '8MB' BEGIN ATOMIC SELECT count(*) FROM v1, "T ""x" WHERE c > a; END;
CREATE PROCEDURE doing() BEGIN ATOMIC DELETE FROM "T ""x" WHERE "A.b" = ''; INSERT INTO log VALUES (1); END;
REVOKE ALL ON FUNCTION body FROM PUBLIC; COMMENT ON FUNCTION body IS 'a body'; CREATE VIEW calls AS SELECT body(1), id FROM "T ""x";
CREATE POLICY mine ON "T ""x" AS RESTRICTIVE FOR UPDATE TO $reader, $owner USING (c > 0) WITH CHECK ("A.b" <> '' AND id IN (SELECT id FROM grouped));
CREATE POLICY everybody ON "T ""x" USING (true); COMMENT ON POLICY mine ON "T ""x" IS 'a policy';
ALTER TABLE "T ""x" ENABLE ROW LEVEL SECURITY, FORCE ROW LEVEL SECURITY;
GRANT ALL ON SCHEMA other TO PUBLIC; ALTER TABLE "T ""x" OWNER TO $owner; ALTER VIEW v1 OWNER TO $reader; ALTER TABLE m OWNER TO $owner;
GRANT SELECT ON "T ""x" TO $reader WITH GRANT OPTION; GRANT INSERT ("A.b"), UPDATE (c, "A.b") ON "T ""x" TO $reader; REVOKE DELETE ON "T ""x" FROM $owner;
GRANT SELECT ON v1, m TO $owner, PUBLIC; GRANT SELECT ("Name") ON v1 TO $third; SET ROLE $reader; GRANT SELECT ON "T ""x" TO $third;
GRANT SELECT ("A.b") ON "T ""x" TO PUBLIC; RESET ROLE; ALTER DEFAULT PRIVILEGES GRANT ALL ON TABLES TO $third;
REFRESH MATERIALIZED VIEW m;
ALTER DEFAULT PRIVILEGES GRANT ALL ON SEQUENCES TO PUBLIC; ALTER DATABASE $database SET search_path = other, "S.ö")";

/// What a structure says of it; what it says of nothing is to come from what was there.
constexpr const char* Made = R"(
CREATE SEQUENCE "S.ö"."T ""x_n_seq" AS integer;
CREATE TABLE "S.ö"."T ""x" (id integer GENERATED ALWAYS AS IDENTITY PRIMARY KEY, n integer NOT NULL DEFAULT nextval('"S.ö"."T ""x_n_seq"'),
  w integer, "A.b" text, c numeric(8,2) DEFAULT 1, d date, CONSTRAINT sane CHECK (c > 0), CONSTRAINT one UNIQUE (n));
ALTER SEQUENCE "S.ö"."T ""x_n_seq" OWNED BY "S.ö"."T ""x".n;
INSERT INTO "S.ö"."T ""x" OVERRIDING SYSTEM VALUE VALUES (1, 1, 1, 'one', 1), (2, 2, 1, 'two', 1);
CREATE INDEX "I 1" ON "S.ö"."T ""x" ("A.b"); CREATE UNIQUE INDEX marked ON "S.ö"."T ""x" (id, n);
ALTER TABLE "S.ö"."T ""x" ADD CONSTRAINT self FOREIGN KEY (w) REFERENCES "S.ö"."T ""x";
CREATE TRIGGER structural BEFORE INSERT ON "S.ö"."T ""x" FOR EACH ROW EXECUTE FUNCTION "S.ö".fire())";

std::string Replaced(std::string Text, const std::string& What, const std::string& With) {
  for (std::size_t At = 0; (At = Text.find(What, At)) != std::string::npos; At += With.size())
    Text.replace(At, What.size(), With);
  return Text;
}

class PostgreSQLSurroundingsTest : public testing::Test {
 protected:
  PostgreSQLSurroundingsTest() {
    for (const char* Role : {"owner", "reader", "third"}) Raw.Run("CREATE ROLE " + RoleOf(Role));
    Raw.Run("SET allow_in_place_tablespaces = on");
    Raw.Run("CREATE TABLESPACE " + RoleOf("place") + " LOCATION ''");
  }

  std::string RoleOf(const std::string& Name) const {
    return Name + "_of_" + Raw.Url().substr(Raw.Url().rfind('/') + 1);
  }
  void Run(std::string Statements) {
    for (const char* Role : {"owner", "reader", "third"})
      Statements = Replaced(Statements, std::string("$") + Role, RoleOf(Role));
    Statements = Replaced(Statements, "$place", RoleOf("place"));
    Raw.Run(Replaced(Statements, "$database", Raw.Url().substr(Raw.Url().rfind('/') + 1)) + ";RESET search_path");
  }
  /// What was remarked on the way. Role: who does it; empty: a superuser.
  std::vector<std::string> Rebuild(const TTableInfo& Object, const std::string& Drop, const std::string& Make,
                                   const TRenamedFields& Renamed = {}, const std::string& Role = {}) {
    Connection = TPostgreSQLDriver().Connect(ParseDatabaseUrl(Raw.Url()).value(), {});
    if (!Role.empty()) Connection->Execute("SET ROLE " + RoleOf(Role));
    Connection->Begin(TIsolationLevel::ReadCommitted);
    const std::unique_ptr<TSurroundings> Around = Connection->Surroundings(Object, Renamed);
    Around->SetAside();
    Connection->Execute(Drop);
    Connection->Execute("DO $do$ BEGIN " + Make + "; END $do$");
    Around->PutBack(TPutBack::Whole);
    Connection->Commit();
    return Around->Remarks();
  }

  TPostgreSQLDatabase Raw;
  std::unique_ptr<TConnection> Connection;
};

TEST_F(PostgreSQLSurroundingsTest, EverythingAroundATableIsThereAgain) {
  Run(Everything);
  const std::string Before = Raw.Rows(Snapshot);
  EXPECT_THAT(Rebuild({.Name = "T \"x", .Schema = "S.ö"}, R"(DROP TABLE "S.ö"."T ""x")", Made),
              ElementsAre(HasSubstr("m was filled anew")));
  EXPECT_EQ(Raw.Rows(Snapshot), Before);
}

/// Statements of Make stand for what a structure says. Expected: what the engine makes of it, of the changes alone that
/// were asked for.
struct TRebuildCase {
  std::string Name, Around, Object, Drop, Make;
  TRenamedFields Renamed = {};
  std::string Expected = {};
};

const TRebuildCase RebuildCases[] = {
    {"a part of a table",
     "CREATE FUNCTION fire() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END';"
     "CREATE TABLE p (a integer, b text, UNIQUE (a)) PARTITION BY RANGE (a); CREATE INDEX pb ON p (b);"
     "CREATE TABLE t PARTITION OF p FOR VALUES FROM (1) TO (9); CREATE TABLE u PARTITION OF p DEFAULT;"
     "CREATE TRIGGER down AFTER INSERT ON p FOR EACH ROW EXECUTE FUNCTION fire(); ALTER TABLE t DISABLE TRIGGER down;"
     "CREATE VIEW v AS SELECT * FROM t; CREATE VIEW w AS SELECT p.a, v.b FROM p JOIN v USING (a);"
     "INSERT INTO p VALUES (1, 'one'), (10, 'ten'); GRANT SELECT ON t TO $reader",
     "t", "DROP TABLE t",
     "CREATE TABLE t (a integer, b text, CONSTRAINT t_a_key UNIQUE (a)); CREATE INDEX t_b_idx ON t (b);"
     "INSERT INTO t VALUES (1, 'one')"},
    {"an heir of two, of which the structure knows one",
     "CREATE TABLE p (a integer CHECK (a > 0)); CREATE TABLE \"P 2\" (b integer);"
     "CREATE TABLE t (a integer, b integer, CONSTRAINT p_a_check CHECK (a > 0));"
     "ALTER TABLE t INHERIT p; ALTER TABLE t INHERIT \"P 2\"; CREATE VIEW v AS SELECT * FROM p",
     "t", "DROP TABLE t",
     "CREATE TABLE t (a integer, b integer, CONSTRAINT p_a_check CHECK (a > 0)); ALTER TABLE t INHERIT p"},
    {"a published table in another place",
     "CREATE TABLE t (a integer PRIMARY KEY, b text, c text); CREATE PUBLICATION few FOR TABLE t (a, c) WHERE (a > 5);"
     "CREATE PUBLICATION whole FOR TABLE t; CREATE PUBLICATION of_all FOR ALL TABLES; ALTER TABLE t REPLICA IDENTITY "
     "FULL;"
     "CREATE INDEX i ON t (b, (a + 1)); ALTER INDEX i ALTER COLUMN 2 SET STATISTICS 4; ALTER TABLE t SET TABLESPACE "
     "$place; ALTER INDEX i SET TABLESPACE $place;"
     "CREATE MATERIALIZED VIEW m TABLESPACE $place AS SELECT * FROM t; CREATE INDEX mi ON m (a) TABLESPACE $place",
     "t", "DROP TABLE t", "CREATE TABLE t (a integer PRIMARY KEY, b text, c text); CREATE INDEX i ON t (b, (a + 1))"},
    {"a table that parts of another one refer to by names of their own",
     "CREATE TABLE t (a integer PRIMARY KEY); INSERT INTO t VALUES (1);"
     "CREATE TABLE q (a integer CONSTRAINT own REFERENCES t); CREATE TABLE p (a integer REFERENCES t) PARTITION BY "
     "LIST (a);"
     "ALTER TABLE p ATTACH PARTITION q FOR VALUES IN (1); CREATE TABLE r PARTITION OF p DEFAULT; INSERT INTO p VALUES "
     "(1)",
     "t", "DROP TABLE t", "CREATE TABLE t (a integer PRIMARY KEY); INSERT INTO t VALUES (1)"},
    {"a partitioned table without parts",
     "CREATE TYPE k AS (a integer, b text); CREATE TABLE t OF k PARTITION BY LIST (a); COMMENT ON TABLE t IS 'of k';"
     "CREATE VIEW v AS SELECT a FROM t; GRANT SELECT (a) ON t TO PUBLIC",
     "t", "DROP TABLE t", "CREATE TABLE t (a integer, b text) PARTITION BY LIST (a)"},
    {"a view",
     "CREATE TABLE t (a integer PRIMARY KEY, b text); CREATE VIEW v WITH (security_barrier) AS SELECT a, b FROM t;"
     "CREATE FUNCTION fire() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END';"
     "CREATE TRIGGER g INSTEAD OF DELETE ON v FOR EACH ROW EXECUTE FUNCTION fire(); ALTER VIEW v ALTER b SET DEFAULT "
     "'x';"
     "CREATE RULE r AS ON INSERT TO v DO INSTEAD INSERT INTO t VALUES (NEW.a, NEW.b); CREATE VIEW w AS SELECT b FROM v;"
     "ALTER VIEW v OWNER TO $owner; GRANT SELECT ON v TO $reader; GRANT UPDATE (b) ON v TO $third; COMMENT ON COLUMN "
     "v.a IS 'a'",
     "v", "DROP VIEW v", "CREATE VIEW v AS SELECT a, b FROM t"},
    {"a materialized view in a place of its own",
     "CREATE TABLE t (a integer); CREATE MATERIALIZED VIEW v TABLESPACE $place AS SELECT a FROM t", "v",
     "DROP MATERIALIZED VIEW v", "CREATE MATERIALIZED VIEW v AS SELECT a FROM t"},
    {"fields that change their names, and one that goes",
     "CREATE TABLE t (a serial, b integer, d text, e integer GENERATED BY DEFAULT AS IDENTITY);"
     "CREATE TABLE log (a integer); SELECT setval('t_a_seq', 7), setval('t_e_seq', 8); GRANT USAGE ON t_a_seq TO "
     "$reader;"
     "CREATE FUNCTION fire() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END';"
     "CREATE VIEW v AS SELECT t.*, b + a AS sum FROM t; CREATE POLICY l ON t USING (a > b);"
     "CREATE TRIGGER g AFTER UPDATE OF a, b ON t FOR EACH ROW WHEN (OLD.a > NEW.b) EXECUTE FUNCTION fire();"
     "CREATE RULE r AS ON INSERT TO t DO ALSO INSERT INTO log VALUES (NEW.a); CREATE STATISTICS s ON a, b FROM t;"
     "CREATE FUNCTION f() RETURNS SETOF integer BEGIN ATOMIC SELECT a FROM t WHERE b > 0; END;"
     "CREATE PUBLICATION few FOR TABLE t (a, b) WHERE (b > 5); ALTER TABLE t REPLICA IDENTITY FULL;"
     "ALTER TABLE t ADD gone text; COMMENT ON COLUMN t.gone IS 'gone'; GRANT SELECT (gone), UPDATE (a) ON t TO $reader;"
     "COMMENT ON COLUMN t.a IS 'of a'; ALTER TABLE t ALTER b SET STATISTICS 5, ALTER gone SET STATISTICS 6;"
     "ALTER TABLE t ALTER d SET STORAGE EXTERNAL; CREATE STATISTICS of_gone ON a, gone FROM t",
     "t",
     "DROP TABLE t",
     "CREATE SEQUENCE \"New\" AS integer; CREATE TABLE t (b integer NOT NULL DEFAULT nextval('\"New\"'), a integer, "
     "gone text,"
     "e integer GENERATED BY DEFAULT AS IDENTITY); ALTER SEQUENCE \"New\" OWNED BY t.b",
     {{"a", "b"}, {"b", "a"}, {"d", "gone"}},
     "ALTER TABLE t DROP gone; ALTER TABLE t RENAME a TO x; ALTER TABLE t RENAME b TO a; ALTER TABLE t RENAME x TO b;"
     "ALTER TABLE t RENAME d TO gone; ALTER SEQUENCE t_a_seq RENAME TO \"New\"; ALTER TABLE t ALTER gone SET STORAGE "
     "EXTENDED;"
     "ALTER TABLE t ALTER gone SET STORAGE EXTERNAL"},
    {"fields that go with their sequences, settings and rights, or are of another type",
     "CREATE TABLE t (a serial, b text, c bigserial); ALTER TABLE t ALTER b SET STORAGE EXTERNAL; GRANT SELECT (a), "
     "UPDATE (b) ON t TO $reader;"
     "COMMENT ON COLUMN t.a IS 'a'; SELECT setval('t_c_seq', 9)",
     "t",
     "DROP TABLE t",
     "CREATE TABLE t (b integer, c integer NOT NULL)",
     {},
     "ALTER TABLE t DROP a; ALTER TABLE t ALTER b TYPE integer USING 1, ALTER b SET STORAGE PLAIN, ALTER c DROP "
     "DEFAULT, ALTER c TYPE integer"},
};

TEST_F(PostgreSQLSurroundingsTest, NothingButWhatWasAskedForChanges) {
  for (const TRebuildCase& Case : RebuildCases) {
    SCOPED_TRACE(Case.Name);
    Raw.Run("DROP SCHEMA public CASCADE; CREATE SCHEMA public; GRANT ALL ON SCHEMA public TO PUBLIC");
    Run(Case.Around);
    Raw.Run("BEGIN;" + Case.Expected);
    const std::string Expected = Raw.Rows(Snapshot);
    Raw.Run("ROLLBACK");
    const TTableKind Kind = Case.Object == "v" ? TTableKind::View : TTableKind::Table;
    EXPECT_EQ(ErrorOf([&] { Rebuild({Case.Object, "", Kind}, Case.Drop, Case.Make, Case.Renamed); }), "no error");
    EXPECT_EQ(Raw.Rows(Snapshot), Expected);
    Raw.Run("DROP PUBLICATION IF EXISTS few, whole, of_all");
  }
}

struct TRefusalCase {
  std::string Around;
  std::vector<std::string> Words;  // of the error
  std::string Role = {};           // who tries it; empty: a superuser
  TTableKind Kind = TTableKind::Table;
};

const TRefusalCase RefusalCases[] = {
    {"CREATE FUNCTION f(t, integer) RETURNS integer LANGUAGE sql AS 'SELECT 1'; CREATE FUNCTION g() RETURNS SETOF t "
     "LANGUAGE sql AS 'SELECT * FROM t'",
     {"function public.f(public.t,integer) uses the row type of table public.t; drop it first",
      "function public.g() uses the row type"}},
    {"CREATE TABLE other (r t, l t[]); CREATE DOMAIN whole AS t; CREATE TYPE held AS (r t)",
     {"column r of table public.other uses", "type public.whole uses", "column r of composite type public.held uses"}},
    {"CREATE VIEW v AS SELECT a FROM t; CREATE FUNCTION f() RETURNS SETOF v LANGUAGE sql AS 'SELECT * FROM v'",
     {"function public.f() uses the row type of view public.v"}},
    {"CREATE TABLE other (a integer CHECK (a <> 't'::regclass::oid::integer))",
     {"constraint other_a_check on table public.other uses"}},
    {"CREATE TABLE heir () INHERITS (t); CREATE TABLE p (a integer) PARTITION BY LIST (a)",
     {"public.heir is a part of it, or inherits from it"}},
    {"DROP TABLE t; CREATE TABLE p (a integer PRIMARY KEY) PARTITION BY LIST (a); CREATE TABLE t PARTITION OF p "
     "DEFAULT; CREATE TABLE o (a integer REFERENCES p)",
     {"refers to the table that it is a part of"}},
    {"DROP TABLE t; CREATE FOREIGN DATA WRAPPER w; CREATE SERVER s FOREIGN DATA WRAPPER w; CREATE FOREIGN TABLE t (a "
     "integer) SERVER s",
     {"it is neither a table nor a view"},
     "",
     TTableKind::Foreign},
    {"CREATE VIEW v AS SELECT a FROM t; ALTER EXTENSION plpgsql ADD VIEW v",
     {"view public.v belongs to the extension plpgsql"}},
    {"ALTER EXTENSION plpgsql ADD TABLE t", {"table public.t belongs to the extension plpgsql"}},
    {"CREATE INDEX i ON t (a); ALTER INDEX i DEPENDS ON EXTENSION plpgsql",
     {"index public.i would be dropped with the extension plpgsql"}},
    {"CREATE FUNCTION watch() RETURNS event_trigger LANGUAGE plpgsql AS 'BEGIN END'; CREATE EVENT TRIGGER \"E\" ON "
     "sql_drop EXECUTE FUNCTION watch()",
     {"the event trigger \"E\" watches"}},
    {"CREATE TEMP VIEW v AS SELECT a FROM t", {"v is temporary; drop it first"}},
    {"CREATE VIEW v AS SELECT 1 AS a; CREATE VIEW w AS SELECT a FROM v; CREATE OR REPLACE VIEW v AS SELECT t.a FROM w, "
     "t",
     {"show each other in a circle"}},
    {"CREATE TABLE o (a integer CONSTRAINT k REFERENCES t); ALTER TABLE o DISABLE TRIGGER ALL",
     {"the foreign key k of public.o is switched off"}},
    {"CREATE TABLE o (a integer PRIMARY KEY); ALTER TABLE t ADD CONSTRAINT k FOREIGN KEY (a) REFERENCES o; ALTER TABLE "
     "t DISABLE TRIGGER ALL",
     {"the foreign key k of public.t is switched off"}},
    {"GRANT ALL ON SCHEMA public TO PUBLIC", {"permission denied for table t"}, "owner"},
    {"ALTER TABLE t OWNER TO $owner; CREATE VIEW v AS SELECT a FROM t; CREATE TABLE o (a integer REFERENCES t); CREATE "
     "PUBLICATION few FOR TABLE t",
     {"only its owner postgres may change view public.v", "may change constraint o_a_fkey on table public.o",
      "may change publication few", "CREATE on the schema public is missing"},
     "owner"},
    {"ALTER TABLE t OWNER TO $owner; GRANT SELECT ON t TO $reader WITH GRANT OPTION; SET ROLE $reader; GRANT SELECT ON "
     "t TO $third; RESET ROLE",
     {"only who may become that role can grant them again"},
     "owner"},
};

TEST_F(PostgreSQLSurroundingsTest, WhatCouldNotBePutBackIsNamedBeforeAnythingIsChanged) {
  for (const TRefusalCase& Case : RefusalCases) {
    SCOPED_TRACE(Case.Around);
    Raw.Run(
        "DROP SCHEMA public CASCADE; CREATE SCHEMA public; GRANT USAGE ON SCHEMA public TO PUBLIC; CREATE TABLE t (a "
        "integer PRIMARY KEY)");
    Run(Case.Around);
    const std::string Before = Raw.Rows(Snapshot);
    const std::string Error = ErrorOf([&] {
      Rebuild({"t", "", Case.Kind}, "DROP TABLE t CASCADE", "NULL", {}, Case.Role);
    });
    EXPECT_THAT(Error, testing::StartsWith("EDatabaseError: Cannot make the table 't' anew: "));
    for (const std::string& Words : Case.Words) EXPECT_THAT(Error, HasSubstr(Words));
    // What the engine itself has refused cannot be committed.
    ErrorOf([&] { Connection->Commit(); });
    EXPECT_EQ(Raw.Rows(Snapshot), Before);
    Raw.Run("DROP EVENT TRIGGER IF EXISTS \"E\"; DROP PUBLICATION IF EXISTS few");
    for (const char* Member : {"TABLE t", "VIEW v"})
      Raw.Run("DO $do$ BEGIN ALTER EXTENSION plpgsql DROP " + std::string(Member) +
              "; EXCEPTION WHEN OTHERS THEN NULL; END $do$");
  }
}

TEST_F(PostgreSQLSurroundingsTest, WhatDoesNotFitAnyMoreIsNamedAndUndone) {
  const std::pair<std::string, std::vector<std::string>> Cases[] = {
      {"CREATE VIEW v AS SELECT a, gone AS b FROM t", {"Cannot put back the view public.v", "gone does not exist"}},
      {"CREATE POLICY p ON t USING (gone > 0)", {"policy p on table public.t", "\"gone\" does not exist"}},
      {"CREATE TABLE o (a integer CONSTRAINT k REFERENCES t (gone))", {"constraint k on table public.o", "\"gone\""}},
      {"CREATE TABLE o (a integer CONSTRAINT k REFERENCES t); INSERT INTO t VALUES (5); INSERT INTO o VALUES (5)",
       {"constraint k on table public.o", "(a)=(5) is not present"}},
      {"CREATE SEQUENCE s; ALTER SEQUENCE s OWNED BY t.gone; CREATE TABLE o (a integer DEFAULT nextval('s'))",
       {"Cannot put back", "\"public.s\" does not exist"}},
  };
  for (const auto& [Around, Words] : Cases) {
    SCOPED_TRACE(Around);
    Raw.Run(
        "DROP SCHEMA public CASCADE; CREATE SCHEMA public; CREATE TABLE t (a integer PRIMARY KEY, gone integer "
        "UNIQUE)");
    Run(Around);
    const std::string Before = Raw.Rows(Snapshot);
    const std::string Error = ErrorOf([&] {
      Rebuild({"t", ""}, "DROP TABLE t", "CREATE TABLE t (a integer PRIMARY KEY)");
    });
    for (const std::string& Word : Words) EXPECT_THAT(Error, HasSubstr(Word));
    Connection->Rollback();
    EXPECT_EQ(Raw.Rows(Snapshot), Before);
  }
}

TEST_F(PostgreSQLSurroundingsTest, StatisticsThatGoWithAFieldAreRemarked) {
  Raw.Run("CREATE TABLE t (a integer, gone integer); CREATE STATISTICS s ON a, gone FROM t");
  EXPECT_THAT(Rebuild({"t", ""}, "DROP TABLE t", "CREATE TABLE t (a integer)"),
              ElementsAre(AllOf(HasSubstr("statistics object public.s"), HasSubstr("public.t.gone"))));
}

TEST_F(PostgreSQLSurroundingsTest, AnOwnerWithoutOtherRightsRehearsesAndRebuildsUnderPolicies) {
  Run("GRANT ALL ON SCHEMA public TO $owner; CREATE TABLE t (a serial PRIMARY KEY, b text); INSERT INTO t (b) VALUES "
      "('one');"
      "CREATE VIEW v AS SELECT b FROM t; CREATE MATERIALIZED VIEW m AS SELECT b FROM t; CREATE POLICY p ON t USING (b "
      "<> 'hidden');"
      "ALTER TABLE t OWNER TO $owner; ALTER TABLE v OWNER TO $owner; ALTER TABLE m OWNER TO $owner;"
      "ALTER TABLE t ENABLE ROW LEVEL SECURITY, FORCE ROW LEVEL SECURITY; GRANT SELECT ON t, v TO $reader WITH GRANT "
      "OPTION");
  const std::string Before = Raw.Rows(Snapshot);
  Connection = TPostgreSQLDriver().Connect(ParseDatabaseUrl(Raw.Url()).value(), {});
  Connection->Execute("SET ROLE " + RoleOf("owner"));
  Connection->Begin(TIsolationLevel::Serializable);
  for (const bool IsRehearsal : {true, false}) {
    Connection->SetSavepoint(1);
    const std::unique_ptr<TSurroundings> Around = Connection->Surroundings({"t", ""}, {});
    Around->SetAside();
    Connection->Execute("CREATE TEMP TABLE kept AS SELECT * FROM t");
    Connection->Execute("DROP TABLE t");
    Connection->Execute("CREATE SEQUENCE t_a_seq AS integer");
    Connection->Execute("CREATE TABLE t (a integer PRIMARY KEY DEFAULT nextval('t_a_seq'), b text)");
    Connection->Execute("ALTER SEQUENCE t_a_seq OWNED BY t.a");
    if (!IsRehearsal) Connection->Execute("INSERT INTO t SELECT * FROM kept");
    Connection->Execute("DROP TABLE kept");
    Around->PutBack(TPutBack::Whole);
    IsRehearsal ? Connection->RollbackToSavepoint(1) : Connection->ReleaseSavepoint(1);
  }
  Connection->Commit();
  EXPECT_EQ(Raw.Rows(Snapshot), Before);
  EXPECT_EQ(Raw.Rows("SELECT m.b, v.b, nextval('t_a_seq') FROM m, v"), "one\tone\t2\n");
}

}  // namespace
}  // namespace velkrund::tests
