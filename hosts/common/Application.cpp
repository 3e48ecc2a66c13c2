#include "hosts/common/Application.h"

#include "standalone/drivers/DatabaseUrl.h"
#include "velkrund/module/Module.h"

namespace velkrund {

namespace {

TConfiguration ConfigurationFor(const TApplicationOptions& Options) {
  TConfiguration Result = FindAndLoadConfiguration(Options.ConfigFile);
  if (Options.Trace) Result.TraceLevel = TTraceLevelSetting::Detail;
  Result.StrictText = Options.StrictText;
  if (Options.Lenient) Result.StrictValues = false;
  return Result;
}

TPlatform PlatformOf(TStandaloneManager& Manager, TMessageBoxService& MessageBoxes) {
  TPlatform Result;
  Result.ApplicationManager = &Manager;
  Result.MessageBox = &MessageBoxes;
  return Result;
}

}  // namespace

TApplication::TApplication(const TApplicationOptions& Options, TMessageBoxService& MessageBoxes)
    : FManager(ConfigurationFor(Options)), FPlatform(PlatformOf(FManager, MessageBoxes)) {
  FManager.Databases().SetCreateMissing(Options.CreateDatabases);
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
