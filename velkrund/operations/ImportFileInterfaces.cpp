#include "velkrund/operations/ImportFileInterfaces.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

using TImport = TUOImportFileInterface;
using TImports = TUOImportFilesInterface;

template <typename TInterface>
std::unique_ptr<TUtilOperationInterface> MakeInterface(TRBaseManager* Manager) {
  return std::make_unique<TInterface>(Manager);
}

constexpr TProperty FileProperties[] = {
    StringProperty<TImport, &TImport::FileName, &TImport::SetFileName>("FileName", "file to import"),
    BooleanProperty<TImport, &TImport::IsCrypted, &TImport::SetIsCrypted>("IsCrypted", "whether the file is encrypted"),
    BooleanProperty<TImport, &TImport::CreateDBStructures, &TImport::SetCreateDBStructures>(
        "CreateDBStructures", "import table data and create database objects too"),
    BooleanProperty<TImport, &TImport::ContinueOnError, &TImport::SetContinueOnError>(
        "ContinueOnError", "ask after an error whether to go on; otherwise stop"),
};

constexpr TProperty FilesProperties[] = {
    StringListProperty<TImports, &TImports::Files, &TImports::SetFiles>("Files", "files to import, in this order"),
};

}  // namespace

constinit const TPropertyTable TImport::PropertyTable{&TUtilOperationInterface::PropertyTable, FileProperties};
constinit const TInterfaceDescriptor TImport::Descriptor{"TUOImportFileInterface", &TUtilOperationInterface::Descriptor,
                                                         &TImport::PropertyTable, &MakeInterface<TImport>};

constinit const TPropertyTable TImports::PropertyTable{&TImport::PropertyTable, FilesProperties};
constinit const TInterfaceDescriptor TImports::Descriptor{"TUOImportFilesInterface", &TImport::Descriptor,
                                                          &TImports::PropertyTable, &MakeInterface<TImports>};

TUOImportFileInterface::TUOImportFileInterface(TRBaseManager* Manager)
    : TUtilOperationInterface(TUtilOperationClass(TUOImportFile::Descriptor), Manager) {}

TUOImportFilesInterface::TUOImportFilesInterface(TRBaseManager* Manager)
    : TUOImportFileInterface(TUtilOperationClass(TUOImportFiles::Descriptor), Manager) {}

}  // namespace velkrund
