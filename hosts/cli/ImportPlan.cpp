#include "hosts/cli/ImportPlan.h"

#include "hosts/cli/Sections.h"
#include "hosts/cli/StrayMarkers.h"
#include "velkrund/dictionary/TableData.h"
#include "velkrund/dsp/DSPStructure.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

void TImportPlan::LookAt(const TInputFiles& Inputs) {
  FSeveral = Inputs.Inputs().size() > 1;
  for (const auto& Input : Inputs.Inputs()) {
    try {
      Input->Open();
    } catch (const EAbort&) {
      throw;
    } catch (const Exception&) {
      continue;  // the import meets the same error, and asks whether to go on
    }
    const TEISectionList& Sections = Input->File().Sections();
    for (int Index = 0; Index < Sections.Count(); ++Index) Add(Input->File(), Sections[Index]);
    NoteStrayMarkers(*Input, FReport);
  }
}

void TImportPlan::Add(const TEIFile& File, const TEISection& Section) {
  TStep Step{IsTableData(Section), Section.DataSize, FReport.Items.size()};
  FReport.Items.push_back(
      {Section.Name(), Step.IsTable ? TableOf(Section) : std::string(), FSeveral ? File.FileName() : std::string()});
  TReportItem& Item = FReport.Items.back();
  if (Section.ObjectClass.Role() == TSectionRole::Structure) Item.Structure = StructureOf(Section);
  if (Item.Structure) FStructures.Add(*Item.Structure);
  if (Step.IsTable) {
    if (const auto Table = FSession.Manager().GetUserTable(Item.Table, FSession.Database(), true)) {
      Item.Table = Table->TableName();
      Step.Target = FTargets.Add(*Table);
    }
  }
  FSteps.emplace(std::pair(File.FileName(), Section.Position), Step);
}

void TImportPlan::Settle() {
  FTargets.Settle(FSession);
  std::vector<TLoadTarget> Targets;
  for (const auto& [Place, Step] : FSteps)
    if (const auto Target = TargetOf(Step)) Targets.push_back(*Target);
  // What an emptying must not touch is refused before anything is changed.
  if (!Targets.empty()) Relations()->Load(FSession.Database(), Targets);
  if (FOverwriteAsk.FAlwaysAsk)
    FStructures.RefuseUnanswered(FSession, "--overwrite yes to replace them, or --overwrite no to leave them out");
  for (const auto& [Place, Step] : FSteps) {
    if (!Step.Target || !FTargets[*Step.Target].LeaveOut) continue;
    FReport.Items[Step.Item].State = TItemState::LeftOut;
    FReport.Items[Step.Item].Note = FTargets[*Step.Target].Note();
  }
}

std::int64_t TImportPlan::Bytes(bool OfTables) const {
  std::int64_t Result = 0;
  for (const auto& [Place, Step] : FSteps)
    if (Step.IsTable == OfTables) Result += Step.Bytes;
  return Result;
}

void TImportPlan::Begin() {
  // Of several files the operation counts each one's structures, then all tables together.
  FSession.Progress.Begin(FReport.File, "bytes", FSeveral ? -1 : Bytes(false) + Bytes(true));
}

const TImportPlan::TStep& TImportPlan::StepOf(const TEIFile& File, const TEISection& Section) const {
  const auto Found = FSteps.find({File.FileName(), Section.Position});
  if (Found == FSteps.end()) throw Exception(Format("'%s' was changed while it was read", File.FileName()));
  return Found->second;
}

std::optional<TLoadTarget> TImportPlan::TargetOf(const TStep& Step) const {
  if (!Step.Target || FTargets[*Step.Target].LeaveOut) return std::nullopt;
  return TLoadTarget{FTargets[*Step.Target].Table, !FTargets[*Step.Target].Append};
}

std::optional<TLoadTarget> TImportPlan::TargetOf(const TEIFile& File, const TEISection& Section) {
  return TargetOf(StepOf(File, Section));
}

void TImportPlan::BeginTables(const TTableLoading& Loading) {
  FAreOne = Loading.AreOne();
  for (const std::string& Warning : Loading.Warnings()) FReport.Notes.push_back("warning: " + Warning);
}

bool TImportPlan::BeginSection(const TEIFile& File, const TEISection& Section, TEIObject& Object) {
  const TStep& Step = StepOf(File, Section);
  const TReportItem& Item = FReport.Items[Step.Item];
  if (Item.State == TItemState::LeftOut) return false;
  if (FSeveral && Step.IsTable && !FTablesBegun) FSession.Progress.Begin(FReport.File, "bytes", Bytes(true));
  FTablesBegun = FTablesBegun || Step.IsTable;
  FSession.Progress.SetName(Item.Subject());
  if (auto* Data = dynamic_cast<TEICommonTableData*>(&Object)) {
    Data->SkipMissingFields = FTables.SkipMissing;
    Data->Append = FTables.Append;
    if (Step.Target) Data->TableName = FTargets[*Step.Target].Table;
  }
  if (auto* Structure = dynamic_cast<TEIDSPStructureCommon*>(&Object)) {
    Structure->SetOverwriteAsk(FOverwriteAsk);
    // What an answer made of it for another structure is not for this one.
    Structure->ClearRoot = true;
  }
  FStart = TClock::now();
  FLossesBefore = File.Losses();
  return true;
}

void TImportPlan::EndSection(const TEIFile& File, const TEISection& Section, const TEIObject* Object,
                             const std::exception* Error) {
  const TStep& Step = StepOf(File, Section);
  TReportItem& Item = FReport.Items[Step.Item];
  Item.Seconds = std::chrono::duration<double>(TClock::now() - FStart).count();
  Item.Bytes = Step.Bytes;
  Item.Losses = {File.Losses().Unrepresentable - FLossesBefore.Unrepresentable,
                 File.Losses().Malformed - FLossesBefore.Malformed};
  if (const auto* Data = dynamic_cast<const TEICommonTableData*>(Object)) Item.Counts = *Data->Report;
  if (Error) {
    Fail(Item, *Error);
    FStopped = LoadsTogether(Item);
    if (FStopped) throw EAbort("the rest would be taken back with it");
    return;
  }
  Item.State = Object->Stopped() ? TItemState::Cancelled : TItemState::Done;
  if (Item.State != TItemState::Done || !Item.Structure || !FOverwriteAsk.FLeftAlone) return;
  Item.State = TItemState::LeftOut;
  Item.Note = StructureKept;
}

void TImportPlan::TakenBack(const std::exception*) {
  for (TReportItem& Item : FReport.Items)
    if (!Item.Table.empty() && Item.State == TItemState::Done) Item.State = TItemState::TakenBack;
  FReport.Notes.emplace_back("tables with foreign keys are loaded together or not at all");
}

void TImportPlan::FileFailed(const std::string& FileName, const std::exception& Error) {
  FReport.Items.push_back({{}, {}, FileName});
  Fail(FReport.Items.back(), Error);
}

void TImportPlan::Fail(TReportItem& Item, const std::exception& Error) {
  if (dynamic_cast<const EAbort*>(&Error)) {
    Item.State = TItemState::Cancelled;
    return;
  }
  Item.State = TItemState::Failed;
  Item.Note = ExceptionClassName(Error) + ":" + Error.what();
  // Otherwise the question tells it, or the error with which the run ends.
  if (FErrors.OnError() == TOnError::Continue || LoadsTogether(Item))
    FSession.Console.Message("velkrund: " + Item.Note);
}

}  // namespace velkrund
