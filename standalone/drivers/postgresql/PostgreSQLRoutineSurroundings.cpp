#include "standalone/drivers/postgresql/PostgreSQLRoutineSurroundings.h"

#include <utility>

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Of the routine $2 in the schema $1.
constexpr const char* FactsStatement =
    "SELECT p.oid, pg_catalog.quote_ident(pg_catalog.pg_get_userbyid(p.proowner)), "
    "pg_catalog.obj_description(p.oid, 'pg_proc'), p.prosecdef FROM pg_catalog.pg_proc p "
    "JOIN pg_catalog.pg_namespace n ON n.oid = p.pronamespace "
    "WHERE n.nspname = $1::pg_catalog.text AND p.proname = $2::pg_catalog.text";

/// On the routine $1.
constexpr const char* RightsStatement =
    "SELECT CASE WHEN a.grantee = '0' THEN 'PUBLIC' "
    "ELSE pg_catalog.quote_ident(pg_catalog.pg_get_userbyid(a.grantee)) END, "
    "pg_catalog.quote_ident(pg_catalog.pg_get_userbyid(a.grantor)), a.is_grantable FROM pg_catalog.pg_proc p "
    "CROSS JOIN LATERAL pg_catalog.aclexplode(coalesce(p.proacl, pg_catalog.acldefault('f', p.proowner))) a "
    "WHERE p.oid = $1::pg_catalog.oid ORDER BY 1, 2, 3";

/// Of the routine $1: names, and the words as the engine prints them, before the body.
constexpr const char* SettingsStatement =
    "SELECT k.name, (SELECT pg_catalog.ltrim(l.line) FROM pg_catalog.regexp_split_to_table("
    "pg_catalog.pg_get_functiondef(p.oid), pg_catalog.chr(10)) AS l (line) WHERE pg_catalog.starts_with(l.line, "
    "pg_catalog.concat(' SET ', pg_catalog.quote_ident(k.name), ' TO ')) LIMIT 1) FROM pg_catalog.pg_proc p "
    "CROSS JOIN LATERAL (SELECT pg_catalog.split_part(c.setting, '=', 1) AS name "
    "FROM pg_catalog.unnest(p.proconfig) AS c (setting)) AS k WHERE p.oid = $1::pg_catalog.oid";

}  // namespace

TPostgreSQLRoutineSurroundings::TPostgreSQLRoutineSurroundings(TPostgreSQLSession& Session, TTableInfo Routine)
    : FSession(Session),
      FRoutine(std::move(Routine)),
      FWhat(Format("Cannot keep what belongs to procedure '%s'", FullName(FRoutine))),
      FName(FSession.Dialect().QualifiedName(FRoutine)) {}

TPostgreSQLRoutineSurroundings::TFacts TPostgreSQLRoutineSurroundings::Read() const {
  const TPostgreSQLResult Facts =
      FSession.Query(FWhat, CatalogueStatement(FactsStatement),
                     {FSession.Dialect().SchemaOf(FRoutine).c_str(), FRoutine.Name.c_str()});
  if (Facts.RowCount() != 1) throw EDatabaseError(Format("%s: it is not the only one of its name", FWhat));
  const std::string Oid = Facts.Copy(0, 0);
  TFacts Result{Facts.Copy(0, 1), Facts.Copy(0, 2), Facts.Boolean(0, 3), {}, {}};
  const TPostgreSQLResult Rights = FSession.Query(FWhat, CatalogueStatement(RightsStatement), {Oid.c_str()});
  for (int Row = 0; Row < Rights.RowCount(); ++Row)
    Result.Rights.push_back({Rights.Copy(Row, 0), Rights.Copy(Row, 1), Rights.Boolean(Row, 2)});
  const TPostgreSQLResult Settings = FSession.Query(FWhat, CatalogueStatement(SettingsStatement), {Oid.c_str()});
  for (int Row = 0; Row < Settings.RowCount(); ++Row) Result.Settings[Settings.Copy(Row, 0)] = Settings.Copy(Row, 1);
  return Result;
}

void TPostgreSQLRoutineSurroundings::Run(const std::string& Statement) const { FSession.Query(FWhat, Statement); }

/// Rights are changed without a lock. A change that changes nothing waits for those of others and fails behind one that
/// was committed; then it keeps them out.
void TPostgreSQLRoutineSurroundings::SetAside() {
  Run(Format("ALTER ROUTINE %s SECURITY %s", FName, Read().IsDefiner ? "DEFINER" : "INVOKER"));
  FBefore = Read();
}

void TPostgreSQLRoutineSurroundings::PutBack(TPutBack) {
  const TFacts Now = Read();
  if (Now.Owner != FBefore.Owner) Run(Format("ALTER ROUTINE %s OWNER TO %s", FName, FBefore.Owner));
  for (const auto& [Name, Words] : FBefore.Settings)
    if (!Now.Settings.contains(Name)) Run(Format("ALTER ROUTINE %s %s", FName, Words));
  if (Now.Comment.empty() && !FBefore.Comment.empty())
    Run(Format("COMMENT ON ROUTINE %s IS %s", FName, QuotePostgreSQLText(FBefore.Comment)));
  // The rights of an owner go with the name.
  PutBackRights(Read());
}

void TPostgreSQLRoutineSurroundings::PutBackRights(const TFacts& Now) const {
  if (Now.Rights == FBefore.Rights) return;
  for (const TRight& Right : Now.Rights) Run(Format("REVOKE ALL ON ROUTINE %s FROM %s", FName, Right.Grantee));
  for (const TRight& Right : FBefore.Rights)
    Run(Format("GRANT EXECUTE ON ROUTINE %s TO %s%s", FName, Right.Grantee,
               Right.Grantable ? " WITH GRANT OPTION" : ""));
  if (Read().Rights != FBefore.Rights)
    throw EDatabaseError(Format("%s: rights on it were granted by others than its owner; revoke them first", FWhat));
}

}  // namespace velkrund
