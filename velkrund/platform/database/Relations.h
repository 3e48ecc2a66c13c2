#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velkrund {

/// A table that rows are to be loaded into.
struct TLoadTarget {
  std::string Table;  // the physical name
  bool Empty = true;  // its rows are deleted first
};

/// Tables that are loaded in one go, as far as foreign keys tie them to each other and to others. Freed before End:
/// what was begun is taken back. Raises EDatabaseError. Used by one thread at a time.
class TTableLoading {
 public:
  TTableLoading() = default;
  TTableLoading(const TTableLoading&) = delete;
  TTableLoading& operator=(const TTableLoading&) = delete;
  virtual ~TTableLoading() = default;

  /// Tables of lower rank come first; equal where nothing asks for an order.
  virtual std::size_t Rank(const std::string& Table) const = 0;
  /// Whether all come in one transaction; a failure then takes all back.
  virtual bool AreOne() const = 0;
  /// Starts that transaction where there is to be one, counts what is broken before, and empties tables, children
  /// first. After an error nothing is begun.
  virtual void Begin() = 0;
  /// Whether the table's rows still have to be deleted before the next rows come: not after Begin emptied it, nor after
  /// SetLoaded. False for a table that is no target.
  virtual bool Empties(const std::string& Table) const = 0;
  /// How many rows of the table Begin has deleted.
  virtual std::int64_t DeletedRows(const std::string& Table) const = 0;
  /// Rows were loaded; what comes for the table later is added.
  virtual void SetLoaded(const std::string& Table) = 0;
  /// Tables whose keys the engine cannot check, in its words; known once Begin has returned.
  virtual std::vector<std::string> Warnings() const = 0;
  /// Not Whole, or an error such as references that were not broken before: all is taken back.
  virtual void End(bool Whole) = 0;
};

/// What the foreign keys of databases ask of those who load tables.
class TRelations {
 public:
  virtual ~TRelations() = default;

  /// Several targets of one table are one, emptied when one of them says so. The caller owns the loading and frees it
  /// before the database is closed. Raises EDatabaseError, also when an emptying would delete or change rows of tables
  /// that are not emptied.
  virtual std::unique_ptr<TTableLoading> Load(const std::string& DatabaseName,
                                              const std::vector<TLoadTarget>& Targets) = 0;
};

/// The installed relations; null: the platform has none, and every table is loaded by itself.
TRelations* Relations();
/// See TInstalledService.
TRelations* InstallService(TRelations* Service);

}  // namespace velkrund
