#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "standalone/drivers/sqlite/SQLiteHandle.h"
#include "velkrund/platform/ormtools/ErrorInfo.h"

struct sqlite3_stmt;

namespace velkrund {

/// Raises EDatabaseError: What, the engine's message and code; EAbort when the connection was told to stop. Place: what
/// is known beside. ShowStatement: the message ends with its statement.
[[noreturn]] void RaiseSQLiteError(sqlite3* Database, std::string_view What, TErrorInfo Place = {},
                                   bool ShowStatement = false);

/// Whether the engine did not understand what it was asked for: a name, a word, a number of fields. All else that can
/// go wrong says nothing about the statement.
bool IsSQLiteMisunderstanding(const TErrorInfo& Error);

/// A prepared statement.
class TSQLiteStatement {
 public:
  /// Often: by who keeps it. Again: it is made anew for each time, and kept ready in between. Foreign: the same, and it
  /// is not the driver's own, so that errors show it.
  enum class TUse { Once, Often, Again, Foreign };

  /// What: how an error message begins, e.g. "Cannot read table 'A'".
  TSQLiteStatement(const TSQLiteHandle& Database, std::string_view Text, std::string What, TUse Use = TUse::Once);
  TSQLiteStatement(const TSQLiteStatement&) = delete;
  TSQLiteStatement& operator=(const TSQLiteStatement&) = delete;
  ~TSQLiteStatement();

  sqlite3_stmt* Handle() const {
    FDatabase.Turn().Take();
    return FHandle;
  }
  /// While it stands on a row, when nobody but its own cursor can have begun to work ahead.
  sqlite3_stmt* Row() const { return FHandle; }
  /// What follows the statement in its text.
  std::string_view Rest() const { return FRest; }

  /// Begins anew, with What in the place of the one before.
  TSQLiteStatement& Again(std::string What);
  /// Lets go of what is being read.
  void Reset();
  TSQLiteStatement& BindText(int Place, std::string_view Text);
  TSQLiteStatement& BindInteger(int Place, std::int64_t Value);
  /// True: there is a row.
  bool Step();

  // Cells of the row, columns from 0.
  std::int64_t Integer(int Column) const;
  std::string Text(int Column) const;

 private:
  bool IsKeptReady() const { return FUse == TUse::Again || FUse == TUse::Foreign; }

  const TSQLiteHandle FDatabase;
  sqlite3_stmt* FHandle = nullptr;
  std::string_view FRest;
  std::string FWhat;
  const TUse FUse;
};

}  // namespace velkrund
