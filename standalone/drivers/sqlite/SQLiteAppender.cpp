#include "standalone/drivers/sqlite/SQLiteAppender.h"

#include <sqlite3.h>

#include "velkrund/platform/database/Platform.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Kibibytes, negative as the engine wants it. A larger cache makes indexes no faster, only memory scarcer.
constexpr std::int64_t AppendCacheSize = -8'192;

std::string What(const std::string& TableName) { return Format("Can not append to table '%s'", TableName); }

std::string InsertText(const TTableDescription& Table, std::span<const int> Columns) {
  // ABORT, so that no conflict clause of the table drops or replaces rows without a word.
  std::string Text = "INSERT OR ABORT INTO main." + QuoteSQLiteName(Table.Table.Name);
  if (Columns.empty()) return Text + " DEFAULT VALUES";
  std::string Places;
  Text += " (";
  for (const int Column : Columns) {
    Text += QuoteSQLiteName(Table.Columns[static_cast<std::size_t>(Column)].Name) + ", ";
    Places += "?, ";
  }
  Text.resize(Text.size() - 2);
  Places.resize(Places.size() - 2);
  return Text + ") VALUES (" + Places + ")";
}

}  // namespace

TSQLiteAppender::TSQLiteAppender(sqlite3* Database, const TTableDescription& Table, std::span<const int> Columns,
                                 const TAppendOptions& Options, const TTraits& Traits)
    : FDatabase(Database),
      FTableName(Table.Table.Name),
      FStatement(Database, InsertText(Table, Columns), What(FTableName), TSQLiteStatement::TUse::Often),
      FRecord(Options.FirstRecord) {
  FBinders.reserve(Columns.size());
  FNames.reserve(Columns.size());
  int Place = 0;
  for (const int Index : Columns) {
    const TColumnInfo& Column = Table.Columns[static_cast<std::size_t>(Index)];
    FBinders.emplace_back(FStatement.Handle(), ++Place,
                          TSQLiteBinder::TColumn{.Affinity = AffinityOf(Column.DeclaredType, Traits.Strict),
                                                 .HoldsBytes = Column.Kind == TKvKind::Bytes,
                                                 .IsRowNumber = Index == Traits.RowNumberColumn,
                                                 .Wide = Traits.Wide},
                          *WorkSettings().AnsiCodePage);
    FNames.push_back(Column.Name);
  }
  TSQLiteStatement CacheSize(Database, "PRAGMA main.cache_size", What(FTableName));
  if (CacheSize.Step() && CacheSize.Integer(0) < 0 && CacheSize.Integer(0) > AppendCacheSize) {
    FCacheSizeBefore = CacheSize.Integer(0);
    SetCacheSize(AppendCacheSize);
  }
}

TSQLiteAppender::~TSQLiteAppender() {
  if (FCacheSizeBefore) SetCacheSize(*FCacheSizeBefore);
}

void TSQLiteAppender::SetCacheSize(std::int64_t Size) {
  // Speed only; a refusal changes nothing that matters.
  sqlite3_exec(FDatabase, Format("PRAGMA main.cache_size=%d", Size).c_str(), nullptr, nullptr, nullptr);
}

void TSQLiteAppender::Append(std::span<const TKvVariant* const> Row) {
  for (std::size_t I = 0; I < FBinders.size(); ++I)
    if (const TSQLiteBinder::TRefusal Refusal = FBinders[I].Bind(*Row[I])) RaiseRefused(I, Refusal);
  sqlite3_stmt* Handle = FStatement.Handle();
  if (sqlite3_step(Handle) != SQLITE_DONE) RaiseEngineError();
  sqlite3_reset(Handle);
  // A trigger can drop the row; nobody would miss it until it is needed.
  if (sqlite3_changes(FDatabase) != 1) throw EDatabaseError(RecordText() + ": a trigger of the table has ignored it");
  ++FRecord;
}

std::string TSQLiteAppender::RecordText() const {
  return Format("Can not append record %d to table '%s'", FRecord, FTableName);
}

void TSQLiteAppender::RaiseRefused(std::size_t Place, std::string_view Reason) const {
  throw EDatabaseError(Format("%s, column '%s': %s", RecordText(), FNames[Place], Reason));
}

void TSQLiteAppender::RaiseEngineError() const {
  try {
    RaiseSQLiteError(FDatabase, RecordText());
  } catch (...) {
    sqlite3_reset(FStatement.Handle());
    throw;
  }
}

}  // namespace velkrund
