#include "standalone/drivers/sqlite/SQLiteConnection.h"

#include <sqlite3.h>

#include <algorithm>

#include "standalone/drivers/sqlite/SQLiteAppender.h"
#include "standalone/drivers/sqlite/SQLiteBinder.h"
#include "standalone/drivers/sqlite/SQLiteCursor.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "velkrund/platform/database/Platform.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

void Run(sqlite3* Database, std::string_view Statement, std::string What) {
  TSQLiteStatement Prepared(Database, Statement, std::move(What));
  while (Prepared.Step()) {
  }
}

void BindParameters(const TSQLiteStatement& Statement, std::vector<TSQLiteBinder>& Binders,
                    std::span<const TKvVariant> Values, bool Wide) {
  Binders.reserve(Values.size());
  for (const TKvVariant& Value : Values) {
    const int Place = static_cast<int>(Binders.size()) + 1;
    Binders.emplace_back(Statement.Handle(), Place, TSQLiteBinder::TColumn{.Wide = Wide}, *WorkSettings().AnsiCodePage);
    if (const TSQLiteBinder::TRefusal Refusal = Binders.back().Bind(Value))
      throw EDatabaseError(Format("Can not execute a statement, parameter %d: %s", Place, Refusal));
  }
}

}  // namespace

void TSQLiteConnection::TClose::operator()(sqlite3* Database) const {
  // A cursor that has outlived its connection, against the rule, then still has something to finalise.
  sqlite3_close_v2(Database);
}

TSQLiteConnection::TSQLiteConnection(const std::string& Path, const TConnectOptions& Options) {
  // Without write rights the engine falls back to reading.
  int Flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_READWRITE;
  if (Options.CreateMissing || Path == ":memory:") Flags |= SQLITE_OPEN_CREATE;
  sqlite3* Opened = nullptr;
  const int Code = sqlite3_open_v2(Path.c_str(), &Opened, Flags, nullptr);
  FDatabase.reset(Opened);
  if (!Opened) throw EDatabaseError(Format("Can not open the database '%s': out of memory", Path));
  if (Code != SQLITE_OK) RaiseSQLiteError(Opened, Format("Can not open the database '%s'", Path));
  const auto BusyTime = std::clamp<std::chrono::milliseconds::rep>(Options.BusyTime.count(), 0, 1'000'000'000);
  sqlite3_busy_timeout(Opened, static_cast<int>(BusyTime));
  CheckReadable(Path);

  FCapabilities.ReadOnly = sqlite3_db_readonly(Opened, "main") == 1;
  FCapabilities.TransactionalSchema = true;
  FCapabilities.MixedKinds = true;
  FCapabilities.NulInText = true;
  FCapabilities.TableSizes = sqlite3_compileoption_used("ENABLE_DBSTAT_VTAB") == 1;
}

void TSQLiteConnection::CheckReadable(const std::string& Path) {
  // The engine looks into the file at the first statement only.
  TSQLiteStatement Schema(FDatabase.get(), "SELECT count(*) FROM main.sqlite_schema",
                          Format("Can not open the database '%s'", Path));
  Schema.Step();
  TSQLiteStatement Encoding(FDatabase.get(), "PRAGMA encoding", Format("Can not open the database '%s'", Path));
  FWide = Encoding.Step() && Encoding.Text(0) != "UTF-8";
}

std::string TSQLiteConnection::EngineVersion() const { return sqlite3_libversion(); }

void TSQLiteConnection::Begin(TIsolationLevel Level) {
  // A writing transaction that begins as a reader can lose its turn to another writer halfway.
  const bool Immediate = Level >= TIsolationLevel::RepeatableRead && !FCapabilities.ReadOnly;
  Run(FDatabase.get(), Immediate ? "BEGIN IMMEDIATE" : "BEGIN", "Can not start a transaction");
}

void TSQLiteConnection::Commit() {
  if (sqlite3_get_autocommit(FDatabase.get()) != 0)
    throw EDatabaseError("Can not commit the transaction: the engine has rolled it back after an error");
  Run(FDatabase.get(), "COMMIT", "Can not commit the transaction");
}

void TSQLiteConnection::Rollback() {
  if (sqlite3_get_autocommit(FDatabase.get()) == 0)
    Run(FDatabase.get(), "ROLLBACK", "Can not roll the transaction back");
}

std::int64_t TSQLiteConnection::Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) {
  const TSQLiteStatement::TUse Use = TSQLiteStatement::TUse::Once;
  TSQLiteStatement Prepared(FDatabase.get(), Statement, "Can not execute a statement", Use);
  if (!Prepared.Handle()) throw EDatabaseError("Can not execute a statement: it is empty");
  for (std::string_view Rest = Prepared.Rest(); !Rest.empty();) {
    const TSQLiteStatement Next(FDatabase.get(), Rest, "Can not execute a statement", Use);
    if (Next.Handle()) throw EDatabaseError(Format("Can not execute more than one statement at once: %s", Statement));
    Rest = Next.Rest();
  }
  if (sqlite3_bind_parameter_count(Prepared.Handle()) != static_cast<int>(Parameters.size()))
    throw EDatabaseError(Format("Can not execute a statement: it takes %d parameters, not %d; statement: %s",
                                sqlite3_bind_parameter_count(Prepared.Handle()), Parameters.size(), Statement));
  std::vector<TSQLiteBinder> Binders;
  BindParameters(Prepared, Binders, Parameters, FWide);
  const std::int64_t Before = sqlite3_total_changes(FDatabase.get());
  while (Prepared.Step()) {
  }
  // The engine keeps the last count through statements that change no rows.
  return sqlite3_total_changes(FDatabase.get()) == Before ? 0 : sqlite3_changes64(FDatabase.get());
}

std::string TSQLiteConnection::QuoteName(std::string_view Name) const { return QuoteSQLiteName(Name); }

std::unique_ptr<TCursor> TSQLiteConnection::OpenCursor(const TTableDescription& Table, std::span<const int> Columns) {
  return std::make_unique<TSQLiteCursor>(FDatabase.get(), Table, Columns, FWide);
}

}  // namespace velkrund
