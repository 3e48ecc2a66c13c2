#include "standalone/drivers/postgresql/PostgreSQLGrants.h"

#include <algorithm>
#include <optional>

#include "standalone/drivers/postgresql/PostgreSQLDependents.h"
#include "standalone/drivers/postgresql/PostgreSQLLocalSetting.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// A row for each right; for what nobody has a right on, one without.
constexpr std::string_view RightsBody = R"(
SELECT t.kind || t.name, t.column, x.privilege_type, CASE x.grantee WHEN 0 THEN 'PUBLIC' ELSE
  '"' || replace(pg_get_userbyid(x.grantee), '"', '""') || '"' END, CASE WHEN x.grantor <> t.owner THEN pg_get_userbyid(x.grantor) END,
  x.is_grantable, x.grantee IS NULL
FROM (
  SELECT CASE c.relkind WHEN 'S' THEN 'SEQUENCE ' ELSE 'TABLE ' END AS kind, format('%I.%I', n.nspname, c.relname) AS name,
    '' AS column, c.relowner AS owner,
    coalesce(c.relacl, acldefault(CASE c.relkind WHEN 'S' THEN 's' ELSE 'r' END::"char", c.relowner)) AS rights
  FROM gone g JOIN pg_class c ON g.c = 'pg_class'::regclass AND c.oid = g.o AND c.relkind IN ('r', 'p', 'v', 'm', 'S')
  JOIN pg_namespace n ON n.oid = c.relnamespace
  UNION ALL
  SELECT 'TABLE ', r.name, format(' (%I)', a.attname), r.relowner, a.attacl
  FROM rels r JOIN pg_attribute a ON a.attrelid = r.oid AND a.attnum > 0 AND NOT a.attisdropped) t
LEFT JOIN LATERAL aclexplode(t.rights) x ON true)";

}  // namespace

TPostgreSQLGrants::TPostgreSQLGrants(TPostgreSQLSession& Session, std::string_view What, const std::string& Oid)
    : FSession(Session), FRights(Read(Session, What, Oid)) {}

TPostgreSQLGrants::TRights TPostgreSQLGrants::Read(TPostgreSQLSession& Session, std::string_view What,
                                                   const std::string& Oid) {
  const TPostgreSQLResult Rows = Session.Query(What, PostgreSQLAround(RightsBody), {Oid.c_str()});
  TRights Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    std::set<TGrant>& Grants = Result[{Rows.Copy(Row, 0), Rows.Copy(Row, 1)}];
    if (!Rows.Boolean(Row, 6))
      Grants.insert({Rows.Copy(Row, 2), Rows.Copy(Row, 3), Rows.Copy(Row, 4), Rows.Boolean(Row, 5)});
  }
  return Result;
}

void TPostgreSQLGrants::Rename(const std::string& Before, const std::string& After) {
  const auto Found = FRights.find({"SEQUENCE " + Before, ""});
  if (Found == FRights.end()) return;
  std::set<TGrant> Grants = std::move(Found->second);
  FRights.erase(Found);
  FRights[{"SEQUENCE " + After, ""}] = std::move(Grants);
}

void TPostgreSQLGrants::PutBack(const std::string& Oid) {
  const TRights Now = Read(FSession, "Cannot read rights", Oid);
  // Those on whole tables come first, since who has them may have granted those on columns.
  for (const auto& [Target, Grants] : FRights) {
    const auto There = Now.find(Target);
    if (There == Now.end() || There->second == Grants) continue;
    std::set<std::string> Grantees;
    for (const TGrant& Grant : There->second) Grantees.insert(Grant.Grantee);
    for (const std::string& Grantee : Grantees)
      FSession.Query(Format("Cannot take rights on %s back", Target.Relation),
                     Format("REVOKE ALL%s ON %s FROM %s CASCADE", Target.Column, Target.Relation, Grantee));
    Give(Target, Grants);
  }
  const TRights After = Read(FSession, "Cannot read rights", Oid);
  for (const auto& [Target, Grants] : FRights)
    if (const auto There = After.find(Target); There != After.end() && There->second != Grants)
      throw EDatabaseError(Format("Cannot put back the rights on %s%s: the server grants others than there were",
                                  Target.Relation, Target.Column),
                           {.Code = TErrorCode::DatabaseAccess});
}

bool TPostgreSQLGrants::MayGive(const TTarget& Target, const TGrant& Grant) const {
  return Grant.Grantor.empty() ||
         std::any_of(FGiven.begin(), FGiven.end(), [&](const std::pair<TTarget, TGrant>& Given) {
           const auto& [On, By] = Given;
           return On.Relation == Target.Relation && (On.Column.empty() || On.Column == Target.Column) &&
                  By.Privilege == Grant.Privilege && By.Grantable && By.Grantee == QuoteStandardName(Grant.Grantor);
         });
}

/// Nobody can grant before having been granted the option to.
void TPostgreSQLGrants::Give(const TTarget& Target, const std::set<TGrant>& Grants) {
  const std::string What = Format("Cannot put back the rights on %s%s", Target.Relation, Target.Column);
  std::vector<TGrant> Left(Grants.begin(), Grants.end());
  while (!Left.empty()) {
    auto Next = std::find_if(Left.begin(), Left.end(), [&](const TGrant& Grant) { return MayGive(Target, Grant); });
    if (Next == Left.end())
      throw EDatabaseError(Format("%s: '%s' may no longer grant them", What, Left.front().Grantor),
                           {.Code = TErrorCode::DatabaseAccess});
    std::optional<TPostgreSQLLocalSetting> Role;
    if (!Next->Grantor.empty()) Role.emplace(FSession, "role", Next->Grantor);
    FSession.Query(What, Format("GRANT %s%s ON %s TO %s%s", Next->Privilege, Target.Column, Target.Relation,
                                Next->Grantee, Next->Grantable ? " WITH GRANT OPTION" : ""));
    FGiven.emplace(Target, *Next);
    Left.erase(Next);
  }
}

}  // namespace velkrund
