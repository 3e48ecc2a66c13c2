#include "velkrund/dictionary/Registration.h"

#include "velkrund/dictionary/RecreateTableInterfaces.h"
#include "velkrund/dictionary/TableDataOperations.h"
#include "velkrund/dictionary/TableMaker.h"
#include "velkrund/eif/TypeList.h"

namespace velkrund {

void RegisterDictionaryClasses() {
  EITypeList().RegisterEIObject(TEIObjectClass(TEIOldTableData::Descriptor));
  EITypeList().RegisterEIObject(TEIObjectClass(TEITableData::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUOImportTableDataInterface::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUOExportTableDataInterface::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUORecreateTableInterface::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUORecreateTablesInterface::Descriptor));
  SetMissingTablesHook([](TUtilOperation& Operation, const std::string& Database) {
    return HasDictionary() ? std::make_unique<TTableMaker>(Operation, Database) : nullptr;
  });
}

}  // namespace velkrund
