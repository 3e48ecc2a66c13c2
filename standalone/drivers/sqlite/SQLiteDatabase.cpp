#include "standalone/drivers/sqlite/SQLiteDatabase.h"

#include <sqlite3.h>

#include <filesystem>

#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr std::string_view InMemory = ":memory:";

}  // namespace

void TSQLiteDatabase::TClose::operator()(sqlite3* Database) const {
  sqlite3_busy_handler(Database, nullptr, nullptr);
  sqlite3_progress_handler(Database, 0, nullptr, nullptr);
  // A cursor that has outlived its connection, against the rule, then still has something to finalise.
  sqlite3_close_v2(Database);
}

TSQLiteDatabase::TSQLiteDatabase(const std::string& Path, const TConnectOptions& Options)
    : FPath(Path), FWait(Options.BusyTime, Options.Canceled), FTexts{.CodePage = Options.CodePage} {
  // Without write rights the engine falls back to reading.
  int Flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI;
  if (Options.CreateMissing || Path == InMemory) Flags |= SQLITE_OPEN_CREATE;
  FIsNew = Options.CreateMissing && Path != InMemory && !std::filesystem::exists(Path);
  sqlite3* Opened = nullptr;
  const int Code = sqlite3_open_v2(Path.c_str(), &Opened, Flags, nullptr);
  FOpened.reset(Opened);
  if (!Opened) throw EDatabaseError(Format("%s: out of memory", About("open")));
  try {
    if (Code != SQLITE_OK) RaiseSQLiteError(Opened, About("open"));
    FWait.Attach(Opened);
    FHandle.emplace(Opened);
    CheckReadable();
  } catch (...) {
    // A handle that could not be opened may have made the file all the same, and does nothing more.
    if (FIsNew && Code != SQLITE_OK) {
      const int Again = sqlite3_open_v2(Path.c_str(), &Opened, Flags & ~SQLITE_OPEN_CREATE, nullptr);
      decltype(FOpened) Other(Opened);
      if (Again == SQLITE_OK) FOpened = std::move(Other);
    }
    RemoveUnused();
    throw;
  }
}

TSQLiteDatabase::~TSQLiteDatabase() {
  FHandle->Turn().Take();
  FHandle->Ready().Close();
  RemoveUnused();
}

/// Removes the file that this connection made when it is still empty, under the engine's lock. Who has opened it
/// meanwhile finds out at the start of the next writing transaction.
void TSQLiteDatabase::RemoveUnused() noexcept {
  if (!FIsNew || !FOpened) return;
  sqlite3* Database = FOpened.get();
  sqlite3_busy_timeout(Database, 0);
  const auto Execute = [&](const char* Text) { return sqlite3_exec(Database, Text, nullptr, nullptr, nullptr); };
  if (sqlite3_get_autocommit(Database) == 0 && Execute("ROLLBACK") != SQLITE_OK) return;
  // The journal, which even this transaction begins with, may be what there is no room for.
  Execute("PRAGMA journal_mode = MEMORY");
  if (Execute("BEGIN EXCLUSIVE") != SQLITE_OK) return;
  std::error_code Error;
  // The file itself: a link that was there before stays.
  const std::filesystem::path File = sqlite3_db_filename(Database, "main");
  if (std::filesystem::file_size(File, Error) == 0 && !Error) std::filesystem::remove(File, Error);
  Execute("ROLLBACK");
}

bool TSQLiteDatabase::InTransaction() const { return sqlite3_get_autocommit(*FHandle) == 0; }

void TSQLiteDatabase::WaitAnew() {
  FHandle->Turn().Take();
  FWait.Renew();
}

std::string TSQLiteDatabase::About(std::string_view Failed) const {
  return Format("Cannot %s the database '%s'", Failed, FPath);
}

void TSQLiteDatabase::CheckReadable() {
  // The engine looks into the file at the first statement only.
  TSQLiteStatement Schema(*FHandle, "SELECT count(*) FROM main.sqlite_schema", About("open"));
  Schema.Step();
  TSQLiteStatement Encoding(*FHandle, "PRAGMA encoding", About("open"));
  FTexts.Wide = Encoding.Step() && Encoding.Text(0) != "UTF-8";
}

void TSQLiteDatabase::CheckNotMoved() const {
  int Moved = 0;
  if (sqlite3_file_control(*FHandle, "main", SQLITE_FCNTL_HAS_MOVED, &Moved) == SQLITE_OK && Moved != 0)
    throw EDatabaseError(About("write to") +
                         ": its file was removed or replaced by another program since it was opened");
}

}  // namespace velkrund
