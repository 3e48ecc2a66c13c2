#pragma once

#include <memory>
#include <string>
#include <vector>

#include "standalone/databases/StandaloneManager.h"
#include "velkrund/platform/database/Relations.h"

namespace velkrund {

/// The relations of the databases of a manager, from the foreign keys and triggers that their engines report.
class TStandaloneRelations final : public TRelations {
 public:
  /// Manager: borrowed; the installed application manager while tables are loaded.
  explicit TStandaloneRelations(TStandaloneManager& Manager) : FManager(Manager) {}

  std::unique_ptr<TTableLoading> Load(const std::string& DatabaseName, const std::vector<TLoadTarget>& Targets,
                                      const TLoadOptions& Options) override;

 private:
  TStandaloneManager& FManager;
};

}  // namespace velkrund
