#include "standalone/relations/StandaloneRelations.h"

#include "standalone/relations/KeyedLoading.h"

namespace velkrund {

std::unique_ptr<TTableLoading> TStandaloneRelations::Load(const std::string& DatabaseName,
                                                          const std::vector<TLoadTarget>& Targets,
                                                          const TLoadOptions& Options) {
  return std::make_unique<TKeyedLoading>(FManager, DatabaseName, Targets, Options);
}

}  // namespace velkrund
