#pragma once

#include <memory>
#include <string>
#include <vector>

#include "standalone/databases/StandaloneManager.h"
#include "velkrund/platform/database/Relations.h"

namespace velkrund {

/// The relations of the databases of a manager, from the foreign keys that their engines report. One transaction holds
/// the tables of a loading where tables that refer to each other are emptied first, and where the engine enforces no
/// keys, so that what is broken at the end can be taken back.
class TStandaloneRelations final : public TRelations {
 public:
  /// Manager: borrowed; the installed application manager while tables are loaded.
  explicit TStandaloneRelations(TStandaloneManager& Manager) : FManager(Manager) {}

  std::unique_ptr<TTableLoading> Load(const std::string& DatabaseName,
                                      const std::vector<TLoadTarget>& Targets) override;

 private:
  TStandaloneManager& FManager;
};

}  // namespace velkrund
