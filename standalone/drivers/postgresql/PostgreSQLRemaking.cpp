#include "standalone/drivers/postgresql/PostgreSQLRemaking.h"

#include <algorithm>
#include <utility>

#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLDependents.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {
namespace {

/// Between the facts that a thing needs.
constexpr char FactsEnd = '\x01';

// Every question yields the columns of TPostgreSQLRemade in their order. FACT(class, object, column) stands for the
// name of an object as a fact, PLACE(tablespace) for where that is: 0 stands for the database's own.

constexpr std::string_view Owner = R"(
SELECT 'the owner of ' || r.name, '', '', format('ALTER TABLE %s OWNER TO %I', r.name, pg_get_userbyid(r.relowner)), ''
FROM rels r WHERE r.oid = $1)";

/// A view's check option is a condition, which the new one has or has not.
constexpr std::string_view Storage = R"(
SELECT 'the option ' || s.name, '', format('option %s of %s', s.name, r.name),
  format('ALTER TABLE %s SET (%s = %L)', r.name, s.shown, s.setting), ''
FROM rels r JOIN options s ON s.relation = r.oid WHERE r.oid = $1 AND s.name <> 'check_option'
UNION ALL
SELECT 'that it is not logged', '', 'unlogged ' || r.name, format('ALTER TABLE %s SET UNLOGGED', r.name), ''
FROM rels r WHERE r.oid = $1 AND r.relpersistence = 'u'
UNION ALL
SELECT 'its type', '', 'typed ' || r.name, format('ALTER TABLE %s OF %s', r.name, r.reloftype::regtype), ''
FROM rels r WHERE r.oid = $1 AND r.reloftype <> 0
UNION ALL
SELECT 'the access method', '', format('method %s of %s', m.amname, r.name),
  format('ALTER TABLE %s SET ACCESS METHOD %I', r.name, m.amname), ''
FROM rels r JOIN pg_am m ON m.oid = r.relam WHERE r.oid = $1 AND r.relkind = 'r')";

constexpr std::string_view Parents = R"(
SELECT 'its place in ' || u.name, '', format('parent %s of %s', u.name, r.name),
  CASE WHEN r.relispartition
  THEN format('ALTER TABLE %s ATTACH PARTITION %s %s', u.name, r.name, pg_get_expr(r.relpartbound, r.oid))
  ELSE format('ALTER TABLE %s INHERIT %s', r.name, u.name) END, ''
FROM rels r JOIN pg_inherits i ON i.inhrelid = r.oid
CROSS JOIN LATERAL (SELECT format('%I.%I', n.nspname, p.relname) AS name FROM pg_class p
  JOIN pg_namespace n ON n.oid = p.relnamespace WHERE p.oid = i.inhparent) u
WHERE r.oid = $1 ORDER BY i.inhseqno)";

constexpr std::string_view Bodies = R"(
SELECT 'the body of ' || pg_describe_object(h.c, h.o, 0), '', '', pg_get_functiondef(h.o), '' FROM hanging h
WHERE h.kind = 'body')";

/// Of materialized views; those of the table are its own.
constexpr std::string_view Indexes = R"(
SELECT 'the index ' || i.indexrelid::regclass, '', '', pg_get_indexdef(i.indexrelid), ''
FROM rels r JOIN pg_index i ON i.indrelid = r.oid WHERE r.relkind = 'm' AND r.oid <> $1 ORDER BY i.indexrelid)";

/// Rules, triggers and policies, of these and of other tables.
constexpr std::string_view Reactions = R"(
SELECT pg_describe_object(w.tableoid, w.oid, 0), '', FACT(w.tableoid, w.oid, 0), pg_get_ruledef(w.oid),
  CASE w.ev_enabled WHEN 'O' THEN '' ELSE format('ALTER TABLE %s %s RULE %I', w.ev_class::regclass,
    CASE w.ev_enabled WHEN 'D' THEN 'DISABLE' WHEN 'R' THEN 'ENABLE REPLICA' ELSE 'ENABLE ALWAYS' END, w.rulename) END
FROM pg_rewrite w WHERE w.rulename <> '_RETURN' AND (w.ev_class IN (SELECT oid FROM rels)
OR w.oid IN (SELECT h.o FROM hanging h WHERE h.kind = 'rule'))
UNION ALL
SELECT pg_describe_object(t.tableoid, t.oid, 0), '', FACT(t.tableoid, t.oid, 0), pg_get_triggerdef(t.oid),
  CASE t.tgenabled WHEN 'O' THEN '' ELSE format('ALTER TABLE %s %s TRIGGER %I', t.tgrelid::regclass,
    CASE t.tgenabled WHEN 'D' THEN 'DISABLE' WHEN 'R' THEN 'ENABLE REPLICA' ELSE 'ENABLE ALWAYS' END, t.tgname) END
FROM pg_trigger t WHERE NOT t.tgisinternal AND coalesce(to_jsonb(t) ->> 'tgparentid', '0') = '0'
AND (t.tgrelid IN (SELECT oid FROM rels) OR t.tgconstrrelid IN (SELECT oid FROM rels)
OR t.oid IN (SELECT h.o FROM hanging h WHERE h.kind = 'trigger'))
UNION ALL
SELECT pg_describe_object(p.tableoid, p.oid, 0), '', FACT(p.tableoid, p.oid, 0), format(
  'CREATE POLICY %I ON %s AS %s FOR %s TO %s%s%s', p.polname, p.polrelid::regclass,
  CASE WHEN p.polpermissive THEN 'PERMISSIVE' ELSE 'RESTRICTIVE' END,
  CASE p.polcmd WHEN 'r' THEN 'SELECT' WHEN 'a' THEN 'INSERT' WHEN 'w' THEN 'UPDATE' WHEN 'd' THEN 'DELETE' ELSE 'ALL' END,
  (SELECT string_agg(CASE u.role WHEN 0 THEN 'PUBLIC' ELSE quote_ident(pg_get_userbyid(u.role)) END, ', ')
    FROM unnest(p.polroles) u(role)),
  ' USING (' || pg_get_expr(p.polqual, p.polrelid) || ')',
  ' WITH CHECK (' || pg_get_expr(p.polwithcheck, p.polrelid) || ')'), ''
FROM pg_policy p WHERE p.polrelid IN (SELECT oid FROM rels)
OR p.oid IN (SELECT h.o FROM hanging h WHERE h.kind = 'policy'))";

constexpr std::string_view Statistics = R"(
SELECT pg_describe_object(s.tableoid, s.oid, 0), (SELECT string_agg(FACT(r.tableoid, r.oid, a.attnum), e'\x01')
  FROM pg_attribute a WHERE a.attrelid = r.oid AND a.attnum = ANY (s.stxkeys)),
  FACT(s.tableoid, s.oid, 0), pg_get_statisticsobjdef(s.oid),
  format('ALTER STATISTICS %I.%I OWNER TO %I', n.nspname, s.stxname, pg_get_userbyid(s.stxowner))
FROM pg_statistic_ext s JOIN rels r ON r.oid = s.stxrelid JOIN pg_namespace n ON n.oid = s.stxnamespace)";

constexpr std::string_view StatisticsTargets = R"(
SELECT 'the target of ' || pg_describe_object(s.tableoid, s.oid, 0), FACT(s.tableoid, s.oid, 0), '',
  format('ALTER STATISTICS %I.%I SET STATISTICS %s', n.nspname, s.stxname, to_jsonb(s) ->> 'stxstattarget'), ''
FROM pg_statistic_ext s JOIN rels r ON r.oid = s.stxrelid JOIN pg_namespace n ON n.oid = s.stxnamespace
WHERE coalesce(to_jsonb(s) ->> 'stxstattarget', '-1') <> '-1')";

/// Of views, and of other tables that ask a sequence of this one.
constexpr std::string_view Defaults = R"(
SELECT pg_describe_object(d.tableoid, d.oid, 0), '', FACT(d.tableoid, d.oid, 0),
  format('ALTER TABLE %s ALTER COLUMN %I SET DEFAULT %s', d.adrelid::regclass, a.attname, pg_get_expr(d.adbin, d.adrelid)), ''
FROM pg_attrdef d JOIN pg_attribute a ON a.attrelid = d.adrelid AND a.attnum = d.adnum
WHERE d.adrelid IN (SELECT oid FROM rels WHERE relkind = 'v')
OR d.oid IN (SELECT h.o FROM hanging h WHERE h.kind = 'default'))";

constexpr std::string_view Columns = R"(
SELECT format('a setting of column %I', a.attname), e.need, '', format('ALTER TABLE %s ALTER COLUMN %I SET %s',
  r.name, a.attname, e.words), ''
FROM rels r JOIN pg_attribute a ON a.attrelid = r.oid AND a.attnum > 0 AND NOT a.attisdropped
JOIN pg_type t ON t.oid = a.atttypid
CROSS JOIN LATERAL (VALUES
  (FACT(r.tableoid, r.oid, a.attnum), 'STATISTICS ' || nullif(a.attstattarget, -1)),
  (format('stored column %I of %s', a.attname, r.name), 'STORAGE ' || CASE WHEN a.attstorage <> t.typstorage THEN
    CASE a.attstorage WHEN 'p' THEN 'PLAIN' WHEN 'e' THEN 'EXTERNAL' WHEN 'm' THEN 'MAIN' ELSE 'EXTENDED' END END),
  (format('stored column %I of %s', a.attname, r.name), 'COMPRESSION ' || CASE to_jsonb(a) ->> 'attcompression'
    WHEN 'p' THEN 'pglz' WHEN 'l' THEN 'lz4' END),
  (FACT(r.tableoid, r.oid, a.attnum), '(' || (SELECT string_agg(format('%I = %L', o.option_name, o.option_value), ', ')
    FROM pg_options_to_table(a.attoptions) o) || ')')) e(need, words)
WHERE r.relkind <> 'v' AND e.words IS NOT NULL
UNION ALL
SELECT 'a setting of the index ' || i.indexrelid::regclass, format('expression %s of %s', a.attnum, i.indexrelid::regclass), '',
  format('ALTER INDEX %s ALTER COLUMN %s SET STATISTICS %s', i.indexrelid::regclass, a.attnum, a.attstattarget), ''
FROM rels r JOIN pg_index i ON i.indrelid = r.oid JOIN pg_attribute a ON a.attrelid = i.indexrelid
WHERE coalesce(a.attstattarget, -1) <> -1)";

/// The state of triggers that come from the partitioned table with the place in it.
constexpr std::string_view Security = R"(
SELECT 'the row security of ' || r.name, '', '', format('ALTER TABLE %s ENABLE ROW LEVEL SECURITY', r.name), ''
FROM rels r WHERE r.relrowsecurity
UNION ALL
SELECT 'the row security of ' || r.name, '', '', format('ALTER TABLE %s FORCE ROW LEVEL SECURITY', r.name), ''
FROM rels r WHERE r.relforcerowsecurity
UNION ALL
SELECT 'the state of ' || pg_describe_object(t.tableoid, t.oid, 0), FACT(t.tableoid, t.oid, 0), '',
  format('ALTER TABLE %s %s TRIGGER %I', r.name, CASE t.tgenabled WHEN 'D' THEN 'DISABLE' WHEN 'R' THEN 'ENABLE REPLICA'
    WHEN 'A' THEN 'ENABLE ALWAYS' ELSE 'ENABLE' END, t.tgname), ''
FROM pg_trigger t JOIN rels r ON r.oid = t.tgrelid
WHERE NOT t.tgisinternal AND coalesce(to_jsonb(t) ->> 'tgparentid', '0') <> '0')";

/// The keys of parts that have names of their own come first, so that those of the whole find them there.
constexpr std::string_view Keys = R"(
SELECT pg_describe_object(h.c, h.o, 0), '', '', format('ALTER TABLE %s ADD CONSTRAINT %I %s', k.conrelid::regclass,
  k.conname, pg_get_constraintdef(k.oid)), ''
FROM hanging h JOIN pg_constraint k ON k.oid = h.o LEFT JOIN pg_constraint u ON u.oid = k.conparentid
WHERE h.kind = 'key' AND u.conname IS DISTINCT FROM k.conname ORDER BY u.oid IS NULL, k.conrelid::regclass::text, k.conname)";

constexpr std::string_view Publications = R"(
SELECT 'its place in the publication ' || quote_ident(b.pubname), '', '',
  format('ALTER PUBLICATION %I ADD TABLE %s', b.pubname, r.name), ''
FROM rels r JOIN pg_publication_rel p ON p.prrelid = r.oid JOIN pg_publication b ON b.oid = p.prpubid)";

constexpr std::string_view FilteredPublications = R"(
SELECT 'its place in the publication ' || quote_ident(b.pubname), '', '',
  format('ALTER PUBLICATION %I ADD TABLE %s%s%s', b.pubname, r.name,
    (SELECT ' (' || string_agg(quote_ident(a.attname), ', ' ORDER BY l.place) || ')'
     FROM unnest(p.prattrs) WITH ORDINALITY l(number, place)
     JOIN pg_attribute a ON a.attrelid = r.oid AND a.attnum = l.number),
    ' WHERE (' || pg_get_expr(p.prqual, p.prrelid) || ')'), ''
FROM rels r JOIN pg_publication_rel p ON p.prrelid = r.oid JOIN pg_publication b ON b.oid = p.prpubid)";

constexpr std::string_view Tablespaces = R"(
SELECT 'the tablespace of ' || c.name, c.need, format('tablespace %s of %s', c.place, c.name),
  format('ALTER %s %s SET TABLESPACE %I', c.kind, c.name, c.place), ''
FROM (SELECT r.name, '' AS need, 'TABLE' AS kind, PLACE(r.reltablespace) AS place FROM rels r WHERE r.relkind = 'r'
  UNION ALL SELECT r.name, FACT(r.tableoid, r.oid, 0), 'MATERIALIZED VIEW', PLACE(r.reltablespace)
  FROM rels r WHERE r.relkind = 'm' AND r.oid = $1
  UNION ALL SELECT format('%I.%I', n.nspname, x.relname), FACT(x.tableoid, x.oid, 0), 'INDEX', PLACE(x.reltablespace)
  FROM rels r JOIN pg_index i ON i.indrelid = r.oid JOIN pg_class x ON x.oid = i.indexrelid AND x.relkind = 'i'
  JOIN pg_namespace n ON n.oid = x.relnamespace WHERE r.relkind IN ('r', 'm')) c)";

/// What marks an index of the table.
constexpr std::string_view Marks = R"(
SELECT 'the replica identity', coalesce(FACT('pg_class'::regclass, x.indexrelid, 0), ''), '',
  format('ALTER TABLE %s REPLICA IDENTITY %s', r.name, CASE r.relreplident WHEN 'n' THEN 'NOTHING' WHEN 'f' THEN 'FULL'
    ELSE 'USING INDEX ' || (SELECT quote_ident(c.relname) FROM pg_class c WHERE c.oid = x.indexrelid) END), ''
FROM rels r LEFT JOIN pg_index x ON x.indrelid = r.oid AND x.indisreplident AND r.relreplident = 'i'
WHERE r.relkind <> 'v' AND r.relreplident IN ('n', 'f', 'i') AND (r.relreplident <> 'i' OR x.indexrelid IS NOT NULL)
UNION ALL
SELECT 'the mark for CLUSTER', FACT('pg_class'::regclass, x.indexrelid, 0), '',
  format('ALTER TABLE %s CLUSTER ON %I', r.name, c.relname), ''
FROM rels r JOIN pg_index x ON x.indrelid = r.oid AND x.indisclustered JOIN pg_class c ON c.oid = x.indexrelid)";

/// Sequences have theirs from TPostgreSQLOwnedSequences.
constexpr std::string_view Comments = R"(
SELECT 'the comment on ' || i.identity, CASE WHEN o.there THEN i.type || ' ' || i.identity ELSE '' END,
  'comment on ' || i.type || ' ' || i.identity, format('COMMENT ON %s %s IS %L', CASE
    WHEN i.type LIKE '% column' THEN 'COLUMN' WHEN i.type LIKE '% constraint' THEN 'CONSTRAINT'
    WHEN i.type = 'statistics object' THEN 'STATISTICS' ELSE upper(i.type) END, i.identity, d.description), ''
FROM (SELECT c, o, true FROM gone UNION ALL SELECT h.c, h.o, false FROM hanging h
  WHERE h.kind IN ('key', 'policy', 'rule', 'trigger')) o(c, o, there)
JOIN pg_description d ON d.classoid = o.c AND d.objoid = o.o
CROSS JOIN LATERAL pg_identify_object(d.classoid, d.objoid, d.objsubid) i WHERE i.type <> 'sequence'
UNION ALL
SELECT 'the security label of ' || l.objname, FACT(l.classoid, l.objoid, l.objsubid), '',
  format('SECURITY LABEL FOR %I ON %s %s IS %L', l.provider, upper(l.objtype), l.objname, l.label), ''
FROM gone g JOIN pg_seclabels l ON l.classoid = g.c AND l.objoid = g.o)";

constexpr std::string_view ViewMaking = R"(
SELECT 'the view ' || r.name, '', '', format('CREATE %s %s%s%s%s AS %s%s',
  CASE r.relkind WHEN 'v' THEN 'VIEW' ELSE 'MATERIALIZED VIEW' END, r.name,
  (SELECT ' USING ' || quote_ident(m.amname) FROM pg_am m WHERE m.oid = r.relam),
  (SELECT ' WITH (' || string_agg(format('%s = %L', s.shown, s.setting), ', ') || ')' FROM options s WHERE s.relation = r.oid),
  CASE r.relkind WHEN 'm' THEN format(' TABLESPACE %I', PLACE(r.reltablespace)) END,
  rtrim(pg_get_viewdef(r.oid), ';'), CASE r.relkind WHEN 'm' THEN ' WITH NO DATA' END),
  format('ALTER TABLE %s OWNER TO %I', r.name, pg_get_userbyid(r.relowner))
FROM rels r WHERE r.oid = $1)";

std::vector<std::string> FactsOf(std::string_view List) {
  std::vector<std::string> Result;
  while (!List.empty()) {
    const std::size_t End = std::min(List.find(FactsEnd), List.size());
    Result.emplace_back(List.substr(0, End));
    List.remove_prefix(std::min(End + 1, List.size()));
  }
  return Result;
}

TPostgreSQLRemadeStage Read(TPostgreSQLSession& Session, std::string_view What, const std::string& Oid,
                            std::string_view Body, bool TellsWhatIsGone = false) {
  const TPostgreSQLResult Rows = Session.Query(What, PostgreSQLAround(Body), {Oid.c_str()});
  TPostgreSQLRemadeStage Result{{}, TellsWhatIsGone};
  for (int Row = 0; Row < Rows.RowCount(); ++Row)
    Result.Things.push_back(
        {Rows.Copy(Row, 0), FactsOf(Rows.Text(Row, 1)), Rows.Copy(Row, 2), Rows.Copy(Row, 3), Rows.Copy(Row, 4)});
  return Result;
}

}  // namespace

TPostgreSQLRemaking ReadPostgreSQLRemaking(TPostgreSQLSession& Session, std::string_view What, const std::string& Oid) {
  constexpr int FirstWithFilters = 150'000;
  TPostgreSQLRemaking Result;
  for (const std::string_view Body : {Owner, Storage, Parents})
    Result.BeforeViews.push_back(Read(Session, What, Oid, Body));
  for (const std::string_view Body : {Bodies, Indexes, Defaults, Reactions})
    Result.AfterViews.push_back(Read(Session, What, Oid, Body));
  Result.AfterViews.push_back(Read(Session, What, Oid, Statistics, true));
  for (const std::string_view Body : {StatisticsTargets, Columns, Security, Keys})
    Result.AfterViews.push_back(Read(Session, What, Oid, Body));
  Result.AfterViews.back().LooksAtRows = true;
  Result.AfterViews.push_back(Read(
      Session, What, Oid, PQserverVersion(Session.Handle()) < FirstWithFilters ? Publications : FilteredPublications));
  Result.AfterRights.push_back(Read(Session, What, Oid, Tablespaces));
  Result.AfterRights.push_back(Read(Session, What, Oid, Marks, true));
  Result.AfterRights.push_back(Read(Session, What, Oid, Comments));
  return Result;
}

TPostgreSQLRemade ReadPostgreSQLViewMaking(TPostgreSQLSession& Session, std::string_view What,
                                           const TPostgreSQLView& View) {
  return Read(Session, What, View.Oid, ViewMaking).Things.front();
}

}  // namespace velkrund
