#include "velkrund/dictionary/RecreateObject.h"

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

constinit const TUtilOperationDescriptor TUORecreateGenerator::Descriptor =
    OperationDescriptor<TUORecreateGenerator>("TUORecreateGenerator");
constinit const TUtilOperationDescriptor TUORecreateView::Descriptor =
    OperationDescriptor<TUORecreateView>("TUORecreateView");
constinit const TUtilOperationDescriptor TUORecreateExecStoredProc::Descriptor =
    OperationDescriptor<TUORecreateExecStoredProc>("TUORecreateExecStoredProc");
constinit const TUtilOperationDescriptor TUORecreateSelectStoredProc::Descriptor =
    OperationDescriptor<TUORecreateSelectStoredProc>("TUORecreateSelectStoredProc");

int TUORecreateObject::Execute() {
  FDeclined = false;
  if (!FKind.IsDescribed(ObjectName, DatabaseName))
    throw EDicUtilError(FKind.NotFoundText(ObjectName, DatabaseName), {.Code = TErrorCode::StructureMissing});
  if (FKind.IsThere(ObjectName, DatabaseName) && !MayReplace()) {
    FDeclined = true;
    return 1;
  }
  FDeclined = FKind.AskCancel && !TakesLongNames && FKind.AskCancel(ObjectName);
  if (FDeclined) return 0;
  Make(DicDBContainer().Database(DatabaseName));
  return 1;
}

bool TUORecreateObject::MayReplace() {
  if (!OverwriteAsk.FAlwaysAsk) return OverwriteAsk.FYes;
  OverwriteAsk.fAskCallbackString = FKind.OverwriteQuestion(ObjectName);
  if (OverwriteAsk.FCallback)
    OverwriteAsk.FCallback(OverwriteAsk, this);
  else
    OverwriteAsk.FYes =
        uoMessageBox(0, ToUtf16(OverwriteAsk.fAskCallbackString), ToUtf16(BaseMng().LString("ST_CONFIRMATION")),
                     MB_YESNO | MB_ICONQUESTION, 0, 0) == IDYES;
  return OverwriteAsk.FYes;
}

std::string TUORecreateGenerator::StartValueText() const { return StartValue ? std::to_string(*StartValue) : ""; }

void TUORecreateGenerator::SetStartValueText(const std::string& Text) {
  const std::optional<std::int64_t> Value = StrToInt64(Text);
  if (!Value && !Text.empty()) throw EConvertError(Format("'%s' is not a valid integer value (StartValue)", Text));
  StartValue = Value;
}

void TUORecreateGenerator::Make(TDicDatabase& Database) {
  TTransaction Transaction(DatabaseName);
  Database.CreateGenerator(ObjectName, StartValue, true);
  if (!StartValue && FStood) Database.AdvanceGenerator(ObjectName, *FStood);
  Transaction.Commit();
}

}  // namespace velkrund
