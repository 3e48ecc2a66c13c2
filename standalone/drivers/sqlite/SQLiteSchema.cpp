// The schema half of TSQLiteConnection.

#include <sqlite3.h>

#include "standalone/drivers/sqlite/SQLiteAppender.h"
#include "standalone/drivers/sqlite/SQLiteConnection.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"
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

TTableKind KindOfTable(std::string_view Type) {
  if (Type == "view") return TTableKind::View;
  return Type == "virtual" ? TTableKind::Foreign : TTableKind::Table;
}

bool IsUserTable(std::string_view Name, std::string_view Type) {
  const auto Begins = [&](std::string_view Prefix) { return SameText(Name.substr(0, Prefix.size()), Prefix); };
  // Shadow tables hold the inside of a virtual table.
  return Type != "shadow" && !Begins("sqlite_") && !Begins(CataloguePrefix);
}

}  // namespace

std::vector<TTableInfo> TSQLiteConnection::Tables() {
  std::vector<TTableInfo> Result;
  TSQLiteStatement List(FDatabase.get(), "SELECT name, type FROM pragma_table_list WHERE schema = 'main' ORDER BY name",
                        "Can not list the tables");
  while (List.Step())
    if (IsUserTable(List.Text(0), List.Text(1))) Result.push_back({List.Text(0), {}, KindOfTable(List.Text(1))});
  return Result;
}

std::optional<TTableInfo> TSQLiteConnection::FindTable(std::string_view Name) {
  const std::string What = Format("Can not look for table '%s'", Name);
  // The names alone first: the list with its kinds prepares every view.
  std::vector<std::string> Found;
  TSQLiteStatement Names(FDatabase.get(),
                         "SELECT name FROM main.sqlite_schema WHERE type IN ('table', 'view') ORDER BY name", What);
  while (Names.Step()) {
    std::string Candidate = Names.Text(0);
    const bool Exact = Candidate == Name;
    if (Exact) Found.clear();
    if (Exact || SameText(Candidate, Name)) Found.push_back(std::move(Candidate));
    if (Exact) break;
  }
  if (Found.empty()) return std::nullopt;
  if (Found.size() > 1) {
    std::string All;
    for (const std::string& One : Found) All += (All.empty() ? "" : ", ") + QuoteStandardName(One);
    throw EDatabaseError(Format("%s: several go by that name: %s; name one in its own case", What, All));
  }
  TSQLiteStatement Info(FDatabase.get(), "SELECT type FROM pragma_table_list(?1) WHERE schema = 'main'", What);
  if (!Info.BindText(1, Found.front()).Step() || !IsUserTable(Found.front(), Info.Text(0))) return std::nullopt;
  return TTableInfo{Found.front(), {}, KindOfTable(Info.Text(0))};
}

TTableDescription TSQLiteConnection::Describe(const TTableInfo& Table) {
  TTableDescription Result{Table, {}};
  TSQLiteStatement Columns(
      FDatabase.get(), "SELECT name, type, \"notnull\", pk, hidden FROM pragma_table_xinfo(?1, 'main') ORDER BY cid",
      Format("Can not read the columns of table '%s'", Table.Name));
  Columns.BindText(1, Table.Name);
  while (Columns.Step()) {
    const std::int64_t Hidden = Columns.Integer(4);
    if (Hidden == HiddenOfVirtualTable) continue;
    TColumnInfo Column;
    Column.Name = Columns.Text(0);
    Column.DeclaredType = Columns.Text(1);
    Column.Kind = KindOf(Column.DeclaredType);
    Column.Nullable = Columns.Integer(2) == 0;
    Column.KeyPosition = static_cast<int>(Columns.Integer(3));
    Column.Generated = Hidden == GeneratedVirtual || Hidden == GeneratedStored;
    Result.Columns.push_back(std::move(Column));
  }
  if (Result.Columns.empty()) throw EDatabaseError(Format("There is no table '%s' in the database", Table.Name));
  return Result;
}

std::int64_t TSQLiteConnection::RowCount(const TTableInfo& Table) {
  TSQLiteStatement Count(FDatabase.get(), "SELECT count(*) FROM main." + QuoteStandardName(Table.Name),
                         Format("Can not count the rows of table '%s'", Table.Name));
  Count.Step();
  return Count.Integer(0);
}

std::optional<std::int64_t> TSQLiteConnection::TableBytes(const TTableInfo& Table) {
  if (!FCapabilities.TableSizes || Table.Kind != TTableKind::Table) return std::nullopt;
  TSQLiteStatement Bytes(FDatabase.get(),
                         "SELECT sum(pgsize) FROM dbstat('main', 1) WHERE name IN "
                         "(SELECT name FROM main.sqlite_schema WHERE tbl_name = ?1 AND rootpage > 0)",
                         Format("Can not measure table '%s'", Table.Name));
  Bytes.BindText(1, Table.Name).Step();
  return Bytes.Integer(0);
}

bool TSQLiteConnection::HasCatalogueTable(const std::string& Name) {
  TSQLiteStatement Found(FDatabase.get(), "SELECT 1 FROM main.sqlite_schema WHERE type = 'table' AND name = ?1",
                         Format("Can not look for table '%s'", Name));
  return Found.BindText(1, Name).Step();
}

std::unique_ptr<TBulkAppender> TSQLiteConnection::OpenAppender(const TTableDescription& Table,
                                                               std::span<const int> Columns,
                                                               const TAppendOptions& Options) {
  const std::string What = Format("Can not append to table '%s'", Table.Table.Name);
  if (Table.Table.Kind == TTableKind::View) throw EDatabaseError(What + ": it is a view");
  if (FCapabilities.ReadOnly) throw EDatabaseError(What + ": the database is opened for reading only");
  TSQLiteAppender::TTraits Traits;
  Traits.Texts = FTexts;
  TSQLiteStatement Info(FDatabase.get(), "SELECT strict, wr FROM pragma_table_list(?1) WHERE schema = 'main'", What);
  if (!Info.BindText(1, Table.Table.Name).Step()) throw EDatabaseError(What + ": the table does not exist");
  Traits.Strict = Info.Integer(0) != 0;
  Traits.RowNumberColumn = RowNumberColumn(Table, Info.Integer(1) != 0);
  Traits.OneByOne = Table.Table.Kind != TTableKind::Table || RowsDependOnStatement(Table.Table.Name);
  return std::make_unique<TSQLiteAppender>(FDatabase.get(), Table, Columns, Options, Traits);
}

/// A trigger can drop single rows, and a reference to a row of the same table is checked when the statement ends.
bool TSQLiteConnection::RowsDependOnStatement(const std::string& Table) {
  TSQLiteStatement Found(
      FDatabase.get(),
      "SELECT 1 FROM pragma_foreign_keys WHERE foreign_keys UNION ALL "
      "SELECT 1 FROM main.sqlite_schema WHERE type = 'trigger' AND lower(tbl_name) = lower(?1) UNION ALL "
      "SELECT 1 FROM sqlite_temp_schema WHERE type = 'trigger' AND lower(tbl_name) = lower(?1)",
      Format("Can not append to table '%s'", Table));
  return Found.BindText(1, Table).Step();
}

/// A single key column declared as INTEGER is the row number itself, unless the key needed an index of its own.
int TSQLiteConnection::RowNumberColumn(const TTableDescription& Table, bool WithoutRowId) {
  int Result = -1;
  for (int I = 0; I < static_cast<int>(Table.Columns.size()); ++I) {
    const TColumnInfo& Column = Table.Columns[static_cast<std::size_t>(I)];
    if (Column.KeyPosition > 1) return -1;
    if (Column.KeyPosition == 1 && SameAsciiWord(Column.DeclaredType, "INTEGER")) Result = I;
  }
  if (WithoutRowId || Result < 0) return -1;
  TSQLiteStatement KeyIndex(FDatabase.get(), "SELECT 1 FROM pragma_index_list(?1, 'main') WHERE origin = 'pk'",
                            Format("Can not append to table '%s'", Table.Table.Name));
  return KeyIndex.BindText(1, Table.Table.Name).Step() ? -1 : Result;
}

}  // namespace velkrund
