#pragma once

#include <optional>
#include <string>
#include <vector>

#include "standalone/drivers/BulkAppender.h"
#include "standalone/drivers/Schema.h"
#include "standalone/drivers/sqlite/SQLiteBinder.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"

namespace velkrund {

/// One prepared insert. Each row reaches the engine at once, inside the caller's transaction.
class TSQLiteAppender final : public TBulkAppender {
 public:
  /// What the engine knows about the table beyond its description.
  struct TTraits {
    bool Strict = false;
    bool Wide = false;         // the database's encoding is UTF-16
    int RowNumberColumn = -1;  // index of the column that stands for the row number; -1: none
  };

  TSQLiteAppender(sqlite3* Database, const TTableDescription& Table, std::span<const int> Columns,
                  const TAppendOptions& Options, const TTraits& Traits);
  ~TSQLiteAppender() override;

  void Append(std::span<const TKvVariant* const> Row) override;
  void Finish() override {}

 private:
  [[noreturn]] void RaiseRefused(std::size_t Place, std::string_view Reason) const;
  [[noreturn]] void RaiseEngineError() const;
  std::string RecordText() const;
  void SetCacheSize(std::int64_t Size);

  sqlite3* FDatabase;
  std::string FTableName;
  std::optional<std::int64_t> FCacheSizeBefore;
  TSQLiteStatement FStatement;
  std::vector<TSQLiteBinder> FBinders;  // one per place of the statement
  std::vector<std::string> FNames;
  std::int64_t FRecord;  // number of the next record
};

}  // namespace velkrund
