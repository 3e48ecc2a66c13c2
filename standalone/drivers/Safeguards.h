#pragma once

#include <cstddef>
#include <vector>

#include "standalone/drivers/Schema.h"

namespace velkrund {

/// What a load of tables asks of an engine.
struct TLoadNeeds {
  struct TTarget {
    TTableInfo Table;
    bool Replaced = false;           // its rows are deleted first
    bool HasDeleteTriggers = false;  // which fire then
  };
  std::vector<TTarget> Targets;
  std::vector<TForeignKey> Circular;  // whose rows come before those that they refer to
  bool TriggersOff = false;
  bool BrokenReferences = false;  // rows that refer to nothing are let in
  bool RebuildsIndexes = false;   // DropIndexes is wished for, whoever has to wait
};

/// Why the indexes of a table stay.
enum class TIndexObstacle {
  None,
  CursorOpen,    // somebody reads through this connection
  InUse,         // by others, who would have to wait
  MissingRight,  // the role does not own the table, or makes nothing in its schema
  Watched,       // somebody's functions run when indexes go or come
  Hidden,        // a table of the connection alone has its name
  Special        // some of them, which would not come back just as they were; the others go
};

/// What an engine has around tables so that their rows stay right: locks, foreign keys, triggers; and what of it is set
/// aside while they are loaded. Lives inside one transaction of the caller, whose roll back undoes what was set aside;
/// freed before PutBack, it undoes the rest. The operations come in this order, and raise EDatabaseError.
class TSafeguards {
 public:
  TSafeguards() = default;
  TSafeguards(const TSafeguards&) = delete;
  TSafeguards& operator=(const TSafeguards&) = delete;
  virtual ~TSafeguards() = default;

  /// Locks all targets in one order, each in the strongest mode that the load needs; the first statements of the
  /// transaction. Also an error where the engine cannot hold all locks that the load will take.
  virtual void Lock() = 0;
  /// Before tables are emptied. An error names the right that is missing.
  virtual void SetAside() = 0;
  /// When they are empty: triggers that were to fire later fire now, rather than meet the new rows.
  virtual void EndEmptying() = 0;
  /// Drops those indexes of a target that are there for queries alone and come back from their definition just as they
  /// were. Without RebuildsIndexes nobody is waited for.
  virtual TIndexObstacle DropIndexes(const TTableInfo& Table) = 0;
  /// Before the first row.
  virtual void BeginRows() = 0;
  /// After the last one: checks what was deferred.
  virtual void EndRows() = 0;
  /// How many of the table's indexes were dropped.
  virtual std::size_t DroppedIndexes(const TTableInfo& Table) const = 0;
  virtual void MakeIndexes(const TTableInfo& Table) = 0;
  virtual void PutBack() = 0;
};

}  // namespace velkrund
