#include "velkrund/dsp/Registration.h"

#include "velkrund/dsp/DSPStructureOperations.h"
#include "velkrund/eif/TypeList.h"

namespace velkrund {

void RegisterDSPClasses() {
  EITypeList().RegisterEIObject(TEIObjectClass(TEIDSPStructureOld::Descriptor));
  EITypeList().RegisterEIObject(TEIObjectClass(TEIDSPStructure::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUOImportDSPStructureInterface::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUOExportDSPStructureInterface::Descriptor));
}

}  // namespace velkrund
