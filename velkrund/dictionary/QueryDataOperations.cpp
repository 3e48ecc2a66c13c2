#include "velkrund/dictionary/QueryDataOperations.h"

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/dictionary/QueryParameters.h"
#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/database/ApplicationManager.h"

namespace velkrund {

namespace {

using TImport = TUOImportQueryData;
using TExport = TUOExportQueryData;

constexpr std::string_view StrictNames[] = {"default", "lenient", "strict"};

constexpr TProperty ImportProperties[] = {
    PropertyOf<&TImport::TableName>("TableName", "table to load; empty: a person is asked"),
    PropertyOf<&TImport::FieldMapping>("FieldMapping", "fields of the section, and fields of the table that they fill"),
    PropertyOf<&TImport::Append>("Append", "keep the rows that are there"),
    PropertyOf<&TImport::Fields>("Fields", "the only fields of the section to load; empty: all"),
    ChoiceOf<&TImport::StrictValues>("StrictValues", "whether a value that cannot be read is an error, or NULL",
                                     StrictNames),
    ReadOnlyOf<[](const TImport& Import) { return Import.Report.RowCount; }>(
        "Rows", "rows of the last run; those before its end, where it was not done"),
    ReadOnlyOf<[](const TImport& Import) { return Import.Report.NullsMade; }>(
        "NullsMade", "values that could not be read and became NULL"),
    ReadOnlyOf<[](const TImport& Import) { return Import.Report.ValuesChanged; }>(
        "ValuesChanged", "values that the table cannot hold as they are"),
    ReadOnlyOf<[](const TImport& Import) { return Import.Report.SkippedFields; }>(
        "SkippedFields", "fields of the section that the table lacks"),
};

constexpr TProperty ExportProperties[] = {
    PropertyOf<&TExport::Query>("Query", "TSelectQuery to save, with the values of its parameters; none: SQL"),
    PropertyOf<&TExport::SQL>("SQL", "text of the query to save"),
    PropertyOf<&TExport::Parameters>("Parameters", "parameters of SQL, NAME=TYPE:VALUE; NAME=TYPE is NULL"),
    PropertyOf<&TExport::SortFields>("SortFields", "fields by name; otherwise in the order of the result"),
    PropertyOf<&TExport::WithoutRowNumbers>("WithoutRowNumbers", "leave the column of row numbers out"),
    ReadOnlyOf<[](const TExport& Export) { return Export.Report.RowCount; }>(
        "Rows", "rows of the last run; those before its end, where it was not done"),
    ReadOnlyOf<[](const TExport& Export) { return Export.Report.ValuesChanged; }>(
        "ValuesChanged", "values that the file cannot hold as they are"),
};

}  // namespace

constinit const TUtilOperationDescriptor TImport::Descriptor = OperationDescriptor<TImport>("TUOImportQueryData");
constinit const TUtilOperationDescriptor TExport::Descriptor = OperationDescriptor<TExport>("TUOExportQueryData");
constinit const TInterfaceDescriptor TUOImportQueryDataInterface::Descriptor =
    Describe("TUOImportQueryDataInterface", ImportProperties);
constinit const TInterfaceDescriptor TUOExportQueryDataInterface::Descriptor =
    Describe("TUOExportQueryDataInterface", ExportProperties);

int TUOImportQueryData::Execute() {
  Report = {};
  return TImportUtilOperation::Execute();
}

void TUOImportQueryData::InitEIObject(TEIObject& Object) {
  auto& Section = dynamic_cast<TEICommonQueryData&>(Object);
  Section.DatabaseName = DatabaseName;
  Section.TableName = TableName;
  Section.FieldMapping = FieldMapping;
  Section.Append = Append;
  Section.Fields = Fields.Count() ? &Fields : nullptr;
  Section.StrictValues = StrictValues.value_or(Section.StrictValues);
  Section.Report = &Report;
}

/// Its own query is freed in any case, before the database can be closed.
class TUOExportQueryData::TFreeing {
 public:
  explicit TFreeing(TUOExportQueryData& Operation) : FOperation(Operation) {}
  TFreeing(const TFreeing&) = delete;
  TFreeing& operator=(const TFreeing&) = delete;
  ~TFreeing() { FOperation.FOwnQuery.reset(); }

 private:
  TUOExportQueryData& FOperation;
};

int TUOExportQueryData::Execute() {
  Report = {};
  const TFreeing Freeing(*this);
  return TExportUtilOperation::Execute();
}

void TUOExportQueryData::Check() {
  const TFreeing Freeing(*this);
  const std::unique_ptr<TEIObject> Section = CreateEIObject();
  dynamic_cast<const TEICommonQueryData&>(*Section).CheckQuery();
}

TSelectQuery* TUOExportQueryData::TakeQuery() {
  if (Query || SQL.empty()) return Query;
  FOwnQuery = BaseMng().CreateSelectQuery(DatabaseName);
  if (!FOwnQuery) throw EDicUtilError("Can not export query data. The platform has no queries");
  FOwnQuery->SetSQL(SQL);
  SetParameters(*FOwnQuery, Parameters);
  return FOwnQuery.get();
}

std::unique_ptr<TEIObject> TUOExportQueryData::CreateEIObject() {
  auto Section = MakeForRelease<TEICommonQueryData, TEIQueryData, TEIOldQueryData>();
  Section->DatabaseName = DatabaseName;
  Section->Query = TakeQuery();
  Section->SortFields = SortFields;
  Section->WithoutRowNumbers = WithoutRowNumbers;
  Section->Report = &Report;
  return Section;
}

}  // namespace velkrund
