#include "standalone/drivers/postgresql/PostgreSQLDependents.h"

#include <algorithm>
#include <set>
#include <utility>

#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// A view goes by its rule "_RETURN", whose dependencies are those of the view.
constexpr std::string_view Around = R"(
WITH RECURSIVE gone(c, o) AS (
  SELECT 'pg_class'::regclass::oid, $1::oid
  UNION
  SELECT CASE WHEN r.oid IS NULL THEN p.classid ELSE 'pg_class'::regclass::oid END, coalesce(r.ev_class, p.objid)
  FROM gone g JOIN pg_depend p ON p.refclassid = g.c AND p.refobjid = g.o
  LEFT JOIN pg_rewrite r ON p.classid = 'pg_rewrite'::regclass AND r.oid = p.objid AND r.rulename = '_RETURN'
  LEFT JOIN pg_class v ON p.classid = 'pg_class'::regclass AND v.oid = p.objid AND v.relkind IN ('v', 'm')
  WHERE p.deptype IN ('a', 'i', 'P', 'S') OR r.oid IS NOT NULL OR v.oid IS NOT NULL),
rels AS (
  SELECT c.tableoid, c.*, format('%I.%I', n.nspname, c.relname) AS name
  FROM gone g JOIN pg_class c ON g.c = 'pg_class'::regclass AND c.oid = g.o AND c.relkind IN ('r', 'p', 'v', 'm')
  JOIN pg_namespace n ON n.oid = c.relnamespace),
hanging AS (
  SELECT h.c, h.o, CASE
    WHEN h.c = 'pg_constraint'::regclass AND k.contype = 'f' THEN 'key'
    WHEN h.c = 'pg_policy'::regclass THEN 'policy'
    WHEN h.c = 'pg_rewrite'::regclass THEN 'rule'
    WHEN h.c = 'pg_trigger'::regclass THEN 'trigger'
    WHEN h.c = 'pg_attrdef'::regclass AND EXISTS (SELECT FROM pg_attrdef e JOIN pg_attribute a ON a.attrelid = e.adrelid
      AND a.attnum = e.adnum WHERE e.oid = h.o AND a.attgenerated = '') THEN 'default'
    WHEN h.c = 'pg_proc'::regclass AND NOT h.typed AND EXISTS (
      SELECT FROM pg_proc f WHERE f.oid = h.o AND to_jsonb(f) ->> 'prosqlbody' IS NOT NULL) THEN 'body' END AS kind
  FROM (SELECT p.classid, p.objid, bool_or(p.refclassid = 'pg_type'::regclass)
    FROM gone g JOIN pg_depend p ON p.refclassid = g.c AND p.refobjid = g.o WHERE p.deptype = 'n'
    AND NOT EXISTS (SELECT FROM gone i WHERE i.c = p.classid AND i.o = p.objid) GROUP BY 1, 2) AS h(c, o, typed)
  LEFT JOIN pg_constraint k ON h.c = 'pg_constraint'::regclass AND k.oid = h.o),
options AS (
  SELECT r.oid AS relation, s.option_name AS name, quote_ident(s.option_name) AS shown, s.option_value AS setting
  FROM rels r CROSS JOIN LATERAL pg_options_to_table(r.reloptions) s
  UNION ALL
  SELECT r.oid, 'toast.' || s.option_name, 'toast.' || quote_ident(s.option_name), s.option_value
  FROM rels r JOIN pg_class w ON w.oid = r.reltoastrelid CROSS JOIN LATERAL pg_options_to_table(w.reloptions) s)
)";

constexpr std::string_view ViewsBody =
    "SELECT r.oid, r.name, r.relkind = 'm', r.relispopulated FROM rels r WHERE r.oid <> $1 AND r.relkind IN ('v', 'm') "
    "ORDER BY r.oid";

/// Pairs of views: the first shows the second.
constexpr std::string_view ShowsBody = R"(
SELECT DISTINCT v.oid, x.oid FROM rels v
JOIN pg_rewrite w ON w.ev_class = v.oid AND w.rulename = '_RETURN'
JOIN pg_depend p ON p.classid = 'pg_rewrite'::regclass AND p.objid = w.oid OR p.classid = 'pg_class'::regclass AND p.objid = v.oid
LEFT JOIN pg_type t ON p.refclassid = 'pg_type'::regclass AND t.oid = p.refobjid
LEFT JOIN pg_type e ON e.oid = t.typelem
JOIN rels x ON x.oid IN (t.typrelid, e.typrelid) OR p.refclassid = 'pg_class'::regclass AND x.oid = p.refobjid
WHERE v.oid <> $1 AND x.oid <> $1 AND v.oid <> x.oid)";

/// Things that are what they are; each of them has a way out.
constexpr std::string_view ThingsBody = R"(
SELECT 'it is neither a table nor a view' FROM pg_class c WHERE c.oid = $1 AND c.relkind NOT IN ('r', 'p', 'v', 'm')
UNION ALL
SELECT format('%s is a part of it, or inherits from it; detach it first', i.inhrelid::regclass)
FROM pg_inherits i WHERE i.inhparent = $1
UNION ALL
SELECT format('%s uses %s; drop it first, and make it again afterwards', h.thing, h.used) FROM (
  SELECT DISTINCT ON (h.c, h.o) pg_describe_object(p.classid, p.objid, p.objsubid) AS thing,
    CASE WHEN t.oid IS NULL THEN pg_describe_object(p.refclassid, p.refobjid, p.refobjsubid)
    ELSE 'the row type of ' || pg_describe_object('pg_class'::regclass, coalesce(nullif(t.typrelid, 0), e.typrelid), 0)
    END AS used
  FROM hanging h JOIN pg_depend p ON p.classid = h.c AND p.objid = h.o AND p.deptype = 'n'
  JOIN gone g ON g.c = p.refclassid AND g.o = p.refobjid
  LEFT JOIN pg_type t ON p.refclassid = 'pg_type'::regclass AND t.oid = p.refobjid
  LEFT JOIN pg_type e ON e.oid = t.typelem
  WHERE h.kind IS NULL ORDER BY h.c, h.o, p.objsubid, t.oid IS NULL) h
UNION ALL
SELECT format(CASE p.deptype WHEN 'e' THEN '%s belongs to the extension %s; make it anew by the means of that'
  ELSE '%s would be dropped with the extension %s; take that away with ALTER ... NO DEPENDS ON EXTENSION, and make it so again afterwards' END,
  pg_describe_object(p.classid, p.objid, 0), quote_ident(x.extname))
FROM (SELECT c, o FROM gone UNION SELECT c, o FROM hanging) g JOIN pg_depend p ON p.classid = g.c AND p.objid = g.o
JOIN pg_extension x ON p.refclassid = 'pg_extension'::regclass AND x.oid = p.refobjid WHERE p.deptype IN ('e', 'x')
UNION ALL
SELECT format('%s is temporary; drop it first', pg_describe_object('pg_class'::regclass, r.oid, 0))
FROM rels r WHERE r.relpersistence = 't'
UNION ALL
SELECT format('the foreign key %s of %s refers to the table that it is a part of; drop that key first, and make it again afterwards',
  quote_ident(k.conname), k.conrelid::regclass)
FROM pg_constraint k WHERE k.confrelid = $1 AND k.contype = 'f' AND EXISTS (SELECT FROM pg_constraint u
  WHERE u.oid = k.conparentid AND u.confrelid <> $1)
UNION ALL
SELECT format('the foreign key %s of %s is switched off; let it be checked again first (ENABLE TRIGGER ALL)',
  quote_ident(k.conname), k.conrelid::regclass)
FROM pg_constraint k WHERE (k.contype = 'f' AND k.conrelid = $1 OR k.oid IN (SELECT h.o FROM hanging h WHERE h.kind = 'key'))
AND EXISTS (SELECT FROM pg_trigger t WHERE t.tgconstraint = k.oid AND t.tgisinternal AND t.tgenabled <> 'O')
UNION ALL
SELECT format('the event trigger %s watches all that is dropped and made; switch it off first (ALTER EVENT TRIGGER ... DISABLE)',
  quote_ident(v.evtname)) FROM pg_event_trigger v WHERE v.evtenabled <> 'D' AND v.evtevent <> 'login'
UNION ALL
SELECT 'a subscription fills it; take it out of that first' WHERE EXISTS (
  SELECT FROM pg_subscription_rel s WHERE s.srrelid = $1)
UNION ALL
SELECT format('it is kept by the access method %s, which this server cannot give to a table that is there', m.amname)
FROM pg_class c JOIN pg_am m ON m.oid = c.relam WHERE c.oid = $1 AND c.relkind = 'r'
AND m.amname <> current_setting('default_table_access_method')
AND current_setting('server_version_num')::integer < 150000)";

/// The roles that own what is dropped or changed, and the schemas that things are made in again.
constexpr std::string_view RightsBody = R"(,
owned(thing, owner) AS (
  SELECT pg_describe_object('pg_class'::regclass, r.oid, 0), r.relowner FROM rels r
  UNION
  SELECT pg_describe_object(h.c, h.o, 0), coalesce(c.relowner, f.proowner) FROM hanging h
  LEFT JOIN pg_constraint k ON h.c = 'pg_constraint'::regclass AND k.oid = h.o
  LEFT JOIN pg_policy l ON h.c = 'pg_policy'::regclass AND l.oid = h.o
  LEFT JOIN pg_rewrite w ON h.c = 'pg_rewrite'::regclass AND w.oid = h.o
  LEFT JOIN pg_trigger t ON h.c = 'pg_trigger'::regclass AND t.oid = h.o
  LEFT JOIN pg_attrdef d ON h.c = 'pg_attrdef'::regclass AND d.oid = h.o
  LEFT JOIN pg_class c ON c.oid = coalesce(k.conrelid, l.polrelid, w.ev_class, t.tgrelid, d.adrelid)
  LEFT JOIN pg_proc f ON h.c = 'pg_proc'::regclass AND f.oid = h.o WHERE h.kind IS NOT NULL
  UNION
  SELECT pg_describe_object('pg_trigger'::regclass, t.oid, 0), c.relowner FROM pg_trigger t
  JOIN pg_class c ON c.oid = t.tgrelid WHERE NOT t.tgisinternal AND t.tgconstrrelid IN (SELECT oid FROM rels)
  UNION
  SELECT pg_describe_object('pg_publication'::regclass, b.oid, 0), b.pubowner
  FROM pg_publication_rel p JOIN pg_publication b ON b.oid = p.prpubid WHERE p.prrelid IN (SELECT oid FROM rels)
  UNION
  SELECT pg_describe_object('pg_class'::regclass, c.oid, 0), c.relowner
  FROM pg_inherits i JOIN pg_class c ON c.oid = i.inhparent WHERE i.inhrelid = $1
  UNION
  SELECT pg_describe_object('pg_statistic_ext'::regclass, s.oid, 0), s.stxowner
  FROM pg_statistic_ext s WHERE s.stxrelid IN (SELECT oid FROM rels)),
grantors(role) AS (
  SELECT x.grantor FROM gone g JOIN pg_class c ON g.c = 'pg_class'::regclass AND c.oid = g.o
  CROSS JOIN LATERAL aclexplode(c.relacl) x WHERE x.grantor <> c.relowner
  UNION
  SELECT x.grantor FROM rels r JOIN pg_attribute a ON a.attrelid = r.oid AND NOT a.attisdropped
  CROSS JOIN LATERAL aclexplode(a.attacl) x WHERE x.grantor <> r.relowner)
SELECT format('only its owner %s may change %s', pg_get_userbyid(o.owner), o.thing)
FROM owned o WHERE NOT pg_has_role(o.owner, 'USAGE')
UNION
SELECT format('%s has granted rights to others, and only who may become that role can grant them again', pg_get_userbyid(g.role))
FROM grantors g WHERE NOT pg_has_role(g.role, $2)
UNION
SELECT format('only who may become %s can give %s to it again', pg_get_userbyid(o.owner), o.thing)
FROM owned o WHERE pg_has_role(o.owner, 'USAGE') AND NOT pg_has_role(o.owner, $2)
UNION
SELECT format('the right CREATE on the schema %s is missing, for %s', n.nspname, u.rolname)
FROM rels r JOIN pg_namespace n ON n.oid = r.relnamespace
JOIN pg_roles u ON u.rolname = current_user OR u.oid = r.relowner
WHERE NOT has_schema_privilege(u.oid, n.oid, 'CREATE')
AND NOT (SELECT s.rolsuper FROM pg_roles s WHERE s.rolname = current_user))";

/// Name(...) replaced by what stands between the parentheses, with Before and After around it.
std::string Expanded(std::string_view Body, std::string_view Name, std::string_view Before, std::string_view After) {
  std::string Result;
  const std::string Call = std::string(Name) + "(";
  for (std::size_t At; (At = Body.find(Call)) != std::string_view::npos;) {
    Result.append(Body.substr(0, At)).append(Before);
    Body.remove_prefix(At + Call.size());
    std::size_t End = 0;
    for (int Open = 1; Open > 0; ++End) Open += Body[End] == '(' ? 1 : Body[End] == ')' ? -1 : 0;
    Result.append(Body.substr(0, End - 1)).append(After);
    Body.remove_prefix(End);
  }
  return Result.append(Body);
}

std::set<std::pair<std::string, std::string>> PairsOf(const TPostgreSQLResult& Rows) {
  std::set<std::pair<std::string, std::string>> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) Result.emplace(Rows.Copy(Row, 0), Rows.Copy(Row, 1));
  return Result;
}

}  // namespace

std::string PostgreSQLAround(std::string_view Body) {
  const std::string Named =
      Expanded(Body, "FACT", "(SELECT f.type || ' ' || f.identity FROM pg_identify_object(", ") f)");
  return std::string(Around).append(
      Expanded(Named, "PLACE", "(SELECT p.spcname FROM pg_tablespace p WHERE p.oid = coalesce(nullif(",
               ", 0), (SELECT b.dattablespace FROM pg_database b WHERE b.datname = current_database())))"));
}

std::vector<TPostgreSQLView> ReadPostgreSQLViews(TPostgreSQLSession& Session, std::string_view What,
                                                 const std::string& Oid) {
  const TPostgreSQLResult Rows = Session.Query(What, PostgreSQLAround(ViewsBody), {Oid.c_str()});
  const auto Shows = PairsOf(Session.Query(What, PostgreSQLAround(ShowsBody), {Oid.c_str()}));
  std::vector<TPostgreSQLView> Left, Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row)
    Left.push_back({Rows.Copy(Row, 0), Rows.Copy(Row, 1), Rows.Boolean(Row, 2), Rows.Boolean(Row, 3)});
  while (!Left.empty()) {
    const auto IsFree = [&](const TPostgreSQLView& View) {
      return std::none_of(Left.begin(), Left.end(), [&](const TPostgreSQLView& Other) {
        return Shows.contains({View.Oid, Other.Oid});
      });
    };
    const auto Next = std::find_if(Left.begin(), Left.end(), IsFree);
    if (Next == Left.end())
      throw EDatabaseError(Format("%s: the view %s is one of several that show each other in a circle; drop it first",
                                  What, Left.front().Name));
    Result.push_back(*Next);
    Left.erase(Next);
  }
  return Result;
}

std::vector<std::string> ReadPostgreSQLObstacles(TPostgreSQLSession& Session, std::string_view What,
                                                 const std::string& Oid) {
  constexpr int FirstWithSetRight = 160'000;
  const bool KnowsSetRight = PQserverVersion(Session.Handle()) >= FirstWithSetRight;
  std::vector<std::string> Result;
  const auto Take = [&](const TPostgreSQLResult& Rows) {
    for (int Row = 0; Row < Rows.RowCount(); ++Row) Result.push_back(Rows.Copy(Row, 0));
  };
  Take(Session.Query(What, PostgreSQLAround(ThingsBody), {Oid.c_str()}));
  Take(Session.Query(What, PostgreSQLAround(RightsBody), {Oid.c_str(), KnowsSetRight ? "SET" : "MEMBER"}));
  return Result;
}

}  // namespace velkrund
