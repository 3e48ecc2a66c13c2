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
  const char* What;
};

constexpr TKindLeftOut KindsLeftOut[] = {
    {TTableKind::View, "views"},
    {TTableKind::Foreign, "tables whose rows are on other servers"},
    {TTableKind::IndexOfTable, "indexes of words over the rows of other tables, to be rebuilt when these are loaded"},
    {TTableKind::IndexAlone, "indexes of words that do not keep the texts"},
    {TTableKind::Computed, "virtual tables whose rows are computed or kept elsewhere"},
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
                                        std::vector<std::string>& Notes) {
  std::map<TTableKind, std::vector<std::string>> Names;
  for (const TTableInfo& Table : Manager.Tables(DatabaseName))
    Names[Table.Kind == TTableKind::Extension ? TTableKind::Table : Table.Kind].push_back(FullName(Table));
  std::vector<std::string> Result = std::move(Names[TTableKind::Table]);
  if (Result.empty()) Notes.emplace_back("there are no tables");
  for (const auto& [Kind, What] : KindsLeftOut)
    if (!Names[Kind].empty()) Notes.push_back(Format("left out, being %s: %s", What, Joined(Names[Kind])));
  return Result;
}

}  // namespace velkrund
