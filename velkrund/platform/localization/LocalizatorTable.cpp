#include "velkrund/platform/localization/LocalizatorTable.h"

#include <unordered_set>

#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

std::optional<std::string_view> TListedTexts::Text(int Language) {
  FText = FTable.GetString(StringIDOf(FSectionID, Name()), FLanguages[Language]);
  return FText == AbsentText ? std::nullopt : std::optional<std::string_view>(FText);
}

std::unique_ptr<TSectionTexts> TLocalizatorTable::ReadSection(const std::string& SectionID,
                                                              const TStringList& Languages) {
  TStringList Names;
  std::unordered_set<std::string> Seen;
  for (const std::string& Language : Languages) {
    TStringList OfLanguage;
    FillResNames(SectionID, Language, OfLanguage);
    for (const std::string& Name : OfLanguage)
      if (Seen.insert(LowerCase(Name)).second) Names.Add(Name);
  }
  return std::make_unique<TListedTexts>(*this, SectionID, std::move(Names), Languages);
}

}  // namespace velkrund
