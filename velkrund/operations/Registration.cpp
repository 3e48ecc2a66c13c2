#include "velkrund/operations/Registration.h"

#include "velkrund/operations/ImportFileInterfaces.h"
#include "velkrund/operations/RecreateContainerInterface.h"

namespace velkrund {

void RegisterOperationClasses() {
  InterfaceClasses().Register(TInterfaceClass(TUORecreateContainerInterface::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUOImportFileInterface::Descriptor));
  InterfaceClasses().Register(TInterfaceClass(TUOImportFilesInterface::Descriptor));
}

}  // namespace velkrund
