#include "velkrund/dictionary/CopyTables.h"

#include <algorithm>

#include "velkrund/dictionary/ListProgress.h"
#include "velkrund/dictionary/ListQuestion.h"
#include "velkrund/operations/GoOnQuestion.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

constinit const TUtilOperationDescriptor TUOCustomCopyTables::Descriptor =
    OperationDescriptor<TUOCustomCopyTables>("TUOCustomCopyTables");

int TUOCustomCopyTables::Execute() {
  FResults.clear();
  FOverWrite.Assign(OverWrite);
  FOverWrite.FCancel = false;
  try {
    return CopyAll();
  } catch (const EAbort&) {
    return 0;
  }
}

int TUOCustomCopyTables::CopyAll() {
  for (int Index = 0; Index < TableNames.Count(); ++Index) {
    const std::string& Name = TableNames[Index];
    ShowProgress(Index, TableNames.Count(), Name);
    if (IsCanceled()) return 0;
    if (!Name.empty() && !CopyOne(Name, Index)) return 0;
  }
  return IsCanceled() ? 0 : 1;
}

/// False: an answer ends the list.
bool TUOCustomCopyTables::CopyOne(const std::string& Name, int Index) {
  FResults.push_back({Name});
  TUOCustomCopyTable Operation;
  try {
    FResults.back().LeftAlone = !Append && !MayEmpty(TargetOf(Name));
    if (FResults.back().LeftAlone) return !FOverWrite.FCancel;
    SetUp(Operation, Name, Index);
    Operation.Execute();
  } catch (const EAbort&) {
    throw;
  } catch (const EQuestionUnanswered&) {
    throw;
  } catch (const std::exception& Error) {
    FResults.back().Error = std::current_exception();
    GoOn(Error);
  }
  FResults.back().Report = Operation.Report();
  return true;
}

/// Within the handler of Error.
void TUOCustomCopyTables::GoOn(const std::exception& Error) const {
  const std::string Report = BaseMng().LString("M_Velkrund_DicUtils_ErrorOnCopyTable") + "\r\n" + Error.what();
  WriteLog(TTraceLevel::Info, Report);
  GoOnOrRaise(Error, Report + "\r\n" + BaseMng().LString("M_Velkrund_DSPUtils_ContinueCopy"));
}

bool TUOCustomCopyTables::MayEmpty(const std::string& Target) {
  const std::unique_ptr<TTable> Table = BaseMng().GetUserTable(Target, TargetDatabaseName, true);
  if (!Table || !Table->HasRecords()) return true;
  return AskOfList(FOverWrite, Format(BaseMng().LString("M_Velkrund_DicUtils_CopyOverwriteConfirm"), Target), this);
}

void TUOCustomCopyTables::SetUp(TUOCustomCopyTable& Operation, const std::string& Name, int Index) {
  Operation.Owner = this;
  Operation.DatabaseName = DatabaseName;
  Operation.TargetDatabaseName = TargetDatabaseName;
  Operation.SourceTableName = Name;
  Operation.TargetTableName = TargetOf(Name);
  Operation.FieldMapping = MappingFor(FieldMapping, Name, BaseMng().GetUserTable(Name, DatabaseName, false).get());
  Operation.ExcludedBLOBTableFields = ExcludedBLOBTableFields;
  Operation.Append = Append;
  Operation.Update = Update;
  Operation.FOnShowProgress = ProgressOfItem(*this, Index, TableNames.Count());
}

std::string TUOCustomCopyTables::TargetOf(const std::string& Name) const {
  const auto Found = std::find_if(TableMapping.begin(), TableMapping.end(),
                                  [&](const auto& Pair) { return SameText(Pair.first, Name); });
  return Found == TableMapping.end() ? Name : Found->second;
}

}  // namespace velkrund
