#include "velkrund/dictionary/RecreateObjects.h"

#include "velkrund/operations/GoOnQuestion.h"
#include "velkrund/operations/ListQuestion.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/operations/NotCreatedReport.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

constinit const TUtilOperationDescriptor TUORecreateGenerators::Descriptor =
    OperationDescriptor<TUORecreateGenerators>("TUORecreateGenerators");
constinit const TUtilOperationDescriptor TUORecreateViews::Descriptor =
    OperationDescriptor<TUORecreateViews>("TUORecreateViews");
constinit const TUtilOperationDescriptor TUORecreateExecStoredProcs::Descriptor =
    OperationDescriptor<TUORecreateExecStoredProcs>("TUORecreateExecStoredProcs");
constinit const TUtilOperationDescriptor TUORecreateSelectStoredProcs::Descriptor =
    OperationDescriptor<TUORecreateSelectStoredProcs>("TUORecreateSelectStoredProcs");

int TUORecreateObjects::Execute() {
  FCreated = 0;
  FNotCreated.clear();
  FLastError.clear();
  FAsk.Assign(OverwriteAsk);
  FAsk.FCancel = false;
  bool Done = false;
  try {
    Done = CreateAll();
  } catch (const EAbort&) {
    // As wished: what is left stays undone.
  }
  if (!FNotCreated.empty() && !FKind.AsksAfterErrors) ReportNotCreated();
  return Done ? 1 : 0;
}

bool TUORecreateObjects::CreateAll() {
  for (FIndex = 0; FIndex < Names.size(); ++FIndex) {
    ShowProgress(static_cast<std::int32_t>(FIndex), static_cast<std::int32_t>(Names.size()), Name());
    if (IsCanceled()) return false;
    if (!Name().empty() && !CreateOne()) return false;
  }
  return true;
}

bool TUORecreateObjects::CreateOne() {
  try {
    const TNext Next = Ask();
    if (Next == TNext::Create) Create();
    return Next != TNext::End;
  } catch (const EAbort&) {
    throw;
  } catch (const EQuestionUnanswered&) {
    throw;
  } catch (const std::exception& Error) {
    const std::string Report = Note(Error.what());
    if (FOnFailed) FOnFailed(Name(), std::current_exception());
    if (FKind.AsksAfterErrors)
      GoOnOrRaise(Error, Report + "\r\n" + BaseMng().LString("M_Velkrund_DicUtils_ContinueRecreate"));
  }
  return true;
}

TUORecreateObjects::TNext TUORecreateObjects::Ask() {
  if (!FKind.IsDescribed(Name(), DatabaseName))
    return FAsk.FAlwaysAsk ? AskWithoutStructure() : TNext::Create;  // which fails
  if (!FKind.IsThere(Name(), DatabaseName)) return TNext::Create;
  const bool Goes = AskOfList(FAsk, FKind.OverwriteQuestion(Name()), this);
  if (FAsk.FCancel) return TNext::End;
  return Goes ? TNext::Create : TNext::PassOver;
}

/// Who goes on has seen it: no second question follows.
TUORecreateObjects::TNext TUORecreateObjects::AskWithoutStructure() {
  const std::string Question = Format(BaseMng().LString(FKind.MissingKey), Name());
  if (uoMessageBox(0, ToUtf16(Question), ToUtf16(BaseMng().LString("ST_CONFIRMATION")), MB_YESNO | MB_ICONQUESTION, 0,
                   0) != IDYES)
    return TNext::End;
  Note(FKind.NotFoundText(Name(), DatabaseName));
  return TNext::PassOver;
}

void TUORecreateObjects::Create() {
  const std::unique_ptr<TRecreateOperation> Single = FKind.Single();
  Single->Owner = this;
  Single->ObjectName = Name();
  Single->DatabaseName = DatabaseName;
  Single->OverwriteAsk.FAlwaysAsk = false;
  Single->OverwriteAsk.FYes = true;
  TTransaction Transaction(DatabaseName);
  if (!Single->Execute()) return;
  Transaction.Commit();
  ++FCreated;
}

/// What has become of the object in hand, for the trace and the report.
std::string TUORecreateObjects::Note(const std::string& Message) {
  FNotCreated.push_back(Name());
  FLastError = BaseMng().LString(FKind.ErrorKey) + "\r\n" + Message;
  WriteLog(TTraceLevel::Info, FLastError);
  return FLastError;
}

void TUORecreateObjects::ReportNotCreated() {
  const std::string Report = NotCreatedReport(FNotCreated, FLastError);
  WriteLog(TTraceLevel::Error, Report);
  ShowNotCreated(Report);
}

}  // namespace velkrund
