#include "velkrund/dictionary/RecreateTable.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "velkrund/dictionary/CarriedBLOBTables.h"
#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/TemporaryTable.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/operations/NameLengths.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

bool IsTemporary(const std::string& Name) { return Name == TemporaryTableName; }

}  // namespace

void KeepPhysicalName(TDicTableDescription& Description, const std::string& Physical) {
  if (!SameText(Physical, Description.FullName())) return;
  const std::size_t Schema = Description.Schema.size();
  Description.Schema = Physical.substr(0, Schema);
  Description.Name = Physical.substr(Schema == 0 ? 0 : Schema + 1);
}

constinit const TUtilOperationDescriptor TUORecreateTable::Descriptor =
    OperationDescriptor<TUORecreateTable>("TUORecreateTable");

/// Drops the temporary table when the run is over, however it ends.
class TUORecreateTable::TTemporary {
 public:
  explicit TTemporary(TUORecreateTable& Operation) : FOperation(Operation) {}
  TTemporary(const TTemporary&) = delete;
  TTemporary& operator=(const TTemporary&) = delete;
  ~TTemporary() {
    if (FIsGone) return;
    try {
      // An engine may have ended the transaction, and the table with it.
      if (BaseMng().TableExists(TemporaryTableName, FOperation.DatabaseName, false)) FOperation.DeleteTempTable();
    } catch (const std::exception& Error) {
      // The error on its way out is the one to tell; within a transaction that has failed, its end drops the table.
      FOperation.WriteLog(TTraceLevel::Error, Format("Cannot drop '%s': %s", TemporaryTableName, Error.what()));
    }
  }
  void Drop() {
    FIsGone = true;
    FOperation.DeleteTempTable();
  }

 private:
  TUORecreateTable& FOperation;
  bool FIsGone = false;
};

TUORecreateTable::TUORecreateTable() { OverWrite.FYes = SaveData.FYes = true; }

int TUORecreateTable::Execute() {
  try {
    return Run();
  } catch (const EAbort&) {
    return 0;
  }
}

int TUORecreateTable::Run() {
  FEnd = TEnd::LeftAlone;
  FRows = FTotal = 0;
  FLost.clear();
  FReplaces = false;
  if (!IsTableDescExists(TableName, DatabaseName))
    throw EDicUtilError(Format("Can not create table. Dictionary structure not found (Table:'%s';Database:'%s')",
                               TableName, DatabaseName),
                        {.Code = TErrorCode::StructureMissing, .Table = TableName});
  if (!TakesLongNames && AskCancelCreateLongNameTable(TableName, DatabaseName)) return 1;
  TDicTableDescription Description;
  if (!BaseMng().TableExists(TableName, DatabaseName, false)) {
    CreateStructure(TableName, Description, TableScriptPart, true);
    FEnd = TEnd::Made;
    return 1;
  }
  if (!MayOverwrite()) return 1;
  FReplaces = true;
  if (MaySaveData()) {
    if (!Recreate()) return 0;
  } else {
    CreateStructure(TableName, Description, TableScriptPart, true);
    FEnd = TEnd::Emptied;
  }
  return 1;
}

bool TUORecreateTable::MayOverwrite() { return AskYesNo(OverWrite, "M_Velkrund_DicUtils_RecreateOverwriteConfirm"); }

bool TUORecreateTable::MaySaveData() { return AskYesNo(SaveData, "M_Velkrund_DicUtils_SaveTableDataConfirm"); }

bool TUORecreateTable::AskYesNo(TYesNoAsk& Ask, std::string_view Key) {
  if (!Ask.FAlwaysAsk) return Ask.FYes;
  Ask.fAskCallbackString = Format(BaseMng().LString(Key), TableName);
  if (Ask.FCallback)
    Ask.FCallback(Ask, this);
  else
    Ask.FYes = uoMessageBox(0, ToUtf16(Ask.fAskCallbackString), ToUtf16(BaseMng().LString("ST_CONFIRMATION")),
                            MB_YESNO | MB_ICONQUESTION, 0, 0) == IDYES;
  return Ask.FYes;
}

bool TUORecreateTable::Recreate() {
  TDicTableDescription Description;
  RefuseTemporary();
  CreateStructure(TemporaryTableName, Description, TTableScriptPart::Table, false);
  TTemporary Temporary(*this);
  if (FillTemporary()) {
    Rebuild();
    FEnd = TEnd::Rebuilt;
  }
  Temporary.Drop();
  return FEnd == TEnd::Rebuilt || !IsCanceled();
}

/// One that somebody else has left, or works with, may hold rows that are nowhere else.
void TUORecreateTable::RefuseTemporary() const {
  if (!BaseMng().TableExists(TemporaryTableName, DatabaseName, true)) return;
  throw EDicUtilError(Format("Can not recreate the table '%s': there is a table '%s' in the database already. It may "
                             "hold the rows of a recreation that was broken off: look at them, then drop or rename it",
                             TableName, TemporaryTableName),
                      {.Table = TableName});
}

bool TUORecreateTable::FillTemporary() {
  TTransaction Transaction(DatabaseName);
  bool Filled = false;
  if (const std::unique_ptr<TTable> Old = BaseMng().GetSystemTable(TableName, DatabaseName)) {
    const std::unique_ptr<TTable> New = BaseMng().GetSystemTable(TemporaryTableName, DatabaseName);
    if (!New)
      throw EDicUtilError(
          Format("Can not recreate the table '%s': the table '%s' cannot be opened", TableName, TemporaryTableName),
          {.Table = TableName});
    FTotal = Old->RecordCount();
    FTotal += FTotal / 4;
    Filled = CopyRowsOfTable(*Old, *New) && !IsCanceled();
    if (!Filled) return false;
  }
  Transaction.Commit();
  return Filled;
}

/// People know the table that the rows are of, not the one in which they wait.
bool TUORecreateTable::CopyRowsOfTable(TTable& Old, TTable& New) {
  try {
    return CopyRows(Old, New);
  } catch (const EDatabaseError& Error) {
    std::string Text = Error.what();
    for (std::size_t At = Text.find(TemporaryTableName); At != Text.npos; At = Text.find(TemporaryTableName))
      Text.replace(At, std::string_view(TemporaryTableName).size(), Old.TableName());
    TErrorInfo Info = Error.Info();
    Info.Table = Old.TableName();
    throw EDatabaseError(Text, Info);
  }
}

bool TUORecreateTable::CopyRows(TTable& Old, TTable& New) {
  TDicTableDescription Table;
  static_cast<void>(Dictionary().GetDicTable(DatabaseName).GetTableInfo(TableName, Table));
  const auto IsComputed = [&](const std::string& Name) {
    return std::any_of(Table.Fields.begin(), Table.Fields.end(),
                       [&](const TDicField& Field) { return Field.Name == Name && Field.Computed; });
  };
  TTableRowCopy Copy(
      Old, New, [&](const std::string& Name) { return IsComputed(Name) ? std::string() : FindFieldMapping(Name); });
  if (New.Record().FieldCount() == 0 && !Old.HasRecords()) return true;
  RefuseMissingFields(Table, New);
  CarryBLOBTables(Copy, New.Record(), TableName, DatabaseName, BLOBFieldMappingList, ExcludedBLOBTableFields);
  const auto Show = [this](std::int64_t Rows) {
    FRows = Rows;
    ReportProgress(FOnShowProgress, Rows, FTotal, TableName);
  };
  if (TODBCBaseManager* const BaseManager = BaseMng().GetODBCBaseManager(DatabaseName)) {
    BaseMng().Notice(LText("M_Velkrund_DicUtils_CopyingRows", TableName).Local());
    if (const auto Rows = Copy.CopyByStatement(*BaseManager, DatabaseName)) return Show(*Rows), true;
  }
  const bool Whole = Copy.CopyByRecord([&](std::int64_t Rows) {
    Show(Rows);
    return !IsCanceled();
  });
  FLost = Copy.LostFields();
  return Whole;
}

/// Words of a structure may swallow a field, and its values with it.
void TUORecreateTable::RefuseMissingFields(const TDicTableDescription& Table, TTable& Made) const {
  for (const TDicField& Field : Table.Fields)
    if (!Made.FindField(Field.Name))
      throw EDicUtilError(Format("Can not recreate the table '%s': the field '%s' of its structure is not in the table "
                                 "that was made of it; look at the words of its fields",
                                 TableName, Field.Name),
                          {.Code = TErrorCode::Structure, .Table = TableName, .Column = Field.Name});
}

void TUORecreateTable::Rebuild() {
  TDicTableDescription Description;
  CreateStructure(TableName, Description, TTableScriptPart::Table, true);
  TODBCBaseManager* const BaseManager = BaseMng().GetODBCBaseManager(DatabaseName);
  if (!BaseManager)
    throw EDicUtilError(Format("Can not recreate the table '%s': its database has no statements on tables", TableName),
                        {.Table = TableName});
  BaseMng().Notice(LText("M_Velkrund_DicUtils_FillingTable", TableName).Local());
  try {
    FRows = BaseManager->CopyTableData(BaseMng().GetTableName(TemporaryTableName, DatabaseName),
                                       BaseMng().GetTableName(TableName, DatabaseName), false);
  } catch (const std::exception&) {
    WriteLog(TTraceLevel::Error,
             Format("The rows of table '%s' are lost with '%s', unless a transaction around this is rolled back",
                    TableName, TemporaryTableName));
    throw;
  }
  ReportProgress(FOnShowProgress, FTotal, FTotal, TableName);
  if (TableScriptPart != TTableScriptPart::Table) CreateStructure(TableName, Description, TTableScriptPart::Rest, true);
}

void TUORecreateTable::CreateStructure(const std::string& Name, TDicTableDescription& Description,
                                       TTableScriptPart Part, bool CreateIndex) {
  WriteLog(TTraceLevel::Info, CreationLine("beg", Name, CreateIndex));
  const struct TEndLine {
    const TUORecreateTable& Operation;
    const std::string Line;
    ~TEndLine() { Operation.WriteLog(TTraceLevel::Info, Line); }
  } End{*this, CreationLine("end(fin)", Name, CreateIndex)};
  if (!Dictionary().GetDicTable(DatabaseName).GetTableInfo(TableName, Description))
    throw EDicUtilError(Format("Can not create table. Error reading dictionary structure (Table:'%s';Database:'%s')",
                               TableName, DatabaseName),
                        {.Code = TErrorCode::StructureMissing, .Table = TableName});
  const std::string Pattern =
      Dictionary().GetCreateTablePatternString(Dictionary().GetPatternName(TableName, DatabaseName), DatabaseName);
  SetName(Description, Name);
  if (!CreateIndex) Description.Indexes.clear();
  WriteLog(TTraceLevel::Info, "CreateTable with Pattern =\"" + Pattern + "\"; ");
  Dictionary().CreateTableByDef(DatabaseName, Description, Pattern, Part, FReplaces && !IsTemporary(Name));
  if (Part == TTableScriptPart::Rest) Dictionary().StoreWords(DatabaseName, {Description.FullName()});
  WriteLog(TTraceLevel::Info, CreationLine("end(ok)", Name, CreateIndex));
}

/// A table that is there keeps the case of its name.
void TUORecreateTable::SetName(TDicTableDescription& Description, const std::string& Name) const {
  if (IsTemporary(Name)) return MakeTemporary(Description);
  if (FReplaces) return KeepPhysicalName(Description, BaseMng().GetTableName(Name, DatabaseName));
  if (SameText(Name, Description.FullName())) return;
  Description.Name = Name;
  Description.Schema.clear();
}

void TUORecreateTable::MakeTemporary(TDicTableDescription& Description) const {
  const std::unique_ptr<TTable> Old = BaseMng().GetSystemTable(TableName, DatabaseName);
  Description = TemporaryTable(std::move(Description), [&](const TDicField& Field) {
    return Old && Old->FindField(FindFieldMapping(Field.Name)) != nullptr;
  });
}

std::string TUORecreateTable::CreationLine(const char* Step, const std::string& Name, bool) const {
  return Format("%s-CreateStructure; Create table '%s'; DB: %s", Step, Name, DatabaseName);
}

std::string TUORecreateTable::DropLine(const char* Step) const {
  return Format("%s-DeleteTempTable; Drop table '%s'; DB: %s", Step, TemporaryTableName, DatabaseName);
}

void TUORecreateTable::DeleteTempTable() {
  WriteLog(TTraceLevel::Info, DropLine("beg"));
  if (TODBCBaseManager* const BaseManager = BaseMng().GetODBCBaseManager(DatabaseName))
    BaseManager->DropTable(BaseMng().GetTableName(TemporaryTableName, DatabaseName));
  WriteLog(TTraceLevel::Info, DropLine("end"));
  LogExistence();
}

void TUORecreateTable::LogExistence() const {
  const auto Log = [&](const char* Check, const char* How, bool Exists) {
    WriteLog(TTraceLevel::Info,
             Format("%s of table '%s'(db = '%s', desc1 = '%s', desc2 = '%s') after creation/deleting: %d", Check,
                    TemporaryTableName, DatabaseName, "DeleteTempTable", How, Exists ? 1 : 0));
  };
  Log("Existence_1", "by name", BaseMng().TableExists(TemporaryTableName, DatabaseName, false));
  Log("Existence_2", "by opening", BaseMng().GetSystemTable(TemporaryTableName, DatabaseName) != nullptr);
}

}  // namespace velkrund
