// The part of Velkrund.h that builds the platform.

#include <memory>
#include <utility>

#include "hosts/common/Application.h"
#include "velkrund/module/CGuard.h"
#include "velkrund/module/Velkrund.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

// Left alone at the end of a program that does not remove it: databases are closed by the system then, in any order.
TApplication* Installed = nullptr;

}  // namespace

}  // namespace velkrund

using namespace velkrund;

int VelkrundInstallPlatform(const char* ConfigFile) {
  return GuardedC(0, [ConfigFile] {
    if (Installed) throw Exception("A platform is installed already; remove it first");
    TApplicationOptions Options;
    if (ConfigFile) Options.ConfigFile = ConfigFile;
    Installed = std::make_unique<TApplication>(Options).release();
    return 1;
  });
}

int VelkrundRemovePlatform() {
  return GuardedC(0, [] {
    if (!Installed) throw Exception("No platform is installed");
    if (const int Left = TCHandleCount::Count())
      throw Exception(
          Format("The platform is in use: %d operations or files have to be destroyed or closed first", Left));
    delete std::exchange(Installed, nullptr);
    return 1;
  });
}
