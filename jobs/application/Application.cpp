#include "jobs/application/Application.h"

#include "jobs/application/DefaultTexts.h"
#include "standalone/drivers/DatabaseUrl.h"
#include "velkrund/module/Module.h"

namespace velkrund {

namespace {

TConfiguration ConfigurationFor(const TApplicationOptions& Options) {
  TConfiguration Result = FindAndLoadConfiguration(Options.ConfigFile);
  if (Options.Trace) Result.TraceLevel = TTraceLevelSetting::Detail;
  Result.StrictText = Options.StrictText.value_or(Result.StrictText);
  if (Options.Lenient) Result.StrictValues = false;
  return Result;
}

TPlatform PlatformOf(TStandaloneManager& Manager, TStructureStore& Structures, TRelations& Relations,
                     TWindowSystem* Windows) {
  TPlatform Result;
  Result.ApplicationManager = &Manager;
  Result.DSPContainer = &Structures;
  Result.Windows = Windows;
  Result.Relations = &Relations;
  return Result;
}

}  // namespace

TApplication::TApplication(const TApplicationOptions& Options, TWindowSystem* Windows)
    : FManager(ConfigurationFor(Options)), FPlatform(PlatformOf(FManager, FStructures, FRelations, Windows)) {
  FManager.Databases().SetCreateMissing(Options.CreateDatabases);
  FManager.SetLookUpText([Language = TextLanguage(FManager.Configuration().Language)](std::string_view Key) {
    return TDefaultTexts::Own().Find(Key, Language);
  });
  StartModule();
}

std::string TApplication::DatabaseText(const std::string& Name) const {
  const TConfiguration& Configuration = FManager.Configuration();
  const std::string& Meant = Name.empty() ? Configuration.DefaultDatabase : Name;
  const auto Entry = Configuration.Databases.find(Meant);
  if (Entry == Configuration.Databases.end()) return WithoutSecrets(Meant);
  return Meant + " (" + WithoutSecrets(Entry->second.Url) + ")";
}

std::string_view VelkrundVersion() { return VELKRUND_VERSION; }

}  // namespace velkrund
