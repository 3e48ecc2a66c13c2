#pragma once

#include <string>
#include <string_view>

#include "standalone/databases/StandaloneManager.h"
#include "standalone/dictionary/DicDatabase.h"
#include "standalone/dictionary/StandaloneDictionary.h"
#include "standalone/localization/LocalizationStore.h"
#include "standalone/relations/StandaloneRelations.h"
#include "standalone/structures/StructureStore.h"
#include "velkrund/platform/installation/Platform.h"
#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {

/// What a host decides about the platform that it starts.
struct TApplicationOptions {
  std::string ConfigFile;           // empty: looked for in the usual places
  bool Trace = false;               // trace everything, whatever the configuration says
  bool KeepsStandardError = false;  // standard error is the host's alone: a trace without a file is none
};

/// A running host: reads the configuration, builds the stand-alone platform from it, installs it, starts the module and
/// makes the jobs known. There is one at a time; with its end the platform is taken away again.
class TApplication {
 public:
  /// Windows: borrowed; asks the questions of operations. Null: questions are errors. Raises EConfigurationError.
  explicit TApplication(const TApplicationOptions& Options, TWindowSystem* Windows = nullptr);

 private:
  TStandaloneManager FManager;
  TStructureStore FStructures{FManager.Databases()};
  TLocalizationStore FLocalization{FManager.Databases()};
  TStandaloneRelations FRelations{FManager};
  TStandaloneDictionary FDictionary{FManager};
  TStandaloneDicDatabases FDicDatabases{FManager, FDictionary.Gaps()};
  TPlatformGuard FPlatform;
};

/// The texts alone, in the environment's language: for what a host says while no application runs.
class TPlainTexts {
 public:
  TPlainTexts();

 private:
  TStandaloneManager FManager{TConfiguration()};
  TServiceGuard<TApplicationManager> FGuard{&FManager};
};

/// The version of this build, such as "1.2.3".
std::string_view VelkrundVersion();

}  // namespace velkrund
