#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "velkrund/operations/HookGuard.h"

namespace velkrund {

class TUtilOperation;

/// Makes the tables that a file import has rows or structures of and the database lacks. Made for one run.
class TMissingTables {
 public:
  TMissingTables() = default;
  TMissingTables(const TMissingTables&) = delete;
  TMissingTables& operator=(const TMissingTables&) = delete;
  virtual ~TMissingTables() = default;

  /// When all structures are stored, before the first row: makes what is missing and described. Names: as sections have
  /// them, in any case; some may be there, and some twice. What fails with one table is kept for Check.
  virtual void Make(const std::vector<std::string>& Names) = 0;
  /// Raises what made the table fail, or that its creation was declined; nothing for tables that are there.
  virtual void Check(const std::string& Name) = 0;
  /// Behind the last row: makes what is left of the tables that were made: indexes, then foreign keys, triggers,
  /// comments. Failed: called while the error of one of them is handled; returns when the others are to be gone on
  /// with.
  using TFailed = std::function<void(const std::string& Table, const std::exception& Error)>;
  /// TakenBack: told of tables that are gone again because they refer to one that failed.
  using TTakenBack = std::function<void(const std::string& Table)>;
  virtual void Complete(const TFailed& Failed, const TTakenBack& TakenBack) = 0;
};

/// Of a run of Operation, which is borrowed and outlives them. Null: tables have to be there.
using TMissingTablesHook =
    std::function<std::unique_ptr<TMissingTables>(TUtilOperation& Operation, const std::string& DatabaseName)>;
/// Installs who makes the tables of file imports, and returns the hook before; an empty one: nobody. To be set while no
/// operation runs.
TMissingTablesHook SetMissingTablesHook(TMissingTablesHook Hook);
using TMissingTablesGuard = THookGuard<TMissingTablesHook, &SetMissingTablesHook>;

/// Those of the installed hook; null where nobody makes any.
std::unique_ptr<TMissingTables> MissingTables(TUtilOperation& Operation, const std::string& DatabaseName);

}  // namespace velkrund
