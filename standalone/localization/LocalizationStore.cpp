#include "standalone/localization/LocalizationStore.h"

#include "standalone/localization/StoredLanguages.h"
#include "standalone/localization/StoredStrings.h"

namespace velkrund {

namespace {

class TStoredLocalizator final : public TLocalizator {
 public:
  explicit TStoredLocalizator(TLocalizatorTable& Table) : FTable(Table) {}

  bool DeleteString(const std::string& StringID) override { return FTable.DeleteString(StringID); }

 private:
  TLocalizatorTable& FTable;
};

}  // namespace

struct TLocalizationStore::TTables {
  TTables(TDatabases& Databases, const std::string& DatabaseName) : Catalogue(Databases, DatabaseName) {}

  TLocalizationTables Catalogue;
  TStoredLanguages Languages{Catalogue};
  TStoredStrings Strings{Catalogue};
};

TLocalizationStore::TLocalizationStore(TDatabases& Databases) : FDatabases(Databases) {}

TLocalizationStore::~TLocalizationStore() = default;

TLocalizationStore::TTables& TLocalizationStore::TablesOf(const std::string& DatabaseName) {
  if (const auto Known = FTables.find(DatabaseName); Known != FTables.end()) return *Known->second;
  // Two names of one connection share what is held back.
  const TConnection& Connection = FDatabases.Connection(DatabaseName);
  for (const auto& [Name, Tables] : FTables)
    if (&FDatabases.Connection(Name) == &Connection) return *FTables.emplace(DatabaseName, Tables).first->second;
  return *FTables.emplace(DatabaseName, std::make_shared<TTables>(FDatabases, DatabaseName)).first->second;
}

TLanguagesTable& TLocalizationStore::GetLanguagesTable(const std::string& DatabaseName) {
  return TablesOf(DatabaseName).Languages;
}

TLocalizatorTable& TLocalizationStore::GetLocalizatorTable(const std::string& DatabaseName) {
  return TablesOf(DatabaseName).Strings;
}

std::unique_ptr<TLocalizator> TLocalizationStore::CreateLocalizator(const std::string& DatabaseName) {
  return std::make_unique<TStoredLocalizator>(GetLocalizatorTable(DatabaseName));
}

}  // namespace velkrund
