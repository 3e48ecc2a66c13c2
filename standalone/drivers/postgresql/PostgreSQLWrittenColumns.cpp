#include "standalone/drivers/postgresql/PostgreSQLWrittenColumns.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

void CheckTakesRows(const TTableInfo& Table, const TPostgreSQLTable& Known, bool ReadOnly, const std::string& What) {
  if (Known.IsMaterializedView()) throw EDatabaseError(What + ": it is a materialized view");
  if (Table.Kind == TTableKind::View) throw EDatabaseError(What + ": it is a view");
  if (ReadOnly)
    throw EDatabaseError(What + ": the database is opened for reading only", {.Code = TErrorCode::DatabaseReadOnly});
}

}  // namespace

std::vector<TPostgreSQLColumn> PostgreSQLWrittenColumns(const TPostgreSQLSession& Session,
                                                        const TTableDescription& Table, const TPostgreSQLTable& Known,
                                                        std::span<const int> Columns, const std::string& What) {
  CheckTakesRows(Table.Table, Known, Session.ReadOnly(), What);
  std::vector<TPostgreSQLColumn> Result;
  for (const int Index : Columns) {
    Result.push_back(ColumnOf(Known, Table.Columns[static_cast<std::size_t>(Index)].Name, What));
    if (Result.back().Info.Generated)
      throw EDatabaseError(Format("%s: the engine computes its column '%s'", What, Result.back().Info.Name));
  }
  return Result;
}

}  // namespace velkrund
