#pragma once

#include <optional>
#include <string>
#include <vector>

#include "velkrund/dictionary/TableData.h"
#include "velkrund/operations/ImportExportInterfaces.h"

namespace velkrund {

/// Loads a table data section into a table.
class TUOImportTableData : public TImportUtilOperation {
 public:
  std::string TableName;             // empty: the table that the section names
  bool Append = false;               // keep the rows that are there; otherwise an SQL table is emptied first
  bool SkipMissingFields = true;     // fields of the file that the table lacks are passed over; otherwise an error
  TStringList Fields;                // the only ones to load; empty: all fields of the file
  TStringPairs FieldMapping;         // fields of the file, and fields of the table that they fill; others go by name
  std::optional<bool> StrictValues;  // an unparseable value is an error, or NULL; nothing: as the application has it
  TTableDataReport Report;           // of the last run

  int Execute() override;

  static const TUtilOperationDescriptor Descriptor;

 protected:
  void InitEIObject(TEIObject& Object) override;
};

/// Saves a table's rows as a table data section: version 200 for rv20, 100 for rv17.
class TUOExportTableData : public TExportUtilOperation {
 public:
  std::string TableName;
  TTable* Table = nullptr;  // borrowed, opened; null: TableName in DatabaseName is opened
  TStringList Fields;       // empty: all fields of the table
  bool KeyOrder = false;    // rows by the table's key, where it has one; otherwise in the table's own order
  TTableDataReport Report;  // of the last run

  int Execute() override;

  static const TUtilOperationDescriptor Descriptor;

 protected:
  std::unique_ptr<TEIObject> CreateEIObject() override;
};

class TUOImportTableDataInterface
    : public TOperationInterface<TUOImportTableDataInterface, TUOImportTableData, TImportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& TableName() const { return Operation().TableName; }
  void SetTableName(const std::string& Name) { Operation().TableName = Name; }
  bool Append() const { return Operation().Append; }
  void SetAppend(bool Value) { Operation().Append = Value; }
  bool SkipMissingFields() const { return Operation().SkipMissingFields; }
  void SetSkipMissingFields(bool Value) { Operation().SkipMissingFields = Value; }
  const std::vector<std::string>& Fields() const { return Operation().Fields.Items(); }
  void SetFields(const std::vector<std::string>& Names) { Operation().Fields = TStringList(Names); }
  const TStringPairs& FieldMapping() const { return Operation().FieldMapping; }
  void SetFieldMapping(const TStringPairs& Pairs) { Operation().FieldMapping = Pairs; }
};

class TUOExportTableDataInterface
    : public TOperationInterface<TUOExportTableDataInterface, TUOExportTableData, TExportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& TableName() const { return Operation().TableName; }
  void SetTableName(const std::string& Name) { Operation().TableName = Name; }
  TTable* Table() const { return Operation().Table; }  // borrowed
  void SetTable(TTable* Table) { Operation().Table = Table; }
  const std::vector<std::string>& Fields() const { return Operation().Fields.Items(); }
  void SetFields(const std::vector<std::string>& Names) { Operation().Fields = TStringList(Names); }
  bool KeyOrder() const { return Operation().KeyOrder; }
  void SetKeyOrder(bool Value) { Operation().KeyOrder = Value; }
};

}  // namespace velkrund
