#include "jobs/tables/TableSearch.h"

#include <map>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

struct TKindLeftOut {
  TTableKind Kind;
  const char* Key;
};

constexpr TKindLeftOut KindsLeftOut[] = {
    {TTableKind::View, "M_Velkrund_Jobs_LeftViews"},
    {TTableKind::Foreign, "M_Velkrund_Jobs_LeftForeign"},
    {TTableKind::IndexOfTable, "M_Velkrund_Jobs_LeftIndexes"},
    {TTableKind::IndexAlone, "M_Velkrund_Jobs_LeftIndexesAlone"},
    {TTableKind::Computed, "M_Velkrund_Jobs_LeftComputed"},
};

}  // namespace

void TTableSearch::Missing(const std::string& Name, const std::string& For) const {
  std::vector<std::string> Tables;
  for (const TTableInfo& Table : FManager.Tables(FDatabaseName)) Tables.push_back(FullName(Table));
  const std::string Content = Tables.empty() ? ": it has no tables" : ContentHint(Name, Tables, ": it has ");
  throw EDatabaseError(Format("There is no table '%s'%s in the database %s%s", Name, For, FDatabaseText, Content),
                       {.Code = TErrorCode::TableMissing, .Table = Name, .Database = FDatabaseText});
}

void TTableSearch::RefuseIndex(const TTableInfo& Table) const {
  if (Table.Kind != TTableKind::IndexOfTable && Table.Kind != TTableKind::IndexAlone) return;
  throw EDatabaseError(Format("The table '%s' has no rows of its own: it is an index of words%s", FullName(Table),
                              Table.Kind == TTableKind::IndexAlone ? " that does not keep the texts"
                                                                   : " over another table's rows. Take that one"),
                       {.Table = FullName(Table), .Database = FDatabaseText});
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

std::vector<std::string> TablesWithRows(TStandaloneManager& Manager, const std::string& DatabaseName,
                                        std::vector<TLText>& Notes) {
  std::map<TTableKind, std::vector<std::string>> Names;
  for (const TTableInfo& Table : Manager.Tables(DatabaseName))
    Names[Table.Kind == TTableKind::Extension ? TTableKind::Table : Table.Kind].push_back(FullName(Table));
  std::vector<std::string> Result = std::move(Names[TTableKind::Table]);
  if (Result.empty()) Notes.push_back(LText("M_Velkrund_Jobs_NoTables"));
  for (const auto& [Kind, Key] : KindsLeftOut)
    if (!Names[Kind].empty()) Notes.push_back(LText(Key, Joined(Names[Kind])));
  return Result;
}

}  // namespace velkrund
