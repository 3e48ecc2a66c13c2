#pragma once

#include <memory>
#include <optional>
#include <string>

#include "velkrund/platform/structures/DSPFormManager.h"
#include "velkrund/platform/structures/DSPList.h"

namespace velkrund {

/// The structures that one database stores. Names are found ignoring case. Errors are EDatabaseError.
class TDSPTable {
 public:
  virtual ~TDSPTable() = default;

  virtual bool DSPStructureExist(const std::string& ObjectName, int ObjectType) = 0;
  /// Nothing when there is no such structure.
  virtual std::optional<TDSPListItem> GetStructureProperties(const std::string& ObjectName, int ObjectType) = 0;
  /// Stores table name, parent object and remarks of the structure that name and type identify; one that does not exist
  /// is made, with an empty tree.
  virtual void ChangeStructureProperties(const TDSPListItem& Item) = 0;
  /// All structures, by type, then by name.
  virtual TDSPList List() = 0;
  /// Removes properties and tree; false when there is no such structure.
  virtual bool DeleteStructure(const std::string& ObjectName, int ObjectType) = 0;
};

/// Where structures are kept. Databases are named; an empty name is the application's default database.
class TDSPContainer {
 public:
  virtual ~TDSPContainer() = default;

  /// Owned by the container. EDatabaseError when the database cannot be reached.
  virtual TDSPTable& Table(const std::string& DatabaseName) = 0;
  /// For one structure of the database: the caller sets its type and name.
  virtual std::unique_ptr<TDSPFormManager> CreateFormManager(const std::string& DatabaseName) = 0;
};

/// The installed container. Raises EAccessViolation when there is none.
TDSPContainer& DSPContainer();
/// Installs one for the process, borrowed, or none when null; returns the one before. TServiceGuard undoes it.
TDSPContainer* InstallService(TDSPContainer* Service);

}  // namespace velkrund
