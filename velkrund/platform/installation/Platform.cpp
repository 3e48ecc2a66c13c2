#include "velkrund/platform/database/Platform.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {
namespace {

constinit TPlatform Installed;

template <typename TService>
TService& Required(TService* Service, const char* Name) {
  if (!Service) throw EAccessViolation(std::string("No ") + Name + " is installed");
  return *Service;
}

}  // namespace

TPlatform InstallPlatform(const TPlatform& Platform) {
  const TPlatform Before = Installed;
  Installed = Platform;
  return Before;
}

TApplicationManager& BaseMng() { return Required(Installed.ApplicationManager, "application manager"); }
TExtCallFactory& ExtCalls() { return Required(Installed.ExtCalls, "caller of script functions"); }
TDSPContainer& DSPContainer() { return Required(Installed.DSPContainer, "container of structures"); }
TRelations* Relations() { return Installed.Relations; }
TDictionary& Dictionary() { return Required(Installed.Dictionary, "data dictionary"); }

TWindowSystem& Windows() { return Installed.Windows ? *Installed.Windows : NobodyAtTheScreen(); }

const TSettings& WorkSettings() {
  if (const TApplicationManager* Manager = Installed.ApplicationManager) return Manager->Settings();
  static const TSettings Defaults;
  return Defaults;
}

}  // namespace velkrund
