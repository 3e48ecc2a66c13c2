#include "jobs/application/Application.h"

#include <mutex>

#include "jobs/application/DefaultTexts.h"
#include "jobs/application/Registration.h"
#include "velkrund/module/Module.h"

namespace velkrund {

namespace {

TConfiguration ConfigurationFor(const TApplicationOptions& Options) {
  TConfiguration Result = FindAndLoadConfiguration(Options.ConfigFile);
  if (Options.Trace) Result.TraceLevel = TTraceLevelSetting::Detail;
  if (Options.KeepsStandardError && Result.TraceFile.empty()) Result.TraceLevel = TTraceLevelSetting::Off;
  return Result;
}

TPlatform PlatformOf(TStandaloneManager& Manager, TStructureStore& Structures, TRelations& Relations,
                     TDictionary& Dictionary, TDicDBContainer& DicDatabases, TLContainer& Localization,
                     TWindowSystem* Windows) {
  TPlatform Result;
  Result.ApplicationManager = &Manager;
  Result.DSPContainer = &Structures;
  Result.Windows = Windows;
  Result.Relations = &Relations;
  Result.Dictionary = &Dictionary;
  Result.DicDBContainer = &DicDatabases;
  Result.LContainer = &Localization;
  return Result;
}

void SetTexts(TStandaloneManager& Manager) {
  const auto In = [](std::string Language) {
    return [Language = std::move(Language)](std::string_view Key) { return TDefaultTexts::Own().Find(Key, Language); };
  };
  Manager.SetLookUpText(In(TextLanguage(Manager.Configuration().Language)));
  Manager.SetLookUpEnglish(In(std::string(EnglishTexts)));
}

}  // namespace

TPlainTexts::TPlainTexts() { SetTexts(FManager); }

TApplication::TApplication(const TApplicationOptions& Options, TWindowSystem* Windows)
    : FManager(ConfigurationFor(Options)),
      FPlatform(PlatformOf(FManager, FStructures, FRelations, FDictionary, FDicDatabases, FLocalization, Windows)) {
  SetTexts(FManager);
  StartModule();
  static std::once_flag Registered;
  std::call_once(Registered, &RegisterJobClasses);
}

std::string_view VelkrundVersion() { return VELKRUND_PROJECT_VERSION; }

}  // namespace velkrund
