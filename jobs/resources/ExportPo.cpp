#include "jobs/resources/ExportPo.h"

#include "jobs/files/WholeFile.h"
#include "jobs/policies/MissingSources.h"
#include "jobs/resources/FolderFiles.h"
#include "jobs/resources/ResourceNames.h"
#include "jobs/resources/ResourceSearch.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

using TThis = TJobExportPo;

template <auto Count>
constexpr TProperty StringsOf(std::string_view Name, std::string_view Help) {
  return ReadOnlyOf<[](const TThis& Job) { return Job.CountOf(Count); }>(Name, Help);
}

constexpr TProperty Properties[] = {
    TPolicyRows::ExistingFiles,
    TPolicyRows::MissingSources,
    TPolicyRows::AllowLoss,
    TPolicyRows::DryRun,
    PropertyOf<&TThis::FileName>("FileName", "the catalogue to make; - is standard output"),
    PropertyOf<&TThis::SectionIDs>("SectionIDs", "the sections of strings to save; empty: all of the database"),
    PropertyOf<&TThis::Language>("Language", "of every msgstr"),
    PropertyOf<&TThis::SourceLanguage>("SourceLanguage", "of every msgid"),
    StringsOf<&TPoSectionReport::Strings>("Strings", "strings that were saved in the last run"),
    StringsOf<&TPoSectionReport::Untranslated>("Untranslated", "of these those without a translation"),
    StringsOf<&TPoSectionReport::WithoutSource>("WithoutSource", "left out, without a text in the source language"),
    ReadOnlyOf<&TThis::EmptyTexts>("EmptyTexts", "translations that are empty, and come back as none"),
    ReadOnlyOf<&TThis::MalformedTexts>("MalformedTexts", "texts with malformed characters, which were replaced"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobExportPo");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobExportPoInterface", {&JobProperties, Properties});

std::int64_t TThis::CountOf(std::int64_t TPoSectionReport::*What) const {
  std::int64_t Result = 0;
  for (const TPoSectionReport& Section : FSections) Result += Section.*What;
  return Result;
}

void TThis::CheckSettings() const {
  Require(FileName, "FileName");
  Require(Language, "Language");
  Require(SourceLanguage, "SourceLanguage");
  if (SameText(Language, SourceLanguage))
    throw ESettingsError(
        Format("%s and %s are the same, '%s'", Setting("SourceLanguage"), Setting("Language"), OnOneLine(Language)));
}

void TThis::Forget() {
  FLanguages.Clear();
  FSections.clear();
  FEmptyTexts = FMalformed = 0;
  FLeftAlone = false;
  FNotes.clear();
  ForgetPlan();
}

void TThis::Run() {
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  FLanguages = LanguagesOf(DatabaseName, DatabaseText(), {SourceLanguage, Language});
  for (const std::string& Name : FLanguages) RequireKept(TResourceName::Language, Name);
  FShownName = FileName == "-" ? "standard output" : FileName;
  TakeSections();
  if (Policies.DryRun) {
    WriteSections(nullptr);
    AddToPlan({Format("write %s into '%s'", Counted(CountOf(&TPoSectionReport::Strings), "string"), FShownName)});
    return;
  }
  FLeftAlone = !TFolderFiles(Files(), {}, Policies.ExistingFiles).MayWrite(FileName);
  if (FLeftAlone) return;
  TWholeFile Output(Files(), FileName);
  TPoWriter Writer(Output.Stream());
  Writer.WriteHeader(FLanguages[1], FLanguages[0]);
  WriteSections(&Writer);
  Output.Finish(Canceled());
}

void TThis::TakeSections() {
  const TResourceSearch Search(DatabaseName, DatabaseText());
  TMissingSources Missing(Policies.MissingSources);
  std::vector<std::string> Found;
  for (const std::string& Wanted : SectionIDs) {
    try {
      Found.push_back(Search.Find(Wanted).SectionID);
    } catch (const EResourceMissing& Error) {
      if (!Missing.LeavesOut(Error)) throw;
      FNotes.emplace_back(std::string(Error.what()));
    }
  }
  if (SectionIDs.empty() || !Found.empty())
    for (const TLSectionInfo& Section : Search.Those(Found)) FSections.push_back({Section.SectionID});
  if (FSections.empty())
    throw Exception(Format("There is nothing to export; the file '%s' is left as it is", FileName));
}

/// Writer: null: nothing is written.
void TThis::WriteSections(TPoWriter* Writer) {
  for (TPoSectionReport& Section : FSections) WriteSection(Writer, Section);
  if (const std::int64_t Count = CountOf(&TPoSectionReport::WithoutSource))
    FNotes.push_back(LCounted("M_Velkrund_Jobs_WithoutSource", Count, Count, FLanguages[0]));
}

void TThis::WriteSection(TPoWriter* Writer, TPoSectionReport& Section) {
  const auto Texts = LContainer().GetLocalizatorTable(DatabaseName).ReadSection(Section.SectionID, FLanguages);
  BeginPart(Section.SectionID, "strings", Texts->Count());
  const auto Count = static_cast<std::int32_t>(Texts->Count());
  for (std::int32_t Index = 0; Texts->Next(); ++Index) {
    if (IsCanceled()) throw EAbort("cancelled; nothing was written");
    ShowPart(Index, Count, Section.SectionID);
    const std::string StringID = StringIDOf(Section.SectionID, Texts->Name());
    const auto SourceText = Texts->Text(0);
    if (!SourceText) {
      ++Section.WithoutSource;
      continue;
    }
    const std::string Source = Checked(*SourceText, StringID, FLanguages[0]);
    std::string Target;
    if (const auto TargetText = Texts->Text(1)) {
      Target = Checked(*TargetText, StringID, FLanguages[1]);
      if (Target.empty()) TakeEmpty(StringID);
    } else {
      ++Section.Untranslated;
    }
    ++Section.Strings;
    if (Writer) Writer->WriteEntry(Section.SectionID, Checked(StringID, StringID, {}), Source, Target);
  }
  EndPart();
}

/// A catalogue cannot tell it from one that is not there.
void TThis::TakeEmpty(const std::string& StringID) {
  if (!Policies.AllowLoss)
    throw Exception(Format("The text of '%s' in %s is empty, and would come back from a catalogue as none",
                           OnOneLine(StringID), FLanguages[1]),
                    {.Code = TErrorCode::Loss});
  ++FEmptyTexts;
}

/// A text as the catalogue can hold it. InLanguage: empty: the ID itself.
std::string TThis::Checked(std::string_view Text, const std::string& StringID, const std::string& InLanguage) {
  const auto Refuse = [&](const char* Why, TErrorCode Code) {
    throw Exception(Format("The %s '%s'%s has %s, which a catalogue cannot hold", InLanguage.empty() ? "ID" : "text of",
                           OnOneLine(StringID), InLanguage.empty() ? "" : " in " + InLanguage, Why),
                    {.Code = Code});
  };
  if (Text.find('\0') != std::string_view::npos) Refuse("the character U+0000", TErrorCode::Value);
  if (IsStrictUtf8(Text)) return std::string(Text);
  if (!Policies.AllowLoss) Refuse("malformed characters", TErrorCode::Text);
  ++FMalformed;
  std::string Result;
  AppendStrictUtf8(Result, Text);
  return Result;
}

void TThis::Describe(TDocument& Document) const {
  TDocument Sections = TDocument::List();
  for (const TPoSectionReport& Section : FSections) {
    TDocument One;
    One.Set("resource", Section.SectionID).Set("strings", Section.Strings).Set("untranslated", Section.Untranslated);
    One.Set("withoutSource", Section.WithoutSource);
    Sections.Add(std::move(One));
  }
  Document.Set("database", DatabaseText()).Set("file", FShownName).Set("state", FLeftAlone ? "left-out" : "done");
  Document.Set("language", FLanguages[1]).Set("sourceLanguage", FLanguages[0]);
  Document.Set("resources", std::move(Sections)).Set("emptyTexts", FEmptyTexts).Set("malformedTexts", FMalformed);
  Document.Set("notes", EnglishOf(FNotes));
}

}  // namespace velkrund
