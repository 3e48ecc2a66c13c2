#include "velkrund/dictionary/TableDataOperations.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

using TImport = TUOImportTableDataInterface;
using TExport = TUOExportTableDataInterface;

template <typename TOperation>
std::unique_ptr<TUtilOperation> MakeOperation() {
  return std::make_unique<TOperation>();
}

template <typename TInterface>
std::unique_ptr<TUtilOperationInterface> MakeInterface(TRBaseManager* Manager) {
  return std::make_unique<TInterface>(Manager);
}

constexpr TProperty ImportProperties[] = {
    StringProperty<TImport, &TImport::TableName, &TImport::SetTableName>(
        "TableName", "table to load; empty: the one that the section names"),
    BooleanProperty<TImport, &TImport::Append, &TImport::SetAppend>("Append", "keep the rows that are there"),
    BooleanProperty<TImport, &TImport::SkipMissingFields, &TImport::SetSkipMissingFields>(
        "SkipMissingFields", "pass over fields that the table lacks"),
    StringListProperty<TImport, &TImport::Fields, &TImport::SetFields>("Fields", "the only fields to load; empty: all"),
};

constexpr TProperty ExportProperties[] = {
    StringProperty<TExport, &TExport::TableName, &TExport::SetTableName>("TableName", "table to save"),
    ObjectProperty<TExport, TTable, &TExport::Table, &TExport::SetTable>("Table", "opened TTable to save instead"),
    StringListProperty<TExport, &TExport::Fields, &TExport::SetFields>("Fields", "the fields to save; empty: all"),
};

}  // namespace

constinit const TUtilOperationDescriptor TUOImportTableData::Descriptor{"TUOImportTableData", nullptr,
                                                                        &MakeOperation<TUOImportTableData>};
constinit const TUtilOperationDescriptor TUOExportTableData::Descriptor{"TUOExportTableData", nullptr,
                                                                        &MakeOperation<TUOExportTableData>};

constinit const TPropertyTable TImport::PropertyTable{&TImportUtilOperationInterface::PropertyTable, ImportProperties};
constinit const TInterfaceDescriptor TImport::Descriptor{"TUOImportTableDataInterface",
                                                         &TImportUtilOperationInterface::Descriptor,
                                                         &TImport::PropertyTable, &MakeInterface<TImport>};

constinit const TPropertyTable TExport::PropertyTable{&TExportUtilOperationInterface::PropertyTable, ExportProperties};
constinit const TInterfaceDescriptor TExport::Descriptor{"TUOExportTableDataInterface",
                                                         &TExportUtilOperationInterface::Descriptor,
                                                         &TExport::PropertyTable, &MakeInterface<TExport>};

void TUOImportTableData::InitEIObject(TEIObject& Object) {
  auto& Section = dynamic_cast<TEICommonTableData&>(Object);
  Section.DatabaseName = DatabaseName;
  Section.Append = Append;
  Section.SkipMissingFields = SkipMissingFields;
  Section.Fields = Fields;
  Section.StrictValues = StrictValues.value_or(Section.StrictValues);
  if (!TableName.empty()) Section.TableName = TableName;
  Section.Loading = Loading;
  Section.Report = &Report;
}

std::unique_ptr<TEIObject> TUOExportTableData::CreateEIObject() {
  std::unique_ptr<TEICommonTableData> Section;
  if (FReleaseVersion == TExportReleaseVersion::rv20)
    Section = std::make_unique<TEITableData>();
  else
    Section = std::make_unique<TEIOldTableData>();
  Section->DatabaseName = DatabaseName;
  Section->TableName = TableName;
  Section->Table = Table;
  Section->Fields = Fields;
  Section->Report = &Report;
  return Section;
}

TUOImportTableDataInterface::TUOImportTableDataInterface(TRBaseManager* Manager)
    : TImportUtilOperationInterface(TUtilOperationClass(TUOImportTableData::Descriptor), Manager) {}

void TUOImportTableDataInterface::SetFields(const std::vector<std::string>& Names) {
  FFields = TStringList(Names);
  Import().Fields = Names.empty() ? nullptr : &FFields;
}

TUOExportTableDataInterface::TUOExportTableDataInterface(TRBaseManager* Manager)
    : TExportUtilOperationInterface(TUtilOperationClass(TUOExportTableData::Descriptor), Manager) {}

void TUOExportTableDataInterface::SetFields(const std::vector<std::string>& Names) {
  FFields = TStringList(Names);
  Export().Fields = Names.empty() ? nullptr : &FFields;
}

}  // namespace velkrund
