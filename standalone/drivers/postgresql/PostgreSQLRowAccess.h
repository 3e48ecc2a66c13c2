#pragma once

#include "standalone/drivers/RowAccess.h"

namespace velkrund {

class TPostgreSQLSession;

class TPostgreSQLRowAccess final : public TRowAccess {
 public:
  explicit TPostgreSQLRowAccess(TPostgreSQLSession& Session) : FSession(Session) {}

  std::unique_ptr<TCursor> OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                      std::span<const int> Order) override;
  std::unique_ptr<TBulkAppender> OpenAppender(const TTableDescription& Table, std::span<const int> Columns,
                                              const TAppendOptions& Options) override;

 private:
  TPostgreSQLSession& FSession;
};

}  // namespace velkrund
