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
  std::string TableName;                // empty: the table that the section names
  bool Append = false;                  // keep the rows that are there; otherwise an SQL table is emptied first
  bool SkipMissingFields = true;        // fields of the file that the table lacks are passed over; otherwise an error
  const TStringList* Fields = nullptr;  // borrowed; null: all fields of the file
  std::optional<bool> StrictValues;     // an unparseable value is an error, or NULL; nothing: as the application has it
  TTableLoading* Loading = nullptr;     // borrowed; the tables that are loaded in one go with it; null: it alone
  TTableDataReport Report;              // of the last run

  static const TUtilOperationDescriptor Descriptor;

 protected:
  void InitEIObject(TEIObject& Object) override;
};

/// Saves a table's rows as a table data section: version 200 for rv20, 100 for rv17.
class TUOExportTableData : public TExportUtilOperation {
 public:
  std::string TableName;
  TTable* Table = nullptr;              // borrowed, opened; null: TableName in DatabaseName is opened
  const TStringList* Fields = nullptr;  // borrowed; null: all fields of the table
  TTableDataReport Report;              // of the last run

  static const TUtilOperationDescriptor Descriptor;

 protected:
  std::unique_ptr<TEIObject> CreateEIObject() override;
};

class TUOImportTableDataInterface : public TImportUtilOperationInterface {
 public:
  explicit TUOImportTableDataInterface(TRBaseManager* Manager = nullptr);
  TInterfaceClass ClassType() const override { return TInterfaceClass(Descriptor); }

  const std::string& TableName() const { return Import().TableName; }
  void SetTableName(const std::string& Name) { Import().TableName = Name; }
  bool Append() const { return Import().Append; }
  void SetAppend(bool Value) { Import().Append = Value; }
  bool SkipMissingFields() const { return Import().SkipMissingFields; }
  void SetSkipMissingFields(bool Value) { Import().SkipMissingFields = Value; }
  /// Passed on only when it holds a name.
  std::vector<std::string> Fields() const { return {FFields.begin(), FFields.end()}; }
  void SetFields(const std::vector<std::string>& Names);

  static const TPropertyTable PropertyTable;
  static const TInterfaceDescriptor Descriptor;

 private:
  TUOImportTableData& Import() const { return static_cast<TUOImportTableData&>(Operation()); }

  TStringList FFields;
};

class TUOExportTableDataInterface : public TExportUtilOperationInterface {
 public:
  explicit TUOExportTableDataInterface(TRBaseManager* Manager = nullptr);
  TInterfaceClass ClassType() const override { return TInterfaceClass(Descriptor); }

  const std::string& TableName() const { return Export().TableName; }
  void SetTableName(const std::string& Name) { Export().TableName = Name; }
  /// Borrowed.
  TTable* Table() const { return Export().Table; }
  void SetTable(TTable* Table) { Export().Table = Table; }
  /// Passed on only when it holds a name.
  std::vector<std::string> Fields() const { return {FFields.begin(), FFields.end()}; }
  void SetFields(const std::vector<std::string>& Names);

  static const TPropertyTable PropertyTable;
  static const TInterfaceDescriptor Descriptor;

 private:
  TUOExportTableData& Export() const { return static_cast<TUOExportTableData&>(Operation()); }

  TStringList FFields;
};

}  // namespace velkrund
