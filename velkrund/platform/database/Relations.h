#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velkrund/platform/database/LText.h"

namespace velkrund {

/// A table that rows are to be loaded into.
struct TLoadTarget {
  std::string Table;  // the physical name
  bool Empty = true;  // its rows are deleted first
  bool Many = false;  // so many rows come that it pays to prepare the table for them
};

/// What becomes of indexes that are there for queries alone, neither unique nor a key, while rows are loaded.
enum class TIndexUpkeep {
  Auto,    // dropped, and made again behind the rows, where many come into a table that has none
  Keep,    // every row goes into them as it comes
  Rebuild  // dropped and made again wherever that can be done; a remark where not
};

struct TLoadOptions {
  /// What fails takes back the tables that are tied to it by foreign keys, or by triggers that fire when rows are
  /// deleted, and no others; false: all tables are one group.
  bool InGroups = true;
  bool Triggers = true;           // they fire; false: none of those on the tables of the load
  bool BrokenReferences = false;  // rows that refer to nothing are let in
  TIndexUpkeep Indexes = TIndexUpkeep::Auto;
};

/// Tables that are loaded in one go, with what stands around them: foreign keys, triggers, locks. They fall into
/// groups, each of which is emptied, loaded and checked in a transaction, or a part of one, by itself. Freed before an
/// end: what was begun is taken back. Raises EDatabaseError. Used by one thread at a time.
class TTableLoading {
 public:
  TTableLoading() = default;
  TTableLoading(const TTableLoading&) = delete;
  TTableLoading& operator=(const TTableLoading&) = delete;
  virtual ~TTableLoading() = default;

  /// Begins one transaction around all groups, and whatever else is done until CommitAll. Its first statements lock all
  /// tables; what fails there is tried again while the database may be waited for. Without it each group is committed
  /// by itself.
  virtual void BeginAll() = 0;
  virtual void CommitAll() = 0;

  /// Tables of lower rank come first: those of a group stand together, in it those that others refer to stand before
  /// them. 0 for a table that is no target.
  virtual std::size_t Rank(const std::string& Table) const = 0;
  /// From 0, in the order of ranks. The table is a target.
  virtual std::size_t Group(const std::string& Table) const = 0;

  /// Sets aside what is in the way of the group's rows, counts what is broken before, and empties tables, children
  /// first. After an error nothing is begun.
  virtual void Begin(std::size_t Group) = 0;
  /// How many rows of the table Begin has deleted; the second time 0.
  virtual std::int64_t TakeDeletedRows(const std::string& Table) = 0;
  /// Not Whole, or an error such as references that were not broken before: the group is taken back.
  virtual void End(bool Whole) = 0;

  /// What people should know of the groups that were ended whole: triggers that have fired, keys that could not be
  /// checked.
  virtual const std::vector<TLText>& Remarks() const = 0;
};

/// What databases ask of those who load tables.
class TRelations {
 public:
  virtual ~TRelations() = default;

  /// Several targets of one table are one, emptied when one of them says so. The caller owns the loading and frees it
  /// before the database is closed. Raises EDatabaseError, also when an emptying would delete or change rows of tables
  /// that are not emptied.
  virtual std::unique_ptr<TTableLoading> Load(const std::string& DatabaseName, const std::vector<TLoadTarget>& Targets,
                                              const TLoadOptions& Options) = 0;
};

/// The installed relations; null: the platform has none, and every table is loaded by itself.
TRelations* Relations();
/// See TInstalledService.
TRelations* InstallService(TRelations* Service);

}  // namespace velkrund
