#include "velkrund/dsp/DSPStructureOperations.h"

#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

namespace {

using TImport = TUOImportDSPStructureInterface;
using TExport = TUOExportDSPStructureInterface;

constexpr std::string_view OverwriteNames[] = {"skip", "replace", "difference"};
constexpr std::string_view ExistingNames[] = {"ask", "skip", "replace", "update"};

template <typename TOperation>
std::unique_ptr<TUtilOperation> MakeOperation() {
  return std::make_unique<TOperation>();
}

template <typename TInterface>
std::unique_ptr<TUtilOperationInterface> MakeInterface(TRBaseManager* Manager) {
  return std::make_unique<TInterface>(Manager);
}

constexpr TProperty ImportProperties[] = {
    StringProperty<TImport, &TImport::ObjectName, &TImport::SetObjectName>(
        "ObjectName", "structure to load into; empty: the one that the section names"),
    IntegerProperty<TImport, &TImport::ObjectType, &TImport::SetObjectType>(
        "ObjectType", "its object type; 0: the one that the section names"),
    StringProperty<TImport, &TImport::RootNode, &TImport::SetRootNode>("RootNode",
                                                                       "full name of the node to load into"),
    BooleanProperty<TImport, &TImport::UseCustomRootNode, &TImport::SetUseCustomRootNode>(
        "UseCustomRootNode", "load into RootNode instead of the node that the section names"),
    BooleanProperty<TImport, &TImport::ClearRoot, &TImport::SetClearRoot>("ClearRoot",
                                                                          "remove what is stored there first"),
    BooleanProperty<TImport, &TImport::ChangeStructureproperties, &TImport::SetChangeStructureproperties>(
        "ChangeStructureproperties", "store table name, parent object and remarks too"),
    EnumProperty<TImport, TDSPImportOverwriteOptions, &TImport::OverwriteOptions, &TImport::SetOverwriteOptions>(
        "OverwriteOptions", "what becomes of nodes that are there already", OverwriteNames),
    EnumProperty<TImport, TOverwriteExisting, &TImport::OverwriteExisting, &TImport::SetOverwriteExisting>(
        "OverwriteExisting",
        "a structure that exists: ask, skip it, replace it as OverwriteOptions and ClearRoot say, or update it",
        ExistingNames),
};

constexpr TProperty ExportProperties[] = {
    StringProperty<TExport, &TExport::ObjectName, &TExport::SetObjectName>("ObjectName", "structure to save"),
    IntegerProperty<TExport, &TExport::ObjectType, &TExport::SetObjectType>("ObjectType", "its object type"),
    StringProperty<TExport, &TExport::RootNode, &TExport::SetRootNode>(
        "RootNode", "full name of the node to save with all below it; empty: the whole tree"),
};

}  // namespace

constinit const TUtilOperationDescriptor TUOImportDSPStructure::Descriptor{"TUOImportDSPStructure", nullptr,
                                                                           &MakeOperation<TUOImportDSPStructure>};
constinit const TUtilOperationDescriptor TUOExportDSPStructure::Descriptor{"TUOExportDSPStructure", nullptr,
                                                                           &MakeOperation<TUOExportDSPStructure>};

constinit const TPropertyTable TImport::PropertyTable{&TImportUtilOperationInterface::PropertyTable, ImportProperties};
constinit const TInterfaceDescriptor TImport::Descriptor{"TUOImportDSPStructureInterface",
                                                         &TImportUtilOperationInterface::Descriptor,
                                                         &TImport::PropertyTable, &MakeInterface<TImport>};

constinit const TPropertyTable TExport::PropertyTable{&TExportUtilOperationInterface::PropertyTable, ExportProperties};
constinit const TInterfaceDescriptor TExport::Descriptor{"TUOExportDSPStructureInterface",
                                                         &TExportUtilOperationInterface::Descriptor,
                                                         &TExport::PropertyTable, &MakeInterface<TExport>};

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
  std::unique_ptr<TEIDSPStructureCommon> Section;
  if (FReleaseVersion == TExportReleaseVersion::rv20)
    Section = std::make_unique<TEIDSPStructure>();
  else
    Section = std::make_unique<TEIDSPStructureOld>();
  auto Item = DSPContainer().Table(DatabaseName).GetStructureProperties(ObjectName, ObjectType);
  if (!Item)
    throw Exception(
        Format("Error exporting DSP structure. Structure not found (OT:%d;ON:'%s')", ObjectType, ObjectName));
  Section->DatabaseName = DatabaseName;
  Section->RootNode = RootNode;
  Section->Item = std::move(*Item);
  return Section;
}

TUOImportDSPStructureInterface::TUOImportDSPStructureInterface(TRBaseManager* Manager)
    : TImportUtilOperationInterface(TUtilOperationClass(TUOImportDSPStructure::Descriptor), Manager) {}

TUOExportDSPStructureInterface::TUOExportDSPStructureInterface(TRBaseManager* Manager)
    : TExportUtilOperationInterface(TUtilOperationClass(TUOExportDSPStructure::Descriptor), Manager) {}

}  // namespace velkrund
