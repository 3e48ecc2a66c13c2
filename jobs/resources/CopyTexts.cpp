#include "jobs/resources/CopyTexts.h"

#include <unordered_set>

#include "jobs/policies/Questions.h"
#include "jobs/resources/LanguageQuestions.h"
#include "jobs/resources/ResourceNames.h"
#include "jobs/resources/ResourceSearch.h"
#include "jobs/run/LetGo.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"
#include "velkrund/resources/CopyLResources.h"
#include "velkrund/resources/LanguageOperations.h"

namespace velkrund {

namespace {

using TResources = TJobCopyResources;
using TLanguages = TJobCopyLanguages;

constexpr TProperty ResourceProperties[] = {
    TPolicyRows::ExistingTexts,
    TPolicyRows::OnError,
    TPolicyRows::DryRun,
    PropertyOf<&TResources::SourceDatabaseName>("SourceDatabaseName", "the database that the strings are from"),
    PropertyOf<&TResources::SectionIDs>("SectionIDs", "the sections of strings to copy; empty: all of that database"),
    PropertyOf<&TResources::TargetSectionID>(
        "TargetSectionID", "of one section: the section of the same database to copy it into; empty: its own name"),
    PropertyOf<&TResources::AddLanguages>("AddLanguages", "add languages that the target lacks"),
};

constexpr TProperty LanguageProperties[] = {
    TPolicyRows::ExistingTexts,
    TPolicyRows::OnError,
    TPolicyRows::DryRun,
    PropertyOf<&TLanguages::SourceDatabaseName>("SourceDatabaseName", "the database that the languages are from"),
    PropertyOf<&TLanguages::Languages>("Languages", "the languages to copy; empty: all of that database"),
};

/// The strings of a section that have a text in a language, by name in lower case.
std::unordered_set<std::string> NamesIn(const std::string& DatabaseName, const std::string& SectionID,
                                        const std::string& Language) {
  TStringList Names;
  LContainer().GetLocalizatorTable(DatabaseName).FillResNames(SectionID, Language, Names);
  std::unordered_set<std::string> Result;
  for (const std::string& Name : Names) Result.insert(LowerCase(Name));
  return Result;
}

/// Where every text was there already, and kept.
void LeaveOutWhatStays(TItem& Item) {
  const TTextCounts& Texts = *Item.Resource;
  if (Texts.Texts > 0 || Texts.LeftAlone == 0) return;
  Item.State = TItemState::LeftOut;
  Item.Note = LCounted("M_Velkrund_Jobs_TextsKept", Texts.LeftAlone, Texts.LeftAlone);
}

}  // namespace

constinit const TUtilOperationDescriptor TResources::Descriptor = OperationDescriptor<TResources>("TJobCopyResources");
constinit const TInterfaceDescriptor TResources::Interface =
    TJobInterface<TResources>::Describe("TJobCopyResourcesInterface", {&SectionsJobProperties, ResourceProperties});
constinit const TUtilOperationDescriptor TLanguages::Descriptor = OperationDescriptor<TLanguages>("TJobCopyLanguages");
constinit const TInterfaceDescriptor TLanguages::Interface =
    TJobInterface<TLanguages>::Describe("TJobCopyLanguagesInterface", {&SectionsJobProperties, LanguageProperties});

void TCopyTextsJob::Forget() {
  TSectionsJob::Forget();
  FSourceText.clear();
}

void TCopyTextsJob::Describe(TDocument& Document) const {
  TSectionsJob::Describe(Document);
  Document.Set("sourceDatabase", FSourceText);
}

void TCopyTextsJob::CheckSource() {
  FSourceText = CheckedDatabase(SourceDatabaseName, "SourceDatabaseName");
  if (Manager().IsSameDatabase(SourceDatabaseName, DatabaseName))
    throw ESettingsError(Format("%s and %s are one database", Setting("SourceDatabaseName"), Setting("DatabaseName")));
}

void TJobCopyResources::CheckSettings() const {
  if (!IsWithin()) return;
  if (SectionIDs.size() != 1)
    throw ESettingsError(
        Format("%s is about one section: %s has to name it", Setting("TargetSectionID"), Setting("SectionIDs")));
  RequireKept(TResourceName::Section, TargetSectionID);
  if (IsSameSection(SectionIDs[0], TargetSectionID))
    throw ESettingsError(Format("%s is the section that is copied", Setting("TargetSectionID")));
}

void TJobCopyResources::Run() {
  FOutcome = {LText("M_Velkrund_Jobs_Copied"), DatabaseText(), {}};
  FToAdd.Clear();
  FAsk.FAlwaysAsk = Policies.ExistingTexts == TExisting::Ask;
  FAsk.FYes = Policies.ExistingTexts != TExisting::Skip;
  FAsk.FCancel = false;
  if (IsWithin())
    FSourceText = DatabaseText();
  else
    CheckSource();
  const TLetGo LetGo(Manager().Databases(), From());
  std::optional<TReadTransaction> Moment;
  if (!IsWithin()) Moment.emplace(Manager().Databases(), From());
  Plan();
  if (FAsk.FAlwaysAsk && !CanAsk()) RefuseUnanswered();
  if (Policies.DryRun)
    return PlanAll([](const TItem& Item) {
      return Format("copy the resource '%s' into '%s'", OnOneLine(Item.Source), OnOneLine(Item.Section));
    });
  DoAll([this](TItem& Item) {
    AddMissingLanguages();
    IsWithin() ? CopyWithin(Item) : CopyOne(Item);
  });
}

void TJobCopyResources::Plan() {
  FOfSource = LanguagesOf(From(), FSourceText, {});
  for (const TLSectionInfo& Section : TResourceSearch(From(), FSourceText).Those(SectionIDs)) {
    TItem& Item = FOutcome.Items.emplace_back();
    Item.Source = Section.SectionID;
    Item.Section = IsWithin() ? std::string(SectionWithoutSeparator(TargetSectionID)) : Section.SectionID;
    Item.Resource = TTextCounts{Item.Section};
    Item.Resource->Strings = Section.Strings;
    PlanLanguages(Section.SectionID);
  }
  if (FOutcome.Items.empty()) FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_NoResources"));
}

/// A language that the target lacks is an error before anything is changed, unless it is to be added.
void TJobCopyResources::PlanLanguages(const std::string& SectionID) {
  std::vector<std::string> Missing;
  for (const std::string& Language : FOfSource) {
    if (LContainer().GetLanguagesTable(DatabaseName).LanguageExist(Language) || HasLanguage(FToAdd, Language)) continue;
    if (NamesIn(From(), SectionID, Language).empty()) continue;
    if (AddLanguages)
      FToAdd.Add(Language);
    else
      Missing.push_back("'" + OnOneLine(Language) + "'");
  }
  if (Missing.empty()) return;
  const char* const Noun = Missing.size() == 1 ? "a language" : "languages";
  throw ELanguageMissing(Format("The resource '%s' has texts in %s that the database %s lacks: %s",
                                OnOneLine(SectionID), Noun, DatabaseText(), JoinedInShort(std::move(Missing))),
                         {.Code = TErrorCode::LanguageMissing});
}

void TJobCopyResources::RefuseUnanswered() const {
  std::vector<std::string> Met;
  for (const TItem& Item : FOutcome.Items)
    for (const std::string& Language : FOfSource) {
      const auto There = NamesIn(DatabaseName, Item.Section, Language);
      if (There.empty()) continue;
      for (const std::string& Name : NamesIn(From(), Item.Source, Language))
        if (There.contains(Name))
          Met.push_back(OnOneLine(StringIDOf(Item.Section, Name)) + " (" + OnOneLine(Language) + ")");
    }
  if (!Met.empty())
    throw EPolicyUnanswered(TPolicy::ExistingTexts, LText("M_Velkrund_Jobs_StringsThere", LJoinedInShort(Met)));
}

void TJobCopyResources::AddMissingLanguages() const {
  TLanguagesTable &Source = LContainer().GetLanguagesTable(From()),
                  &Target = LContainer().GetLanguagesTable(DatabaseName);
  for (const std::string& Language : FToAdd) {
    TOneLanguage Record;
    if (!Target.LanguageExist(Language) && Source.GetLanguage(Language, Record)) Target.SetLanguage(Language, Record);
  }
}

void TJobCopyResources::CopyOne(TItem& Item) {
  TUOCopyLSections Operation;
  Operation.Owner = this;
  Operation.DatabaseName = From();
  Operation.TargetDatabaseName = DatabaseName;
  Operation.SectionIDs = {Item.Source};
  Operation.SetOverwriteAsk(FAsk);
  Operation.FOnShowProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    ShowPart(Current, Total, Name);
  };
  if (Operation.Execute() == 0) throw EAbort("cancelled");
  const TLItemResult& Result = Operation.Results().at(0);
  if (Result.Error) std::rethrow_exception(Result.Error);
  Item.Resource->Texts = Result.Report.Texts;
  Item.Resource->LeftAlone = Result.Report.LeftAlone;
  LeaveOutWhatStays(Item);
}

void TJobCopyResources::CopyWithin(TItem& Item) {
  TUOCopyLResources Operation;
  Operation.Owner = this;
  Operation.DatabaseName = DatabaseName;
  Operation.SourceSectionID = Item.Source;
  Operation.TargetSectionID = Item.Section;
  Operation.SetOverwriteAsk(FAsk);
  Operation.FOnShowProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    ShowPart(Current, Total, Name);
  };
  if (Operation.Execute() == 0) throw EAbort("cancelled");
  for (const TLItemResult& Result : Operation.Results()) {
    if (Result.Error) std::rethrow_exception(Result.Error);
    Item.Resource->Texts += Result.Report.Texts;
    Item.Resource->LeftAlone += Result.Report.LeftAlone;
  }
  LeaveOutWhatStays(Item);
}

void TJobCopyLanguages::Run() {
  FOutcome = {LText("M_Velkrund_Jobs_Copied"), DatabaseText(), {}};
  CheckSource();
  const TLetGo LetGo(Manager().Databases(), SourceDatabaseName);
  TLanguagesTable &Source = LContainer().GetLanguagesTable(SourceDatabaseName),
                  &Target = LContainer().GetLanguagesTable(DatabaseName);
  std::vector<std::size_t> Met;
  for (const std::string& Language : LanguagesOf(SourceDatabaseName, FSourceText, Languages)) {
    TOneLanguage Record, There;
    static_cast<void>(Source.GetLanguage(Language, Record));
    if (Target.GetLanguage(Language, There) && There != Record) Met.push_back(FOutcome.Items.size());
    TItem& Item = FOutcome.Items.emplace_back();
    Item.Source = Item.Section = Language;
    Item.Language = Language;
  }
  if (FOutcome.Items.empty()) FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_NoLanguages"));
  SettleLanguages(FOutcome, Met, Policies.ExistingTexts);
  if (Policies.DryRun)
    return PlanAll([](const TItem& Item) { return Format("copy the language '%s'", OnOneLine(Item.Source)); });
  DoAll([this](TItem& Item) {
    TUOCopyLanguages Operation;
    Operation.Owner = this;
    Operation.DatabaseName = SourceDatabaseName;
    Operation.TargetDatabaseName = DatabaseName;
    Operation.Languages = {Item.Source};
    Operation.SetOverwritesAll(true);
    if (Operation.Execute() == 0) throw EAbort("cancelled");
  });
}

}  // namespace velkrund
