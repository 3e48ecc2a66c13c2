#include "velkrund/dictionary/Registration.h"

#include "velkrund/dictionary/CopyTableInterfaces.h"
#include "velkrund/dictionary/GeneratorDataOperations.h"
#include "velkrund/dictionary/QueryDataOperations.h"
#include "velkrund/dictionary/RecreateInterfaces.h"
#include "velkrund/dictionary/RecreateTableInterfaces.h"
#include "velkrund/dictionary/TableDataOperations.h"
#include "velkrund/dictionary/TableMaker.h"
#include "velkrund/eif/TypeList.h"

namespace velkrund {

namespace {

void RegisterRecreation() {
  for (const TRecreateKind* const Kind : {&GeneratorKind, &ViewKind, &ExecStoredProcKind, &SelectStoredProcKind})
    RecreateOperations().Register(Kind->ObjectType, Kind->Single);
  for (const TInterfaceDescriptor* const Class :
       {&TUORecreateGeneratorInterface::Descriptor, &TUORecreateViewInterface::Descriptor,
        &TUORecreateExecStoredProcInterface::Descriptor, &TUORecreateSelectStoredProcInterface::Descriptor,
        &TUORecreateGeneratorsInterface::Descriptor, &TUORecreateViewsInterface::Descriptor,
        &TUORecreateExecStoredProcsInterface::Descriptor, &TUORecreateSelectStoredProcsInterface::Descriptor})
    InterfaceClasses().Register(TInterfaceClass(*Class));
}

}  // namespace

void RegisterDictionaryClasses() {
  for (const TEIObjectDescriptor* const Class :
       {&TEIOldTableData::Descriptor, &TEITableData::Descriptor, &TEIOldQueryData::Descriptor,
        &TEIQueryData::Descriptor, &TEIGeneratorData::Descriptor})
    EITypeList().RegisterEIObject(TEIObjectClass(*Class));
  for (const TInterfaceDescriptor* const Class :
       {&TUOImportTableDataInterface::Descriptor, &TUOExportTableDataInterface::Descriptor,
        &TUOImportQueryDataInterface::Descriptor, &TUOExportQueryDataInterface::Descriptor,
        &TUOImportGeneratorDataInterface::Descriptor, &TUOExportGeneratorDataInterface::Descriptor,
        &TUORecreateTableInterface::Descriptor, &TUORecreateTablesInterface::Descriptor,
        &TUOCustomCopyTableInterface::Descriptor, &TUOCustomCopyTablesInterface::Descriptor})
    InterfaceClasses().Register(TInterfaceClass(*Class));
  RegisterRecreation();
  SetMissingTablesHook([](TUtilOperation& Operation, const std::string& Database) {
    return HasDictionary() ? std::make_unique<TTableMaker>(Operation, Database) : nullptr;
  });
}

}  // namespace velkrund
