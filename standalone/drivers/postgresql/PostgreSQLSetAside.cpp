#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLDependents.h"
#include "standalone/drivers/postgresql/PostgreSQLRemaking.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {
namespace {

/// Policies and rules go first: those of views and of the table itself may name the views that go after them. A table
/// whose owner obeys its policies would not let all of its rows be read.
constexpr std::string_view Aside = R"(
SELECT 1, format('ALTER TABLE %s NO FORCE ROW LEVEL SECURITY', r.name) FROM rels r WHERE r.oid = $1 AND r.relforcerowsecurity
UNION ALL
SELECT 2, format('DROP POLICY %I ON %s', p.polname, p.polrelid::regclass) FROM pg_policy p
WHERE p.polrelid IN (SELECT oid FROM rels) OR p.oid IN (SELECT h.o FROM hanging h WHERE h.kind = 'policy')
UNION ALL
SELECT 3, format('DROP RULE %I ON %s', w.rulename, w.ev_class::regclass) FROM pg_rewrite w WHERE w.rulename <> '_RETURN'
AND (w.ev_class IN (SELECT oid FROM rels) OR w.oid IN (SELECT h.o FROM hanging h WHERE h.kind = 'rule'))
UNION ALL
SELECT 4, format('DROP TRIGGER %I ON %s', t.tgname, t.tgrelid::regclass) FROM pg_trigger t
WHERE NOT t.tgisinternal AND t.tgrelid NOT IN (SELECT oid FROM rels)
AND (t.tgconstrrelid IN (SELECT oid FROM rels) OR t.oid IN (SELECT h.o FROM hanging h WHERE h.kind = 'trigger'))
UNION ALL
SELECT 5, format('ALTER TABLE %s ALTER COLUMN %I DROP DEFAULT', d.adrelid::regclass, a.attname)
FROM hanging h JOIN pg_attrdef d ON d.oid = h.o JOIN pg_attribute a ON a.attrelid = d.adrelid AND a.attnum = d.adnum
WHERE h.kind = 'default'
UNION ALL
SELECT 6, format('ALTER TABLE %s DROP CONSTRAINT %I', k.conrelid::regclass, k.conname)
FROM hanging h JOIN pg_constraint k ON k.oid = h.o WHERE h.kind = 'key' AND k.conparentid = 0
ORDER BY 1, 2)";

/// A function keeps its owner, its rights and whatever uses it when its body alone is another for a while.
constexpr std::string_view BodiesAside = R"(
SELECT left(f.made, -(length(f.body) + 1)) || ' AS ''SELECT NULL'''
FROM hanging h CROSS JOIN LATERAL (
  SELECT rtrim(pg_get_functiondef(h.o), e'\n') || e'\n' AS made, pg_get_function_sqlbody(h.o) AS body) f
WHERE h.kind = 'body')";

constexpr std::string_view Facts = R"(
SELECT FACT(g.c, g.o, 0), EXISTS (SELECT FROM pg_description d WHERE d.classoid = g.c AND d.objoid = g.o AND d.objsubid = 0)
FROM gone g WHERE g.c <> 'pg_publication_rel'::regclass
UNION ALL
SELECT FACT(r.tableoid, r.oid, a.attnum), col_description(r.oid, a.attnum) IS NOT NULL
FROM rels r JOIN pg_attribute a ON a.attrelid = r.oid AND a.attnum > 0 AND NOT a.attisdropped
UNION ALL
SELECT format('stored column %I of %s', a.attname, r.name), false FROM rels r JOIN pg_attribute a ON a.attrelid = r.oid
JOIN pg_type t ON t.oid = a.atttypid AND t.typstorage <> 'p'
UNION ALL
SELECT format('expression %s of %s', a.attnum, i.indexrelid::regclass), false FROM rels r
JOIN pg_index i ON i.indrelid = r.oid JOIN pg_attribute a ON a.attrelid = i.indexrelid WHERE i.indkey[a.attnum - 1] = 0
UNION ALL
SELECT format('option %s of %s', s.name, r.name), false FROM rels r JOIN options s ON s.relation = r.oid
UNION ALL
SELECT 'unlogged ' || r.name, false FROM rels r WHERE r.relpersistence = 'u'
UNION ALL
SELECT 'typed ' || r.name, false FROM rels r WHERE r.reloftype <> 0
UNION ALL
SELECT format('method %s of %s', m.amname, r.name), false FROM rels r JOIN pg_am m ON m.oid = r.relam
UNION ALL
SELECT format('parent %I.%I of %s', n.nspname, p.relname, r.name), false FROM rels r
JOIN pg_inherits i ON i.inhrelid = r.oid JOIN pg_class p ON p.oid = i.inhparent JOIN pg_namespace n ON n.oid = p.relnamespace
UNION ALL
SELECT format('tablespace %s of %I.%I', PLACE(c.reltablespace), n.nspname, c.relname), false
FROM gone g JOIN pg_class c ON g.c = 'pg_class'::regclass AND c.oid = g.o JOIN pg_namespace n ON n.oid = c.relnamespace)";

}  // namespace

std::vector<std::string> ReadPostgreSQLSetAside(TPostgreSQLSession& Session, std::string_view What,
                                                const std::string& Oid) {
  constexpr int FirstWithBodies = 140'000;
  std::vector<std::string> Result;
  const TPostgreSQLResult Rows = Session.Query(What, PostgreSQLAround(Aside), {Oid.c_str()});
  for (int Row = 0; Row < Rows.RowCount(); ++Row) Result.push_back(Rows.Copy(Row, 1));
  if (PQserverVersion(Session.Handle()) < FirstWithBodies) return Result;
  const TPostgreSQLResult Functions = Session.Query(What, PostgreSQLAround(BodiesAside), {Oid.c_str()});
  for (int Row = 0; Row < Functions.RowCount(); ++Row) Result.push_back(Functions.Copy(Row, 0));
  return Result;
}

std::set<std::string> ReadPostgreSQLFacts(TPostgreSQLSession& Session, std::string_view What, const std::string& Oid) {
  const TPostgreSQLResult Rows = Session.Query(What, PostgreSQLAround(Facts), {Oid.c_str()});
  std::set<std::string> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    Result.insert(Rows.Copy(Row, 0));
    if (Rows.Boolean(Row, 1)) Result.insert("comment on " + Rows.Copy(Row, 0));
  }
  return Result;
}

}  // namespace velkrund
