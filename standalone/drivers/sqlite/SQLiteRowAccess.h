#pragma once

#include "standalone/drivers/RowAccess.h"

namespace velkrund {

class TSQLiteDatabase;

class TSQLiteRowAccess final : public TRowAccess {
 public:
  TSQLiteRowAccess(const TSQLiteDatabase& Database, bool ReadOnly) : FDatabase(Database), FReadOnly(ReadOnly) {}

  std::unique_ptr<TCursor> OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                      std::span<const int> Order) override;
  std::unique_ptr<TBulkAppender> OpenAppender(const TTableDescription& Table, std::span<const int> Columns,
                                              const TAppendOptions& Options) override;

 private:
  const TSQLiteDatabase& FDatabase;
  const bool FReadOnly;
};

}  // namespace velkrund
