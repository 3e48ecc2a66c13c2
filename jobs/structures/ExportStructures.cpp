#include "jobs/structures/ExportStructures.h"

#include <set>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

using TThis = TJobExportStructures;

constexpr TProperty Properties[] = {
    PropertyOf<&TThis::Names>("Names", "the structures to save; empty: all, or all of the type"),
    PropertyOf<&TThis::ObjectType>("ObjectType", "their object type; -1: any"),
    PropertyOf<&TThis::RootNode>("RootNode", "of one structure: only this node with all below it"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobExportStructures");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobExportStructuresInterface", {&ExportJobProperties, Properties});

void TJobExportStructures::CheckSettings() const {
  TExportJob::CheckSettings();
  if (Several() && !RootNode.empty())
    throw ESettingsError(
        Format("%s names a node of one structure, but several structures are exported", Setting("RootNode")));
}

/// The structures under their stored names, each once. A name that is none ends the run before anything is written.
std::vector<TItem> TJobExportStructures::PlanItems() {
  FOperation.RootNode = RootNode;
  TDSPTable& Stored = DSPContainer().Table(DatabaseName);
  TStructureSearch Search(Stored, FOutcome.Database);
  std::vector<TDSPListItem> Found;
  if (Names.empty()) Found = StructuresLike(Stored, ObjectType, {});
  std::vector<TItem> Result;
  for (const std::string& Name : Names) {
    try {
      Found.push_back(Search.Find(Name, ObjectType));
    } catch (const EStructureMissing&) {
      TItem& Missing = Result.emplace_back();
      Missing.Section = Name;
      if (ObjectType != AnyType) Missing.Structure = TStructureId{ObjectType, Name};
      LeaveOut(Missing, std::current_exception());
    }
  }
  std::set<std::pair<int, std::string>> Seen;
  for (TDSPListItem& Structure : Found) {
    if (!Seen.insert({Structure.ObjectType, Structure.ObjectName}).second) continue;
    TItem Item;
    Item.Structure = TStructureId{Structure.ObjectType, std::move(Structure.ObjectName)};
    Item.Section = NameOfSection(*Item.Structure);
    Result.push_back(std::move(Item));
  }
  if (Result.empty())
    FOutcome.Notes.push_back(ObjectType == AnyType ? LText("M_Velkrund_Jobs_NoStructures")
                                                   : LText("M_Velkrund_Jobs_NoStructuresOf", ObjectType));
  return Result;
}

std::string TJobExportStructures::NameOfSection(const TStructureId& Structure) const {
  if (!SectionName.empty()) return SectionName;
  return RootNode.empty() ? StructureText(Structure) : StructureText(Structure) + " " + RootNode;
}

TExportUtilOperation& TJobExportStructures::OperationFor(const TItem& Item) {
  FOperation.ObjectType = Item.Structure->Type;
  FOperation.ObjectName = Item.Structure->Name;
  return FOperation;
}

}  // namespace velkrund
