#include "jobs/resources/ResourceImport.h"

#include <unordered_set>

#include "jobs/policies/Questions.h"
#include "jobs/resources/ResourceNames.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

TResourceImport::TResourceImport(TSettings Settings, std::shared_ptr<TComingLanguages> Coming)
    : FSettings(std::move(Settings)), FComing(std::move(Coming)) {
  FAsk.FAlwaysAsk = FSettings.Existing == TExisting::Ask;
  FAsk.FYes = FSettings.Existing != TExisting::Skip;
}

std::unique_ptr<TEICommonLResource> TResourceImport::OpenSection(const TSource& Source) const {
  std::unique_ptr<TEIObject> Object = Source.Input.File().CreateEIObject(Source.Index);
  std::unique_ptr<TEICommonLResource> Result(&dynamic_cast<TEICommonLResource&>(*Object.release()));
  Result->DatabaseName = FSettings.DatabaseName;
  if (!FSettings.SectionID.empty()) Result->SetSectionID(FSettings.SectionID);
  return Result;
}

TStringList TResourceImport::LanguagesIn(const TSource& Source) const {
  TStringList Result;
  const auto Section = OpenSection(Source);
  Section->ReadLanguagesOnly = true;
  Section->Languages = &Result;
  Source.Input.File().ImportObject(*Section);
  return Result;
}

void TResourceImport::Add(TInputFile& Input, int Index, TItem& Item, std::size_t Number) {
  TSource Source{Input, Index, {}};
  Item.Resource = TTextCounts{std::string(SectionWithoutSeparator(OpenSection(Source)->SectionID()))};
  RequireKept(TResourceName::Section, Item.Resource->SectionID);
  TStringList InFile;
  try {
    InFile = LanguagesIn(Source);
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    return;  // the import says what is wrong with it
  }
  const TStringList Wanted(FSettings.Languages);
  for (const std::string& Language : InFile) {
    if (!HasLanguage(FInFiles, Language)) FInFiles.Add(Language);
    if (Wanted.Count() == 0 || HasLanguage(Wanted, Language)) Source.Languages.Add(Language);
  }
  RefuseMissing(Source, Item.Section);
  FSources.emplace(Number, std::move(Source));
}

/// Languages that the database lacks are an error before anything is changed, unless they are to be added.
void TResourceImport::RefuseMissing(const TSource& Source, const std::string& Section) {
  std::vector<std::string> Missing;
  TLanguagesTable& Table = LContainer().GetLanguagesTable(FSettings.DatabaseName);
  for (const std::string& Language : Source.Languages) {
    if (FComing->contains(UpperCase(Language)) || Table.LanguageExist(Language)) continue;
    RequireKept(TResourceName::Language, Language);
    if (!FSettings.AddLanguages)
      Missing.push_back("'" + OnOneLine(Language) + "'");
    else if (!HasLanguage(FToAdd, Language))
      FToAdd.Add(Language);
  }
  if (Missing.empty()) return;
  const char* const Noun = Missing.size() == 1 ? "a language" : "languages";
  throw ELanguageMissing(
      Format("The section '%s' of '%s' has texts in %s that the database %s lacks: %s. Load only other "
             "languages of it, or have it added",
             OnOneLine(Section), Source.Input.Name(), Noun, FSettings.DatabaseText, JoinedInShort(std::move(Missing))),
      {.Code = TErrorCode::LanguageMissing, .File = Source.Input.Name(), .Section = Section});
}

/// Where nobody can be asked, texts that are there end the run before anything is changed.
void TResourceImport::Settle(TOutcome& Outcome) {
  for (const std::string& Language : FSettings.Languages)
    if (!FSources.empty() && !HasLanguage(FInFiles, Language))
      throw ESettingsError(Format("%s names '%s', which no section has%s", Setting("Languages"), OnOneLine(Language),
                                  ContentHint(Language, FInFiles.Items(), "; there is ")));
  if (!FAsk.FAlwaysAsk || CanAsk()) return;
  std::vector<std::string> Met;
  for (const auto& [Number, Source] : FSources)
    if (Outcome.Items[Number].State != TItemState::LeftOut) FindTexts(Source, Met);
  if (!Met.empty())
    throw EPolicyUnanswered(TPolicy::ExistingTexts, LText("M_Velkrund_Jobs_StringsThere", LJoinedInShort(Met)));
}

void TResourceImport::FindTexts(const TSource& Source, std::vector<std::string>& Met) const {
  TLSection Texts;
  TLocalizatorTable& Table = LContainer().GetLocalizatorTable(FSettings.DatabaseName);
  const auto Section = OpenSection(Source);
  TStringList Languages = Source.Languages;
  std::map<std::string, std::unordered_set<std::string>> There;  // names by language
  for (const std::string& Language : Languages) {
    TStringList Names;
    Table.FillResNames(Section->SectionID(), Language, Names);
    for (const std::string& Name : Names) There[LowerCase(Language)].insert(LowerCase(Name));
  }
  if (There.empty()) return;
  Section->Languages = &Languages;
  Section->LSection = &Texts;
  try {
    Source.Input.File().ImportObject(*Section);
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    return;  // the import says what is wrong with it
  }
  for (int Index = 0; Index < Texts.GetCount(); ++Index) {
    const auto& Known = There[LowerCase(Texts.GetLanguages(Index))];
    for (const TStringHash::TEntry& Entry : Texts.GetResByIndex(Index).Entries())
      if (Known.contains(LowerCase(Entry.Name)))
        Met.push_back(OnOneLine(StringIDOf(Section->SectionID(), Entry.Name)) + " (" +
                      OnOneLine(Texts.GetLanguages(Index)) + ")");
  }
}

std::vector<TPlanStep> TResourceImport::Steps(const TItem& Item, std::size_t Number) const {
  const auto Source = FSources.find(Number);
  if (Source == FSources.end()) return {};
  std::vector<TPlanStep> Result;
  for (const std::string& Language : Source->second.Languages)
    if (HasLanguage(FToAdd, Language)) Result.push_back({Format("add the language '%s'", OnOneLine(Language))});
  Result.push_back({Format("load strings into the resource '%s', in %s%s", OnOneLine(Item.Resource->SectionID),
                           Joined(Source->second.Languages.Items()),
                           FAsk.FAlwaysAsk ? ""
                           : FAsk.FYes     ? ", and replace texts that are there"
                                           : ", and keep texts that are there")});
  return Result;
}

void TResourceImport::Begin(std::size_t Number, TEIObject& Object) {
  auto* const Section = dynamic_cast<TEICommonLResource*>(&Object);
  const auto Source = FSources.find(Number);
  if (!Section) return;
  if (!FSettings.SectionID.empty()) Section->SetSectionID(FSettings.SectionID);
  Section->SetOverwriteAsk(FAsk);
  FReport = {};
  Section->Counts = &FReport;
  Section->StrictLines = true;
  if (Source != FSources.end() && !FSettings.Languages.empty()) Section->Languages = &Source->second.Languages;
  TLanguagesTable& Table = LContainer().GetLanguagesTable(FSettings.DatabaseName);
  for (const std::string& Language : FToAdd)
    if (!Table.LanguageExist(Language)) Table.SetLanguage(Language, {Language, Language, Language});
}

void TResourceImport::End(TItem& Item, const TEIObject* Object) {
  const auto* const Section = dynamic_cast<const TEICommonLResource*>(Object);
  if (!Section || !Item.Resource) return;
  Item.Resource->Strings = FReport.Strings;
  Item.Resource->Texts = FReport.Texts;
  Item.Resource->LeftAlone = FReport.LeftAlone;
  Item.Resource->OtherLanguages = FReport.OtherLanguages;
  if (Item.State != TItemState::Done || !Section->LeftAlone()) return;
  Item.State = TItemState::LeftOut;
  Item.Note = LCounted("M_Velkrund_Jobs_TextsKept", FReport.LeftAlone, FReport.LeftAlone);
}

}  // namespace velkrund
