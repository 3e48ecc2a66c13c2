#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/localization/LocalizationTables.h"
#include "velkrund/platform/localization/LocalizatorTable.h"

namespace velkrund {

/// The strings of a section in one walk by number, a page of them at a time. Those without a text in the first language
/// are remembered by number on the way and read behind the others.
class TSectionReader final : public TSectionTexts {
 public:
  /// Tables: borrowed.
  TSectionReader(TLocalizationTables& Tables, std::string SectionKey, const TStringList& Languages);

  std::int64_t Count() const override { return FCount; }
  bool Next() override;
  const std::string& Name() const override { return FStrings[FAt].Name; }
  std::optional<std::string_view> Text(int Language) override;

 private:
  struct TString {
    std::int64_t Number;
    std::string Name;
  };
  struct TText {
    std::size_t Start = 0, Size = 0;
    bool IsThere = false;
  };

  void FindLanguages(const TStringList& Languages);
  void CountStrings();
  bool ReadPage();
  void TakeStrings(TCursor& Rows);
  void ReadFirst();
  void ReadLater();
  void ReadTexts();
  void PutAside();
  std::size_t FirstLanguage(std::size_t String) const;

  TLocalizationTables& FTables;
  const std::string FSectionKey;
  std::vector<std::int64_t> FLanguages;  // numbers of those that are there, each once, in the order asked for
  std::vector<int> FPlaces;              // of those asked for, among FLanguages; -1: it is not there
  std::string FLanguageWords;            // the condition for them; empty: they are all that there are
  std::int64_t FCount = 0;

  bool FIsFirst = true;                                           // the walk by number still goes on
  std::int64_t FLast = std::numeric_limits<std::int64_t>::min();  // number of its last string so far
  std::vector<std::vector<std::int64_t>> FLater;  // numbers of strings by the first language that they have
  std::size_t FLaterLanguage = 1, FLaterAt = 0;   // the next of them
  std::size_t FPageSize;

  // The page.
  std::vector<TString> FStrings;
  std::size_t FStringCount = 0;  // of FStrings, whose names keep their room
  std::vector<TText> FTexts;     // of each string one per language
  std::string FBytes;            // of the texts
  std::size_t FAt = 0;           // the current string
  bool FHasPage = false;
};

}  // namespace velkrund
