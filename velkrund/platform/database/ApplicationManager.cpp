#include "velkrund/platform/database/ApplicationManager.h"

#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {
namespace {

constinit TInstalledService<TApplicationManager> Installed("application manager");

}  // namespace

TApplicationManager& BaseMng() { return Installed.Required(); }
TApplicationManager* InstallService(TApplicationManager* Service) { return Installed.Install(Service); }

std::string TApplicationManager::GetTableName(const std::string& TableName, const std::string& DatabaseName) {
  const std::unique_ptr<TTable> Table = GetUserTable(TableName, DatabaseName, false);
  return Table ? Table->TableName() : TableName;
}

const TSettings& WorkSettings() {
  if (const TApplicationManager* Manager = Installed.Get()) return Manager->Settings();
  static const TSettings Defaults;
  return Defaults;
}

}  // namespace velkrund
