#include "standalone/drivers/sqlite/SQLiteRowAccess.h"

#include <sqlite3.h>

#include "standalone/drivers/RowCopy.h"
#include "standalone/drivers/sqlite/SQLiteAppender.h"
#include "standalone/drivers/sqlite/SQLiteCursor.h"
#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "standalone/drivers/sqlite/SQLiteRowCopy.h"
#include "standalone/drivers/sqlite/SQLiteSchemaReader.h"
#include "standalone/drivers/sqlite/SQLiteTriggerText.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {
namespace {

/// Those that fire, of the database and of the connection.
std::vector<std::string> InsertTriggers(sqlite3* Database, TSQLiteSchemaReader& Schema, const std::string& Table) {
  std::vector<std::string> Result;
  int AreOn = 1;
  sqlite3_db_config(Database, SQLITE_DBCONFIG_ENABLE_TRIGGER, -1, &AreOn);
  if (AreOn == 0) return Result;
  for (const TTrigger& Trigger : Schema.KnownTriggers())
    if (Trigger.OnInsert && Trigger.Table.Name == Table) Result.push_back(Trigger.Name);
  static constexpr const char* AskTriggers =
      "SELECT name, sql FROM sqlite_temp_schema WHERE type = 'trigger' AND lower(tbl_name) = lower(?1)";
  auto Found = Schema.Memory().Ask(AskTriggers, Format("Cannot append to table '%s'", Table));
  Found->BindText(1, Table);
  while (Found->Step())
    if (SQLiteTriggerEvent(Found->Text(1)) == "INSERT") Result.push_back(Found->Text(0));
  return Result;
}

/// A reference to a row of the same table is checked when the statement ends.
bool EnforcesKeys(sqlite3* Database) {
  int Enforces = 0;
  sqlite3_db_config(Database, SQLITE_DBCONFIG_ENABLE_FKEY, -1, &Enforces);
  return Enforces != 0;
}

/// A single key column declared as INTEGER is the row number itself, unless the key needed an index of its own.
int RowNumberColumn(TSQLiteSchemaReader& Schema, const TTableDescription& Table, bool WithoutRowId) {
  int Result = -1;
  for (int I = 0; I < static_cast<int>(Table.Columns.size()); ++I) {
    const TColumnInfo& Column = Table.Columns[static_cast<std::size_t>(I)];
    if (Column.KeyPosition > 1) return -1;
    if (Column.KeyPosition == 1 && SameAsciiWord(Column.DeclaredType, "INTEGER")) Result = I;
  }
  if (WithoutRowId || Result < 0) return -1;
  static constexpr const char* AskKey = "SELECT 1 FROM pragma_index_list(?1, 'main') WHERE origin = 'pk'";
  auto KeyIndex = Schema.Memory().Ask(AskKey, Format("Cannot append to table '%s'", Table.Table.Name));
  return KeyIndex->BindText(1, Table.Table.Name).Step() ? -1 : Result;
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
  Traits.Texts.AllowLoss = Options.AllowLoss;
  const TSQLiteListedTable* const Listed = FSchema.Listed(Table.Table.Name);
  if (!Listed) throw EDatabaseError(What + ": the table does not exist", {.Code = TErrorCode::TableMissing});
  Traits.Strict = Listed->Strict;
  Traits.RowNumberColumn = RowNumberColumn(FSchema, Table, Listed->WithoutRowId);
  Traits.Triggers = InsertTriggers(Database, FSchema, Table.Table.Name);
  Traits.OneByOne = Table.Table.Kind != TTableKind::Table || !Traits.Triggers.empty() || EnforcesKeys(Database);
  try {
    return std::make_unique<TSQLiteAppender>(Database, Table, Columns, Options, Traits);
  } catch (const EDatabaseError& Error) {
    // The engine prepares triggers with the statement: one may ask for functions that it does not have.
    if (Traits.Triggers.empty()) throw;
    TErrorInfo Info = Error.Info();
    Info.Code = TErrorCode::TriggerRefused;
    throw EDatabaseError(Format("%s; in a trigger (%s)", Error.what(), JoinedInShort(Traits.Triggers)),
                         std::move(Info));
  }
}

TSQLiteCopiedTable TSQLiteRowAccess::Copied(const TTableDescription& Table, const std::string& What) {
  TSQLiteCopiedTable Result{Table};
  if (Table.Table.Kind != TTableKind::Table) return Result;
  const TSQLiteListedTable* const Listed = FSchema.Listed(Table.Table.Name);
  if (!Listed)
    throw EDatabaseError(Format("%s: there is no table '%s' in the database", What, Table.Table.Name),
                         {.Code = TErrorCode::TableMissing, .Table = Table.Table.Name});
  Result.Strict = Listed->Strict;
  Result.WithoutRowId = Listed->WithoutRowId;
  Result.RowNumberColumn = RowNumberColumn(FSchema, Table, Listed->WithoutRowId);
  return Result;
}

bool TSQLiteRowAccess::CopiesExactly(const TTableDescription& Source, const TTableDescription& Target,
                                     std::span<const TColumnPair> Pairs) {
  // On their way through records the texts of such a database are converted, and what cannot be is refused.
  if (FDatabase.Texts().Wide || Source.Table.Kind != TTableKind::Table || Target.Table.Kind != TTableKind::Table)
    return false;
  const std::string What = CopyFailed(Source.Table, Target.Table);
  return SQLiteCopiesExactly(Copied(Source, What), Copied(Target, What), Pairs) &&
         InsertTriggers(FDatabase.Handle(), FSchema, Target.Table.Name).empty();
}

std::int64_t TSQLiteRowAccess::CopyRows(const TTableDescription& Source, const TTableDescription& Target,
                                        std::span<const TColumnPair> Pairs) {
  const std::string What = CopyFailed(Source.Table, Target.Table);
  CheckTakesCopies(Source.Table, Target, Pairs, FReadOnly);
  CheckNothingActs(Source.Table, Target.Table, InsertTriggers(FDatabase.Handle(), FSchema, Target.Table.Name));
  // Numbers that are taken cannot be kept.
  const bool KeepsNumbers = !FSchema.HasRows(Target.Table);
  TSQLiteStatement Copy(FDatabase.Handle(),
                        SQLiteCopyStatement(Copied(Source, What), Copied(Target, What), Pairs, KeepsNumbers), What);
  sqlite3_stmt* const Handle = Copy.Handle();
  if (sqlite3_step(Handle) != SQLITE_DONE) RaiseSQLiteError(FDatabase.Handle(), What, {.Table = Target.Table.Name});
  return sqlite3_changes64(FDatabase.Handle());
}

}  // namespace velkrund
