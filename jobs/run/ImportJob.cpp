#include "jobs/run/ImportJob.h"

#include <algorithm>

#include "jobs/files/FileKind.h"
#include "jobs/files/StrayMarkers.h"
#include "jobs/policies/Questions.h"
#include "jobs/report/ErrorReport.h"
#include "jobs/run/LoadOptions.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

/// Databases are made when they do not exist, as long as it lives.
class TCreateMissing {
 public:
  TCreateMissing(TDatabases& Databases, bool Value)
      : FDatabases(Databases), FBefore(Databases.SetCreateMissing(Value)) {}
  TCreateMissing(const TCreateMissing&) = delete;
  TCreateMissing& operator=(const TCreateMissing&) = delete;
  ~TCreateMissing() { FDatabases.SetCreateMissing(FBefore); }

 private:
  TDatabases& FDatabases;
  const bool FBefore;
};

}  // namespace

void TImportJob::Run() {
  FOutcome = {LText("M_Velkrund_Jobs_Imported"), DatabaseText(), {}};
  FUnreadable.clear();
  FSteps.Clear();
  FErrors.emplace(Policies.OnError);
  FGone.clear();
  FNotCreated.clear();
  FStopped = false;
  FParts = MakeParts();
  const TCreateMissing Create(Manager().Databases(), CreateDatabase);
  FInputs = std::make_unique<TInputFiles>(Files(), Names(), Canceled());
  FOutcome.Files = FInputs->FileNames();
  struct TCloser {
    TImportJob& Job;
    ~TCloser() {
      Job.FAccount.reset();
      Job.FLoading.reset();
      Job.FTransaction.reset();
      Job.FParts.clear();
      Job.Release();
      Job.FInputs.reset();
    }
  } const Closer{*this};
  std::vector<std::vector<int>> Chosen;
  for (const auto& Input : FInputs->Inputs()) Chosen.push_back(LookAt(*Input));
  for (std::size_t I = 0; I < Chosen.size(); ++I) AddSections(*FInputs->Inputs()[I], Chosen[I]);
  // Rows first: they are what can be lost.
  for (auto Part = FParts.rbegin(); Part != FParts.rend(); ++Part) Part->second->Settle(FOutcome);
  PlanLoading();
  if (Policies.DryRun) return MakePlan();
  Import();
  NoteStructuresAlone();
  AddNotes(FStays);
}

/// The sections that are to be imported.
std::vector<int> TImportJob::LookAt(TInputFile& Input) {
  Input.File().SetStrictText(!Policies.AllowLoss);
  try {
    Input.Open();
    RequireSections(Input.File(), Input.Name());
    NoteLines(Input);
    TakeUnfinished(Input);
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    if (!GoesOnWithoutFile()) throw;
    FUnreadable.emplace(Input.Name(), std::current_exception());
    return {};
  }
  if (Input.File().Losses().Any()) FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_MalformedHeaders", Input.Name()));
  std::vector<int> Chosen = Choose(Input);
  Announce(Input, Chosen);
  return Chosen;
}

void TImportJob::Announce(TInputFile& Input, const std::vector<int>& Indexes) {
  // What many sections ask the database for is found at once then.
  std::optional<TReadTransaction> Moment;
  if (MakesObjects() && Indexes.size() > 1) Moment.emplace(Manager().Databases(), DatabaseName);
  for (const int Index : Indexes)
    if (const auto Part = FParts.find(Input.File().Sections()[Index].ObjectClass.Role()); Part != FParts.end())
      Part->second->Announce(Input, Index);
}

void TImportJob::AddSections(TInputFile& Input, const std::vector<int>& Indexes) {
  if (Indexes.empty()) return;
  // Without one, an engine that locks all at once looks for changes of others at every question about a table.
  std::optional<TReadTransaction> Moment;
  TDatabases& Databases = Manager().Databases();
  if (!Databases.Connection(DatabaseName).Capabilities().LocksTables) Moment.emplace(Databases, DatabaseName);
  for (const int Index : Indexes) Add(Input, Index);
}

/// Lines outside of sections, which an import passes over.
void TImportJob::NoteLines(TInputFile& Input) {
  for (const std::string& Text : FindStrayMarkers(Input.File()).Doubtful)
    FOutcome.Notes.emplace_back(Input.Name() + ": " + Text);
}

void TImportJob::TakeUnfinished(TInputFile& Input) {
  if (Input.File().UnfinishedPosition() < 0) return;
  if (!NamesSections() && Policies.Unfinished == TUnfinishedPolicy::Refuse)
    RefuseUnfinished(Input.File(), Input.Name());
  const std::int64_t Bytes = Input.File().Stream().Size() - Input.File().UnfinishedPosition();
  FOutcome.Notes.push_back(LCounted("M_Velkrund_Jobs_UnfinishedSkipped", Bytes, Input.Name(), Bytes));
}

void TImportJob::Add(TInputFile& Input, int Index) {
  const auto Part = FParts.find(Input.File().Sections()[Index].ObjectClass.Role());
  FSteps.Add(Input, Index, Part == FParts.end() ? nullptr : Part->second.get());
}

/// Shows what the loading of the tables would refuse, before anything is changed.
void TImportJob::PlanLoading() {
  const std::vector<TLoadTarget> Targets = FSteps.Targets();
  if (!Targets.empty() && Relations()) FLoading = Relations()->Load(DatabaseName, Targets, LoadOptionsOf(Policies));
}

/// What Import would do, in its order as far as that is known beforehand.
void TImportJob::MakePlan() {
  const auto AddAll = [this](std::vector<TPlanStep> Steps) {
    for (TPlanStep& Step : Steps) AddToPlan(std::move(Step));
  };
  AddAll(FSteps.PlanOfStructures());
  if (MakesObjects()) AddAll(StepsBeforeRows());
  AddAll(FSteps.PlanOfRows(FLoading.get()));
  if (MakesObjects()) AddAll(StepsBehindRows());
  for (TItem& Item : FOutcome.Items) {
    if (Item.State == TItemState::LeftOut) continue;
    Item.State = TItemState::LeftOut;
    Item.Note = LText("M_Velkrund_Jobs_NothingChanged");
  }
}

void TImportJob::NoteStructuresAlone() {
  if (FNotCreated.empty()) return;
  std::vector<std::string> Names;
  for (const TStructureId& Structure : FNotCreated) Names.push_back(StructureText(Structure));
  const auto Count = static_cast<std::int64_t>(Names.size());
  FOutcome.Notes.push_back(LCounted("M_Velkrund_Jobs_StructuresAlone", Count, Count, Joined(Names)));
}

void TImportJob::Import() {
  const TMissingTablesGuard Maker([this](TUtilOperation& Run, const std::string&) { return TableMaker(Run); });
  TUOImportFiles Operation;
  Operation.Owner = this;
  Operation.DatabaseName = DatabaseName;
  Operation.FFiles = FInputs->FileNames();
  Operation.FileSystem = FInputs.get();
  Operation.fCreateDBStructures = MakesObjects();
  Operation.Observer = this;
  Operation.LoadOptions = LoadOptionsOf(Policies);
  FTotal = FSteps.Bytes();
  FReached = 0;
  BeginPart(Joined(FOutcome.Files), "bytes", FTotal);
  int Result = 0;
  BeginWhole();
  try {
    Result = Operation.Execute();
  } catch (const std::exception&) {
    // What the run ends with after the failure of an item has been told with the item.
    if (!FStopped) FOutcome.Fail(std::current_exception());
    FStopped = true;
  }
  RefuseChangedInputs();
  if (FOutcome.Cancelled.Empty() && Result == 0 && !FStopped && (IsCanceled() || FOutcome.Any(TItemState::Cancelled)))
    FOutcome.Cancelled = LText("M_Velkrund_Jobs_Cancelled");
  // To commit nothing would make a file of a database that is new.
  const bool HasSomething = FOutcome.Any(TItemState::Done) || !CreateDatabase;
  EndWhole(!FStopped && FOutcome.Cancelled.Empty() && HasSomething);
  EndPart();
  if (!FOutcome.Cancelled.Empty()) FOutcome.Cancel(FOutcome.Cancelled);
}

/// What comes for certain only when all is read.
void TImportJob::RefuseChangedInputs() {
  if (FStopped || !FOutcome.Any(TItemState::Done)) return;
  try {
    for (const auto& Input : FInputs->Inputs()) Input->RefuseChanged();
  } catch (const std::exception&) {
    FOutcome.Fail(std::current_exception());
    FStopped = true;
  }
}

void TImportJob::BeginWhole() {
  if (Policies.Commit == TCommit::Each) return;
  if (FLoading)
    FLoading->BeginAll();
  else
    FTransaction = std::make_unique<TTransaction>(DatabaseName, Isolation());
}

void TImportJob::EndWhole(bool Stays) {
  FStays = Stays || Policies.Commit == TCommit::Each;
  if (Policies.Commit == TCommit::Each) return;
  try {
    if (Stays && FLoading) FLoading->CommitAll();
    if (Stays && FTransaction) FTransaction->Commit();
  } catch (const EAbort& Abort) {
    FOutcome.Cancelled = CancelText(Abort.what());
    Stays = false;
  } catch (const std::exception& Error) {
    FOutcome.Fail(std::current_exception());
    // An answer that never came: what has become of it only the database knows.
    if (FactsOf(Error).Info.Code == TErrorCode::Connection) return FailAll();
    Stays = false;
  }
  FLoading.reset();
  FTransaction.reset();
  FStays = Stays;
  if (!Stays) TakeAllBack();
  const bool HasFailed =
      FOutcome.Any(TItemState::Failed) || FOutcome.Any(TItemState::Cancelled) || FOutcome.Any(TItemState::TakenBack);
  if (HasFailed && !FOutcome.Any(TItemState::Done)) FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_DatabaseAsBefore"));
}

void TImportJob::FailAll() {
  for (TItem& Item : FOutcome.Items)
    if (Item.State == TItemState::Done) FOutcome.Fail(Item, FOutcome.FirstError);
}

void TImportJob::TakeAllBack() {
  for (TItem& Item : FOutcome.Items)
    if (Item.State == TItemState::Done) Item.State = TItemState::TakenBack;
}

TEIFile* TImportJob::OpenedFile(const std::string& FileName) {
  if (const auto Error = FUnreadable.find(FileName); Error != FUnreadable.end()) std::rethrow_exception(Error->second);
  for (const auto& Input : FInputs->Inputs())
    if (Input->Name() == FileName) return &Input->File();
  return nullptr;
}

std::optional<TLoadTarget> TImportJob::TargetOf(const TEIFile& File, const TEISection& Section) {
  const TImportStep& Step = FSteps.StepOf(File, Section);
  return Step.Part ? Step.Part->TargetOf(Step.Number) : std::nullopt;
}

void TImportJob::EndTables(const TTableLoading& Loading) {
  FOutcome.Notes.insert(FOutcome.Notes.end(), Loading.Remarks().begin(), Loading.Remarks().end());
}

bool TImportJob::BeginSection(const TEIFile& File, const TEISection& Section, TEIObject& Object) {
  const TImportStep& Step = FSteps.StepOf(File, Section);
  SetSubject(FOutcome.Items[Step.Number].Subject());
  // The operation counts the bytes of each file and of all tables; here those of the whole run count.
  Object.OnProgress = [this, Bytes = Step.Bytes](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    const double Share = Total > 0 ? std::clamp(static_cast<double>(Current) / Total, 0.0, 1.0) : 0;
    ReportProgress(FShow, FReached + static_cast<std::int64_t>(Share * static_cast<double>(Bytes)), FTotal, Name);
  };
  if (Step.Part) Step.Part->Begin(Step.Number, Object);
  FAccount.emplace(File);
  return true;
}

void TImportJob::EndSection(const TEIFile& File, const TEISection& Section, const TEIObject* Object,
                            const std::exception* Error) {
  const TImportStep& Step = FSteps.StepOf(File, Section);
  TItem& Item = FOutcome.Items[Step.Number];
  if (FAccount) FAccount->Close(Item);
  Item.Bytes = Step.Bytes;
  FReached += Step.Bytes;
  Item.State = Object && Object->Stopped() ? TItemState::Cancelled : TItemState::Done;
  if (Step.Part) Step.Part->End(Item, Object);
  if (Error) Fail(Item, *Error);
  TellItem(Item.File, "section", [&Item] { return ItemDocument(Item); });
}

void TImportJob::FileFailed(const std::string& FileName, const std::exception& Error) {
  TItem Item;
  Item.File = FileName;
  FOutcome.Items.push_back(std::move(Item));
  FUnreadable.erase(FileName);
  Fail(FOutcome.Items.back(), Error);
  TellItem(FileName, "section", [this] { return ItemDocument(FOutcome.Items.back()); });
}

void TImportJob::TableFailed(const std::string& Table, const std::exception& Error) {
  TItem* Found = nullptr;  // that of its rows, else of its structure
  for (TItem& Item : FOutcome.Items) {
    const bool IsStructure = Item.Structure && SameText(Item.Structure->Name, Table);
    if (SameText(Item.Table, Table) || (IsStructure && !Found)) Found = &Item;
  }
  if (!Found) {
    FOutcome.Fail(std::current_exception());
    FStopped = true;
    return;
  }
  Fail(*Found, Error);
}

/// What failed has been tried as often as something else could be made.
void TImportJob::ObjectEnded(const std::string& Name, int ObjectType, TRecreateState State,
                             const std::exception_ptr& Error) {
  NoteObject({ObjectType, Name}, State);
  if (State != TRecreateState::Pending || !Error || FStopped) return;
  try {
    std::rethrow_exception(Error);
  } catch (const std::exception& Failure) {
    const auto IsIt = [&](const TItem& Item) {
      return Item.Structure && Item.Structure->Type == ObjectType && SameText(Item.Structure->Name, Name);
    };
    const auto Item = std::find_if(FOutcome.Items.begin(), FOutcome.Items.end(), IsIt);
    if (Item == FOutcome.Items.end()) throw;
    if (MayBeMissing(Policies, FactsOf(Failure).Info)) {
      FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_NotMade", Failure.what()));
      return;
    }
    Fail(*Item, Failure);
    FStopped = !MayGoOn(Failure);
  }
}

void TImportJob::TableTakenBack(const std::string& Table) {
  for (TItem& Item : FOutcome.Items)
    if (SameText(Item.Table, Table) && Item.State == TItemState::Done) Item.State = TItemState::TakenBack;
}

/// Error: the one that is being handled.
void TImportJob::Fail(TItem& Item, const std::exception& Error) {
  // Unless somebody goes on, the run ends with it.
  FStopped = true;
  if (dynamic_cast<const EAbort*>(&Error)) {
    Item.State = TItemState::Cancelled;
    FStopped = false;
    return;
  }
  FOutcome.Fail(Item, std::current_exception());
  // Without a listener it stands in the log that the operation writes.
  if (Listener) Fault(*Item.Error);
}

std::optional<bool> TImportJob::GoOn(const std::exception& Error) {
  FStopped = !MayGoOn(Error);
  return !FStopped;
}

bool TImportJob::MayGoOn(const std::exception& Error) {
  if (IsAlone()) return true;
  try {
    const TLText Question = LText("M_Velkrund_DSPUtils_ContinueImport");
    // Who hears of errors as they come has been told.
    return FErrors->GoOn(Listener ? Question : LErrorLine(FactsOf(Error)) + "\r\n" + Question);
  } catch (const EPolicyUnanswered& Unanswered) {
    Stop(Unanswered.Policy());
    return false;
  } catch (const EAbort& Abort) {
    FOutcome.Cancelled = CancelText(Abort.what());
    throw;
  }
}

/// Whether there is nothing else that could be gone on with, or could stay. What structures describe is made last.
bool TImportJob::IsAlone() const {
  if (!FUnreadable.empty() || (FSteps.HaveStructures() && MakesObjects())) return false;
  const bool Together = !LoadOptionsOf(Policies).InGroups;
  for (std::size_t Number = 0; Number < FOutcome.Items.size(); ++Number) {
    const TItemState State = FOutcome.Items[Number].State;
    if (State == TItemState::Done && Policies.Commit == TCommit::Run) return false;
    if (State == TItemState::NotReached && (Together || !FGone.contains(Number))) return false;
    if (State == TItemState::TakenBack && Together) return false;
  }
  return true;
}

void TImportJob::TakenBack(const std::vector<TImportFileObserver::TPlace>& Sections, const std::exception* Error) {
  TItem* Named = nullptr;  // in the error, else the first
  for (const auto& [File, Section] : Sections) {
    const TImportStep& Step = FSteps.StepOf(File, Section);
    TItem& Item = FOutcome.Items[Step.Number];
    if (Item.State == TItemState::Done) Item.State = TItemState::TakenBack;
    FGone.insert(Step.Number);
    if (!Named || (Error && Item.Table == FactsOf(*Error).Info.Table)) Named = &Item;
  }
  const TLText Note = LText("M_Velkrund_Jobs_TogetherOrNot");
  const bool IsTold = std::find(FOutcome.Notes.begin(), FOutcome.Notes.end(), Note) != FOutcome.Notes.end();
  if (Sections.size() > 1 && LoadOptionsOf(Policies).InGroups && !IsTold) FOutcome.Notes.push_back(Note);
  if (Error) Fail(*Named, *Error);
}

}  // namespace velkrund
