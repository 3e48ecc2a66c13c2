#include "standalone/drivers/sqlite/SQLiteRowAccess.h"

#include "standalone/drivers/sqlite/SQLiteAppender.h"
#include "standalone/drivers/sqlite/SQLiteCursor.h"
#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

/// A trigger can drop single rows, and a reference to a row of the same table is checked when the statement ends.
bool RowsDependOnStatement(sqlite3* Database, const std::string& Table) {
  TSQLiteStatement Found(
      Database,
      "SELECT 1 FROM pragma_foreign_keys WHERE foreign_keys UNION ALL "
      "SELECT 1 FROM main.sqlite_schema WHERE type = 'trigger' AND lower(tbl_name) = lower(?1) UNION ALL "
      "SELECT 1 FROM sqlite_temp_schema WHERE type = 'trigger' AND lower(tbl_name) = lower(?1)",
      Format("Cannot append to table '%s'", Table));
  return Found.BindText(1, Table).Step();
}

/// A single key column declared as INTEGER is the row number itself, unless the key needed an index of its own.
int RowNumberColumn(sqlite3* Database, const TTableDescription& Table, bool WithoutRowId) {
  int Result = -1;
  for (int I = 0; I < static_cast<int>(Table.Columns.size()); ++I) {
    const TColumnInfo& Column = Table.Columns[static_cast<std::size_t>(I)];
    if (Column.KeyPosition > 1) return -1;
    if (Column.KeyPosition == 1 && SameAsciiWord(Column.DeclaredType, "INTEGER")) Result = I;
  }
  if (WithoutRowId || Result < 0) return -1;
  TSQLiteStatement KeyIndex(Database, "SELECT 1 FROM pragma_index_list(?1, 'main') WHERE origin = 'pk'",
                            Format("Cannot append to table '%s'", Table.Table.Name));
  return KeyIndex.BindText(1, Table.Table.Name).Step() ? -1 : Result;
}

}  // namespace

std::unique_ptr<TCursor> TSQLiteRowAccess::OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                                      std::span<const int> Order) {
  return std::make_unique<TSQLiteCursor>(FDatabase.Handle(), Table, Columns, Order, FDatabase.Texts().Wide);
}

std::unique_ptr<TBulkAppender> TSQLiteRowAccess::OpenAppender(const TTableDescription& Table,
                                                              std::span<const int> Columns,
                                                              const TAppendOptions& Options) {
  const std::string What = Format("Cannot append to table '%s'", Table.Table.Name);
  if (Table.Table.Kind == TTableKind::View) throw EDatabaseError(What + ": it is a view");
  if (FReadOnly)
    throw EDatabaseError(What + ": the database is opened for reading only", {.Code = TErrorCode::DatabaseReadOnly});
  sqlite3* Database = FDatabase.Handle();
  TSQLiteAppender::TTraits Traits;
  Traits.Texts = FDatabase.Texts();
  TSQLiteStatement Info(Database, "SELECT strict, wr FROM pragma_table_list(?1) WHERE schema = 'main'", What);
  if (!Info.BindText(1, Table.Table.Name).Step())
    throw EDatabaseError(What + ": the table does not exist", {.Code = TErrorCode::TableMissing});
  Traits.Strict = Info.Integer(0) != 0;
  Traits.RowNumberColumn = RowNumberColumn(Database, Table, Info.Integer(1) != 0);
  Traits.OneByOne = Table.Table.Kind != TTableKind::Table || RowsDependOnStatement(Database, Table.Table.Name);
  return std::make_unique<TSQLiteAppender>(Database, Table, Columns, Options, Traits);
}

}  // namespace velkrund
