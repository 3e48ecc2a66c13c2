#include "velkrund/dsp/DSPStructureOperations.h"

#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

namespace {

using TImport = TUOImportDSPStructure;
using TExport = TUOExportDSPStructure;

constexpr std::string_view OverwriteNames[] = {"skip", "replace", "difference"};
constexpr std::string_view ExistingNames[] = {"ask", "skip", "replace", "update"};

constexpr TProperty ImportProperties[] = {
    PropertyOf<&TImport::ObjectName>("ObjectName", "structure to load into; empty: the one that the section names"),
    PropertyOf<&TImport::ObjectType>("ObjectType", "its object type; 0: the one that the section names"),
    PropertyOf<&TImport::RootNode>("RootNode", "full name of the node to load into"),
    PropertyOf<&TImport::UseCustomRootNode>("UseCustomRootNode",
                                            "load into RootNode instead of the node that the section names"),
    PropertyOf<&TImport::ClearRoot>("ClearRoot", "remove what is stored there first"),
    PropertyOf<&TImport::ChangeStructureproperties>("ChangeStructureproperties",
                                                    "store table name, parent object and remarks too"),
    ChoiceOf<&TImport::OverwriteOptions>("OverwriteOptions", "what becomes of nodes that are there already",
                                         OverwriteNames),
    ChoiceOf<&TImport::OverwriteExisting, &TImport::SetOverwriteExisting>(
        "OverwriteExisting",
        "a structure that exists: ask, skip it, replace it as OverwriteOptions and ClearRoot say, or update it",
        ExistingNames),
};

constexpr TProperty ExportProperties[] = {
    PropertyOf<&TExport::ObjectName>("ObjectName", "structure to save"),
    PropertyOf<&TExport::ObjectType>("ObjectType", "its object type"),
    PropertyOf<&TExport::RootNode>("RootNode",
                                   "full name of the node to save with all below it; empty: the whole tree"),
};

}  // namespace

constinit const TUtilOperationDescriptor TImport::Descriptor = OperationDescriptor<TImport>("TUOImportDSPStructure");
constinit const TUtilOperationDescriptor TExport::Descriptor = OperationDescriptor<TExport>("TUOExportDSPStructure");
constinit const TInterfaceDescriptor TUOImportDSPStructureInterface::Descriptor =
    Describe("TUOImportDSPStructureInterface", ImportProperties);
constinit const TInterfaceDescriptor TUOExportDSPStructureInterface::Descriptor =
    Describe("TUOExportDSPStructureInterface", ExportProperties);

TUOImportDSPStructure::TUOImportDSPStructure() {
  OverwriteAsk.FYes = true;
  OverwriteAsk.FAlwaysAsk = true;
}

TOverwriteExisting TUOImportDSPStructure::OverwriteExisting() const {
  if (OverwriteAsk.FAlwaysAsk) return TOverwriteExisting::Ask;
  if (!OverwriteAsk.FYes) return TOverwriteExisting::Skip;
  const bool Updates = OverwriteAsk.FForAll == TDSPImportOverwriteOptions::ioDifference;
  return Updates ? TOverwriteExisting::Update : TOverwriteExisting::Replace;
}

void TUOImportDSPStructure::SetOverwriteExisting(TOverwriteExisting Answer) {
  OverwriteAsk.FAlwaysAsk = Answer == TOverwriteExisting::Ask;
  OverwriteAsk.FYes = Answer != TOverwriteExisting::Skip;
  OverwriteAsk.FForAll.reset();
  FSectionAsk.FForAll.reset();
  if (Answer == TOverwriteExisting::Update) OverwriteAsk.FForAll = TDSPImportOverwriteOptions::ioDifference;
}

void TUOImportDSPStructure::InitEIObject(TEIObject& Object) {
  auto& Section = dynamic_cast<TEIDSPStructureCommon&>(Object);
  Section.DatabaseName = DatabaseName;
  if (!ObjectName.empty()) Section.Item.ObjectName = ObjectName;
  if (ObjectType != 0) Section.Item.ObjectType = ObjectType;
  if (UseCustomRootNode) Section.RootNode = RootNode;
  Section.ChangeStructureProperties = ChangeStructureproperties;
  Section.ClearRoot = ClearRoot;
  Section.OverwriteOptions = OverwriteOptions;
  // A single answer changes the copy only, an answer for all stays in it.
  std::pair Places(FSource->FileName(), DatabaseName);
  const bool Answered = OverwriteAsk.FAlwaysAsk && FSectionAsk.FForAll && Places == FLastPlaces;
  if (!Answered) FSectionAsk.Assign(OverwriteAsk);
  FLastPlaces = std::move(Places);
  FSectionAsk.FLeftAlone = false;
  Section.SetOverwriteAsk(FSectionAsk);
}

std::unique_ptr<TEIObject> TUOExportDSPStructure::CreateEIObject() {
  auto Section = MakeForRelease<TEIDSPStructureCommon, TEIDSPStructure, TEIDSPStructureOld>();
  auto Item = DSPContainer().Table(DatabaseName).GetStructureProperties(ObjectName, ObjectType);
  if (!Item)
    throw Exception(
        Format("Error exporting DSP structure. Structure not found (OT:%d;ON:'%s')", ObjectType, ObjectName));
  Section->DatabaseName = DatabaseName;
  Section->RootNode = RootNode;
  Section->Item = std::move(*Item);
  return Section;
}

}  // namespace velkrund
