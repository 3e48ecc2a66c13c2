#include "velkrund/operations/ImportExportInterfaces.h"

#include "velkrund/operations/PropertyAccess.h"

namespace velkrund {

namespace {

using TImport = TImportUtilOperationInterface;
using TExport = TExportUtilOperationInterface;

constexpr std::string_view ReleaseNames[] = {"rv17", "rv20"};
constexpr std::string_view EncodingNames[] = {"ansi", "utf8"};

constexpr TProperty ImportProperties[] = {
    ObjectProperty<TImport, TEIFile, &TImport::Source, &TImport::SetSource>("Source", "opened TEIFile to read from"),
    IntegerProperty<TImport, &TImport::SectionNumber, &TImport::SetSectionNumber>("SectionNumber",
                                                                                  "index of the section, from 0"),
};

constexpr TProperty ExportProperties[] = {
    ObjectProperty<TExport, TEIFile, &TExport::Target, &TExport::SetTarget>("Target", "opened TEIFile to append to"),
    StringProperty<TExport, &TExport::SectionName, &TExport::SetSectionName>("SectionName", "name of the new section"),
    EnumProperty<TExport, TExportReleaseVersion, &TExport::ReleaseVersion, &TExport::SetReleaseVersion>(
        "ReleaseVersion", "release whose readers the file must suit", ReleaseNames),
    EnumProperty<TExport, TKvEncoding, &TExport::Encoding, &TExport::SetEncoding>(
        "Encoding", "encoding of the section; rv17 is always ansi", EncodingNames),
};

}  // namespace

constinit const TPropertyTable TImport::PropertyTable{&TUtilOperationInterface::PropertyTable, ImportProperties};
constinit const TInterfaceDescriptor TImport::Descriptor{
    "TImportUtilOperationInterface", &TUtilOperationInterface::Descriptor, &TImport::PropertyTable, nullptr};

constinit const TPropertyTable TExport::PropertyTable{&TUtilOperationInterface::PropertyTable, ExportProperties};
constinit const TInterfaceDescriptor TExport::Descriptor{
    "TExportUtilOperationInterface", &TUtilOperationInterface::Descriptor, &TExport::PropertyTable, nullptr};

void TImportUtilOperationInterface::SetSource(TEIFile* Source) {
  FSource = Source;
  Import().FSource = Source;
}

void TExportUtilOperationInterface::SetTarget(TEIFile* Target) {
  FTarget = Target;
  Export().FTarget = Target;
}

}  // namespace velkrund
