#include "jobs/tables/TableSearch.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"

namespace velkrund {

void TTableSearch::Missing(const std::string& Name, const std::string& For) const {
  std::vector<std::string> Tables;
  for (const TTableInfo& Table : FManager.Tables(FDatabaseName)) Tables.push_back(FullName(Table));
  const std::string Content = Tables.empty() ? ": it has no tables" : ContentHint(Name, Tables, ": it has ");
  throw EDatabaseError(Format("There is no table '%s'%s in the database %s%s", Name, For, FDatabaseText, Content),
                       {.Code = TErrorCode::TableMissing, .Table = Name, .Database = FDatabaseText});
}

void TTableSearch::RequireField(TTable& Table, const std::string& Field) const {
  if (Table.FindField(Field)) return;
  std::vector<std::string> Fields;
  for (int Index = 0; Index < Table.Record().FieldCount(); ++Index)
    Fields.push_back(Table.Record().Fields(Index).Name());
  throw EDatabaseError(
      Format("There is no field '%s' in the table '%s'%s", Field, Table.TableName(),
             ContentHint(Field, Fields, ": it has ")),
      {.Code = TErrorCode::FieldMissing, .Table = Table.TableName(), .Column = Field, .Database = FDatabaseText});
}

}  // namespace velkrund
