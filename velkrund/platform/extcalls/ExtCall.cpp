#include "velkrund/platform/extcalls/ExtCall.h"

#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {
namespace {

constinit TInstalledService<TExtCallFactory> Installed("caller of script functions");

}  // namespace

TExtCallFactory& ExtCalls() { return Installed.Required(); }
TExtCallFactory* InstallService(TExtCallFactory* Service) { return Installed.Install(Service); }

}  // namespace velkrund
