#pragma once

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/Relations.h"
#include "velkrund/platform/dictionary/DicDatabase.h"
#include "velkrund/platform/dictionary/Dictionary.h"
#include "velkrund/platform/extcalls/ExtCall.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/localization/LContainer.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

/// The platform that the module runs on. All borrowed; they outlive every use of the module. Missing parts are null.
struct TPlatform {
  TApplicationManager* ApplicationManager = nullptr;
  TExtCallFactory* ExtCalls = nullptr;
  TWindowSystem* Windows = nullptr;
  TDSPContainer* DSPContainer = nullptr;
  TDictionary* Dictionary = nullptr;
  TRelations* Relations = nullptr;
  TDicDBContainer* DicDBContainer = nullptr;
  TLContainer* LContainer = nullptr;
};

/// Installs a platform for the whole process and returns the one before. To be called while no operation runs.
TPlatform InstallPlatform(const TPlatform& Platform);

/// Installs a platform for the guard's lifetime, then the one before again.
class TPlatformGuard {
 public:
  explicit TPlatformGuard(const TPlatform& Platform) : FBefore(InstallPlatform(Platform)) {}
  TPlatformGuard(const TPlatformGuard&) = delete;
  TPlatformGuard& operator=(const TPlatformGuard&) = delete;
  ~TPlatformGuard() { InstallPlatform(FBefore); }

 private:
  TPlatform FBefore;
};

}  // namespace velkrund
