#include "jobs/resources/ExportToFolder.h"

#include "jobs/report/ErrorReport.h"
#include "jobs/resources/ResourceSearch.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

using TBase = TExportToFolder;
using TResources = TJobExportResourceFiles;
using TLanguages = TJobExportLanguagesFile;

constexpr std::string_view Releases[] = {"rv17", "rv20"};
constexpr std::string_view Encodings[] = {"default", "ansi", "utf8"};

constexpr TProperty BaseProperties[] = {
    TPolicyRows::ExistingFiles,
    TPolicyRows::MissingSources,
    TPolicyRows::OnError,
    TPolicyRows::AllowLoss,
    TPolicyRows::DryRun,
    PropertyOf<&TBase::Folder>("Folder", "the folder of the files"),
    ChoiceOf<&TBase::ReleaseVersion>("ReleaseVersion", "release whose readers the files have to suit", Releases),
    ChoiceOf<&TBase::Encoding>("Encoding", "of the sections; default: utf8, with rv17 ansi", Encodings),
};

constexpr TProperty ResourceProperties[] = {
    PropertyOf<&TResources::SectionIDs>("SectionIDs", "the sections of strings to save; empty: all of the database"),
    PropertyOf<&TResources::Languages>("Languages", "the languages to save; empty: all of the database"),
};

constexpr TProperty LanguageProperties[] = {
    PropertyOf<&TLanguages::Languages>("Languages", "the languages to save; empty: all of the database"),
};

}  // namespace

constinit const TPropertyTable FolderJobProperties{&SectionsJobProperties, BaseProperties};
constinit const TUtilOperationDescriptor TResources::Descriptor =
    OperationDescriptor<TResources>("TJobExportResourceFiles");
constinit const TInterfaceDescriptor TResources::Interface =
    TJobInterface<TResources>::Describe("TJobExportResourceFilesInterface", {&FolderJobProperties, ResourceProperties});
constinit const TUtilOperationDescriptor TLanguages::Descriptor =
    OperationDescriptor<TLanguages>("TJobExportLanguagesFile");
constinit const TInterfaceDescriptor TLanguages::Interface =
    TJobInterface<TLanguages>::Describe("TJobExportLanguagesFileInterface", {&FolderJobProperties, LanguageProperties});

void TExportToFolder::CheckSettings() const {
  Require(Folder, "Folder");
  if (Encoding == TKvEncoding::Utf8 && ReleaseVersion == TExportReleaseVersion::rv17)
    throw ESettingsError(Format("%s utf8 does not go with %s rv17, whose readers know ansi only", Setting("Encoding"),
                                Setting("ReleaseVersion")));
}

void TExportToFolder::Run() {
  FOutcome = {LText("M_Velkrund_Jobs_Exported"), DatabaseText(), {}};
  FErrors.emplace(Policies.OnError);
  FFiles.emplace(Files(), Folder, Policies.ExistingFiles);
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  ExportFiles();
  if (!FOutcome.Any(TItemState::Failed) && IsCanceled() && FOutcome.Cancelled.Empty())
    FOutcome.Cancel(LText("M_Velkrund_Jobs_Cancelled"));
}

bool TExportToFolder::ExportInto(TExportJob& Job, const std::string& Name) {
  if (IsCanceled()) return false;
  Job.FileName = FFiles->PathOf(Name);
  FOutcome.Files.push_back(Job.FileName);
  if (!FFiles->MayWrite(Job.FileName)) {
    TItem& Item = FOutcome.Items.emplace_back();
    Item.Section = Name;
    Item.File = Job.FileName;
    Item.State = TItemState::LeftOut;
    Item.Note = LText("M_Velkrund_Jobs_FileIsThere");
    return true;
  }
  Job.Owner = this;
  Job.Listener = Listener;
  Job.DatabaseName = DatabaseName;
  Job.Policies = Policies;
  Job.NewFile = true;
  Job.ReleaseVersion = ReleaseVersion;
  Job.Encoding = Encoding;
  try {
    static_cast<void>(Job.Execute());
  } catch (const std::exception&) {
    // What has become of its sections tells it too; without one it has not begun.
    if (Job.Raised()) throw;
  }
  return Take(Job);
}

/// False: the run ends there.
bool TExportToFolder::Take(const TExportJob& Job) {
  if (Job.Raised()) std::rethrow_exception(Job.Raised());
  const TOutcome& One = Job.Outcome();
  FOutcome.Items.insert(FOutcome.Items.end(), One.Items.begin(), One.Items.end());
  FOutcome.Notes.insert(FOutcome.Notes.end(), One.Notes.begin(), One.Notes.end());
  for (const TPlanStep& Step : Job.PlanSteps()) AddToPlan(Step);
  if (!FOutcome.FirstError) FOutcome.FirstError = One.FirstError;
  if (One.Error) FOutcome.Error = One.Error;
  if (One.End() == TEnd::Cancelled)
    FOutcome.Cancelled = One.Cancelled.Empty() ? LText("M_Velkrund_Jobs_Cancelled") : One.Cancelled;
  if (One.End() != TEnd::Failed) return One.End() == TEnd::Done;
  try {
    return FErrors->GoOn(LText("M_Velkrund_Jobs_ContinueNext"));
  } catch (const EPolicyUnanswered& Unanswered) {
    Stop(Unanswered.Policy());
  } catch (const EAbort& Abort) {
    FOutcome.Cancel(CancelText(Abort.what()));
  }
  return false;
}

void TJobExportResourceFiles::ExportFiles() {
  std::vector<std::string> Wanted = SectionIDs;
  const TResourceSearch Search(DatabaseName, DatabaseText());
  if (Wanted.empty())
    for (const TLSectionInfo& Section : Search.All()) Wanted.push_back(Section.SectionID);
  if (Wanted.empty()) FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_NoResources"));
  // A section that is missing, or cannot be the name of a file, is told before the first file is written.
  std::vector<std::string> Found;
  TStringList Seen;
  for (const std::string& SectionID : Wanted) {
    const TLSectionInfo* const Section = Search.Look(SectionID);
    if (!Section && Policies.MissingSources == TMissingSourcePolicy::Stop) static_cast<void>(Search.Find(SectionID));
    Found.push_back(Section ? Section->SectionID : std::string(SectionWithoutSeparator(SectionID)));
    static_cast<void>(TFolderFiles(Files(), Folder, Policies.ExistingFiles).PathOf(Found.back()));
  }
  for (const std::string& SectionID : Found) {
    if (Seen.IndexOf(SectionID) >= 0) continue;
    Seen.Add(SectionID);
    TJobExportResources Job;
    Job.SectionIDs = {SectionID};
    Job.Languages = Languages;
    if (!ExportInto(Job, SectionID)) return;
  }
}

void TJobExportLanguagesFile::ExportFiles() {
  TJobExportLanguages Job;
  Job.Languages = Languages;
  static_cast<void>(ExportInto(Job, "Languages"));
}

}  // namespace velkrund
