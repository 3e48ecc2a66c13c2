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
                                      const TWalkOptions& Options) override;
  std::int64_t CountRows(const TTableDescription& Table, std::string_view Condition) override;
  std::unique_ptr<TBulkAppender> OpenAppender(const TTableDescription& Table, std::span<const int> Columns,
                                              const TAppendOptions& Options) override;
  bool CopiesExactly(const TTableDescription& Source, const TTableDescription& Target,
                     std::span<const TColumnPair> Pairs) override;
  std::int64_t CopyRows(const TTableDescription& Source, const TTableDescription& Target,
                        std::span<const TColumnPair> Pairs) override;
  void MoveAutoSequence(const TTableDescription& Target, std::span<const TColumnPair> Pairs) override;

 private:
  TPostgreSQLSession& FSession;
  TPostgreSQLSequences& FSequences;
};

}  // namespace velkrund
