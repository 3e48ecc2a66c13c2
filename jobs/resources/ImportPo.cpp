#include "jobs/resources/ImportPo.h"

#include <algorithm>

#include "jobs/resources/ResourceNames.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

using TThis = TJobImportPo;

constexpr std::string_view FuzzyChoices[] = {"refuse", "skip", "take"};

template <auto Count>
constexpr TProperty CountOf(std::string_view Name, std::string_view Help) {
  return ReadOnlyOf<[](const TThis& Job) { return Job.Counts().*Count; }>(Name, Help);
}
template <auto Count>
constexpr TProperty TextsOf(std::string_view Name, std::string_view Help) {
  return ReadOnlyOf<[](const TThis& Job) { return Job.CountOf(Count); }>(Name, Help);
}

constexpr TProperty Properties[] = {
    TPolicyRows::ExistingTexts,
    TPolicyRows::AllowLoss,
    TPolicyRows::DryRun,
    PropertyOf<&TThis::FileName>("FileName", "the catalogue to read; - is standard input"),
    PropertyOf<&TThis::Language>("Language", "of every msgstr; empty: the one that the catalogue names"),
    PropertyOf<&TThis::SourceLanguage>("SourceLanguage", "of every msgid; empty: these are not stored"),
    PropertyOf<&TThis::SectionID>("SectionID", "the section in which IDs are made; empty: every msgctxt is an ID"),
    ChoiceOf<&TThis::FuzzyEntries>(
        "FuzzyEntries", "translations marked as fuzzy: refuse them, pass over them, take them", FuzzyChoices),
    PropertyOf<&TThis::AddLanguages>("AddLanguages", "add languages that the database lacks"),
    CountOf<&TPoCounts::Strings>("Strings", "strings of the catalogue"),
    CountOf<&TPoCounts::Untranslated>("Untranslated", "strings without a translation"),
    CountOf<&TPoCounts::Fuzzy>("Fuzzy", "strings whose translation is marked as fuzzy, and skipped or taken"),
    CountOf<&TPoCounts::Contexts>("ContextsLost", "strings whose msgctxt is lost, since IDs are made"),
    CountOf<&TPoCounts::Plurals>("Plurals", "entries with plural forms, which were left out"),
    CountOf<&TPoCounts::Obsolete>("Obsolete", "obsolete entries, which were left out"),
    TextsOf<&TPoTexts::Added>("TextsAdded", "texts that were not there"),
    TextsOf<&TPoTexts::Replaced>("TextsReplaced", "texts that took the place of others"),
    TextsOf<&TPoTexts::LeftAlone>("TextsLeftAlone", "texts for which others are there, which an answer kept"),
    TextsOf<&TPoTexts::Same>("TextsSame", "texts that were there already"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobImportPo");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobImportPoInterface", {&JobProperties, Properties});

std::int64_t TThis::CountOf(std::int64_t TPoTexts::*What) const {
  std::int64_t Result = 0;
  for (const TPoTexts& Texts : FTexts) Result += Texts.*What;
  return Result;
}

void TThis::CheckSettings() const {
  Require(FileName, "FileName");
  if (!SectionID.empty()) RequireKept(TResourceName::Section, std::string(SectionWithoutSeparator(SectionID)));
  // Without the texts nobody would know what the IDs that are made stand for.
  if (!SectionID.empty() && SourceLanguage.empty())
    throw ESettingsError(
        Format("%s makes IDs, which mean something beside the texts of every msgid alone: %s is missing",
               Setting("SectionID"), Setting("SourceLanguage")));
}

void TThis::Forget() {
  FCounts = {};
  FTexts.clear();
  FSections.reset();
  FSeen.clear();
  FAnswers.clear();
  FMet.clear();
  FQuestion = {};
  ForgetPlan();
}

void TThis::Run() {
  FBytes.emplace(Files(), FileName, Canceled(), TWatch::Yes);
  struct TCloser {
    std::optional<TInputBytes>& Bytes;
    ~TCloser() { Bytes.reset(); }
  } const Closer{FBytes};
  FShownName = FBytes->ShownName();
  FBytes->Fill();
  const std::unique_ptr<TPoStrings> Strings = Open();
  TakeLanguages(Strings->Reader());
  BeginPart(FShownName, "bytes");
  Look(*Strings);
  FCounts = Strings->Counts();
  RefuseUnasked();
  if (Policies.DryRun)
    MakePlan();
  else
    Write(*Strings);
  EndPart();
}

std::unique_ptr<TPoStrings> TThis::Open() const {
  return std::make_unique<TPoStrings>(FBytes->Files(), FShownName,
                                      TPoStrings::TSettings{SectionID, FuzzyEntries, Policies.AllowLoss});
}

void TThis::TakeLanguages(const TPoReader& Catalogue) {
  const std::string Target = Language.empty() ? Catalogue.Field("Language") : Language;
  if (Target.empty())
    throw ESettingsError(
        Format("%s is missing, and the catalogue '%s' does not name one", Setting("Language"), FShownName));
  FStoresSource = !SourceLanguage.empty();
  if (FStoresSource && SameText(SourceLanguage, Target))
    throw ESettingsError(Format("%s and %s are the same, '%s': a string has one text in it", Setting("SourceLanguage"),
                                Setting("Language"), OnOneLine(Target)));
  if (FStoresSource) TakeLanguage(SourceLanguage);
  TakeLanguage(Target);
}

void TThis::TakeLanguage(const std::string& Name) {
  try {
    FTexts.push_back({LanguagesOf(DatabaseName, DatabaseText(), {Name})[0]});
  } catch (ELanguageMissing& Error) {
    Error.Add({.Code = TErrorCode::LanguageMissing});
    if (!AddLanguages) throw;
    RequireKept(TResourceName::Language, Name);
    FTexts.push_back({Name, true});
    AddToPlan({Format("add the language '%s'", Name)});
  }
}

/// Everything that can be known of the catalogue, and every question.
void TThis::Look(TPoStrings& Strings) {
  FSections.emplace(DatabaseName, DatabaseText(), SectionID);
  for (TPoString String; Strings.Next(String);) {
    if (IsCanceled()) throw EAbort("cancelled");
    Show(Strings, 0);
    RefuseRepeated(String);
    try {
      FSections->Add(String);
    } catch (const EResourceName& Error) {
      Strings.Reader().Refuse(String.Line, Error.what());
    }
    // Otherwise it is seen when it is written.
    if (Policies.ExistingTexts == TExisting::Ask || Policies.DryRun) LookAt(String);
  }
}

void TThis::RefuseRepeated(const TPoString& String) {
  const std::string Key = LowerCase(String.StringID);
  if (FSeen.insert(TextDigest(Key)).second) return;
  // Another ID may have the same digest.
  const std::unique_ptr<TPoStrings> Before = Open();
  for (TPoString Other; Before->Next(Other) && Other.Line < String.Line;)
    if (LowerCase(Other.StringID) == Key)
      Before->Reader().Refuse(String.Line, Format("the string '%s' is in the catalogue already, in line %d",
                                                  OnOneLine(String.StringID), Other.Line));
}

/// Null: there is none in that language.
const std::string* TThis::TextFor(const TPoString& String, const TPoTexts& Texts) const {
  if (FStoresSource && &Texts == &FTexts.front()) return &String.Source;
  return String.Target ? &*String.Target : nullptr;
}

void TThis::LookAt(const TPoString& String) {
  TLocalizatorTable& Table = LContainer().GetLocalizatorTable(DatabaseName);
  for (TPoTexts& Texts : FTexts) {
    const std::string* const Text = TextFor(String, Texts);
    if (!Text) continue;
    const std::string There = Texts.IsNew ? std::string(AbsentText) : Table.GetString(String.StringID, Texts.Language);
    if (There == AbsentText)
      ++Texts.Added;
    else if (There == *Text)
      ++Texts.Same;
    else
      ++(MayReplace(String.StringID, Texts.Language) ? Texts.Replaced : Texts.LeftAlone);
  }
}

bool TThis::MayReplace(const std::string& StringID, const std::string& InLanguage) {
  if (Policies.ExistingTexts != TExisting::Ask) return Policies.ExistingTexts == TExisting::Replace;
  const std::string Named = OnOneLine(StringID) + " (" + OnOneLine(InLanguage) + ")";
  if (!CanAsk()) {
    FMet.push_back(Named);
    return false;
  }
  return FAnswers[{LowerCase(StringID), InLanguage}] =
             FQuestion.Ask({LText("M_Catalox_LUtils_OverwriteCopyLSectionsConfirm", Named),
                            {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Cancel},
                            TPolicy::ExistingTexts}) == TAnswer::Yes;
}

void TThis::RefuseUnasked() {
  if (!FMet.empty())
    throw EPolicyUnanswered(TPolicy::ExistingTexts, LText("M_Velkrund_Jobs_OtherTextsThere", LJoinedInShort(FMet)));
}

void TThis::MakePlan() {
  for (const TPoTexts& Texts : FTexts) {
    if (Texts.Added > 0) AddToPlan({Format("add %s in %s", Counted(Texts.Added, "text"), Texts.Language)});
    if (Texts.Replaced > 0) AddToPlan({Format("replace %s in %s", Counted(Texts.Replaced, "text"), Texts.Language)});
  }
}

/// A section at a time, since what is locked is looked up much quicker.
void TThis::Write(TPoStrings& Strings) {
  for (TPoTexts& Texts : FTexts) Texts = {Texts.Language, Texts.IsNew};
  // What others have committed before a section is locked has to be seen.
  TTransaction Transaction(DatabaseName, TIsolationLevel::ReadCommitted);
  TLocalizatorTable& Table = LContainer().GetLocalizatorTable(DatabaseName);
  for (const TPoTexts& Texts : FTexts)
    if (Texts.IsNew)
      LContainer()
          .GetLanguagesTable(DatabaseName)
          .SetLanguage(Texts.Language, {Texts.Language, Texts.Language, Texts.Language});
  for (std::size_t Pass = 0; Pass < FTexts.size(); ++Pass)
    for (const TPoSections::TSection& Section : FSections->All()) {
      Table.Lock(Section.SectionID, FTexts[Pass].Language);
      for (const TPoRange& Range : Section.Ranges) {
        Show(Strings, Pass + 1);
        WriteRange(Strings, Range, FTexts[Pass]);
      }
      Table.UnLock(Section.SectionID, FTexts[Pass].Language);
    }
  FBytes->RefuseChanged();
  Transaction.Commit();
}

void TThis::WriteRange(TPoStrings& Strings, const TPoRange& Range, TPoTexts& Texts) {
  Strings.SeekTo(Range.From);
  TPoString String;
  for (std::int64_t Left = Range.Count; Left > 0; --Left) {
    if (IsCanceled()) throw EAbort("cancelled");
    if (!Strings.Next(String)) throw EReadError(Format("File '%s' has become shorter", FShownName));
    if (const std::string* const Text = TextFor(String, Texts)) WriteText(String.StringID, *Text, Texts);
  }
}

void TThis::WriteText(const std::string& StringID, const std::string& Text, TPoTexts& Texts) {
  TLocalizatorTable& Table = LContainer().GetLocalizatorTable(DatabaseName);
  std::int64_t* Count = &Texts.Added;
  if (Table.StringExist(StringID, Texts.Language)) {
    if (Table.GetString(StringID, Texts.Language) == Text) {
      ++Texts.Same;
      return;
    }
    bool Replace = Policies.ExistingTexts == TExisting::Replace;
    if (Policies.ExistingTexts == TExisting::Ask) {
      const auto Answer = FAnswers.find({LowerCase(StringID), Texts.Language});
      if (Answer == FAnswers.end())
        throw EDatabaseError(Format("Somebody else has written the text of '%s' in %s meanwhile: run it again",
                                    OnOneLine(StringID), Texts.Language),
                             {.Code = TErrorCode::DatabaseBusy});
      Replace = Answer->second;
    }
    Count = Replace ? &Texts.Replaced : &Texts.LeftAlone;
  }
  ++*Count;
  if (Count != &Texts.LeftAlone) Table.WriteString(StringID, Texts.Language, Text);
}

/// The file is read once to look at it, and once for each language.
void TThis::Show(TPoStrings& Strings, std::size_t Pass) const {
  constexpr std::int64_t Thousandths = 1000;
  const std::int64_t Whole = std::max<std::int64_t>(Strings.Size(), 1);
  const auto Passes = static_cast<std::int64_t>(FTexts.size() + 1);
  const std::int64_t Done = static_cast<std::int64_t>(Pass) * Thousandths + Strings.Position() * Thousandths / Whole;
  ShowPart(static_cast<std::int32_t>(Done), static_cast<std::int32_t>(Passes * Thousandths), FShownName);
}

void TThis::Describe(TDocument& Document) const {
  TDocument Texts = TDocument::List();
  for (const TPoTexts& Each : FTexts) {
    TDocument One;
    One.Set("language", Each.Language).Set("isNew", Each.IsNew).Set("added", Each.Added);
    One.Set("replaced", Each.Replaced).Set("leftAlone", Each.LeftAlone).Set("same", Each.Same);
    Texts.Add(std::move(One));
  }
  std::vector<std::string> Sections;
  for (const TPoSections::TSection& Section : FSections->All()) Sections.push_back(Section.SectionID);
  Document.Set("database", DatabaseText()).Set("file", FShownName).Set("resources", Sections);
  Document.Set("strings", FCounts.Strings).Set("untranslated", FCounts.Untranslated).Set("fuzzy", FCounts.Fuzzy);
  Document.Set("contextsLost", FCounts.Contexts).Set("plurals", FCounts.Plurals).Set("obsolete", FCounts.Obsolete);
  Document.Set("texts", std::move(Texts));
}

}  // namespace velkrund
