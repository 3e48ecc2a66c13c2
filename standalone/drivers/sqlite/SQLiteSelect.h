#pragma once

#include <span>
#include <string>
#include <vector>

#include "standalone/drivers/Cursor.h"
#include "standalone/drivers/QueryText.h"
#include "standalone/drivers/sqlite/SQLiteBinder.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "velkrund/platform/database/SelectQuery.h"

namespace velkrund {

class TSQLiteDatabase;

/// The rows of a query of the user's. Raises EDatabaseError for what may write.
class TSQLiteSelectCursor final : public TCursor {
 public:
  /// As for TConnection::OpenQuery.
  TSQLiteSelectCursor(const TSQLiteDatabase& Database, const TQueryText& Text,
                      std::span<const TQueryParameter> Parameters);

  /// The declared type of the column that a value comes from leads; of what is computed nothing is declared.
  const std::vector<TColumnInfo>& Columns() const { return FColumns; }
  bool Next() override { return FStatement->Step(); }
  void Read(int Column, TKvVariant& Value) override;

 private:
  void CheckReads(const TSQLiteHandle& Database, std::string_view Rest) const;
  void Bind(const TSQLiteTexts& Texts);
  void Describe();

  const std::string FFailed;                       // how messages begin
  const std::vector<TQueryParameter> FParameters;  // whose bytes the engine is lent
  std::vector<TSQLiteBinder> FBinders;             // the same
  std::unique_ptr<TSQLiteStatement> FStatement;
  std::vector<TColumnInfo> FColumns;
  std::string FScratch;
  const bool FWide;
};

}  // namespace velkrund
