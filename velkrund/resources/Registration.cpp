#include "velkrund/resources/Registration.h"

#include "velkrund/eif/TypeList.h"
#include "velkrund/resources/Lutils.h"

namespace velkrund {

void RegisterResourceClasses() {
  for (const TEIObjectDescriptor* const Class :
       {&TEIOldLResource::Descriptor, &TEILResource::Descriptor, &TEIOldSingleLResource::Descriptor,
        &TEISingleLResource::Descriptor, &TEILanguage::Descriptor})
    EITypeList().RegisterEIObject(TEIObjectClass(*Class));
  for (const TInterfaceDescriptor* const Class :
       {&TUOExportLResourceInterface::Descriptor, &TUOExportSingleLResourcesInterface::Descriptor,
        &TUOExportLSectionsInterface::Descriptor, &TUOImportLResourceInterface::Descriptor,
        &TUOImportLSectionsInterface::Descriptor, &TUODeleteLResourceInterface::Descriptor,
        &TUODeleteLResourcesInterface::Descriptor, &TUODeleteLSectionInterface::Descriptor,
        &TUODeleteLSectionsInterface::Descriptor, &TUOCopyLSectionsInterface::Descriptor,
        &TUOCopyLResourcesInterface::Descriptor, &TUOExportLanguagesInterface::Descriptor,
        &TUOImportLanguagesInterface::Descriptor, &TUOCopyLanguagesInterface::Descriptor,
        &TExportXMLLResourceUtilOperationInterface::Descriptor})
    InterfaceClasses().Register(TInterfaceClass(*Class));
}

}  // namespace velkrund
