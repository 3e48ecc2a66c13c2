#include "velkrund/operations/ImportFileInterfaces.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

constexpr TProperty FileProperties[] = {
    PropertyOf<&TUOImportFile::FFileName>("FileName", "file to import"),
    PropertyOf<&TUOImportFile::FCrypted>("IsCrypted", "whether the file is encrypted"),
    PropertyOf<&TUOImportFile::fCreateDBStructures>("CreateDBStructures",
                                                    "import table data and create database objects too"),
    PropertyOf<&TUOImportFile::ContinueOnError>("ContinueOnError",
                                                "ask after an error whether to go on; otherwise stop"),
};

constexpr TProperty FilesProperties[] = {
    PropertyOf<&TUOImportFiles::FFiles>("Files", "files to import, in this order"),
};

}  // namespace

constinit const TInterfaceDescriptor TUOImportFileInterface::Descriptor =
    Describe("TUOImportFileInterface", FileProperties);
constinit const TInterfaceDescriptor TUOImportFilesInterface::Descriptor =
    Describe("TUOImportFilesInterface", FilesProperties);

}  // namespace velkrund
