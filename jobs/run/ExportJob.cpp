#include "jobs/run/ExportJob.h"

#include <algorithm>
#include <map>

#include "jobs/report/ErrorReport.h"
#include "jobs/run/ItemAccount.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/operations/GoOnQuestion.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

constexpr std::string_view Releases[] = {"rv17", "rv20"};
constexpr std::string_view Encodings[] = {"default", "ansi", "utf8"};

constexpr TProperty Properties[] = {
    TPolicyRows::ExistingSections,
    TPolicyRows::MissingSources,
    TPolicyRows::OnError,
    TPolicyRows::AllowLoss,
    TPolicyRows::DryRun,
    PropertyOf<&TExportJob::FileName>("FileName", "the file to add to; - is standard output"),
    PropertyOf<&TExportJob::NewFile>("NewFile",
                                     "make the file afresh, when all of the run is done; otherwise add to it"),
    PropertyOf<&TExportJob::SectionName>("SectionName", "for one section: its name; empty: as the job names it"),
    ChoiceOf<&TExportJob::ReleaseVersion>("ReleaseVersion", "release whose readers the file has to suit", Releases),
    ChoiceOf<&TExportJob::Encoding>("Encoding", "of the sections; default: utf8, with rv17 ansi", Encodings),
};

}  // namespace

constinit const TPropertyTable ExportJobProperties{&SectionsJobProperties, Properties};

void TExportJob::CheckSettings() const {
  Require(FileName, "FileName");
  if (Encoding == TKvEncoding::Utf8 && ReleaseVersion == TExportReleaseVersion::rv17)
    throw ESettingsError(Format("%s utf8 does not go with %s rv17, whose readers know ansi only", Setting("Encoding"),
                                Setting("ReleaseVersion")));
  if (NewFile && Policies.ExistingSections != TExisting::Ask)
    throw ESettingsError(Format("%s makes the file afresh: %s is about sections that are there", Setting("NewFile"),
                                Setting("ExistingSections")));
  if (Several() && !SectionName.empty())
    throw ESettingsError(Format("%s names one section, but several %ss are exported", Setting("SectionName"), FKind));
}

void TExportJob::Run() {
  FOutcome = {LText("M_Velkrund_Jobs_Exported"), DatabaseText(), {}};
  FErrors.emplace(Policies.OnError);
  FMissing.emplace(Policies.MissingSources);
  const struct TMomentEnd {
    std::optional<TReadTransaction>& Moment;
    ~TMomentEnd() { Moment.reset(); }
  } End{FMoment};
  FOutcome.Items = PlanItems();
  const bool HasWork = std::any_of(FOutcome.Items.begin(), FOutcome.Items.end(),
                                   [](const TItem& Item) { return Item.State != TItemState::LeftOut; });
  if (NewFile && !HasWork)
    throw Exception(Format("There is nothing to export; the file '%s' is left as it is", FileName));
  FReplaced.clear();
  FSteps.assign(FOutcome.Items.size(), {});
  FOutput = std::make_unique<TOutputFile>(Files(), FileName, !Policies.AllowLoss,
                                          NewFile ? TOutputUse::MakeAfresh : TOutputUse::AddTo);
  FOutcome.Files = {FOutput->Name()};
  for (TItem& Item : FOutcome.Items) Item.File = FOutput->Name();
  struct TCloser {
    std::unique_ptr<TOutputFile>& Output;
    ~TCloser() { Output.reset(); }
  } const Closer{FOutput};
  Settle();
  if (std::any_of(FSteps.begin(), FSteps.end(), [](const TStep& Step) { return Step.Replace; }))
    FOutput->PrepareReplacing();
  if (Policies.DryRun) return MakePlan();
  Write();
  if (const std::int64_t Cut = FOutput->UnfinishedBytes(); Cut > 0 && FOutput->File().UnfinishedPosition() < 0)
    FOutcome.Notes.push_back(LCounted("M_Velkrund_Jobs_UnfinishedCut", Cut, FOutput->Name(), Cut));
  Finish();
  AddNotes();
}

void TExportJob::FindExisting() {
  std::map<std::pair<TSectionRole, std::string>, std::vector<int>> Present;  // by name in lower case
  const TEISectionList& Sections = FOutput->File().Sections();
  for (int Index = 0; Index < Sections.Count(); ++Index)
    Present[{Sections[Index].ObjectClass.Role(), LowerCase(Sections[Index].Name())}].push_back(Index);
  for (std::size_t I = 0; I < FSteps.size(); ++I) {
    const TItem& Item = FOutcome.Items[I];
    if (Item.State == TItemState::LeftOut) continue;
    const auto Found = Present.find({Item.Role(), LowerCase(Item.Section)});
    if (Found != Present.end()) FSteps[I].Existing = Found->second;
  }
}

void TExportJob::LeaveOut(TItem& Item, const std::exception_ptr& Error) {
  try {
    std::rethrow_exception(Error);
  } catch (const std::exception& Missing) {
    if (!FMissing->LeavesOut(Missing)) throw;
    Item.State = TItemState::LeftOut;
    Item.Note = std::string(Missing.what());
  }
}

/// What Write and Finish would do.
void TExportJob::MakePlan() {
  if (NewFile) AddToPlan({Format("make '%s' afresh", FOutput->Name())});
  for (std::size_t I = 0; I < FSteps.size(); ++I) {
    TItem& Item = FOutcome.Items[I];
    if (Item.State == TItemState::LeftOut) continue;
    AddToPlan({Format("%s the section '%s' %s '%s'", FSteps[I].Replace ? "replace" : "add", Item.Section,
                      FSteps[I].Replace ? "of" : "to", FOutput->Name())});
    Item.State = TItemState::LeftOut;
    Item.Note = LText("M_Velkrund_Jobs_NothingWritten");
  }
}

/// Decides about sections that are there already, before anything is written.
void TExportJob::Settle() {
  FindExisting();
  if (Policies.ExistingSections == TExisting::Add) return;
  std::vector<TLText> Met;
  for (std::size_t I = 0; I < FSteps.size(); ++I)
    if (!FSteps[I].Existing.empty()) Met.push_back(LText("M_Velkrund_Jobs_TheSection", FOutcome.Items[I].Section));
  if (Policies.ExistingSections == TExisting::Ask && !Met.empty() && !CanAsk())
    throw EPolicyUnanswered(TPolicy::ExistingSections,
                            LText("M_Velkrund_Jobs_AlreadyIn", FOutput->Name(), LJoinedInShort(Met)));
  TRepeatedQuestion Question;
  for (std::size_t I = 0; I < FSteps.size(); ++I)
    if (!FSteps[I].Existing.empty()) FSteps[I].Replace = MayReplace(FOutcome.Items[I], Question);
}

/// Whether what is there goes; otherwise the item is left out.
bool TExportJob::MayReplace(TItem& Item, TRepeatedQuestion& Question) const {
  bool Replace = Policies.ExistingSections == TExisting::Replace;
  if (Policies.ExistingSections == TExisting::Ask)
    Replace = Question.Ask({LText("M_Velkrund_Jobs_ReplaceSection", Item.Section, FOutput->Name()),
                            {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Cancel},
                            TPolicy::ExistingSections}) == TAnswer::Yes;
  if (Replace) return true;
  Item.State = TItemState::LeftOut;
  Item.Note = LText("M_Velkrund_Jobs_SectionIsThere");
  return false;
}

void TExportJob::SetUp(TExportUtilOperation& Export) {
  Export.Owner = this;
  Export.DatabaseName = DatabaseName;
  Export.FTarget = &FOutput->File();
  Export.FReleaseVersion = ReleaseVersion;
  Export.FEncoding =
      Encoding.value_or(ReleaseVersion == TExportReleaseVersion::rv20 ? TKvEncoding::Utf8 : TKvEncoding::Ansi);
  Export.FOnShowProgress = PartProgress();
}

TReadTransaction& TExportJob::Moment() {
  if (!FMoment) FMoment.emplace(Manager().Databases(), DatabaseName);
  return *FMoment;
}

void TExportJob::Write() {
  const auto Count = static_cast<double>(FOutcome.Items.size());
  // Rows of one section refer to rows of another.
  Moment();
  for (std::size_t I = 0; I < FOutcome.Items.size(); ++I) {
    TItem& Item = FOutcome.Items[I];
    if (Item.State == TItemState::LeftOut) continue;
    SetShare(static_cast<double>(I) / Count, static_cast<double>(I + 1) / Count);
    WriteOne(Item, FSteps[I]);
    if (Item.State == TItemState::Failed ? IsLast(I) || !GoOn(Item) : Item.State != TItemState::Done || IsCanceled())
      break;
    if (Item.State != TItemState::Failed) continue;
    Moment().Renew();
    FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_LaterMoment", Item.Section));
  }
}

void TExportJob::WriteOne(TItem& Item, TStep& Step) {
  TExportUtilOperation& Export = OperationFor(Item);
  SetUp(Export);
  Export.FSectionName = Item.Section;
  if (Step.Replace) FOutput->HoldBack();
  Step.Held = FOutput->HoldsBack();
  const TItemAccount Account(FOutput->File());
  BeginPart(Item.Subject(), Item.Structure ? "bytes" : "rows");
  try {
    // Nothing of a section is left out by an answer that was meant for something else: what fails, fails as a whole.
    const TNobodyGoesOn Nobody;
    Item.State = Export.Execute() != 0 ? TItemState::Done : TItemState::Cancelled;
    FOutput->Keep();
  } catch (const EAbort&) {
    Item.State = TItemState::Cancelled;  // before the section was begun
  } catch (const std::exception&) {
    FOutcome.Fail(Item, std::current_exception());
  }
  EndPart();
  Account.Close(Item);
  AfterRun(Item);
  if (Item.Error) Fault(*Item.Error);
  if (Item.State == TItemState::Done) {
    const TEISectionList& Sections = FOutput->File().Sections();
    Item.Bytes = Sections[Sections.Count() - 1].DataSize;
    if (Step.Replace) FReplaced.insert(FReplaced.end(), Step.Existing.begin(), Step.Existing.end());
  }
  TellItem(Item.File, "section", [&Item] { return ItemDocument(Item); });
}

bool TExportJob::IsLast(std::size_t Index) const {
  return std::none_of(FOutcome.Items.begin() + static_cast<std::ptrdiff_t>(Index) + 1, FOutcome.Items.end(),
                      [](const TItem& Later) { return Later.State != TItemState::LeftOut; });
}

bool TExportJob::GoOn(const TItem& Failed) {
  const TLText Question = LText("M_Velkrund_Jobs_ContinueNext");
  try {
    // Who hears of errors as they come has been told.
    return FErrors->GoOn(Listener ? Question : LErrorLine(*Failed.Error) + "\r\n" + Question);
  } catch (const EPolicyUnanswered& Unanswered) {
    Stop(Unanswered.Policy());
  } catch (const EAbort& Abort) {
    if (FOutput->IsMadeAfresh()) TakeBack();
    FOutcome.Cancel(CancelText(Abort.what()));
  }
  return false;
}

/// A file that is made afresh holds all that was asked for, or is not made.
void TExportJob::TakeBack() {
  for (TItem& Item : FOutcome.Items)
    if (Item.State == TItemState::Done) Item.State = TItemState::TakenBack;
}

void TExportJob::Finish() {
  const bool SparesOld = FOutput->IsMadeAfresh() && FOutcome.End() != TEnd::Done;
  if (SparesOld) TakeBack();
  const bool Broken = !FOutcome.Any(TItemState::Failed) && FOutcome.Any(TItemState::NotReached);
  if (Broken && FOutcome.Cancelled.Empty()) FOutcome.Cancel(LText("M_Velkrund_Jobs_Cancelled"));
  if (SparesOld) return FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_FileAsBefore", FOutput->Name()));
  // A wish to stop that came before has been obeyed; what is finished is put right now.
  const bool Stopped = IsCanceled();
  try {
    FOutput->Finish(FReplaced, [=, this] { return !Stopped && IsCanceled(); });
  } catch (const EAbort& Abort) {
    FOutcome.Cancelled = CancelText(Abort.what());
    for (std::size_t I = 0; I < FSteps.size(); ++I)
      if (TItem& Item = FOutcome.Items[I]; Item.State == TItemState::Done && !HasArrived(I))
        Item.State = TItemState::Cancelled;
  } catch (const std::exception&) {
    FailFile(std::current_exception());
  }
}

/// Whether what was written stands in the file, whatever becomes of the end of the run.
bool TExportJob::HasArrived(std::size_t Index) const { return !FOutput->ArrivesAtEnd() && !FSteps[Index].Held; }

void TExportJob::FailFile(const std::exception_ptr& Reason) {
  bool IsOfItem = false;
  for (std::size_t I = 0; I < FSteps.size(); ++I) {
    TItem& Item = FOutcome.Items[I];
    if (Item.State != TItemState::Done || HasArrived(I)) continue;
    FOutcome.Fail(Item, Reason);
    IsOfItem = true;
  }
  if (!IsOfItem) return FOutcome.Fail(Reason);
  Fault(FactsOf(Reason));
}

}  // namespace velkrund
