#include "jobs/sections/CheckFiles.h"

#include <algorithm>

#include "jobs/files/FileKind.h"
#include "jobs/files/SectionChoice.h"
#include "jobs/files/StrayMarkers.h"
#include "jobs/report/ErrorReport.h"
#include "jobs/sections/SectionCheck.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

using TThis = TJobCheckFiles;

constexpr TProperty Properties[] = {
    TPolicyRows::AllowLoss,
    PropertyOf<&TThis::FileNames>("FileNames", "the files; - is standard input"),
    ReadOnlyOf<[](const TThis& Job) { return Job.Totals().Faults; }>(
        "Faults", "faulty or hidden sections, faulty headers and files of the last run"),
    ReadOnlyOf<[](const TThis& Job) { return Job.Totals().Sections; }>("Sections", "sections that were looked at"),
    ReadOnlyOf<[](const TThis& Job) { return Job.Totals().Rows; }>("Rows", "rows of the sections without a fault"),
    ReadOnlyOf<[](const TThis& Job) { return Job.Totals().Bytes; }>("Bytes", "bytes of the sections without a fault"),
    ReadOnlyOf<[](const TThis& Job) { return Job.Totals().Losses.Unrepresentable; }>(
        "CharactersLost", "characters that the code page lacks"),
    ReadOnlyOf<[](const TThis& Job) { return Job.Totals().Losses.Malformed; }>("MalformedCharacters",
                                                                               "malformed characters, in sections"),
};

TDocument DocumentOf(const TCheckedSection& Section, std::size_t Index) {
  const TItem& Item = Section.Item;
  TDocument Result;
  Result.Set("index", Index).Set("name", Item.Section).Set("type", Section.Type).Set("version", Section.Version);
  Result.Set("state", CheckText(Item.State));
  if (Item.State == TItemState::NotReached) return Result;
  if (Section.HasRows) Result.Set("rows", Item.Counts.RowCount);
  Result.Set("size", Item.Bytes).Set("seconds", Item.Seconds);
  Result.Set("charactersLost", Item.Losses.Unrepresentable);
  Result.Set("malformedCharacters", Item.Losses.Malformed);
  if (Item.Error) Result.Set("error", ErrorDocument(*Item.Error));
  return Result;
}

TDocument DocumentOf(const TCheckedFile& File) {
  TDocument Result;
  Result.Set("name", File.Text);
  Result.Set("sections", TElements{File.Sections.size(),
                                   [&File](std::size_t Index) { return DocumentOf(File.Sections[Index], Index); }});
  Result.Set("hidden", File.Hidden);
  Result.Set("notes", EnglishOf(File.Notes));
  if (File.Error) Result.Set("error", ErrorDocument(*File.Error));
  return Result;
}

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobCheckFiles");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobCheckFilesInterface", {&JobProperties, Properties});

const char* CheckText(TItemState State) {
  switch (State) {
    case TItemState::Done:
      return "ok";
    case TItemState::Failed:
      return "faulty";
    case TItemState::Cancelled:
      return "cancelled";
    case TItemState::LeftOut:
    case TItemState::NotReached:
    case TItemState::TakenBack:
      break;
  }
  return "not-reached";
}

void TJobCheckFiles::CheckSettings() const {
  if (FileNames.empty()) throw ESettingsError(Format("%s names no file", Setting("FileNames")));
  if (std::count(FileNames.begin(), FileNames.end(), "-") > 1)
    throw ESettingsError("standard input can be read only once");
}

void TJobCheckFiles::Forget() {
  FChecked.clear();
  FTotals = {};
  FFirstFault.clear();
}

void TJobCheckFiles::Run() {
  for (const std::string& Name : FileNames) {
    if (FTotals.Cancelled) break;
    FChecked.push_back({Name, Name});
    CheckFile(FChecked.back());
  }
}

void TJobCheckFiles::CheckFile(TCheckedFile& Result) {
  TInputFile Input(Files(), Result.Name, Canceled());
  Input.File().SetStrictText(!Policies.AllowLoss);
  Result.Text = Input.Name();
  if (!Open(Input, Result)) return;
  if (Policies.AllowLoss && Input.File().Losses().Any())
    Result.Notes.push_back(LText("M_Velkrund_Jobs_MalformedInHeaders"));
  CheckSections(Input, Result);
  try {
    if (!Result.Error) RefuseUnfinished(Input.File(), Input.Name());
  } catch (const EEIError& Unfinished) {
    Result.Error = FactsOf(Unfinished);
  }
  for (std::string& Note : RepeatedNames(Input.File().Sections())) Result.Notes.emplace_back(std::move(Note));
  try {
    if (Result.IsOpen && !Result.IsForeign()) CheckGaps(Input, Result);
  } catch (const EStreamError& Failure) {
    if (!Result.Error) Result.Error = FactsOf(Failure);
  }
  if (CheckListener) CheckListener->FileChecked(Result);
  for (const std::string& Hidden : Result.Hidden)
    NoteFault(Result.Text + ": " + Hidden,
              {.Code = Result.HasLineFeeds ? TErrorCode::LineFeeds : TErrorCode::FileStructure, .File = Result.Text});
  if (Result.Error) NoteFault(ErrorLine(*Result.Error), Result.Error->Info);
}

/// False: cancelled.
bool TJobCheckFiles::Open(TInputFile& Input, TCheckedFile& Result) {
  try {
    Input.Open();
    RefuseFileWithoutSections(Input.File(), Input.Name());
  } catch (const EAbort&) {
    FTotals.Cancelled = true;
    return false;
  } catch (const EFOpenError& Failure) {
    Result.Error = FactsOf(Failure);
    Result.IsOpen = false;
  } catch (const std::exception& Failure) {
    Result.Error = FactsOf(Failure);
  }
  return true;
}

void TJobCheckFiles::CheckSections(TInputFile& Input, TCheckedFile& Result) {
  const TEISectionList& Sections = Input.File().Sections();
  const std::function<bool()> Wish = Canceled();
  TSectionChecker Checker(Manager(), Wish, [this](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    ShowPart(Current, Total, Name);
  });
  const double Before = static_cast<double>(FChecked.size() - 1) / static_cast<double>(FileNames.size());
  const double Share = 1.0 / static_cast<double>(FileNames.size()) / std::max(Sections.Count(), 1);
  for (int Index = 0; Index < Sections.Count(); ++Index) {
    const TEISection& Section = Sections[Index];
    SetShare(Before + static_cast<double>(Index) * Share, Before + static_cast<double>(Index + 1) * Share);
    BeginPart(Section.Name(), "bytes", Section.DataSize);
    TSectionChecker::TChecked Read = Checker.Check(Input.File(), Index);
    EndPart();
    TCheckedSection Checked{std::move(Read.Item), std::string(Section.TypeName()), LSectionText(Sections, Index),
                            Section.Version(), Read.HasRows};
    Count(Result, Checked);
    TellItem(Result.Text, "checked", [&] { return DocumentOf(Checked, static_cast<std::size_t>(Index)); });
    Result.Sections.push_back(std::move(Checked));
  }
}

void TJobCheckFiles::Count(const TCheckedFile& File, const TCheckedSection& Section) {
  const TItem& Item = Section.Item;
  FTotals.Cancelled |= Item.State == TItemState::Cancelled || Item.State == TItemState::NotReached;
  if (Item.State == TItemState::NotReached) return;
  ++FTotals.Sections;
  FTotals.Seconds += Item.Seconds;
  FTotals.Losses += Item.Losses;
  if (Item.State == TItemState::Done) {
    FTotals.Rows += Section.HasRows ? Item.Counts.RowCount : 0;
    FTotals.Bytes += Item.Bytes;
  }
  if (CheckListener) CheckListener->SectionChecked(File, Section);
  if (Item.Error) NoteFault(ErrorLine(*Item.Error), Item.Error->Info);
}

void TJobCheckFiles::CheckGaps(TInputFile& Input, TCheckedFile& Result) {
  TStrayMarkers Found = FindStrayMarkers(Input.File());
  Result.Hidden = std::move(Found.Hidden);
  Result.HasLineFeeds = !Found.LineFeeds.empty();
  for (std::string& Note : Found.Doubtful) Result.Notes.emplace_back(std::move(Note));
}

void TJobCheckFiles::NoteFault(const std::string& Text, const TErrorInfo& Info) {
  if (++FTotals.Faults == 1) {
    FFirstFault = Text;
    FFirstInfo = Info;
  }
  if (!CheckListener) WriteLog(TTraceLevel::Error, Text);
}

TEnd TJobCheckFiles::Conclusion() const {
  if (FTotals.Faults > 0) return TEnd::Failed;
  return FTotals.Cancelled ? TEnd::Cancelled : TEnd::Done;
}

std::exception_ptr TJobCheckFiles::Failure() const {
  if (FTotals.Faults == 0) return std::make_exception_ptr(EAbort("cancelled"));
  return std::make_exception_ptr(EJobFailed(
      FTotals.Faults == 1 ? FFirstFault : Format("%d faults. The first: %s", FTotals.Faults, FFirstFault), FFirstInfo));
}

void TJobCheckFiles::Describe(TDocument& Document) const {
  Document.Set("files", TElements{FChecked.size(), [this](std::size_t Index) { return DocumentOf(FChecked[Index]); }});
  Document.Set("faults", FTotals.Faults).Set("rows", FTotals.Rows).Set("size", FTotals.Bytes);
  Document.Set("seconds", FTotals.Seconds);
}

}  // namespace velkrund
