#include "jobs/resources/StoredLanguages.h"

#include "jobs/policies/Questions.h"
#include "jobs/resources/ResourceNames.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

using TList = TJobListLanguages;
using TAdd = TJobAddLanguage;
using TRemove = TJobRemoveLanguage;

constexpr TProperty ListProperties[] = {
    ReadOnlyOf<[](const TList& Job) { return static_cast<std::int64_t>(Job.Found().size()); }>(
        "Languages", "languages that the last run found"),
};

constexpr TProperty AddProperties[] = {
    PropertyOf<&TLanguageJob::LanguageName>("LanguageName", "the language's name, by which texts are addressed"),
    PropertyOf<&TAdd::Record, &TOneLanguage::RussianName>("RussianName", "what it is called in Russian"),
    PropertyOf<&TAdd::Record, &TOneLanguage::EnglishName>("EnglishName", "what it is called in English"),
    PropertyOf<&TAdd::Record, &TOneLanguage::NativeName>("NativeName", "what it is called in the language itself"),
    TPolicyRows::ExistingTexts,
    TPolicyRows::DryRun,
};

constexpr TProperty RemoveProperties[] = {
    PropertyOf<&TLanguageJob::LanguageName>("LanguageName", "the language's name, in any case"),
    TPolicyRows::DryRun,
    TPolicyRows::Yes,
    ReadOnlyOf<[](const TRemove& Job) { return Job.Found().Texts; }>("Texts", "texts that went with it"),
};

TDocument LanguageDocument(const TStoredLanguage& Language) {
  TDocument Result;
  Result.Set("name", Language.Name).Set("russianName", Language.Record.RussianName);
  Result.Set("englishName", Language.Record.EnglishName).Set("nativeName", Language.Record.NativeName);
  Result.Set("texts", Language.Texts);
  return Result;
}

TStoredLanguage LanguageNamed(TLanguagesTable& Table, const std::string& Name) {
  TStoredLanguage Result{Name, {}, Table.TextCount(Name)};
  static_cast<void>(Table.GetLanguage(Name, Result.Record));
  return Result;
}

}  // namespace

constinit const TUtilOperationDescriptor TList::Descriptor = OperationDescriptor<TList>("TJobListLanguages");
constinit const TInterfaceDescriptor TList::Interface =
    TJobInterface<TList>::Describe("TJobListLanguagesInterface", {&JobProperties, ListProperties});
constinit const TUtilOperationDescriptor TAdd::Descriptor = OperationDescriptor<TAdd>("TJobAddLanguage");
constinit const TInterfaceDescriptor TAdd::Interface =
    TJobInterface<TAdd>::Describe("TJobAddLanguageInterface", {&JobProperties, AddProperties});
constinit const TUtilOperationDescriptor TRemove::Descriptor = OperationDescriptor<TRemove>("TJobRemoveLanguage");
constinit const TInterfaceDescriptor TRemove::Interface =
    TJobInterface<TRemove>::Describe("TJobRemoveLanguageInterface", {&JobProperties, RemoveProperties});

void TJobListLanguages::Run() {
  TLanguagesTable& Table = LContainer().GetLanguagesTable(DatabaseName);
  for (const std::string& Name : LanguagesOf(DatabaseName, DatabaseText(), {}))
    FFound.push_back(LanguageNamed(Table, Name));
}

void TJobListLanguages::Describe(TDocument& Document) const {
  TDocument Languages = TDocument::List();
  for (const TStoredLanguage& Language : FFound) Languages.Add(LanguageDocument(Language));
  Document.Set("database", DatabaseText()).Set("languages", std::move(Languages));
}

void TLanguageJob::Describe(TDocument& Document) const {
  Document.Set("database", DatabaseText()).Set("language", LanguageDocument(FFound));
}

void TJobAddLanguage::CheckSettings() const {
  TLanguageJob::CheckSettings();
  RequireKept(LanguageName, Record);
}

void TJobAddLanguage::Run() {
  TLanguagesTable& Table = LContainer().GetLanguagesTable(DatabaseName);
  // What others have written while it waited has to be seen.
  TTransaction Transaction(DatabaseName, TIsolationLevel::ReadCommitted);
  TOneLanguage There{LanguageName, LanguageName, LanguageName};
  FWasThere = Table.GetLanguage(LanguageName, There);
  FFound = {LanguageName, Record, Table.TextCount(LanguageName)};
  if (FFound.Record.RussianName.empty()) FFound.Record.RussianName = There.RussianName;
  if (FFound.Record.EnglishName.empty()) FFound.Record.EnglishName = There.EnglishName;
  if (FFound.Record.NativeName.empty()) FFound.Record.NativeName = There.NativeName;
  const bool Changes = FWasThere && FFound.Record != There;
  AddToPlan({Format(FWasThere ? "change what the language '%s' is called" : "add the language '%s'",
                    OnOneLine(LanguageName))});
  if (Policies.DryRun) return;
  const TLText Stakes = LText("M_Velkrund_Jobs_LanguageCalled", OnOneLine(LanguageName), OnOneLine(There.RussianName),
                              OnOneLine(There.EnglishName), OnOneLine(There.NativeName));
  if (Changes && Policies.ExistingTexts == TExisting::Skip) throw Exception(Stakes.English());
  if (Changes && Policies.ExistingTexts == TExisting::Ask) {
    if (!CanAsk()) throw EPolicyUnanswered(TPolicy::ExistingTexts, Stakes);
    Ask({LText("M_Velkrund_Jobs_ChangeIt", Stakes), {TAnswer::Yes, TAnswer::Cancel}, TPolicy::ExistingTexts});
  }
  Table.SetLanguage(LanguageName, FFound.Record);
  Transaction.Commit();
}

void TJobRemoveLanguage::Run() {
  TLanguagesTable& Table = LContainer().GetLanguagesTable(DatabaseName);
  FFound = LanguageNamed(Table, LanguagesOf(DatabaseName, DatabaseText(), {LanguageName})[0]);
  const std::string What =
      Format("the language '%s' with %s in it", OnOneLine(FFound.Name), Counted(FFound.Texts, "text"));
  AddToPlan({"remove " + What});
  if (Policies.DryRun) return;
  if (!Policies.Yes) {
    const std::string Name = OnOneLine(FFound.Name);
    if (!CanAsk())
      throw EPolicyUnanswered(TPolicy::Yes, LCounted("M_Velkrund_Jobs_TextsWouldGo", FFound.Texts, FFound.Texts, Name));
    Ask({LCounted("M_Velkrund_Jobs_RemoveLanguage", FFound.Texts, Name, FFound.Texts),
         {TAnswer::Yes, TAnswer::Cancel},
         TPolicy::Yes});
  }
  TTransaction Transaction(DatabaseName, TIsolationLevel::ReadCommitted);
  FFound.Texts = Table.TextCount(FFound.Name);
  if (!Table.DeleteLanguage(FFound.Name))
    throw EDatabaseError(Format("Somebody else has removed the language '%s'", OnOneLine(FFound.Name)));
  Transaction.Commit();
}

}  // namespace velkrund
