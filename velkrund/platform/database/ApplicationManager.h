#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/database/BLOBTable.h"
#include "velkrund/platform/database/BaseManager.h"
#include "velkrund/platform/database/SelectQuery.h"
#include "velkrund/platform/database/Tables.h"
#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund {

/// The platform's isolation levels, by ordinal.
enum class TIsolationLevel : int { ReadUncommitted = 0, ReadCommitted = 1, RepeatableRead = 2, Serializable = 3 };

/// Trace levels: smaller is more important.
enum class TTraceLevel : int { Error = 1, Info = 2, Detail = 3 };

/// Settings of the application that the module obeys. Constant during a run.
struct TSettings {
  /// The single-byte code page of ANSI sections and 8-bit values; never null, not owned.
  const TCodePage* AnsiCodePage = &TCodePage::Default();
  /// A field value that cannot be parsed is an error; otherwise it becomes NULL.
  bool StrictValues = true;
  /// Characters that the code page cannot hold, malformed UTF-8, and values that would come back as others are errors;
  /// otherwise they are replaced and counted.
  bool StrictText = false;
  /// Write ANSI section headers without their "Encoding" line, as releases before it did.
  bool WorkAs17Version = false;
};

/// The platform's centre: tables, transactions, statements, texts and the trace. Databases are named; an empty name is
/// the application's default database. Errors of databases are EDatabaseError.
class TApplicationManager {
 public:
  virtual ~TApplicationManager() = default;

  /// Opens a user table, ignoring case but preferring the exact name; null when the database has none of that name. The
  /// caller owns it and frees it before the database is closed. A database that cannot be reached is an error.
  virtual std::unique_ptr<TTable> GetUserTable(const std::string& TableName, const std::string& DatabaseName,
                                               bool ReadWrite) = 0;
  /// The same for the program's own work on the table: reading and appending.
  std::unique_ptr<TTable> GetSystemTable(const std::string& TableName, const std::string& DatabaseName) {
    return GetUserTable(TableName, DatabaseName, true);
  }
  /// Views: one of that name counts too.
  virtual bool TableExists(const std::string& TableName, const std::string& DatabaseName, bool /*Views*/) {
    return GetUserTable(TableName, DatabaseName, false) != nullptr;
  }
  /// The physical name of a table, in the case in which the database has it; the name as it is when there is none.
  std::string GetTableName(const std::string& TableName, const std::string& DatabaseName);
  /// Whether two names mean the same database.
  virtual bool IsSameDatabase(const std::string& A, const std::string& B) { return A == B; }
  /// The names of the tables, without views, that GetUserTable finds, as people see them, sorted.
  virtual std::vector<std::string> UserTableNames(const std::string& /*DatabaseName*/) { return {}; }
  /// A query without a text; null where the platform has none. The caller owns it and frees it before the database is
  /// closed.
  virtual std::unique_ptr<TSelectQuery> CreateSelectQuery(const std::string& /*DatabaseName*/) { return nullptr; }
  /// Owned by the manager; null for a database that is none of SQL.
  virtual TODBCBaseManager* GetODBCBaseManager(const std::string& /*DatabaseName*/) { return nullptr; }

  /// The table inside the value of a BLOB field; null when it holds none, but plain bytes. An error when it is damaged.
  virtual std::unique_ptr<TBLOBTable> OpenBLOBTable(std::string_view /*Bytes*/) { return nullptr; }
  /// An empty one with these fields; null where the platform has none.
  virtual std::unique_ptr<TBLOBTable> NewBLOBTable(const std::string& /*Name*/, const TBLOBTable::TFields& /*Fields*/) {
    return nullptr;
  }

  /// A start within a transaction of the same database is a savepoint: an inner roll back undoes the inner part, and
  /// what was committed within is undone with the outer one.
  virtual void StartTransaction(const std::string& DatabaseName, TIsolationLevel Level) = 0;
  virtual void CommitTransaction(const std::string& DatabaseName) = 0;
  virtual void RollbackTransaction(const std::string& DatabaseName) = 0;

  /// Executes one statement without a result set and returns the number of rows that it changed. "DELETE * FROM" is
  /// accepted as a spelling of "DELETE FROM".
  virtual std::int64_t ExecuteSQL(const std::string& Statement, const std::string& DatabaseName) = 0;

  virtual const TSettings& Settings() const = 0;
  virtual TFileSystem& Files() = 0;

  /// The text of a message key in the user's language; without one its English text, then the key itself. Never touches
  /// a connection.
  virtual std::string LString(std::string_view Key) const = 0;
  /// The same in English: for documents, traces and errors, which programs read too.
  virtual std::string EnglishString(std::string_view Key) const { return LString(Key); }
  /// A line for the platform's trace. Never raises.
  virtual void WriteTrace(std::string_view Subsystem, TTraceLevel Level, std::string_view Text) noexcept = 0;
  /// For whoever shows progress: what begins now takes its time, and there is nothing to count. Never raises.
  virtual void Notice(const std::string& /*Text*/) noexcept {}
  /// Presents an error that nobody else can handle. Never raises.
  virtual void ReportError(const std::exception& Error) noexcept = 0;
};

/// The name under which the module writes its trace lines.
inline constexpr std::string_view TraceSubsystem = "Velkrund";

/// The installed application manager. Raises EAccessViolation when there is none.
TApplicationManager& BaseMng();
/// Installs one for the process, borrowed, or none when null; returns the one before. TServiceGuard undoes it.
TApplicationManager* InstallService(TApplicationManager* Service);

/// The installed application's settings; the defaults when no application manager is installed.
const TSettings& WorkSettings();

}  // namespace velkrund
