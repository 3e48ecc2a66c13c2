// What the engine tells of the columns of tables.

#include <algorithm>

#include "standalone/drivers/sqlite/SQLiteSchemaReader.h"
#include "standalone/drivers/sqlite/SQLiteTypes.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

// Values of the column "hidden" of PRAGMA table_xinfo.
constexpr std::int64_t HiddenOfVirtualTable = 1;
constexpr std::int64_t GeneratedVirtual = 2;
constexpr std::int64_t GeneratedStored = 3;

/// The columns of answers that describe a column, in this order.
constexpr const char* ColumnWords = "x.name, x.type, x.\"notnull\", x.pk, x.hidden";

/// The column that an answer stands on; First: the place of its name there.
TColumnInfo DescribedColumn(const TSQLiteStatement& Answer, int First) {
  TColumnInfo Result;
  Result.Name = Answer.Text(First);
  Result.DeclaredType = Answer.Text(First + 1);
  Result.Kind = KindOf(Result.DeclaredType);
  Result.Nullable = Answer.Integer(First + 2) == 0;
  Result.KeyPosition = static_cast<int>(Answer.Integer(First + 3));
  const std::int64_t Hidden = Answer.Integer(First + 4);
  Result.Generated = Hidden == GeneratedVirtual || Hidden == GeneratedStored;
  return Result;
}

/// The number by which rows go, as a column, under the first of its names that no other column has.
TColumnInfo RowNumberColumn(const std::vector<TColumnInfo>& Others) {
  TColumnInfo Result;
  for (const char* Name : {"oid", "_rowid_", "rowid"}) {
    const auto HasIt = [&](const TColumnInfo& Column) { return SameText(Column.Name, Name); };
    if (std::none_of(Others.begin(), Others.end(), HasIt)) Result.Name = Name;
  }
  Result.DeclaredType = "INTEGER";
  Result.Kind = KindOf(Result.DeclaredType);
  Result.Nullable = false;
  Result.KeyPosition = 1;
  return Result;
}

}  // namespace

/// Asking for all takes half as long a table: who has asked for so many will ask for most.
TTableDescription TSQLiteSchemaReader::Describe(const TTableInfo& Table) {
  constexpr std::size_t LeastAsked = 16, ShareAsked = 8;
  TSQLiteSchemaMemory::TContent& Content = FMemory.Now();
  auto& Known = Content.Descriptions;
  const auto Find = [&] { return Known.find(Table.Name); };
  auto Found = Find();
  if (Found == Known.end() && !Content.HasDescribedAll && Known.size() >= LeastAsked &&
      Known.size() >= Content.Tables.size() / ShareAsked) {
    DescribeAll(Content);
    Found = Find();
  }
  return Found != Known.end() ? Found->second : Known.emplace(Table.Name, ReadDescription(Table)).first->second;
}

/// But not views, which may be broken, and tables of extensions.
void TSQLiteSchemaReader::DescribeAll(TSQLiteSchemaMemory::TContent& Content) const {
  Content.HasDescribedAll = true;
  TSQLiteStatement Columns(
      FDatabase,
      Format("SELECT t.name, %s FROM main.sqlite_schema t CROSS JOIN pragma_table_xinfo(t.name, 'main') x WHERE t.type "
             "= 'table' AND t.rootpage > 0 ORDER BY t.rowid, x.cid",
             ColumnWords),
      About("columns"));
  std::map<std::string, TTableDescription> All;
  while (Columns.Step()) {
    TTableDescription& Table = All[Columns.Text(0)];
    Table.Columns.push_back(DescribedColumn(Columns, 1));
  }
  for (auto& [Name, Description] : All) Description.Table = {Name, {}, TTableKind::Table};
  Content.Descriptions.merge(All);
}

TTableDescription TSQLiteSchemaReader::ReadDescription(const TTableInfo& Table) {
  TTableDescription Result{Table, {}};
  const bool IsExtension = Table.Kind == TTableKind::Extension;
  const TSQLiteVirtualTable Kept = IsExtension ? Virtual(Table.Name) : TSQLiteVirtualTable();
  static const std::string AskColumns =
      Format("SELECT %s FROM pragma_table_xinfo(?1, 'main') x ORDER BY x.cid", ColumnWords);
  auto Columns = FMemory.Ask(AskColumns.c_str(), Format("Cannot read the columns of table '%s'", Table.Name));
  Columns->BindText(1, Table.Name);
  while (Columns->Step())
    if (Columns->Integer(4) != HiddenOfVirtualTable || SameText(Columns->Text(0), Kept.LanguageColumn))
      Result.Columns.push_back(DescribedColumn(*Columns, 0));
  if (Result.Columns.empty())
    throw EDatabaseError(Format("There is no table '%s' in the database", Table.Name),
                         {.Code = TErrorCode::TableMissing, .Table = Table.Name});
  if (Kept.HasRowNumbers)
    Result.Columns.insert(Result.Columns.begin(), RowNumberColumn(Result.Columns));
  else if (IsExtension)
    Result.Columns.front().KeyPosition = 1;
  return Result;
}

}  // namespace velkrund
