#include "standalone/drivers/sqlite/SQLiteRowAccess.h"

#include <sqlite3.h>

#include "standalone/drivers/RowCopy.h"
#include "standalone/drivers/Selection.h"
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
std::vector<std::string> InsertTriggers(const TSQLiteHandle& Database, TSQLiteSchemaReader& Schema,
                                        const std::string& Table) {
  std::vector<std::string> Result;
  int AreOn = 1;
  sqlite3_db_config(Database, SQLITE_DBCONFIG_ENABLE_TRIGGER, -1, &AreOn);
  if (AreOn == 0) return Result;
  for (const TTrigger& Trigger : Schema.TriggersOf(Table))
    if (Trigger.OnInsert) Result.push_back(Trigger.Name);
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

/// By number of the key's columns, the order in which the engine takes two texts for the same.
std::vector<std::string> KeyCollations(TSQLiteSchemaReader& Schema, const std::string& Table) {
  static constexpr const char* AskCollations =
      "SELECT x.coll FROM pragma_index_list(?1, 'main') l, pragma_index_xinfo(l.name, 'main') x "
      "WHERE l.origin = 'pk' AND x.key AND x.cid >= 0 ORDER BY x.seqno";
  auto Found = Schema.Memory().Ask(AskCollations, Format("Cannot append to table '%s'", Table));
  std::vector<std::string> Result;
  for (Found->BindText(1, Table); Found->Step();) Result.push_back(Found->Text(0));
  return Result;
}

/// Of the row with a record's key; places are those of its values. A record of the key alone changes nothing.
std::string UpdateText(const TTableDescription& Table, std::span<const int> Columns,
                       const std::vector<std::size_t>& Key, const std::vector<std::string>& Collations) {
  const auto Name = [&](std::size_t At) {
    return QuoteStandardName(Table.Columns[static_cast<std::size_t>(Columns[At])].Name);
  };
  std::string Where, Values;
  for (std::size_t I = 0; I < Key.size(); ++I) {
    Where += Format("%s%s = ?%d", Where.empty() ? " WHERE " : " AND ", Name(Key[I]), Key[I] + 1);
    if (I < Collations.size()) Where += " COLLATE " + QuoteStandardName(Collations[I]);
  }
  const std::string TableName = "main." + QuoteStandardName(Table.Table.Name);
  if (Key.size() == Columns.size()) return "SELECT 1 FROM " + TableName + Where;
  for (std::size_t At = 0; At < Columns.size(); ++At)
    Values += Format("%s%s = ?%d", Values.empty() ? "" : ", ", Name(At), At + 1);
  return "UPDATE OR ABORT " + TableName + " SET " + Values + Where;
}

}  // namespace

std::unique_ptr<TCursor> TSQLiteRowAccess::OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                                      const TWalkOptions& Options) {
  const std::string What = SelectionFailed(Format("Cannot read table '%s'", Table.Table.Name), Options.Condition);
  CheckSQLiteSelection(FDatabase.Handle(), Table, Options.Condition, What);
  TWalkOptions Own = Options;
  Own.Unmoved = Options.Unmoved && MayMove(Table);
  return std::make_unique<TSQLiteCursor>(FDatabase.Handle(), Table, Columns, Own, FDatabase.Texts().Wide);
}

/// Whether rows of another table can change these while they are appended there.
bool TSQLiteRowAccess::MayMove(const TTableDescription& Table) {
  constexpr const char* AskTemporary = "SELECT 1 FROM sqlite_temp_schema WHERE type = 'trigger'";
  if (Table.Table.Kind != TTableKind::Table || EnforcesKeys(FDatabase.Handle()) || !FSchema.KnownTriggers().empty())
    return true;
  return TSQLiteStatement(FDatabase.Handle(), AskTemporary, "Cannot read triggers").Step();
}

std::int64_t TSQLiteRowAccess::CountRows(const TTableDescription& Table, std::string_view Condition) {
  const std::string What = SelectionFailed(Format("Cannot count the rows of table '%s'", Table.Table.Name), Condition);
  CheckSQLiteSelection(FDatabase.Handle(), Table, Condition, What);
  TSQLiteStatement Count(
      FDatabase.Handle(),
      "SELECT count(*) FROM main." + QuoteStandardName(Table.Table.Name) + " AS T" + SelectionWords(Condition), What);
  Count.Step();
  return Count.Integer(0);
}

std::unique_ptr<TBulkAppender> TSQLiteRowAccess::OpenAppender(const TTableDescription& Table,
                                                              std::span<const int> Columns,
                                                              const TAppendOptions& Options) {
  const std::string What = Format("Cannot append to table '%s'", Table.Table.Name);
  if (Table.Table.Kind == TTableKind::View) throw EDatabaseError(What + ": it is a view");
  if (FReadOnly)
    throw EDatabaseError(What + ": the database is opened for reading only", {.Code = TErrorCode::DatabaseReadOnly});
  const TSQLiteHandle& Database = FDatabase.Handle();
  TSQLiteAppender::TTraits Traits;
  Traits.Texts = FDatabase.Texts();
  Traits.Texts.AllowLoss = Options.AllowLoss;
  const TSQLiteListedTable* const Listed = FSchema.Listed(Table.Table.Name);
  if (!Listed) throw EDatabaseError(What + ": the table does not exist", {.Code = TErrorCode::TableMissing});
  Traits.Strict = Listed->Strict;
  Traits.RowNumberColumn = RowNumberColumn(FSchema, Table, Listed->WithoutRowId);
  Traits.Triggers = InsertTriggers(Database, FSchema, Table.Table.Name);
  if (Options.UpdateByKey)
    Traits.Update =
        UpdateText(Table, Columns, KeyToUpdateBy(Table, Columns, Options), KeyCollations(FSchema, Table.Table.Name));
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

TSQLiteCopiedTable TSQLiteRowAccess::Copied(const TSource& End, const TTableDescription& Table,
                                            const std::string& What) {
  TSQLiteCopiedTable Result{Table, End.Name};
  if (Table.Table.Kind != TTableKind::Table) return Result;
  const TSQLiteListedTable* const Listed = End.Schema->Listed(Table.Table.Name);
  if (!Listed)
    throw EDatabaseError(Format("%s: there is no table '%s' in the database", What, Table.Table.Name),
                         {.Code = TErrorCode::TableMissing, .Table = Table.Table.Name});
  Result.Strict = Listed->Strict;
  Result.WithoutRowId = Listed->WithoutRowId;
  Result.RowNumberColumn = RowNumberColumn(*End.Schema, Table, Listed->WithoutRowId);
  return Result;
}

bool TSQLiteRowAccess::CopiesExactly(const TTableDescription& Source, const TTableDescription& Target,
                                     std::span<const TColumnPair> Pairs) {
  // On their way through records the texts of such a database are converted, and what cannot be is refused.
  if (FDatabase.Texts().Wide || Source.Table.Kind != TTableKind::Table || Target.Table.Kind != TTableKind::Table)
    return false;
  const std::string What = CopyFailed(Source.Table, Target.Table);
  return SQLiteCopiesExactly(Copied(FSource, Source, What), Copied(Own(), Target, What), Pairs) &&
         InsertTriggers(FDatabase.Handle(), FSchema, Target.Table.Name).empty();
}

std::int64_t TSQLiteRowAccess::CopyRows(const TTableDescription& Source, const TTableDescription& Target,
                                        std::span<const TColumnPair> Pairs) {
  const std::string What = CopyFailed(Source.Table, Target.Table);
  CheckTakesCopies(Source.Table, Target, Pairs, FReadOnly);
  CheckNothingActs(Source.Table, Target.Table, InsertTriggers(FDatabase.Handle(), FSchema, Target.Table.Name));
  // Numbers that are taken cannot be kept.
  const bool KeepsNumbers = !FSchema.HasRows(Target.Table);
  const TSQLiteCopiedTable From = Copied(FSource, Source, What), To = Copied(Own(), Target, What);
  std::string Statement = SQLiteCopyStatement(From, To, Pairs, KeepsNumbers);
  if (SQLiteCopiesWhole(From, To, Pairs)) {
    std::string Whole = SQLiteWholeCopyStatement(From, To);
    // What is copied record by record keeps its number.
    if (To.WithoutRowId || To.RowNumberColumn >= 0 || (KeepsNumbers && CopiesRecords(Whole)))
      Statement = std::move(Whole);
  }
  TSQLiteStatement Copy(FDatabase.Handle(), Statement, What);
  sqlite3_stmt* const Handle = Copy.Handle();
  if (sqlite3_step(Handle) != SQLITE_DONE) RaiseSQLiteError(FDatabase.Handle(), What, {.Table = Target.Table.Name});
  return sqlite3_changes64(FDatabase.Handle());
}

/// Whether the engine moves whole records where the target has none, without looking into them.
bool TSQLiteRowAccess::CopiesRecords(const std::string& Statement) {
  constexpr int Operation = 1;
  TSQLiteStatement Program(FDatabase.Handle(), "EXPLAIN " + Statement, "Cannot plan a copy");
  while (Program.Step())
    if (Program.Text(Operation) == "RowCell") return true;
  return false;
}

}  // namespace velkrund
