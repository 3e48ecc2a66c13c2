#include "velkrund/dictionary/TableDataOperations.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

using TImport = TUOImportTableData;
using TExport = TUOExportTableData;

constexpr TProperty ImportProperties[] = {
    PropertyOf<&TImport::TableName>("TableName", "table to load; empty: the one that the section names"),
    PropertyOf<&TImport::Append>("Append", "keep the rows that are there"),
    PropertyOf<&TImport::SkipMissingFields>("SkipMissingFields", "pass over fields that the table lacks"),
    PropertyOf<&TImport::Fields>("Fields", "the only fields to load; empty: all"),
    PropertyOf<&TImport::FieldMapping>("FieldMapping", "fields of the section, and fields of the table that they fill"),
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
    PropertyOf<&TExport::TableName>("TableName", "table to save"),
    PropertyOf<&TExport::Table>("Table", "opened TTable to save instead"),
    PropertyOf<&TExport::Fields>("Fields", "the fields to save; empty: all"),
    PropertyOf<&TExport::KeyOrder>("KeyOrder", "rows in the order of the table's key, where it has one"),
    ReadOnlyOf<[](const TExport& Export) { return Export.Report.RowCount; }>(
        "Rows", "rows of the last run; those before its end, where it was not done"),
    ReadOnlyOf<[](const TExport& Export) { return Export.Report.ValuesChanged; }>(
        "ValuesChanged", "values that the file cannot hold as they are"),
};

}  // namespace

constinit const TUtilOperationDescriptor TImport::Descriptor = OperationDescriptor<TImport>("TUOImportTableData");
constinit const TUtilOperationDescriptor TExport::Descriptor = OperationDescriptor<TExport>("TUOExportTableData");
constinit const TInterfaceDescriptor TUOImportTableDataInterface::Descriptor =
    Describe("TUOImportTableDataInterface", ImportProperties);
constinit const TInterfaceDescriptor TUOExportTableDataInterface::Descriptor =
    Describe("TUOExportTableDataInterface", ExportProperties);

int TUOImportTableData::Execute() {
  Report = {};
  return TImportUtilOperation::Execute();
}

int TUOExportTableData::Execute() {
  Report = {};
  return TExportUtilOperation::Execute();
}

void TUOImportTableData::InitEIObject(TEIObject& Object) {
  auto& Section = dynamic_cast<TEICommonTableData&>(Object);
  Section.DatabaseName = DatabaseName;
  Section.Append = Append;
  Section.SkipMissingFields = SkipMissingFields;
  Section.Fields = Fields.Count() ? &Fields : nullptr;
  Section.FieldMapping = FieldMapping;
  Section.StrictValues = StrictValues.value_or(Section.StrictValues);
  if (!TableName.empty()) Section.TableName = TableName;
  Section.Report = &Report;
}

std::unique_ptr<TEIObject> TUOExportTableData::CreateEIObject() {
  auto Section = MakeForRelease<TEICommonTableData, TEITableData, TEIOldTableData>();
  Section->DatabaseName = DatabaseName;
  Section->TableName = TableName;
  Section->Table = Table;
  Section->Fields = Fields.Count() ? &Fields : nullptr;
  Section->KeyOrder = KeyOrder;
  Section->Report = &Report;
  return Section;
}

}  // namespace velkrund
