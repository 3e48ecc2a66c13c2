#include "velkrund/dictionary/GeneratorDataOperations.h"

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/dictionary/DicDatabase.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

using TImport = TUOImportGeneratorData;
using TExport = TUOExportGeneratorData;

constexpr TProperty ImportProperties[] = {
    PropertyOf<&TImport::GeneratorName>("GeneratorName", "generator to move; empty: the one that the section names"),
    PropertyOf<&TImport::OnlyForward>("OnlyForward", "leave a generator alone that stands there or further"),
};

constexpr TProperty ExportProperties[] = {
    PropertyOf<&TExport::GeneratorName>("GeneratorName", "generator to save"),
};

}  // namespace

constinit const TUtilOperationDescriptor TImport::Descriptor = OperationDescriptor<TImport>("TUOImportGeneratorData");
constinit const TUtilOperationDescriptor TExport::Descriptor = OperationDescriptor<TExport>("TUOExportGeneratorData");
constinit const TInterfaceDescriptor TUOImportGeneratorDataInterface::Descriptor =
    Describe("TUOImportGeneratorDataInterface", ImportProperties);
constinit const TInterfaceDescriptor TUOExportGeneratorDataInterface::Descriptor =
    Describe("TUOExportGeneratorDataInterface", ExportProperties);

void TUOImportGeneratorData::InitEIObject(TEIObject& Object) {
  auto& Section = dynamic_cast<TEIGeneratorData&>(Object);
  Section.DatabaseName = DatabaseName;
  Section.OnlyForward = OnlyForward;
  if (!GeneratorName.empty()) Section.GeneratorName = GeneratorName;
}

std::unique_ptr<TEIObject> TUOExportGeneratorData::CreateEIObject() {
  TDicDatabase& Database = DicDBContainer().Database(DatabaseName);
  if (!Database.GeneratorExist(GeneratorName))
    throw EDicUtilError(Format("Can not export generator data. The database has no generator '%s'", GeneratorName));
  auto Section = std::make_unique<TEIGeneratorData>();
  Section->DatabaseName = DatabaseName;
  Section->GeneratorName = GeneratorName;
  Section->StartValue = FValue = Database.GeneratorValue(GeneratorName);
  return Section;
}

}  // namespace velkrund
