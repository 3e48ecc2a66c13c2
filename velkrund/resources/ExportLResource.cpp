#include "velkrund/resources/ExportLResource.h"

#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/resources/TargetSections.h"

namespace velkrund {

namespace {

using TExport = TUOExportLResource;
using TSingle = TUOExportSingleLResources;

constexpr TProperty ExportProperties[] = {
    PropertyOf<&TExport::SectionID>("SectionID", "section of strings to save"),
    PropertyOf<&TExport::Languages>("Languages", "languages to save, in this order; empty: all of the database"),
    PropertyOf<&TExport::Resources>("Resources", "names of the strings to save; empty: all of the section"),
    ChoiceOf<&TExport::Overwrite, &TExport::SetOverwrite>(
        "Overwrite", "whether a section of that ID in the file is replaced", RecreateOverwriteNames),
    ReadOnlyOf<[](const TExport& Export) { return Export.Result().Report.Strings; }>("Strings",
                                                                                     "strings of the last run"),
    ReadOnlyOf<[](const TExport& Export) { return Export.Result().Report.Texts; }>("Texts",
                                                                                   "their texts in all languages"),
    ReadOnlyOf<[](const TExport& Export) { return Export.Result().LeftAlone; }>(
        "LeftAlone", "whether an answer has left the section of the file as it was"),
};

constexpr TProperty SingleProperties[] = {
    PropertyOf<&TSingle::SectionID>("SectionID", "section whose ID is left out where it begins that of a string"),
    PropertyOf<&TSingle::SectionIDs>("SectionIDs", "sections of strings to save; empty: SectionID alone"),
    PropertyOf<&TSingle::Language>("Language", "the one language to save"),
    ChoiceOf<&TSingle::Overwrite, &TSingle::SetOverwrite>(
        "Overwrite", "whether a section of that ID in the file is replaced", RecreateOverwriteNames),
    ReadOnlyOf<[](const TSingle& Export) { return Export.Result().Report.Texts; }>("Texts", "texts of the last run"),
    ReadOnlyOf<[](const TSingle& Export) { return Export.Result().LeftAlone; }>(
        "LeftAlone", "whether an answer has left the section of the file as it was"),
};

}  // namespace

constinit const TUtilOperationDescriptor TExport::Descriptor = OperationDescriptor<TExport>("TUOExportLResource");
constinit const TUtilOperationDescriptor TSingle::Descriptor =
    OperationDescriptor<TSingle>("TUOExportSingleLResources");
constinit const TInterfaceDescriptor TUOExportLResourceInterface::Descriptor =
    Describe("TUOExportLResourceInterface", ExportProperties);
constinit const TInterfaceDescriptor TUOExportSingleLResourcesInterface::Descriptor =
    Describe("TUOExportSingleLResourcesInterface", SingleProperties);

int TLResourceExport::Execute() {
  FResult = {.Name = SectionID};
  BeginAsking();
  try {
    FResult.LeftAlone = !Replaces();
  } catch (const EAbort&) {
    return 0;
  }
  return FResult.LeftAlone ? 1 : TExportUtilOperation::Execute();
}

bool TLResourceExport::Replaces() {
  if (!FTarget) throw EAccessViolation("Access violation: the target of an export operation is not assigned");
  const int Found = FindTargetSection(*FTarget, FReplaced, "SectionID", SectionID, IsSameSection);
  return ReplacesTargetSection(*FTarget, Found, RunAsk(), Format(BaseMng().LString(ExistsKey), SectionID), this);
}

std::unique_ptr<TEIObject> TUOExportLResource::CreateEIObject() {
  auto Section = MakeForRelease<TEICommonLResource, TEILResource, TEIOldLResource>();
  Section->Languages = Languages.Count() ? &Languages : nullptr;
  Section->Resources = Resources.Count() ? &Resources : nullptr;
  return SetUp(std::move(Section));
}

void TUOExportLResource::EndEIObject(const TEIObject& Object) {
  FResult.Report = dynamic_cast<const TEICommonLResource&>(Object).Report();
}

std::unique_ptr<TEIObject> TUOExportSingleLResources::CreateEIObject() {
  auto Section = MakeForRelease<TEICommonSingleLResource, TEISingleLResource, TEIOldSingleLResource>();
  Section->Language = Language;
  Section->SectionIDs = SectionIDs.Count() ? SectionIDs : TStringList{SectionID};
  return SetUp(std::move(Section));
}

void TUOExportSingleLResources::EndEIObject(const TEIObject& Object) {
  FResult.Report = dynamic_cast<const TEICommonSingleLResource&>(Object).Report();
}

}  // namespace velkrund
