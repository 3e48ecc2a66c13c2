#include "velkrund/platform/database/Relations.h"

#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {
namespace {

constinit TInstalledService<TRelations> Installed("relations of tables");

}  // namespace

TRelations* Relations() { return Installed.Get(); }
TRelations* InstallService(TRelations* Service) { return Installed.Install(Service); }

}  // namespace velkrund
