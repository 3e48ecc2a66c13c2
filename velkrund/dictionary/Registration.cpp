#include "velkrund/dictionary/Registration.h"

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
  EITypeList().RegisterEIObject(TEIObjectClass(TEIOldTableData::Descriptor));
  EITypeList().RegisterEIObject(TEIObjectClass(TEITableData::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUOImportTableDataInterface::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUOExportTableDataInterface::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUORecreateTableInterface::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUORecreateTablesInterface::Descriptor));
  RegisterRecreation();
  SetMissingTablesHook([](TUtilOperation& Operation, const std::string& Database) {
    return HasDictionary() ? std::make_unique<TTableMaker>(Operation, Database) : nullptr;
  });
}

}  // namespace velkrund
