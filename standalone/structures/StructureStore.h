#pragma once

#include <map>
#include <memory>
#include <string>

#include "standalone/databases/Databases.h"
#include "standalone/structures/StructureTable.h"

namespace velkrund {

/// The structures of an application's databases, each kept in its own database. Needs the application manager of the
/// installed platform for its transactions.
class TStructureStore final : public TDSPContainer {
 public:
  /// Databases: borrowed.
  explicit TStructureStore(TDatabases& Databases) : FDatabases(Databases) {}

  TDSPTable& Table(const std::string& DatabaseName) override { return StructuresOf(DatabaseName); }
  std::unique_ptr<TDSPFormManager> CreateFormManager(const std::string& DatabaseName) override;

 private:
  TStructureTable& StructuresOf(const std::string& DatabaseName);

  TDatabases& FDatabases;
  std::map<std::string, std::unique_ptr<TStructureTable>> FTables;  // by the name that was asked for
};

}  // namespace velkrund
