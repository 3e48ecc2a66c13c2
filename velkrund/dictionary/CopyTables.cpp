#include "velkrund/dictionary/CopyTables.h"

#include <algorithm>

#include "velkrund/operations/ListProgress.h"
#include "velkrund/operations/ListQuestion.h"
#include "velkrund/operations/ListRun.h"
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
  constexpr TListWords Words{"M_Velkrund_DicUtils_ErrorOnCopyTable", "M_Velkrund_DSPUtils_ContinueCopy"};
  const bool Done = RunList(
      *this, TableNames, Words,
      [this](const std::string& Name, int Index) { return Name.empty() || CopyOne(Name, Index); },
      [this](std::exception_ptr Error) { FResults.back().Error = std::move(Error); });
  return Done ? 1 : 0;
}

/// False: an answer ends the list.
bool TUOCustomCopyTables::CopyOne(const std::string& Name, int Index) {
  FResults.push_back({Name});
  FResults.back().LeftAlone = !Append && !MayEmpty(TargetOf(Name));
  if (FResults.back().LeftAlone) return !FOverWrite.FCancel;
  TUOCustomCopyTable Operation;
  SetUp(Operation, Name, Index);
  try {
    Operation.Execute();
  } catch (...) {
    FResults.back().Report = Operation.Report();
    throw;
  }
  FResults.back().Report = Operation.Report();
  return true;
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
