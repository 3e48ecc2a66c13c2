#pragma once

#include <span>
#include <string>
#include <vector>

#include "standalone/drivers/Cursor.h"
#include "standalone/drivers/sqlite/SQLiteBinder.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"

namespace velkrund {

class TSQLiteDatabase;

/// One statement of the user's with its parameters, whose bytes are lent to the engine. Raises EDatabaseError.
class TSQLiteExecution {
 public:
  TSQLiteExecution(const TSQLiteDatabase& Database, const std::string& Text, std::span<const TKvVariant> Parameters);

  bool Step() { return FStatement.Step(); }
  sqlite3_stmt* Handle() const { return FStatement.Handle(); }

 private:
  void CheckSingle(const TSQLiteHandle& Database, const std::string& Text) const;

  TSQLiteStatement FStatement;
  std::vector<TSQLiteBinder> FBinders;
};

/// Executes one statement to its end; rows that it yields are dropped.
void RunSQLite(const TSQLiteDatabase& Database, const std::string& Text, std::span<const TKvVariant> Parameters = {});

/// The rows of one statement, each found when it is asked for.
class TSQLiteQueryCursor final : public TCursor {
 public:
  TSQLiteQueryCursor(const TSQLiteDatabase& Database, const std::string& Text, std::span<const TKvVariant> Parameters);

  int ColumnCount() const;
  bool Next() override { return FExecution.Step(); }
  void Read(int Column, TKvVariant& Value) override;

 private:
  const std::vector<TKvVariant> FParameters;  // whose bytes the engine is lent
  TSQLiteExecution FExecution;
  const bool FWide;
};

}  // namespace velkrund
