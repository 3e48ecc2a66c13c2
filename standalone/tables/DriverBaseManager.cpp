#include "standalone/tables/DriverBaseManager.h"

#include <vector>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

int RequiredField(const TTableDescription& Table, const std::string& Name) {
  const int Index = IndexInAnyCase(Table, Name);
  if (Index >= 0) return Index;
  throw EDatabaseError(Format("Cannot copy rows: table '%s' has no field '%s'", FullName(Table.Table), Name),
                       {.Code = TErrorCode::FieldMissing, .Table = FullName(Table.Table), .Column = Name});
}

}  // namespace

TTableDescription TDriverBaseManager::Description(TConnection& Connection, const std::string& TableName) {
  const std::optional<TTableInfo> Found = Connection.Schema().FindTable(TableName);
  if (!Found)
    throw EDatabaseError(Format("There is no table '%s' in the database", TableName),
                         {.Code = TErrorCode::TableMissing, .Table = TableName});
  return Connection.Schema().Describe(*Found);
}

std::int64_t TDriverBaseManager::CopyTableData(const std::string& Source, const std::string& Target, bool Replace) {
  const TTableDescription From = Description(FConnection, Source), To = Description(FConnection, Target);
  std::vector<TColumnPair> Pairs;
  for (std::size_t Index = 0; Index < From.Columns.size(); ++Index) {
    const int Field = RequiredField(To, From.Columns[Index].Name);
    if (!To.Columns[static_cast<std::size_t>(Field)].Generated) Pairs.push_back({static_cast<int>(Index), Field});
  }
  if (Replace) FConnection.Execute("DELETE FROM " + FConnection.Dialect().SQLName(To.Table));
  if (Pairs.empty() && !FConnection.Schema().HasRows(From.Table)) return 0;
  return FConnection.Rows().CopyRows(From, To, Pairs);
}

std::optional<std::int64_t> TDriverBaseManager::CopyFields(const std::string& SourceDatabase, const std::string& Source,
                                                           const std::string& Target, const TFieldPairs& Fields,
                                                           bool MovesAutoSequence) {
  TConnection& From = FConnections ? FConnections(SourceDatabase) : FConnection;
  TRowCopier* const Copier = FConnection.CopierFrom(From);
  if (!Copier) return std::nullopt;
  const TTableDescription Old = Description(From, Source), New = Description(FConnection, Target);
  std::vector<TColumnPair> Pairs;
  for (const auto& [OldName, NewName] : Fields)
    Pairs.push_back({RequiredField(Old, OldName), RequiredField(New, NewName)});
  if (!Copier->CopiesExactly(Old, New, Pairs)) return std::nullopt;
  const std::int64_t Rows = Copier->CopyRows(Old, New, Pairs);
  if (MovesAutoSequence) FConnection.Rows().MoveAutoSequence(New, Pairs);
  return Rows;
}

void TDriverBaseManager::DropTable(const std::string& TableName) {
  const TTableDescription Table = Description(FConnection, TableName);
  FConnection.Execute("DROP TABLE " + FConnection.Dialect().SQLName(Table.Table));
}

}  // namespace velkrund
