#include "jobs/sections/RepairFile.h"

#include "jobs/files/FileOpening.h"
#include "jobs/report/ErrorReport.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr TProperty Properties[] = {
    PropertyOf<&TJobRepairFile::FileName>("FileName", "the file"),
    ReadOnlyOf<[](const TJobRepairFile& Job) { return Job.Repair().Bytes; }>(
        "BytesCut", "bytes that the last run cut off; 0: there was nothing to cut"),
    ReadOnlyOf<[](const TJobRepairFile& Job) { return Job.Repair().CutFile; }>("CutFile", "where these bytes are now"),
    ReadOnlyOf<[](const TJobRepairFile& Job) { return Job.Repair().SectionsLeft; }>("SectionsLeft",
                                                                                    "sections of the repaired file"),
    ReadOnlyOf<[](const TJobRepairFile& Job) { return Job.Repair().LineFeeds; }>(
        "LineFeeds", "line feeds alone at the end of a line that the last run put a carriage return in front of"),
};

}  // namespace

constinit const TUtilOperationDescriptor TJobRepairFile::Descriptor =
    OperationDescriptor<TJobRepairFile>("TJobRepairFile");
constinit const TInterfaceDescriptor TJobRepairFile::Interface =
    TJobInterface<TJobRepairFile>::Describe("TJobRepairFileInterface", {&JobProperties, Properties});

void TJobRepairFile::CheckSettings() const {
  Require(FileName, "FileName");
  if (IsPipe(FileName)) throw ESettingsError(Format("'%s' is a pipe: there is nothing to repair", FileName));
}

void TJobRepairFile::Run() {
  FFile = FileName;
  FRepair = RepairFile(Files(), FileName, Canceled());
}

void TJobRepairFile::Describe(TDocument& Document) const {
  Document.Set("file", FFile).Set("sectionsLeft", FRepair.SectionsLeft);
  if (FRepair.LineFeeds > 0) Document.Set("lineFeeds", FRepair.LineFeeds);
  if (FRepair.Position < 0) return;
  TDocument Cut;
  Cut.Set("position", FRepair.Position).Set("size", FRepair.Bytes).Set("file", FRepair.CutFile);
  if (FRepair.Fault) Cut.Set("error", ErrorDocument(*FRepair.Fault));
  Document.Set("cut", std::move(Cut));
}

}  // namespace velkrund
