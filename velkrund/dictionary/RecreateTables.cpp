#include "velkrund/dictionary/RecreateTables.h"

#include "velkrund/dictionary/TemporaryTable.h"
#include "velkrund/operations/GoOnQuestion.h"
#include "velkrund/operations/ListProgress.h"
#include "velkrund/operations/ListQuestion.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/operations/NameLengths.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

constinit const TUtilOperationDescriptor TUORecreateTables::Descriptor =
    OperationDescriptor<TUORecreateTables>("TUORecreateTables");

/// One of the list, which its lines of the trace tell.
class TUORecreateTables::TOne final : public TUORecreateTable {
  std::string CreationLine(const char* Step, const std::string& Name, bool CreateIndex) const override {
    return Format("%s-CreateStructure1; Create table '%s'; StructureName: '%s'; CreateIndex: %d; DB: %s", Step, Name,
                  TableName, CreateIndex ? 1 : 0, DatabaseName);
  }
  std::string DropLine(const char* Step) const override {
    return Format("%s-DeleteTempTable1; Drop table '%s'; DB: %s", Step, TemporaryTableName, DatabaseName);
  }
};

TUORecreateTables::TUORecreateTables() { OverWrite.FYes = SaveData.FYes = true; }

int TUORecreateTables::Execute() {
  FResults.clear();
  FOverWrite.Assign(OverWrite);
  FSaveData.Assign(SaveData);
  FOverWrite.FCancel = FSaveData.FCancel = false;
  try {
    return RecreateAll();
  } catch (const EAbort&) {
    return 0;
  }
}

int TUORecreateTables::RecreateAll() {
  for (int Index = 0; Index < TableNames.Count(); ++Index) {
    const std::string& Name = TableNames[Index];
    ShowProgress(Index, TableNames.Count(), Name);
    if (IsCanceled()) return 0;
    if (!Name.empty() && !Recreate(Name, Index)) return 0;
  }
  return IsCanceled() ? 0 : 1;
}

bool TUORecreateTables::Recreate(const std::string& Name, int Index) {
  FResults.push_back({.TableName = Name});
  if (FOverWrite.FAlwaysAsk && !IsTableDescExists(Name, DatabaseName)) return MayGoOnWithout(Name);
  const std::unique_ptr<TUORecreateTable> Operation = OperationOf(Name, Index);
  if (BaseMng().TableExists(Name, DatabaseName, false)) {
    const auto TextOf = [&](std::string_view Key) { return Format(BaseMng().LString(Key), Name); };
    const bool Goes = AskOfList(FOverWrite, TextOf("M_Velkrund_DicUtils_RecreateOverwriteConfirm"), this);
    if (FOverWrite.FCancel) return false;
    if (!Goes) return true;
    Operation->SaveData.FYes = AskOfList(FSaveData, TextOf("M_Velkrund_DicUtils_SaveDataAskConfirm"), this);
    if (FSaveData.FCancel) return false;
  }
  Run(*Operation);
  return true;
}

bool TUORecreateTables::MayGoOnWithout(const std::string& Name) {
  const std::string Question = Format(BaseMng().LString("M_Velkrund_DicUtils_TableForRecreateNotFound"), Name);
  return uoMessageBox(0, ToUtf16(Question), ToUtf16(BaseMng().LString("ST_CONFIRMATION")), MB_YESNO | MB_ICONQUESTION,
                      0, 0) == IDYES;
}

std::unique_ptr<TUORecreateTable> TUORecreateTables::OperationOf(const std::string& Name, int Index) {
  auto Result = std::make_unique<TOne>();
  Result->Owner = this;
  Result->DatabaseName = DatabaseName;
  Result->TableName = Name;
  Result->FieldMapping = MappingFor(FieldMapping, Name, BaseMng().GetSystemTable(Name, DatabaseName).get());
  Result->TableScriptPart = TableScriptPart;
  Result->TakesLongNames = TakesLongNames;
  Result->FOnShowProgress = ProgressOfItem(*this, Index, TableNames.Count());
  return Result;
}

void TUORecreateTables::Run(TUORecreateTable& Operation) {
  TResult& Result = FResults.back();
  try {
    TTransaction Transaction(DatabaseName);
    RecreateOne(Operation);
    if (IsCanceled()) return;
    Transaction.Commit();
    Result.End = Operation.End();
    Result.Rows = Operation.Rows();
  } catch (const EAbort&) {
    throw;
  } catch (const EQuestionUnanswered&) {
    throw;
  } catch (const std::exception& Error) {
    Result.Error = std::current_exception();
    const std::string Report = BaseMng().LString("M_Velkrund_DicUtils_ErrorOnRecreateTable") + "\r\n" + Error.what();
    WriteLog(TTraceLevel::Info, Report);
    GoOn(Error, Report);
  }
}

void TUORecreateTables::GoOn(const std::exception& Error, const std::string& Report) {
  GoOnOrRaise(Error, Report + "\r\n" + BaseMng().LString("M_Velkrund_DicUtils_ContinueRecreate"));
}

}  // namespace velkrund
