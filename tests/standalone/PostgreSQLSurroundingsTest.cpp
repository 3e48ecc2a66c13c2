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
  }

  std::string RoleOf(const std::string& Name) const {
    return Name + "_of_" + Raw.Url().substr(Raw.Url().rfind('/') + 1);
  }
  void Run(std::string Statements) {
    for (const char* Role : {"owner", "reader", "third"})
      Statements = Replaced(Statements, std::string("$") + Role, RoleOf(Role));
    Raw.Run(Replaced(Statements, "$database", Raw.Url().substr(Raw.Url().rfind('/') + 1)) + ";RESET search_path");
  }
  /// Statements are taken one by one, between semicolons at the ends of lines.
  std::vector<std::string> Rebuild(const TTableInfo& Object, const std::string& Drop, const std::string& Make,
                                   const TRenamedFields& Renamed = {}, const std::string& Role = {}) {
    Connection = TPostgreSQLDriver().Connect(ParseDatabaseUrl(Raw.Url()).value(), {});
    if (!Role.empty()) Connection->Execute("SET ROLE " + RoleOf(Role));
    Connection->Begin(TIsolationLevel::ReadCommitted);
    const std::unique_ptr<TSurroundings> Around = Connection->Surroundings(Object, Renamed);
    Around->SetAside();
    Connection->Execute(Drop);
    Connection->Execute("DO $do$ BEGIN " + Make + "; END $do$");
    Around->PutBack();
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

}  // namespace
}  // namespace velkrund::tests
