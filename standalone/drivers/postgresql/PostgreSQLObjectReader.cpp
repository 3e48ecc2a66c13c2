#include <algorithm>

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLDefinitionReader.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Relations and routines of users, neither the engine's, nor temporary, nor an extension's: name, schema
/// unless it is the current one ($1), kind, whether it returns rows, has heirs; what hinders its description. What
/// others inherit from, are parts of or select from comes before them; views may go round in a circle.
constexpr const char* ObjectsStatement =
    "WITH RECURSIVE n AS (SELECT s.oid, s.nspname, CASE WHEN s.nspname <> $1::pg_catalog.text THEN s.nspname END AS "
    "shown "
    "FROM pg_catalog.pg_namespace s WHERE NOT pg_catalog.starts_with(s.nspname, 'pg_') "
    "AND s.nspname <> 'information_schema'), "
    "e AS (SELECT d.classid, d.objid FROM pg_catalog.pg_depend d WHERE d.deptype = 'e'), "
    "uses AS (SELECT i.inhrelid AS heir, i.inhparent AS parent FROM pg_catalog.pg_inherits i UNION "
    "SELECT w.ev_class, d.refobjid FROM pg_catalog.pg_rewrite w JOIN pg_catalog.pg_depend d ON d.objid = w.oid "
    "AND d.classid = 'pg_catalog.pg_rewrite'::pg_catalog.regclass::pg_catalog.oid "
    "AND d.refclassid = 'pg_catalog.pg_class'::pg_catalog.regclass::pg_catalog.oid AND d.refobjid <> w.ev_class "
    "JOIN pg_catalog.pg_class c ON c.oid = d.refobjid AND c.relkind = ANY ('{v,m}')), "
    "up AS (SELECT u.heir, 1 AS depth FROM uses u UNION SELECT u.heir, pg_catalog.int4pl(up.depth, 1) FROM up "
    "JOIN uses u ON u.parent = up.heir WHERE NOT (up.depth > 200)), "
    "deep AS (SELECT up.heir, pg_catalog.max(up.depth) AS depth FROM up GROUP BY up.heir) "
    "SELECT c.relname AS name, n.shown, CASE WHEN c.relkind = 'S' THEN 'generator' "
    "WHEN c.relkind = ANY ('{r,p}') THEN 'table' ELSE 'view' END AS kind, false AS selects, "
    "c.relhassubclass AND c.relkind = 'r' AS heirs, "
    "CASE WHEN c.relkind = 'f' THEN 'foreign table' ELSE '' END AS hindrance, coalesce(deep.depth, 0) AS depth, "
    "(SELECT CASE WHEN pn.nspname = $1::pg_catalog.text THEN p.relname::pg_catalog.text "
    "ELSE pg_catalog.concat(pn.nspname, '.', p.relname) END FROM pg_catalog.pg_inherits i "
    "JOIN pg_catalog.pg_class p ON p.oid = i.inhparent JOIN pg_catalog.pg_namespace pn ON pn.oid = p.relnamespace "
    "WHERE c.relispartition AND i.inhrelid = c.oid) AS part_of "
    "FROM pg_catalog.pg_class c JOIN n ON n.oid = c.relnamespace LEFT JOIN deep ON deep.heir = c.oid "
    "WHERE c.relkind = ANY ('{r,p,f,v,m,S}') "
    "AND NOT EXISTS (SELECT FROM e WHERE e.classid = 'pg_catalog.pg_class'::pg_catalog.regclass::pg_catalog.oid "
    "AND e.objid = c.oid) AND NOT EXISTS (SELECT FROM pg_catalog.pg_depend o WHERE c.relkind = 'S' "
    "AND o.classid = 'pg_catalog.pg_class'::pg_catalog.regclass::pg_catalog.oid AND o.objid = c.oid "
    "AND o.refobjsubid <> 0 AND o.deptype = ANY ('{a,i}')) "
    "UNION ALL SELECT p.proname, n.shown, 'routine', p.proretset, false, CASE WHEN p.prokind = 'a' THEN 'aggregate' "
    "WHEN p.prokind = 'w' THEN 'window function' WHEN l.lanname = ANY ('{c,internal}') THEN 'routine in C' "
    "WHEN EXISTS (SELECT FROM pg_catalog.pg_proc q WHERE q.proname = p.proname AND q.pronamespace = p.pronamespace "
    "AND q.oid <> p.oid) THEN 'overloaded routine' ELSE '' END, 0, NULL "
    "FROM pg_catalog.pg_proc p JOIN n ON n.oid = p.pronamespace JOIN pg_catalog.pg_language l ON l.oid = p.prolang "
    "WHERE NOT EXISTS (SELECT FROM e WHERE e.classid = 'pg_catalog.pg_proc'::pg_catalog.regclass::pg_catalog.oid "
    "AND e.objid = p.oid) AND NOT EXISTS (SELECT FROM pg_catalog.pg_depend i WHERE i.deptype = 'i' "
    "AND i.classid = 'pg_catalog.pg_proc'::pg_catalog.regclass::pg_catalog.oid AND i.objid = p.oid) ORDER BY depth, "
    "shown NULLS FIRST, name";

struct TFound {
  TDefinedObject Object;
  std::string Hindrance;
};

std::vector<TFound> Find(TPostgreSQLSession& Session, const char* What) {
  const TPostgreSQLResult Rows =
      Session.Query(What, CatalogueStatement(ObjectsStatement), {Session.Dialect().CurrentSchema().c_str()});
  std::vector<TFound> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    TDefinedObject Object{TDefinedKind::Table, {Rows.Copy(Row, 0), Rows.Copy(Row, 1)}};
    const std::string_view Kind = Rows.Text(Row, 2);
    if (Kind == "generator") Object.Kind = TDefinedKind::Generator;
    if (Kind == "routine")
      Object.Kind = Rows.Boolean(Row, 3) ? TDefinedKind::SelectProcedure : TDefinedKind::ExecProcedure;
    if (Kind == "view") {
      Object.Kind = TDefinedKind::View;
      Object.Table.Kind = TTableKind::View;
    }
    Object.Table.HasHeirs = Rows.Boolean(Row, 4);
    Object.PartOf = Rows.Copy(Row, 7);
    if (!IsCatalogueTable(Object.Table.Name)) Result.push_back({std::move(Object), Rows.Copy(Row, 5)});
  }
  return Result;
}

/// What belongs to objects and stands in no description: the words, and the names of what they are of.
constexpr const char* BesideStatement =
    "WITH n AS (SELECT s.oid, CASE WHEN s.nspname <> $1::pg_catalog.text THEN pg_catalog.concat(s.nspname, '.') "
    "ELSE '' END AS shown FROM pg_catalog.pg_namespace s WHERE NOT pg_catalog.starts_with(s.nspname, 'pg_') "
    "AND s.nspname <> 'information_schema'), "
    "r AS (SELECT c.*, pg_catalog.concat(CASE WHEN c.relkind = 'S' THEN 'generator' WHEN c.relkind = ANY ('{v,m}') "
    "THEN 'view' ELSE 'table' END, ' ''', n.shown, c.relname, '''') AS what FROM pg_catalog.pg_class c "
    "JOIN n ON n.oid = c.relnamespace WHERE c.relkind = ANY ('{r,p,v,m,S,f}') "
    "AND pg_catalog.lower(c.relname) <> ALL "
    "('{velkrund_catalogue,velkrund_structures,velkrund_generators,velkrund_procedures}')), "
    "p AS (SELECT f.*, pg_catalog.concat('procedure ''', n.shown, f.proname, '''') AS what FROM pg_catalog.pg_proc f "
    "JOIN n ON n.oid = f.pronamespace WHERE NOT EXISTS (SELECT FROM pg_catalog.pg_depend d "
    "WHERE d.deptype = 'e' AND d.objid = f.oid "
    "AND d.classid = 'pg_catalog.pg_proc'::pg_catalog.regclass::pg_catalog.oid)) "
    "SELECT 1, pg_catalog.concat('owner ''', pg_catalog.pg_get_userbyid(r.relowner), ''' of ', r.what) FROM r "
    "WHERE pg_catalog.pg_get_userbyid(r.relowner) <> current_user "
    "UNION ALL SELECT 1, pg_catalog.concat('owner ''', pg_catalog.pg_get_userbyid(p.proowner), ''' of ', p.what) "
    "FROM p WHERE pg_catalog.pg_get_userbyid(p.proowner) <> current_user "
    "UNION ALL SELECT 2, pg_catalog.concat('grants on ', r.what) FROM r WHERE r.relacl IS NOT NULL "
    "UNION ALL SELECT 2, pg_catalog.concat('grants on columns of ', r.what) FROM r WHERE EXISTS (SELECT FROM "
    "pg_catalog.pg_attribute a WHERE a.attrelid = r.oid AND a.attacl IS NOT NULL) "
    "UNION ALL SELECT 2, pg_catalog.concat('grants on ', p.what) FROM p WHERE p.proacl IS NOT NULL "
    "UNION ALL SELECT 3, pg_catalog.concat('policies of ', r.what) FROM r WHERE r.relrowsecurity "
    "UNION ALL SELECT 4, pg_catalog.concat('rule ''', w.rulename, ''' of ', r.what) FROM pg_catalog.pg_rewrite w "
    "JOIN r ON r.oid = w.ev_class WHERE w.rulename <> '_RETURN' "
    "UNION ALL SELECT 5, pg_catalog.concat('tablespace ''', s.spcname, ''' of ', r.what) FROM r "
    "JOIN pg_catalog.pg_tablespace s ON s.oid = r.reltablespace "
    "UNION ALL SELECT 6, pg_catalog.concat('storage of column ''', a.attname, ''' of ', r.what) FROM r "
    "JOIN pg_catalog.pg_attribute a ON a.attrelid = r.oid AND a.attnum > 0 AND NOT a.attisdropped "
    "JOIN pg_catalog.pg_type t ON t.oid = a.atttypid WHERE r.relkind = ANY ('{r,p}') "
    "AND (a.attstorage <> t.typstorage OR a.attoptions IS NOT NULL OR a.attstattarget > 0) "
    "UNION ALL SELECT 7, pg_catalog.concat('replica identity of ', r.what) FROM r WHERE r.relkind = ANY ('{r,p}') "
    "AND r.relreplident <> 'd' "
    "UNION ALL SELECT 8, pg_catalog.concat('comment of column ''', a.attname, ''' of ', r.what) FROM r "
    "JOIN pg_catalog.pg_description d ON d.objoid = r.oid AND d.objsubid <> 0 "
    "AND d.classoid = 'pg_catalog.pg_class'::pg_catalog.regclass::pg_catalog.oid JOIN pg_catalog.pg_attribute a "
    "ON a.attrelid = r.oid AND a.attnum::pg_catalog.int4 = d.objsubid WHERE r.relkind = ANY ('{v,m}') "
    "UNION ALL SELECT 8, pg_catalog.concat('default of column ''', a.attname, ''' of ', r.what) FROM r "
    "JOIN pg_catalog.pg_attribute a ON a.attrelid = r.oid AND a.atthasdef WHERE r.relkind = 'v' "
    "UNION ALL SELECT 8, pg_catalog.concat('comments of keys, indexes or triggers of ', r.what) FROM r "
    "WHERE EXISTS (SELECT FROM pg_catalog.pg_description d WHERE d.objoid = ANY (ARRAY(SELECT k.oid FROM "
    "pg_catalog.pg_constraint k WHERE k.conrelid = r.oid UNION ALL SELECT i.indexrelid FROM pg_catalog.pg_index i "
    "WHERE i.indrelid = r.oid UNION ALL SELECT g.oid FROM pg_catalog.pg_trigger g WHERE g.tgrelid = r.oid))) "
    "UNION ALL SELECT 8, pg_catalog.concat('type ''', pg_catalog.format_type(r.reloftype, NULL), ''' of ', r.what) "
    "FROM r WHERE r.reloftype <> '0' "
    "UNION ALL SELECT 9, pg_catalog.concat('type ''', n.shown, t.typname, ''', which no field has by itself') "
    "FROM pg_catalog.pg_type t JOIN n ON n.oid = t.typnamespace LEFT JOIN pg_catalog.pg_class c ON c.oid = t.typrelid "
    "WHERE (t.typtype = ANY ('{e,d,r}') OR t.typtype = 'c' AND c.relkind = 'c') AND NOT EXISTS (SELECT FROM "
    "pg_catalog.pg_depend d WHERE d.deptype = 'e' AND d.objid = t.oid "
    "AND d.classid = 'pg_catalog.pg_type'::pg_catalog.regclass::pg_catalog.oid) "
    "AND NOT EXISTS (SELECT FROM pg_catalog.pg_attribute a JOIN pg_catalog.pg_class h ON h.oid = a.attrelid "
    "AND h.relkind = ANY ('{r,p}') LEFT JOIN pg_catalog.pg_type o ON o.oid = a.atttypid WHERE NOT a.attisdropped "
    "AND (a.atttypid = t.oid OR a.atttypid = t.typarray OR t.typtype = 'e' AND o.typbasetype = t.oid)) "
    "UNION ALL SELECT 9, pg_catalog.concat('collation ''', n.shown, l.collname, '''') FROM pg_catalog.pg_collation l "
    "JOIN n ON n.oid = l.collnamespace "
    "UNION ALL SELECT 9, pg_catalog.concat('statistics object ''', x.stxname, '''') FROM "
    "pg_catalog.pg_statistic_ext x JOIN n ON n.oid = x.stxnamespace "
    "UNION ALL SELECT 9, pg_catalog.concat('event trigger ''', v.evtname, '''') FROM pg_catalog.pg_event_trigger v "
    "UNION ALL SELECT 9, pg_catalog.concat('publication ''', b.pubname, '''') FROM pg_catalog.pg_publication b "
    "UNION ALL SELECT 9, pg_catalog.concat('extension ''', x.extname, '''') FROM pg_catalog.pg_extension x "
    "WHERE x.extname <> 'plpgsql' ORDER BY 1, 2";

}  // namespace

std::vector<TDefinedObject> TPostgreSQLDefinitionReader::Objects() {
  std::vector<TDefinedObject> Result;
  for (TFound& Found : Find(FSession, "Cannot list what the database holds"))
    if (Found.Hindrance.empty()) Result.push_back(std::move(Found.Object));
  std::stable_sort(Result.begin(), Result.end(),
                   [](const TDefinedObject& A, const TDefinedObject& B) { return A.Kind < B.Kind; });
  return Result;
}

std::vector<std::string> TPostgreSQLDefinitionReader::LeftBehind() {
  constexpr const char* What = "Cannot list what no structure holds";
  std::vector<std::string> Result;
  for (const TFound& Found : Find(FSession, What))
    if (!Found.Hindrance.empty()) {
      std::string Line = Format("%s '%s'", Found.Hindrance, FullName(Found.Object.Table));
      if (Result.empty() || Result.back() != Line) Result.push_back(std::move(Line));
    }
  const TPostgreSQLResult Rows =
      FSession.Query(What, CatalogueStatement(BesideStatement), {FSession.Dialect().CurrentSchema().c_str()});
  for (int Row = 0; Row < Rows.RowCount(); ++Row) Result.push_back(Rows.Copy(Row, 1));
  return Result;
}

}  // namespace velkrund
