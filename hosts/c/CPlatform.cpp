// The part of Velkrund.h that builds the platform.

#include <memory>
#include <utility>

#include "jobs/application/Application.h"
#include "standalone/windows/messagebox/MessageBoxWindows.h"
#include "velkrund/module/CGuard.h"
#include "velkrund/module/Velkrund.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

int AskHost(const std::string& Text, const std::string& Caption, std::uint32_t Flags) {
  return HasUtilOperationsMessageBox() ? uoMessageBox(0, ToUtf16(Text), ToUtf16(Caption), Flags, 0, 0) : 0;
}

struct TInstalled {
  explicit TInstalled(const TApplicationOptions& Options) : Application(Options, &Windows) {}

  TMessageBoxWindows Windows{&AskHost, &HasUtilOperationsMessageBox};
  TApplication Application;
};

// Left alone at the end of a program that does not remove it: databases are closed by the system then, in any order.
TInstalled* Installed = nullptr;

}  // namespace

}  // namespace velkrund

using namespace velkrund;

int VelkrundInstallPlatform(const char* ConfigFile) {
  return GuardedC(0, [ConfigFile] {
    if (Installed) throw Exception("A platform is installed already; remove it first");
    TApplicationOptions Options;
    if (ConfigFile) Options.ConfigFile = ConfigFile;
    Installed = std::make_unique<TInstalled>(Options).release();
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
