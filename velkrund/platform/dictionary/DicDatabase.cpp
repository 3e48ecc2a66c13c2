#include "velkrund/platform/dictionary/DicDatabase.h"

#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {
namespace {

constinit TInstalledService<TDicDBContainer> Installed("databases of the data dictionary");

}  // namespace

TDicDBContainer& DicDBContainer() { return Installed.Required(); }
TDicDBContainer* InstallService(TDicDBContainer* Service) { return Installed.Install(Service); }

}  // namespace velkrund
