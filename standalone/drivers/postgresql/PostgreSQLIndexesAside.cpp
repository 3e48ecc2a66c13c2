#include "standalone/drivers/postgresql/PostgreSQLIndexesAside.h"

#include <algorithm>

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLLocalSetting.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr const char* LookFailed = "Cannot look for the indexes of a load";

/// Those of the table $1 in the order in which they were made, whether each serves queries alone, and whether it would
/// come back just as it was. What the planner has found out about an expression goes with its index, and nobody can put
/// it back.
std::string IndexesStatement() {
  return CatalogueStatement(
      "SELECT pg_catalog.quote_ident(n.nspname) || '.' || pg_catalog.quote_ident(x.relname), "
      "pg_catalog.pg_get_indexdef(x.oid), NOT (i.indisunique OR i.indisprimary OR i.indisexclusion), "
      "i.indisvalid AND i.indisready AND i.indislive AND NOT (i.indisunique OR i.indisexclusion OR i.indisclustered OR "
      "i.indisreplident) AND x.reltablespace = '0' "
      "AND NOT EXISTS (SELECT FROM pg_catalog.pg_description d "
      "WHERE d.classoid = 'pg_catalog.pg_class'::pg_catalog.regclass AND d.objoid = x.oid) "
      "AND NOT EXISTS (SELECT FROM pg_catalog.pg_attribute a "
      "WHERE a.attrelid = x.oid AND coalesce(a.attstattarget, '-1') <> '-1') "
      "AND NOT EXISTS (SELECT FROM pg_catalog.pg_attribute a JOIN pg_catalog.pg_attribute c ON c.attrelid = t.oid AND "
      "c.attnum = i.indkey[a.attnum OPERATOR(pg_catalog.-) 1] WHERE a.attrelid = x.oid AND a.attname <> c.attname) "
      "AND NOT EXISTS (SELECT FROM pg_catalog.pg_stats s WHERE s.schemaname = n.nspname AND s.tablename = x.relname) "
      "AND NOT EXISTS (SELECT FROM pg_catalog.pg_depend d "
      "WHERE d.refclassid = 'pg_catalog.pg_class'::pg_catalog.regclass AND d.refobjid = x.oid) "
      "AND NOT EXISTS (SELECT FROM pg_catalog.pg_depend d WHERE d.classid = "
      "'pg_catalog.pg_class'::pg_catalog.regclass AND d.objid = x.oid AND d.deptype OPERATOR(pg_catalog.<>) ALL "
      "('{a,n}')) FROM pg_catalog.pg_index i JOIN pg_catalog.pg_class x ON x.oid = i.indexrelid "
      "JOIN pg_catalog.pg_namespace n ON n.oid = x.relnamespace JOIN pg_catalog.pg_class t ON t.oid = i.indrelid "
      "WHERE t.oid = $1::pg_catalog.text::pg_catalog.regclass AND t.relkind = 'r' AND NOT t.relispartition AND "
      "NOT EXISTS (SELECT FROM pg_catalog.pg_inherits h WHERE h.inhrelid = x.oid) ORDER BY x.oid");
}

}  // namespace

/// What making an index asks for.
bool TPostgreSQLIndexesAside::MayChange(TPostgreSQLSession& Session, const TTableInfo& Table) {
  const std::string Name = Session.Dialect().QualifiedName(Table);
  return Session
      .Query(LookFailed,
             CatalogueStatement("SELECT pg_catalog.pg_has_role(c.relowner, 'USAGE') AND "
                                "pg_catalog.has_schema_privilege(c.relnamespace, 'CREATE') FROM pg_catalog.pg_class c "
                                "WHERE c.oid = $1::pg_catalog.text::pg_catalog.regclass"),
             {Name.c_str()})
      .Boolean(0, 0);
}

std::vector<TPostgreSQLIndexesAside::TIndex> TPostgreSQLIndexesAside::Indexes(const TTableInfo& Table) {
  const std::string Name = FSession.Dialect().QualifiedName(Table);
  const TPostgreSQLResult Rows = FSession.Query(LookFailed, IndexesStatement(), {Name.c_str()});
  std::vector<TIndex> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row)
    Result.push_back({Rows.Copy(Row, 0), Rows.Copy(Row, 1), Rows.Boolean(Row, 2), Rows.Boolean(Row, 3)});
  return Result;
}

bool TPostgreSQLIndexesAside::Any(std::string_view Rows) {
  return FSession.Query(LookFailed, CatalogueStatement(Format("SELECT EXISTS (SELECT FROM %s)", Rows))).Boolean(0, 0);
}

bool TPostgreSQLIndexesAside::LockAtOnce(const TTableInfo& Table) {
  FSession.Query(LookFailed, "SAVEPOINT velkrund_indexes");
  try {
    FSession.Query(LookFailed,
                   Format("LOCK TABLE ONLY %s IN ACCESS EXCLUSIVE MODE NOWAIT", FSession.Dialect().SQLName(Table)));
  } catch (const EDatabaseError& Error) {
    if (Error.Info().Code != TErrorCode::DatabaseBusy) throw;
    FSession.Query(LookFailed, "ROLLBACK TO velkrund_indexes");
    FSession.Query(LookFailed, "RELEASE velkrund_indexes");
    return false;
  }
  FSession.Query(LookFailed, "RELEASE velkrund_indexes");
  return true;
}

TIndexObstacle TPostgreSQLIndexesAside::Drop(const TTableInfo& Table, bool Locked) {
  std::vector<TIndex> Indexes = this->Indexes(Table);
  // What was made before one that stays would come to stand behind it, where the planner takes the first that will do.
  const auto Stays = std::find_if(Indexes.rbegin(), Indexes.rend(), [](const TIndex& One) { return !One.ComesBack; });
  const bool AnyStays = std::any_of(Stays, Indexes.rend(), [](const TIndex& One) { return One.ForQueries; });
  const TIndexObstacle Rest = AnyStays ? TIndexObstacle::Special : TIndexObstacle::None;
  Indexes.erase(Indexes.begin(), Stays.base());
  if (Indexes.empty()) return Rest;
  if (!MayChange(FSession, Table)) return TIndexObstacle::MissingRight;
  if (Any("pg_catalog.pg_event_trigger WHERE evtenabled <> 'D'")) return TIndexObstacle::Watched;
  // The question itself is one without a name.
  if (Any("pg_catalog.pg_cursors WHERE name <> ''")) return TIndexObstacle::CursorOpen;
  if (!Locked && !LockAtOnce(Table)) return TIndexObstacle::InUse;
  for (const TIndex& Index : Indexes)
    FSession.Query(Format("Cannot drop the index %s for the load", Index.Name), "DROP INDEX " + Index.Name);
  FAside.insert_or_assign(FullName(Table), std::move(Indexes));
  return Rest;
}

std::size_t TPostgreSQLIndexesAside::Dropped(const TTableInfo& Table) const {
  const auto Found = FAside.find(FullName(Table));
  return Found == FAside.end() ? 0 : Found->second.size();
}

void TPostgreSQLIndexesAside::Make(const TTableInfo& Table) {
  const auto Found = FAside.find(FullName(Table));
  if (Found == FAside.end()) return;
  const std::vector<TIndex> Indexes = std::move(Found->second);
  FAside.erase(Found);
  // They stood in the database's own.
  const TPostgreSQLLocalSetting Tablespace(FSession, "default_tablespace", "");
  for (const TIndex& Index : Indexes) {
    const std::string What =
        Format("Cannot make the index %s again behind the rows of '%s'", Index.Name, FullName(Table));
    FSession.Query(What, Index.Definition);
    const std::string Now =
        FSession
            .Query(What, "SELECT pg_catalog.pg_get_indexdef($1::pg_catalog.text::pg_catalog.regclass)",
                   {Index.Name.c_str()})
            .Copy(0, 0);
    if (Now != Index.Definition)
      throw EDatabaseError(Format("%s: it would be another one: %s", What, Now), {.Table = FullName(Table)});
  }
}

}  // namespace velkrund
