#pragma once

#include <string>

#include "standalone/localization/LocalizationTables.h"
#include "velkrund/platform/localization/LanguagesTable.h"

namespace velkrund {

/// The languages of one database.
class TStoredLanguages final : public TLanguagesTable {
 public:
  /// Tables: borrowed.
  explicit TStoredLanguages(TLocalizationTables& Tables) : FTables(Tables) {}

  bool LanguageExist(const std::string& Language) override { return FTables.LanguageNumber(Language).has_value(); }
  bool GetLanguage(const std::string& Language, TOneLanguage& Record) override;
  void SetLanguage(const std::string& Language, const TOneLanguage& Record) override;
  void FillLanguageNames(TStringList& Names) override;
  bool DeleteLanguage(const std::string& Language) override;
  std::int64_t TextCount(const std::string& Language) override;

 private:
  void DeleteTextsOf(std::int64_t Language);

  TLocalizationTables& FTables;
};

}  // namespace velkrund
