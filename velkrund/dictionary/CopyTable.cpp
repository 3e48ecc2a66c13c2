#include "velkrund/dictionary/CopyTable.h"

#include "velkrund/dictionary/CarriedBLOBTables.h"
#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

constinit const TUtilOperationDescriptor TUOCustomCopyTable::Descriptor =
    OperationDescriptor<TUOCustomCopyTable>("TUOCustomCopyTable");

int TUOCustomCopyTable::Execute() {
  FReport = {};
  try {
    return Run();
  } catch (const EAbort&) {
    return 0;
  }
}

int TUOCustomCopyTable::Run() {
  TTransaction Transaction(TargetDatabaseName);
  const std::unique_ptr<TTable> Target = BaseMng().GetUserTable(TargetTableName, TargetDatabaseName, true);
  const std::unique_ptr<TTable> Source = BaseMng().GetUserTable(SourceTableName, DatabaseName, true);
  if (!Target || !Source) return 0;
  FReport.Opened = true;
  RefuseItself(*Source, *Target);
  Source->SetSelection(Selection);
  if (Update) Target->SetUpdateByKey(true);
  const std::unique_ptr<TTableLoading> Own = Load(*Target);
  if (Own) Own->Begin(0);
  if (!Append && !Loading) EmptyTarget(*Source, *Target);
  const int Result = CopyTableToTable(*Source, *Target);
  const bool Whole = Result != 0 && !IsCanceled();
  if (Own) Own->End(Whole);
  if (!Whole) return 0;
  Transaction.Commit();
  return Result;
}

void TUOCustomCopyTable::RefuseItself(const TTable& Source, const TTable& Target) const {
  if (BaseMng().IsSameDatabase(DatabaseName, TargetDatabaseName) && Source.TableName() == Target.TableName())
    throw EDicUtilError(Format("The table '%s' cannot be copied onto itself", Source.TableName()),
                        {.Table = Source.TableName()});
}

/// What stands around the target is minded as in an import. Null where a caller or nobody does that.
std::unique_ptr<TTableLoading> TUOCustomCopyTable::Load(const TTable& Target) const {
  if (Loading || !Relations() || !dynamic_cast<const TODBCTable*>(&Target)) return nullptr;
  // Planned as an emptying, so that rows of others which would go with the target's are refused.
  if (!Append) static_cast<void>(Relations()->Load(TargetDatabaseName, {{Target.TableName(), true}}, {}));
  return Relations()->Load(TargetDatabaseName, {{Target.TableName(), false}}, {});
}

void TUOCustomCopyTable::EmptyTarget(TTable& Source, const TTable& Target) {
  const bool IsOneDatabase = BaseMng().IsSameDatabase(DatabaseName, TargetDatabaseName);
  const std::int64_t Before = IsOneDatabase ? Source.RecordCount() : 0;
  const auto* const SQLTable = dynamic_cast<const TODBCTable*>(&Target);
  const std::string Name = SQLTable ? SQLTable->SQLName() : Target.TableName();
  FReport.DeletedRows = BaseMng().ExecuteSQL("DELETE * FROM " + Name, {});
  if (IsOneDatabase && Source.RecordCount() != Before)
    throw EDicUtilError(Format("Rows of '%s' went with those of the table '%s', which it shows or hangs on",
                               Source.TableName(), Target.TableName()),
                        {.Table = Target.TableName()});
}

int TUOCustomCopyTable::CopyTableToTable(TTable& Source, TTable& Target) {
  const bool IsOneDatabase = BaseMng().IsSameDatabase(DatabaseName, TargetDatabaseName);
  TTableRowCopy Copy(Source, Target, [this](const std::string& Name) { return FindFieldMapping(Name); });
  Copy.SetCanRecreateAutoSequence(true);
  CarryBLOBTables(Copy, Target.Record(), Target.TableName(), TargetDatabaseName, BLOBFieldMappingList,
                  ExcludedBLOBTableFields);
  if (!Update && Selection.empty() && CopyByStatement(Copy)) return 1;
  const std::int64_t Total = FOnShowProgress ? Source.EstimatedCount() : 0;
  Source.SetReadAhead(!IsOneDatabase);
  Source.SetUnmoved(IsOneDatabase);
  Target.SetAllowLoss(!StrictText.value_or(WorkSettings().StrictText));
  const bool Whole = Copy.CopyByRecord([&](std::int64_t Rows) {
    ShowRows(Rows, Total);
    return !IsCanceled();
  });
  FReport.UpdatedRows = Target.UpdatedRecords();
  FReport.ValuesChanged = Target.ChangedValues();
  FReport.LostFields = Copy.LostFields();
  return Whole ? 1 : 0;
}

/// False: the engine has no statement that does the same, and nothing was done.
bool TUOCustomCopyTable::CopyByStatement(const TTableRowCopy& Copy) {
  TODBCBaseManager* const BaseManager = BaseMng().GetODBCBaseManager(TargetDatabaseName);
  if (!BaseManager) return false;
  BaseMng().Notice(LText("M_Velkrund_DicUtils_CopyingRows", SourceTableName).Local());
  const std::optional<std::int64_t> Rows = Copy.CopyByStatement(*BaseManager, DatabaseName);
  if (Rows) ShowRows(*Rows, *Rows);
  return Rows.has_value();
}

void TUOCustomCopyTable::ShowRows(std::int64_t Rows, std::int64_t Total) {
  FReport.Rows = Rows;
  ReportProgress(FOnShowProgress, Rows, Total, TargetTableName);
}

}  // namespace velkrund
