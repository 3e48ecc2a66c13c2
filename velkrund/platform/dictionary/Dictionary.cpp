#include "velkrund/platform/dictionary/Dictionary.h"

#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {
namespace {

constinit TInstalledService<TDictionary> Installed("data dictionary");

}  // namespace

TDictionary& Dictionary() { return Installed.Required(); }
bool HasDictionary() { return Installed.Get() != nullptr; }
TDictionary* InstallService(TDictionary* Service) { return Installed.Install(Service); }

}  // namespace velkrund
