#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "standalone/drivers/Surroundings.h"
#include "standalone/drivers/sqlite/SQLitePlannerRows.h"

namespace velkrund {

class TSQLiteDatabase;

/// What the engine keeps of a table in tables of its own, and drops with it: how far automatic numbers have come, and
/// what its planner knows of the values. Raises EDatabaseError.
class TSQLiteBookkeeping {
 public:
  /// Reads it. Database: borrowed.
  TSQLiteBookkeeping(const TSQLiteDatabase& Database, std::string Table);

  /// When the table is there again: numbers go on where they were, never back; what was known of an index holds for one
  /// of the same name with the same fields.
  void PutBack(const TRenamedFields& Renamed);

 private:
  bool HasTable(const char* Name) const;
  std::string NameNow() const;
  std::map<std::string, std::string> Indexes(const TRenamedFields& Renamed) const;
  bool NumbersItself() const;
  void PutCounterBack() const;

  const TSQLiteDatabase& FDatabase;
  std::string FTable;
  std::optional<std::int64_t> FCounter;
  std::vector<TSQLitePlannerRow> FKnown;
  std::map<std::string, std::string> FIndexes;  // by name: their fields
};

}  // namespace velkrund
