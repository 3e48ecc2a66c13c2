#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/localization/LContainer.h"

namespace velkrund {

/// Stores of localized strings that swallow what is written, for reading files through as an import reads them: every
/// language is there, without texts, and no string.
class TDiscardLocalization final : public TLContainer, private TLanguagesTable, private TLocalizatorTable {
 public:
  TLanguagesTable& GetLanguagesTable(const std::string&) override { return *this; }
  TLocalizatorTable& GetLocalizatorTable(const std::string&) override { return *this; }
  std::unique_ptr<TLocalizator> CreateLocalizator(const std::string&) override;

 private:
  bool LanguageExist(const std::string&) override { return true; }
  bool GetLanguage(const std::string&, TOneLanguage& Record) override;
  void SetLanguage(const std::string&, const TOneLanguage&) override {}
  void FillLanguageNames(TStringList&) override {}
  bool DeleteLanguage(const std::string&) override { return true; }
  std::int64_t TextCount(const std::string&) override { return 0; }

  std::string GetString(const std::string&, const std::string&) override { return std::string(AbsentText); }
  bool StringExist(const std::string&, const std::string&) override { return false; }
  void WriteString(const std::string&, const std::string&, std::string_view) override {}
  void FillResNames(const std::string&, const std::string&, TStringList&) override {}
  void Lock(const std::string&, const std::string&) override {}
  void UnLock(const std::string&, const std::string&) override {}
  void BeginUpdate() override {}
  void EndUpdate() override {}
  bool DeleteString(const std::string&) override { return false; }
  std::vector<TLSectionInfo> Sections() override { return {}; }
  std::optional<std::string> SectionOf(const std::string&) override { return std::nullopt; }
};

}  // namespace velkrund
