#include "velkrund/operations/ImportExportInterfaces.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

using TBase = TUtilOperationInterface;
using TImport = TImportUtilOperation;
using TExport = TExportUtilOperation;

constexpr TProperty ImportProperties[] = {
    PropertyOf<&TImport::FSource>("Source", "opened TEIFile to read from"),
    PropertyOf<&TImport::FSectionNumber>("SectionNumber", "index of the section, from 0"),
};

constexpr TProperty ExportProperties[] = {
    PropertyOf<&TExport::FTarget>("Target", "opened TEIFile to append to"),
    PropertyOf<&TExport::FSectionName>("SectionName", "name of the new section"),
    ChoiceOf<&TExport::FReleaseVersion>("ReleaseVersion", "release whose readers the file must suit",
                                        ReleaseVersionNames),
    ChoiceOf<&TExport::FEncoding>("Encoding", "encoding of the section; rv17 is always ansi", EncodingNames),
};

}  // namespace

constinit const TInterfaceDescriptor TImportUtilOperationInterface::Descriptor{
    "TImportUtilOperationInterface", &TBase::Descriptor, {&TBase::Descriptor.Properties, ImportProperties}, nullptr};
constinit const TInterfaceDescriptor TExportUtilOperationInterface::Descriptor{
    "TExportUtilOperationInterface", &TBase::Descriptor, {&TBase::Descriptor.Properties, ExportProperties}, nullptr};

}  // namespace velkrund
