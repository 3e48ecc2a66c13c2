#pragma once

#include "standalone/drivers/RowAccess.h"

namespace velkrund {

class TPostgreSQLSequences;
class TPostgreSQLSession;

class TPostgreSQLRowAccess final : public TRowAccess {
 public:
  TPostgreSQLRowAccess(TPostgreSQLSession& Session, TPostgreSQLSequences& Sequences)
      : FSession(Session), FSequences(Sequences) {}

  std::unique_ptr<TCursor> OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                      std::span<const int> Order) override;
  std::unique_ptr<TBulkAppender> OpenAppender(const TTableDescription& Table, std::span<const int> Columns,
                                              const TAppendOptions& Options) override;

 private:
  TPostgreSQLSession& FSession;
  TPostgreSQLSequences& FSequences;
};

}  // namespace velkrund
