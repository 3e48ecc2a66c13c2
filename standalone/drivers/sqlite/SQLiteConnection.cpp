#include "standalone/drivers/sqlite/SQLiteConnection.h"

#include <sqlite3.h>

#include "standalone/drivers/ConnectionThread.h"
#include "standalone/drivers/sqlite/SQLiteExecution.h"
#include "standalone/drivers/sqlite/SQLiteSafeguards.h"
#include "standalone/drivers/sqlite/SQLiteScriptCheck.h"
#include "standalone/drivers/sqlite/SQLiteScriptRun.h"
#include "standalone/drivers/sqlite/SQLiteSelect.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "standalone/drivers/sqlite/SQLiteSurroundings.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {
namespace {

TCapabilities CapabilitiesOf(const TSQLiteDatabase& Database) {
  TCapabilities Result;
  Result.ReadOnly = sqlite3_db_readonly(Database.Handle(), "main") == 1;
  Result.TransactionalSchema = true;
  Result.MixedKinds = true;
  Result.NulInText = true;
  Result.HalfCharacters = !Database.Texts().Wide;
  Result.Threads = sqlite3_threadsafe() != 0;
  Result.TableSizes = sqlite3_compileoption_used("ENABLE_DBSTAT_VTAB") == 1;
  TSQLiteStatement Enforced(Database.Handle(), "PRAGMA foreign_keys", Database.About("open"));
  Result.EnforcesForeignKeys = Enforced.Step() && Enforced.Integer(0) != 0;
  return Result;
}

constexpr std::string_view StartFailed = "start a transaction in";

/// By which it is attached.
constexpr const char* SourceName = "velkrund_source";

/// Whether another connection sees in the file what this one sees.
bool ShowsTheSameToOthers(const TSQLiteDatabase& Database) {
  const TSQLiteHandle& Handle = Database.Handle();
  if (sqlite3_txn_state(Handle, "main") == SQLITE_TXN_WRITE) return false;
  if (!Database.InTransaction()) return true;
  // Who reads from a log sees the moment of his beginning; a file by itself does not change while it is read.
  TSQLiteStatement Journal(Handle, "PRAGMA main.journal_mode", Database.About("read"));
  return Journal.Step() && Journal.Text(0) != "wal";
}

/// The address of a file that is only read. Path: absolute.
std::string AddressOf(std::string_view Path) { return "file:" + PercentEncoded(Path) + "?mode=ro"; }

}  // namespace

TSQLiteConnection::TSQLiteConnection(const std::string& Path, const TConnectOptions& Options)
    : FDatabase(Path, TConnectionThread::WithCallersCalls(Options)), FCapabilities(CapabilitiesOf(FDatabase)) {}

std::string TSQLiteConnection::EngineVersion() const { return sqlite3_libversion(); }

void TSQLiteConnection::BeginReading() { Run("BEGIN", StartFailed); }

/// Whatever the level, the engine has one.
void TSQLiteConnection::Begin(TIsolationLevel /*Level*/) {
  if (FCapabilities.ReadOnly) return BeginReading();
  // A writing transaction that begins as a reader can lose its turn to another writer halfway.
  Run("BEGIN IMMEDIATE", StartFailed);
  try {
    FDatabase.CheckNotMoved();
  } catch (...) {
    Rollback();
    throw;
  }
}

void TSQLiteConnection::Commit() {
  constexpr std::string_view What = "commit the transaction in";
  RequireTransaction(What);
  FDatabase.WaitAnew();
  Run("COMMIT", What);
  DetachSource();
}

void TSQLiteConnection::RequireTransaction(std::string_view What) const {
  if (!FDatabase.InTransaction())
    throw EDatabaseError(FDatabase.About(What) + ": the engine has rolled it back after an error");
}

void TSQLiteConnection::Rollback() {
  FDatabase.Handle().Turn().TakeForRollback();
  FSchema.Memory().Forget();
  if (FDatabase.InTransaction()) Run("ROLLBACK", "roll the transaction back in");
  DetachSource();
}

TRowCopier* TSQLiteConnection::CopierFrom(TConnection& Source) {
  if (&Source == this) return &FRows;
  auto* const Other = dynamic_cast<TSQLiteConnection*>(&Source);
  const bool IsAttached = Other && (FSource == Other || (!FSource && AttachSource(*Other)));
  return IsAttached ? FSourceRows.get() : nullptr;
}

/// False: there is no file, or what it holds is told in another way here than there.
bool TSQLiteConnection::AttachSource(TSQLiteConnection& Source) {
  const char* const Path = sqlite3_db_filename(Source.FDatabase.Handle(), "main");
  const bool IsSeen = Path && Path[0] == '/' && FDatabase.InTransaction() && !Source.FDatabase.Texts().Wide &&
                      !FDatabase.Texts().Wide && ShowsTheSameToOthers(Source.FDatabase);
  if (!IsSeen) return false;
  TSQLiteStatement Attach(FDatabase.Handle(), std::string("ATTACH ?1 AS ") + SourceName, FDatabase.About("read into"));
  Attach.BindText(1, AddressOf(Path));
  while (Attach.Step()) {
  }
  FSource = &Source;
  FSourceRows = std::make_unique<TSQLiteRowAccess>(FDatabase, FSchema, FCapabilities.ReadOnly,
                                                   TSQLiteRowAccess::TSource{&Source.FSchema, SourceName});
  return true;
}

/// Only outside of transactions the engine lets go of it.
void TSQLiteConnection::DetachSource() noexcept {
  if (!FSource) return;
  FSourceRows.reset();
  const std::string Detach = std::string("DETACH ") + SourceName;
  if (sqlite3_exec(FDatabase.Handle(), Detach.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) FSource = nullptr;
}

/// A writing transaction has the whole database.
void TSQLiteConnection::LockName(std::string_view /*Name*/, const std::string& What) {
  if (FCapabilities.ReadOnly)
    throw EDatabaseError(What + ": the database is opened for reading only", {.Code = TErrorCode::DatabaseReadOnly});
  if (sqlite3_txn_state(FDatabase.Handle(), "main") != SQLITE_TXN_WRITE)
    throw EDatabaseError(What + ": no transaction that writes has been started");
}

void TSQLiteConnection::SetSavepoint(int Number) {
  constexpr std::string_view What = "go on with the transaction in";
  // Outside of a transaction the engine would begin one of its own, and commit it by itself.
  RequireTransaction(What);
  Run("SAVEPOINT " + SavepointName(Number), What);
}

void TSQLiteConnection::ReleaseSavepoint(int Number) {
  constexpr std::string_view What = "go on with the transaction in";
  RequireTransaction(What);
  Run("RELEASE " + SavepointName(Number), What);
}

void TSQLiteConnection::RollbackToSavepoint(int Number) {
  FDatabase.Handle().Turn().TakeForRollback();
  FSchema.Memory().Forget();
  if (!FDatabase.InTransaction()) return;
  constexpr std::string_view What = "take a part of the transaction back in";
  Run("ROLLBACK TO " + SavepointName(Number), What);
  Run("RELEASE " + SavepointName(Number), What);
}

void TSQLiteConnection::Run(std::string_view Statement, std::string_view What) {
  TSQLiteStatement Prepared(FDatabase.Handle(), Statement, FDatabase.About(What), TSQLiteStatement::TUse::Again);
  while (Prepared.Step()) {
  }
}

std::unique_ptr<TSafeguards> TSQLiteConnection::Safeguards(TLoadNeeds Needs) {
  return std::make_unique<TSQLiteSafeguards>(FDatabase, std::move(Needs), FCapabilities.EnforcesForeignKeys);
}

std::unique_ptr<TSurroundings> TSQLiteConnection::Surroundings(const TTableInfo& Object, TRenamedFields Renamed) {
  return std::make_unique<TSQLiteSurroundings>(*this, FDatabase, Object, std::move(Renamed));
}

std::int64_t TSQLiteConnection::Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) {
  sqlite3* Database = FDatabase.Handle();
  TSQLiteExecution Execution(FDatabase, Statement, Parameters);
  const std::int64_t Before = sqlite3_total_changes(Database);
  const bool OnlyAdds = FSchema.Memory().OnlyAdds(Statement);
  while (Execution.Step()) {
  }
  if (OnlyAdds) FSchema.Memory().TakeAdded();
  // The engine keeps the last count through statements that change no rows.
  return sqlite3_total_changes(Database) == Before ? 0 : sqlite3_changes64(Database);
}

std::vector<std::string> TSQLiteConnection::CheckScript(const std::string& Script) {
  return CheckSQLiteScript(FDatabase.Handle(), Script);
}

std::unique_ptr<TProcedureRun> TSQLiteConnection::RunProcedure(const TDicProcedureDescription& Procedure,
                                                               const TProcedureArguments& Arguments) {
  RequireTransaction("run a procedure in");
  return std::make_unique<TSQLiteScriptRun>(FDatabase, Procedure, Arguments);
}

void TSQLiteConnection::RebuildTextIndex(const TTableInfo& Index) {
  const std::string Name = QuoteStandardName(Index.Name);
  Run("INSERT INTO main." + Name + " (" + Name + ") VALUES ('rebuild')", "rebuild the text index " + Name + " in");
}

std::unique_ptr<TCursor> TSQLiteConnection::Query(const std::string& Statement,
                                                  std::span<const TKvVariant> Parameters) {
  return std::make_unique<TSQLiteQueryCursor>(FDatabase, Statement, Parameters);
}

TQueryRows TSQLiteConnection::OpenQuery(const TQueryText& Text, std::span<const TQueryParameter> Parameters) {
  auto Cursor = std::make_unique<TSQLiteSelectCursor>(FDatabase, Text, Parameters);
  std::vector<TColumnInfo> Columns = Cursor->Columns();
  return {std::move(Columns), std::move(Cursor)};
}

}  // namespace velkrund
