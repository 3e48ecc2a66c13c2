#pragma once

#include <string>

#include "velkrund/dictionary/RecreateTables.h"
#include "velkrund/operations/OperationInterface.h"

namespace velkrund {

class TUORecreateTableInterface : public TOperationInterface<TUORecreateTableInterface, TUORecreateTable> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& TableName() const { return Operation().TableName; }
  void SetTableName(const std::string& Name) { Operation().TableName = Name; }
  bool OverWrite() const { return Operation().OverWrite.FYes; }
  void SetOverWrite(bool Value) { Operation().OverWrite.FYes = Value; }
  bool SaveData() const { return Operation().SaveData.FYes; }
  void SetSaveData(bool Value) { Operation().SaveData.FYes = Value; }
  int TableScriptPart() const { return static_cast<int>(Operation().TableScriptPart); }
  /// Raises EPropertyError for a number that is none of TTableScriptPart.
  void SetTableScriptPart(int Part) { SetProperty(*this, "TableScriptPart", std::int64_t{Part}); }
  TStringPairs& FieldMapping() const { return Operation().FieldMapping; }
  TBLOBFieldMappingList& BLOBFieldMappingList() const { return Operation().BLOBFieldMappingList; }
};

class TUORecreateTablesInterface : public TOperationInterface<TUORecreateTablesInterface, TUORecreateTables> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  TStringList& TableNames() const { return Operation().TableNames; }
  TStringPairs& FieldMapping() const { return Operation().FieldMapping; }
};

}  // namespace velkrund
