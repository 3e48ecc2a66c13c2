#pragma once

#include <string>

#include "velkrund/dictionary/CopyTables.h"
#include "velkrund/operations/OperationInterface.h"

namespace velkrund {

class TUOCustomCopyTableInterface : public TOperationInterface<TUOCustomCopyTableInterface, TUOCustomCopyTable> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& TargetDatabaseName() const { return Operation().TargetDatabaseName; }
  void SetTargetDatabaseName(const std::string& Name) { Operation().TargetDatabaseName = Name; }
  const std::string& SourceTableName() const { return Operation().SourceTableName; }
  void SetSourceTableName(const std::string& Name) { Operation().SourceTableName = Name; }
  const std::string& TargetTableName() const { return Operation().TargetTableName; }
  void SetTargetTableName(const std::string& Name) { Operation().TargetTableName = Name; }
  TStringPairs& FieldMapping() const { return Operation().FieldMapping; }
  TBLOBFieldMappingList& BLOBFieldMappingList() const { return Operation().BLOBFieldMappingList; }
  bool Append() const { return Operation().Append; }
  void SetAppend(bool Value) { Operation().Append = Value; }
  bool Update() const { return Operation().Update; }
  void SetUpdate(bool Value) { Operation().Update = Value; }
};

class TUOCustomCopyTablesInterface : public TOperationInterface<TUOCustomCopyTablesInterface, TUOCustomCopyTables> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& TargetDatabaseName() const { return Operation().TargetDatabaseName; }
  void SetTargetDatabaseName(const std::string& Name) { Operation().TargetDatabaseName = Name; }
  TStringList& TableNames() const { return Operation().TableNames; }
  TStringPairs& FieldMapping() const { return Operation().FieldMapping; }
};

}  // namespace velkrund
