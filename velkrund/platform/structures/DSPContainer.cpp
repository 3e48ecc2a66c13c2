#include "velkrund/platform/structures/DSPContainer.h"

#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {
namespace {

constinit TInstalledService<TDSPContainer> Installed("container of structures");

}  // namespace

TDSPContainer& DSPContainer() { return Installed.Required(); }
TDSPContainer* InstallService(TDSPContainer* Service) { return Installed.Install(Service); }

}  // namespace velkrund
