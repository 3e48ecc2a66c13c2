#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/ErrorInfo.h"

struct sqlite3;
struct sqlite3_stmt;

namespace velkrund {

/// Raises EDatabaseError: What, the engine's message and code, and Place's statement unless it is empty; EAbort when
/// the connection was told to stop.
[[noreturn]] void RaiseSQLiteError(sqlite3* Database, std::string_view What, TErrorInfo Place = {});

/// A prepared statement.
class TSQLiteStatement {
 public:
  enum class TUse { Once, Often };

  /// What: how an error message begins, e.g. "Cannot read table 'A'".
  TSQLiteStatement(sqlite3* Database, std::string_view Text, std::string What, TUse Use = TUse::Once);
  TSQLiteStatement(const TSQLiteStatement&) = delete;
  TSQLiteStatement& operator=(const TSQLiteStatement&) = delete;
  ~TSQLiteStatement();

  sqlite3_stmt* Handle() const { return FHandle; }
  /// What follows the statement in its text.
  std::string_view Rest() const { return FRest; }

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
};

}  // namespace velkrund
