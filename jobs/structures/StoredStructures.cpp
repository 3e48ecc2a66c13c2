#include "jobs/structures/StoredStructures.h"

#include "jobs/policies/Questions.h"
#include "jobs/structures/TreeText.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

namespace {

template <typename TJobClass>
constexpr TProperty ChoiceProperties[] = {
    PropertyOf<&TJobClass::Choice, &TStructureChoice::ObjectName>("ObjectName", "the structure's name, in any case"),
    PropertyOf<&TJobClass::Choice, &TStructureChoice::ObjectType>("ObjectType", "its object type; -1: any"),
};

constexpr TProperty ListProperties[] = {
    ChoiceProperties<TJobListStructures>[0],
    ChoiceProperties<TJobListStructures>[1],
    ReadOnlyOf<[](const TJobListStructures& Job) { return static_cast<std::int64_t>(Job.Found().size()); }>(
        "Structures", "structures that the last run found"),
};

constexpr TProperty DropProperties[] = {
    ChoiceProperties<TJobDropStructure>[0],
    ChoiceProperties<TJobDropStructure>[1],
    TPolicyRows::DryRun,
    TPolicyRows::Yes,
};

/// Everything about a structure but its tree.
TDocument PropertiesDocument(const TDSPListItem& Item) {
  TDocument Result = StructureDocument({Item.ObjectType, Item.ObjectName});
  Result.Set("table", Item.TableName).Set("parentObject", Item.ParentObject).Set("remarks", Item.Remarks);
  return Result;
}

}  // namespace

constinit const TUtilOperationDescriptor TJobListStructures::Descriptor =
    OperationDescriptor<TJobListStructures>("TJobListStructures");
constinit const TInterfaceDescriptor TJobListStructures::Interface =
    TJobInterface<TJobListStructures>::Describe("TJobListStructuresInterface", {&JobProperties, ListProperties});
constinit const TUtilOperationDescriptor TJobShowStructure::Descriptor =
    OperationDescriptor<TJobShowStructure>("TJobShowStructure");
constinit const TInterfaceDescriptor TJobShowStructure::Interface = TJobInterface<TJobShowStructure>::Describe(
    "TJobShowStructureInterface", {&JobProperties, ChoiceProperties<TJobShowStructure>});
constinit const TUtilOperationDescriptor TJobDropStructure::Descriptor =
    OperationDescriptor<TJobDropStructure>("TJobDropStructure");
constinit const TInterfaceDescriptor TJobDropStructure::Interface =
    TJobInterface<TJobDropStructure>::Describe("TJobDropStructureInterface", {&JobProperties, DropProperties});

void TJobListStructures::Run() {
  FFound = StructuresLike(DSPContainer().Table(DatabaseName), Choice.ObjectType, Choice.ObjectName);
}

void TJobListStructures::Describe(TDocument& Document) const {
  TDocument Structures = TDocument::List();
  for (const TDSPListItem& Item : FFound) Structures.Add(PropertiesDocument(Item));
  Document.Set("database", DatabaseText()).Set("structures", std::move(Structures));
}

void TJobShowStructure::Forget() {
  FFound = {};
  FForm.reset();
}

void TJobShowStructure::Run() {
  FFound =
      TStructureSearch(DSPContainer().Table(DatabaseName), DatabaseText()).Find(Choice.ObjectName, Choice.ObjectType);
  FForm = DSPContainer().CreateFormManager(DatabaseName);
  FForm->ObjectType = FFound.ObjectType;
  FForm->ObjectName = FFound.ObjectName;
  if (!FForm->LoadPureStructure())
    throw EDSPError(
        Format("The tree of the structure '%s' of type %d cannot be loaded", FFound.ObjectName, FFound.ObjectType));
}

void TJobShowStructure::WriteTree(const std::function<void(std::string_view Lines)>& Write) {
  if (FForm) WriteTreeText(FForm->Root(), Write);
}

void TJobShowStructure::Describe(TDocument& Document) const {
  Document.Set("database", DatabaseText()).Set("structure", PropertiesDocument(FFound));
  Document.Set("nodes", TreeDocument(FForm->Root()));
}

TLText TJobDropStructure::WhatWasDropped() const {
  return LText("M_Velkrund_Jobs_TheStructure", FFound.ObjectName, FFound.ObjectType);
}

void TJobDropStructure::Run() {
  TDSPTable& Table = DSPContainer().Table(DatabaseName);
  FFound = TStructureSearch(Table, DatabaseText()).Find(Choice.ObjectName, Choice.ObjectType);
  AddToPlan({"drop " + WhatWasDropped().English()});
  if (Policies.DryRun) return;
  if (!Policies.Yes)
    Ask({LText("M_Velkrund_Jobs_DropStructure", FFound.ObjectName, FFound.ObjectType),
         {TAnswer::Yes, TAnswer::Cancel},
         TPolicy::Yes});
  TTransaction Transaction(DatabaseName);
  if (!Table.DeleteStructure(FFound.ObjectName, FFound.ObjectType))
    throw EDatabaseError(Format("Somebody else has dropped %s", WhatWasDropped().English()));
  Transaction.Commit();
}

void TJobDropStructure::Describe(TDocument& Document) const {
  Document.Set("database", DatabaseText()).Set("structure", PropertiesDocument(FFound));
}

}  // namespace velkrund
