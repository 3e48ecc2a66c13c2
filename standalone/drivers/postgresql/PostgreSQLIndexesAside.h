#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/Safeguards.h"

namespace velkrund {

class TPostgreSQLSession;

/// Indexes that are dropped while many rows are loaded, and made again behind them by the definitions that the engine
/// prints. Those stay that would not come back just as they were: with a comment, a mark for CLUSTER or replication, a
/// target of statistics, a tablespace of their own, of a partition, of an extension. Within one transaction, whose roll
/// back brings them all back. Raises EDatabaseError.
class TPostgreSQLIndexesAside {
 public:
  /// Session: borrowed.
  explicit TPostgreSQLIndexesAside(TPostgreSQLSession& Session) : FSession(Session) {}

  /// Whether the role may drop the table's indexes and make others.
  static bool MayChange(TPostgreSQLSession& Session, const TTableInfo& Table);

  /// Locked: nobody else uses the table; otherwise that is seen to, without waiting.
  TIndexObstacle Drop(const TTableInfo& Table, bool Locked);
  std::size_t Dropped(const TTableInfo& Table) const;
  void Make(const TTableInfo& Table);

 private:
  struct TIndex {
    std::string Name;  // as statements name it
    std::string Definition;
    bool ForQueries;  // alone: it is neither unique nor a key
    bool ComesBack;   // just as it was
  };

  std::vector<TIndex> Indexes(const TTableInfo& Table);
  bool Any(std::string_view Rows);
  bool LockAtOnce(const TTableInfo& Table);

  TPostgreSQLSession& FSession;
  std::map<std::string, std::vector<TIndex>> FAside;  // by the table's full name
};

}  // namespace velkrund
