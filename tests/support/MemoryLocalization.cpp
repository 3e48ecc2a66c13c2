#include "tests/support/MemoryLocalization.h"

#include <algorithm>

#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {

namespace {

/// The name of a string in a section; its whole ID where that does not begin with the section's.
std::string NameIn(const std::string& StringID, std::string_view SectionID) {
  SectionID = SectionWithoutSeparator(SectionID);
  if (SameText(StringID, SectionID)) return {};
  const std::string Beginning = StringIDOf(SectionID, "_");  // with two separators
  const bool IsOfSection =
      SameText(StringID.substr(0, SectionID.size() + 1), Beginning.substr(0, Beginning.size() - 1));
  return IsOfSection ? StringID.substr(SectionID.size() + 1) : StringID;
}

class TMemoryLocalizator final : public TLocalizator {
 public:
  explicit TMemoryLocalizator(TMemoryStrings& Strings) : FStrings(Strings) {}
  bool DeleteString(const std::string& StringID) override { return FStrings.DeleteString(StringID); }

 private:
  TMemoryStrings& FStrings;
};

auto FindLanguage(auto& Languages, const std::string& Language) {
  return std::find_if(Languages.begin(), Languages.end(),
                      [&](const auto& Known) { return SameText(Known.first, Language); });
}

}  // namespace

void TMemoryStrings::TCalls::Note(const char* What) {
  ++Count;
  if (FailAt > 0 && --FailAt == 0) throw EDatabaseError(std::string(What) + " fails");
}

bool TMemoryStrings::LanguageExist(const std::string& Language) {
  FCalls.Note("LanguageExist");
  return FindLanguage(Content.Languages, Language) != Content.Languages.end();
}

bool TMemoryStrings::GetLanguage(const std::string& Language, TOneLanguage& Record) {
  FCalls.Note("GetLanguage");
  const auto Found = FindLanguage(Content.Languages, Language);
  if (Found == Content.Languages.end()) return false;
  Record = Found->second;
  return true;
}

void TMemoryStrings::SetLanguage(const std::string& Language, const TOneLanguage& Record) {
  FCalls.Note("SetLanguage");
  const auto Found = FindLanguage(Content.Languages, Language);
  if (Found == Content.Languages.end())
    Content.Languages.emplace_back(Language, Record);
  else
    Found->second = Record;
}

void TMemoryStrings::FillLanguageNames(TStringList& Names) {
  FCalls.Note("FillLanguageNames");
  for (const auto& [Name, Record] : Content.Languages) Names.Add(Name);
}

bool TMemoryStrings::DeleteLanguage(const std::string& Language) {
  FCalls.Note("DeleteLanguage");
  const auto Found = FindLanguage(Content.Languages, Language);
  if (Found == Content.Languages.end()) return false;
  Content.Languages.erase(Found);
  for (TString& String : Content.Strings) String.Texts.erase(LowerCase(Language));
  std::erase_if(Content.Strings, [](const TString& String) { return String.Texts.empty(); });
  return true;
}

std::int64_t TMemoryStrings::TextCount(const std::string& Language) {
  return std::count_if(Content.Strings.begin(), Content.Strings.end(),
                       [&](const TString& String) { return String.Texts.contains(LowerCase(Language)); });
}

TMemoryStrings::TString* TMemoryStrings::Find(const std::string& StringID) {
  const auto Found = std::find_if(Content.Strings.begin(), Content.Strings.end(),
                                  [&](const TString& String) { return SameText(String.ID, StringID); });
  return Found == Content.Strings.end() ? nullptr : &*Found;
}

std::string TMemoryStrings::GetString(const std::string& StringID, const std::string& Language) {
  FCalls.Note("GetString");
  if (const TString* const String = Find(StringID))
    if (const auto Text = String->Texts.find(LowerCase(Language)); Text != String->Texts.end()) return Text->second;
  return std::string(AbsentText);
}

std::string TMemoryStrings::SectionFor(const std::string& StringID) const {
  std::string Longest;
  for (const TString& String : Content.Strings)
    if (NameIn(StringID, String.SectionID) != StringID && String.SectionID.size() > Longest.size())
      Longest = String.SectionID;
  return Longest.empty() ? StringID.substr(0, StringID.rfind('_')) : Longest;
}

TMemoryStrings::TString& TMemoryStrings::Take(const std::string& StringID, const std::string& SectionID) {
  TString* String = Find(StringID);
  if (!String) String = &Content.Strings.emplace_back(TString{StringID, {}, {}, {}});
  String->SectionID = SectionWithoutSeparator(SectionID);
  String->Name = NameIn(String->ID, SectionID);
  return *String;
}

void TMemoryStrings::WriteString(const std::string& StringID, const std::string& Language, std::string_view Text) {
  FCalls.Note("WriteString");
  if (Text == AbsentText) throw EDatabaseError("No text can be one that stands for none");
  if (FindLanguage(Content.Languages, Language) == Content.Languages.end())
    throw EDatabaseError("There is no language " + Language);
  const TString* const Known = Find(StringID);
  std::string SectionID = FLocked;
  if (SectionID.empty()) SectionID = Known ? Known->SectionID : SectionFor(StringID);
  Take(StringID, SectionID).Texts[LowerCase(Language)] = Text;
}

void TMemoryStrings::FillResNames(const std::string& SectionID, const std::string& Language, TStringList& Names) {
  FCalls.Note("FillResNames");
  for (const TString& String : Content.Strings)
    if (IsSameSection(String.SectionID, SectionID) && String.Texts.contains(LowerCase(Language)))
      Names.Add(String.Name);
}

void TMemoryStrings::Lock(const std::string& SectionID, const std::string& Language) {
  FCalls.Note("Lock");
  FCalls.Log.push_back("lock " + SectionID + " " + Language);
  FLocked = SectionID;
}

void TMemoryStrings::UnLock(const std::string& SectionID, const std::string& Language) {
  FCalls.Log.push_back("unlock " + SectionID + " " + Language);
  FLocked.clear();
}

bool TMemoryStrings::DeleteString(const std::string& StringID) {
  FCalls.Note("DeleteString");
  return std::erase_if(Content.Strings, [&](const TString& String) { return SameText(String.ID, StringID); }) > 0;
}

std::vector<TLSectionInfo> TMemoryStrings::Sections() {
  std::map<std::string, TLSectionInfo> All;
  for (const TString& String : Content.Strings) {
    TLSectionInfo& Section = All[LowerCase(String.SectionID)];
    Section.SectionID = String.SectionID;
    ++Section.Strings;
    Section.Texts += static_cast<std::int64_t>(String.Texts.size());
  }
  std::vector<TLSectionInfo> Result;
  for (const auto& [Key, Section] : All) Result.push_back(Section);
  return Result;
}

std::optional<std::string> TMemoryStrings::SectionOf(const std::string& StringID) {
  const TString* const String = Find(StringID);
  return String ? std::optional(String->SectionID) : std::nullopt;
}

std::string TMemoryStrings::Texts() const {
  std::string Result;
  for (const TString& String : Content.Strings)
    for (const auto& [Language, Record] : Content.Languages)
      if (const auto Text = String.Texts.find(LowerCase(Language)); Text != String.Texts.end())
        Result += String.ID + "." + Language + "=" + Text->second + " ";
  return Result;
}

void TMemoryStrings::Put(const std::string& SectionID, const std::string& Name, const std::string& Language,
                         std::string_view Text) {
  if (FindLanguage(Content.Languages, Language) == Content.Languages.end())
    Content.Languages.emplace_back(Language, TOneLanguage());
  Take(StringIDOf(SectionID, Name), SectionID).Texts[LowerCase(Language)] = Text;
}

TMemoryStrings& TLocalizationPlatform::Strings(const std::string& DatabaseName) {
  auto& Database = FDatabases[DatabaseName];
  if (!Database) Database = std::make_unique<TMemoryStrings>(Calls);
  return *Database;
}

std::unique_ptr<TLocalizator> TLocalizationPlatform::CreateLocalizator(const std::string& DatabaseName) {
  return std::make_unique<TMemoryLocalizator>(Strings(DatabaseName));
}

void TLocalizationPlatform::StartTransaction(const std::string& DatabaseName, TIsolationLevel Level) {
  FBefore[DatabaseName].push_back(Strings(DatabaseName).Content);
  TTestPlatform::StartTransaction(DatabaseName, Level);
}

void TLocalizationPlatform::CommitTransaction(const std::string& DatabaseName) {
  FBefore[DatabaseName].pop_back();
  TTestPlatform::CommitTransaction(DatabaseName);
}

void TLocalizationPlatform::RollbackTransaction(const std::string& DatabaseName) {
  Strings(DatabaseName).Content = FBefore[DatabaseName].back();
  FBefore[DatabaseName].pop_back();
  TTestPlatform::RollbackTransaction(DatabaseName);
}

}  // namespace velkrund::tests
