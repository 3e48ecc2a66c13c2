#pragma once

#include <map>
#include <memory>
#include <string>

#include "standalone/databases/Databases.h"
#include "velkrund/platform/localization/LContainer.h"

namespace velkrund {

/// The languages and localized strings of an application's databases, each kept in its own database.
class TLocalizationStore final : public TLContainer {
 public:
  /// Databases: borrowed.
  explicit TLocalizationStore(TDatabases& Databases);
  ~TLocalizationStore() override;

  TLanguagesTable& GetLanguagesTable(const std::string& DatabaseName) override;
  TLocalizatorTable& GetLocalizatorTable(const std::string& DatabaseName) override;
  std::unique_ptr<TLocalizator> CreateLocalizator(const std::string& DatabaseName) override;

 private:
  struct TTables;

  TTables& TablesOf(const std::string& DatabaseName);

  TDatabases& FDatabases;
  std::map<std::string, std::shared_ptr<TTables>> FTables;  // by the name that was asked for
};

}  // namespace velkrund
