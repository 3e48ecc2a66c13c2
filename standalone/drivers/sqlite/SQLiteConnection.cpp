#include "standalone/drivers/sqlite/SQLiteConnection.h"

#include <sqlite3.h>

#include <filesystem>

#include "standalone/drivers/sqlite/SQLiteCursor.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr std::string_view InMemory = ":memory:";

void Run(sqlite3* Database, std::string_view Statement, std::string What) {
  TSQLiteStatement Prepared(Database, Statement, std::move(What));
  while (Prepared.Step()) {
  }
}

}  // namespace

void TSQLiteConnection::TClose::operator()(sqlite3* Database) const {
  sqlite3_busy_handler(Database, nullptr, nullptr);
  sqlite3_progress_handler(Database, 0, nullptr, nullptr);
  // A cursor that has outlived its connection, against the rule, then still has something to finalise.
  sqlite3_close_v2(Database);
}

TSQLiteConnection::TSQLiteConnection(const std::string& Path, const TConnectOptions& Options)
    : FPath(Path), FWait(Options.BusyTime, Options.Canceled), FTexts{.CodePage = Options.CodePage} {
  // Without write rights the engine falls back to reading.
  int Flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_READWRITE;
  if (Options.CreateMissing || Path == InMemory) Flags |= SQLITE_OPEN_CREATE;
  FIsNew = Options.CreateMissing && Path != InMemory && !std::filesystem::exists(Path);
  sqlite3* Opened = nullptr;
  const int Code = sqlite3_open_v2(Path.c_str(), &Opened, Flags, nullptr);
  FDatabase.reset(Opened);
  if (!Opened) throw EDatabaseError(Format("%s: out of memory", About("open")));
  if (Code != SQLITE_OK) RaiseSQLiteError(Opened, About("open"));
  FWait.Attach(Opened);
  try {
    CheckReadable();
  } catch (...) {
    RemoveUnused();
    throw;
  }

  FCapabilities.ReadOnly = sqlite3_db_readonly(Opened, "main") == 1;
  FCapabilities.TransactionalSchema = true;
  FCapabilities.MixedKinds = true;
  FCapabilities.NulInText = true;
  TSQLiteStatement Enforced(Opened, "PRAGMA foreign_keys", About("open"));
  FCapabilities.EnforcesForeignKeys = Enforced.Step() && Enforced.Integer(0) != 0;
  FCapabilities.TableSizes = sqlite3_compileoption_used("ENABLE_DBSTAT_VTAB") == 1;
}

TSQLiteConnection::~TSQLiteConnection() { RemoveUnused(); }

/// Removes the file that this connection made when it is still empty, under the engine's lock. Who has opened it
/// meanwhile finds out at the start of the next writing transaction.
void TSQLiteConnection::RemoveUnused() noexcept {
  if (!FIsNew || !FDatabase) return;
  sqlite3* Database = FDatabase.get();
  sqlite3_busy_timeout(Database, 0);
  const auto Execute = [&](const char* Text) { return sqlite3_exec(Database, Text, nullptr, nullptr, nullptr); };
  if (sqlite3_get_autocommit(Database) == 0 && Execute("ROLLBACK") != SQLITE_OK) return;
  if (Execute("BEGIN EXCLUSIVE") != SQLITE_OK) return;
  std::error_code Error;
  // The file itself: a link that was there before stays.
  const std::filesystem::path File = sqlite3_db_filename(Database, "main");
  if (std::filesystem::file_size(File, Error) == 0 && !Error) std::filesystem::remove(File, Error);
  Execute("ROLLBACK");
}

std::string TSQLiteConnection::About(std::string_view Failed) const {
  return Format("Can not %s the database '%s'", Failed, FPath);
}

void TSQLiteConnection::CheckReadable() {
  // The engine looks into the file at the first statement only.
  TSQLiteStatement Schema(FDatabase.get(), "SELECT count(*) FROM main.sqlite_schema", About("open"));
  Schema.Step();
  TSQLiteStatement Encoding(FDatabase.get(), "PRAGMA encoding", About("open"));
  FTexts.Wide = Encoding.Step() && Encoding.Text(0) != "UTF-8";
}

/// What is written into a file that has lost its name would be lost with it.
void TSQLiteConnection::CheckNotMoved() {
  int Moved = 0;
  if (sqlite3_file_control(FDatabase.get(), "main", SQLITE_FCNTL_HAS_MOVED, &Moved) == SQLITE_OK && Moved != 0)
    throw EDatabaseError(About("write to") +
                         ": its file was removed or replaced by another program since it was opened");
}

std::string TSQLiteConnection::EngineVersion() const { return sqlite3_libversion(); }

void TSQLiteConnection::Begin(TIsolationLevel Level) {
  // A writing transaction that begins as a reader can lose its turn to another writer halfway.
  const bool Immediate = Level >= TIsolationLevel::RepeatableRead && !FCapabilities.ReadOnly;
  Run(FDatabase.get(), Immediate ? "BEGIN IMMEDIATE" : "BEGIN", About("start a transaction in"));
  if (!Immediate) return;
  try {
    CheckNotMoved();
  } catch (...) {
    Rollback();
    throw;
  }
}

void TSQLiteConnection::Commit() {
  if (sqlite3_get_autocommit(FDatabase.get()) != 0)
    throw EDatabaseError(About("commit the transaction in") + ": the engine has rolled it back after an error");
  Run(FDatabase.get(), "COMMIT", About("commit the transaction in"));
}

void TSQLiteConnection::Rollback() {
  if (sqlite3_get_autocommit(FDatabase.get()) == 0)
    Run(FDatabase.get(), "ROLLBACK", About("roll the transaction back in"));
}

std::unique_ptr<TCursor> TSQLiteConnection::OpenCursor(const TTableDescription& Table, std::span<const int> Columns) {
  return std::make_unique<TSQLiteCursor>(FDatabase.get(), Table, Columns, FTexts.Wide);
}

}  // namespace velkrund
