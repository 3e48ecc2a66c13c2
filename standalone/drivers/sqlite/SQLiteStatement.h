#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/ErrorInfo.h"

struct sqlite3;
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
  /// Foreign: the statement is not the driver's own, so that errors show it.
  enum class TUse { Once, Often, Foreign };

  /// What: how an error message begins, e.g. "Cannot read table 'A'".
  TSQLiteStatement(sqlite3* Database, std::string_view Text, std::string What, TUse Use = TUse::Once);
  TSQLiteStatement(const TSQLiteStatement&) = delete;
  TSQLiteStatement& operator=(const TSQLiteStatement&) = delete;
  ~TSQLiteStatement();

  sqlite3_stmt* Handle() const { return FHandle; }
  /// What follows the statement in its text.
  std::string_view Rest() const { return FRest; }

  /// Begins anew, with What in the place of the one before.
  TSQLiteStatement& Again(std::string What);
  /// Lets go of what is being read.
  void Reset();
  TSQLiteStatement& BindText(int Place, std::string_view Text);
  /// True: there is a row.
  bool Step();

  // Cells of the row, columns from 0.
  std::int64_t Integer(int Column) const;
  std::string Text(int Column) const;

 private:
  sqlite3* FDatabase;
  sqlite3_stmt* FHandle = nullptr;
  std::string_view FRest;
  std::string FWhat;
  const TUse FUse;
};

}  // namespace velkrund
