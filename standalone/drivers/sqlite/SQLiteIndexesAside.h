#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "standalone/drivers/Safeguards.h"
#include "standalone/drivers/sqlite/SQLitePlannerRows.h"

namespace velkrund {

class TSQLiteDatabase;

/// Indexes that are dropped while many rows are loaded, and made again behind them by the statements that the engine
/// keeps; what its planner knows of them comes back too. Within one transaction, whose roll back brings them all back.
/// Raises EDatabaseError.
class TSQLiteIndexesAside {
 public:
  /// Database: borrowed.
  explicit TSQLiteIndexesAside(const TSQLiteDatabase& Database) : FDatabase(Database) {}

  TIndexObstacle Drop(const std::string& Table);
  std::size_t Dropped(const std::string& Table) const;
  void Make(const std::string& Table);

 private:
  struct TIndex {
    std::string Name, Statement;
    bool IsUnique;  // stays
  };
  struct TAside {
    std::vector<TIndex> Indexes;           // in the order in which they were made
    std::vector<TSQLitePlannerRow> Known;  // of these
  };

  bool IsReading() const;
  bool IsHidden(const std::string& Table) const;
  std::vector<TIndex> Indexes(const std::string& Table) const;
  void MakeOne(const std::string& Table, const TIndex& Index) const;

  const TSQLiteDatabase& FDatabase;
  std::map<std::string, TAside> FAside;  // by table
};

}  // namespace velkrund
