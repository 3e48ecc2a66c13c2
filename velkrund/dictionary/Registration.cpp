#include "velkrund/dictionary/Registration.h"

#include "velkrund/dictionary/TableDataOperations.h"
#include "velkrund/eif/TypeList.h"

namespace velkrund {

void RegisterDictionaryClasses() {
  EITypeList().RegisterEIObject(TEIObjectClass(TEIOldTableData::Descriptor));
  EITypeList().RegisterEIObject(TEIObjectClass(TEITableData::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUOImportTableDataInterface::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUOExportTableDataInterface::Descriptor));
}

}  // namespace velkrund
