#pragma once

#include "standalone/drivers/RowAccess.h"

namespace velkrund {

class TSQLiteDatabase;
class TSQLiteSchemaReader;
struct TSQLiteCopiedTable;

class TSQLiteRowAccess final : public TRowAccess {
 public:
  TSQLiteRowAccess(const TSQLiteDatabase& Database, TSQLiteSchemaReader& Schema, bool ReadOnly)
      : FDatabase(Database), FSchema(Schema), FReadOnly(ReadOnly) {}

  std::unique_ptr<TCursor> OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                      std::span<const int> Order) override;
  std::unique_ptr<TBulkAppender> OpenAppender(const TTableDescription& Table, std::span<const int> Columns,
                                              const TAppendOptions& Options) override;
  bool CopiesExactly(const TTableDescription& Source, const TTableDescription& Target,
                     std::span<const TColumnPair> Pairs) override;
  std::int64_t CopyRows(const TTableDescription& Source, const TTableDescription& Target,
                        std::span<const TColumnPair> Pairs) override;

 private:
  TSQLiteCopiedTable Copied(const TTableDescription& Table, const std::string& What);

  const TSQLiteDatabase& FDatabase;
  TSQLiteSchemaReader& FSchema;
  const bool FReadOnly;
};

}  // namespace velkrund
