#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "velkrund/dictionary/QueryData.h"
#include "velkrund/operations/ImportExportInterfaces.h"

namespace velkrund {

/// Loads a query data section into a table.
class TUOImportQueryData : public TImportUtilOperation {
 public:
  std::string TableName;             // empty: a person is asked, also about FieldMapping and Append
  TStringPairs FieldMapping;         // fields of the file, and fields of the table that they fill; others go by name
  bool Append = false;               // keep the rows that are there; otherwise an SQL table is emptied first
  TStringList Fields;                // the only ones to load, as the file has them; empty: all
  std::optional<bool> StrictValues;  // an unparseable value is an error, or NULL; nothing: as the application has it
  TTableDataReport Report;           // of the last run

  int Execute() override;

  static const TUtilOperationDescriptor Descriptor;

 protected:
  void InitEIObject(TEIObject& Object) override;
};

/// Saves the rows of a query as a query data section: version 200 for rv20, 100 for rv17.
class TUOExportQueryData : public TExportUtilOperation {
 public:
  TSelectQuery* Query = nullptr;   // borrowed, with the values of its parameters; null: SQL in DatabaseName
  std::string SQL;                 // may have parameters, ":NAME"
  TStringPairs Parameters;         // of SQL: names and "TYPE:VALUE", as ParameterOf takes them
  bool SortFields = false;         // field lines without regard to case; otherwise in the order of the result
  bool WithoutRowNumbers = false;  // no column "#"
  TTableDataReport Report;         // of the last run

  int Execute() override;
  /// Raises what Execute would before it writes anything: of the query, its parameters, the names of its fields.
  void Check();

  static const TUtilOperationDescriptor Descriptor;

 protected:
  std::unique_ptr<TEIObject> CreateEIObject() override;

 private:
  class TFreeing;

  TSelectQuery* TakeQuery();

  std::unique_ptr<TSelectQuery> FOwnQuery;  // during a run
};

class TUOImportQueryDataInterface
    : public TOperationInterface<TUOImportQueryDataInterface, TUOImportQueryData, TImportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& TableName() const { return Operation().TableName; }
  void SetTableName(const std::string& Name) { Operation().TableName = Name; }
  const TStringPairs& FieldMapping() const { return Operation().FieldMapping; }
  void SetFieldMapping(const TStringPairs& Pairs) { Operation().FieldMapping = Pairs; }
  bool Append() const { return Operation().Append; }
  void SetAppend(bool Value) { Operation().Append = Value; }
  const std::vector<std::string>& Fields() const { return Operation().Fields.Items(); }
  void SetFields(const std::vector<std::string>& Names) { Operation().Fields = TStringList(Names); }
};

class TUOExportQueryDataInterface
    : public TOperationInterface<TUOExportQueryDataInterface, TUOExportQueryData, TExportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  TSelectQuery* Query() const { return Operation().Query; }  // borrowed
  void SetQuery(TSelectQuery* Query) { Operation().Query = Query; }
  const std::string& SQL() const { return Operation().SQL; }
  void SetSQL(const std::string& Text) { Operation().SQL = Text; }
  const TStringPairs& Parameters() const { return Operation().Parameters; }
  void SetParameters(const TStringPairs& Pairs) { Operation().Parameters = Pairs; }
  bool SortFields() const { return Operation().SortFields; }
  void SetSortFields(bool Value) { Operation().SortFields = Value; }
  bool WithoutRowNumbers() const { return Operation().WithoutRowNumbers; }
  void SetWithoutRowNumbers(bool Value) { Operation().WithoutRowNumbers = Value; }
};

}  // namespace velkrund
