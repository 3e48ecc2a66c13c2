#include "velkrund/platform/localization/LContainer.h"

#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {
namespace {

constinit TInstalledService<TLContainer> Installed("container of localized strings");

}  // namespace

TLContainer& LContainer() { return Installed.Required(); }
TLContainer* InstallService(TLContainer* Service) { return Installed.Install(Service); }

}  // namespace velkrund
