#include "standalone/tables/DriverBaseManager.h"

#include <algorithm>
#include <vector>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// The exact name first; -1: the table has none of it.
int FieldOf(const TTableDescription& Table, const std::string& Name) {
  if (const int Exact = IndexOf(Table, Name); Exact >= 0) return Exact;
  const auto Found = std::find_if(Table.Columns.begin(), Table.Columns.end(),
                                  [&](const TColumnInfo& Column) { return SameText(Column.Name, Name); });
  return Found == Table.Columns.end() ? -1 : static_cast<int>(Found - Table.Columns.begin());
}

int RequiredField(const TTableDescription& Table, const std::string& Name) {
  const int Index = FieldOf(Table, Name);
  if (Index >= 0) return Index;
  throw EDatabaseError(Format("Cannot copy rows: table '%s' has no field '%s'", FullName(Table.Table), Name),
                       {.Code = TErrorCode::FieldMissing, .Table = FullName(Table.Table), .Column = Name});
}

}  // namespace

TTableDescription TDriverBaseManager::Description(const std::string& TableName) const {
  const std::optional<TTableInfo> Found = FConnection.Schema().FindTable(TableName);
  if (!Found)
    throw EDatabaseError(Format("There is no table '%s' in the database", TableName),
                         {.Code = TErrorCode::TableMissing, .Table = TableName});
  return FConnection.Schema().Describe(*Found);
}

std::int64_t TDriverBaseManager::CopyTableData(const std::string& Source, const std::string& Target, bool Replace) {
  const TTableDescription From = Description(Source), To = Description(Target);
  std::vector<TColumnPair> Pairs;
  for (std::size_t Index = 0; Index < From.Columns.size(); ++Index) {
    const int Field = RequiredField(To, From.Columns[Index].Name);
    if (!To.Columns[static_cast<std::size_t>(Field)].Generated) Pairs.push_back({static_cast<int>(Index), Field});
  }
  if (Replace) FConnection.Execute("DELETE FROM " + FConnection.Dialect().SQLName(To.Table));
  if (Pairs.empty() && !FConnection.Schema().HasRows(From.Table)) return 0;
  return FConnection.Rows().CopyRows(From, To, Pairs);
}

std::optional<std::int64_t> TDriverBaseManager::CopyFields(const std::string& Source, const std::string& Target,
                                                           const TFieldPairs& Fields) {
  const TTableDescription From = Description(Source), To = Description(Target);
  std::vector<TColumnPair> Pairs;
  for (const auto& [Old, New] : Fields) Pairs.push_back({RequiredField(From, Old), RequiredField(To, New)});
  if (!FConnection.Rows().CopiesExactly(From, To, Pairs)) return std::nullopt;
  return FConnection.Rows().CopyRows(From, To, Pairs);
}

void TDriverBaseManager::DropTable(const std::string& TableName) {
  const TTableDescription Table = Description(TableName);
  FConnection.Execute("DROP TABLE " + FConnection.Dialect().SQLName(Table.Table));
}

}  // namespace velkrund
