#include "jobs/dictionary/AdoptObjects.h"

#include <algorithm>

#include "jobs/dictionary/ObjectChoice.h"
#include "jobs/policies/Questions.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

using TThis = TJobAdoptObjects;

template <TThis::TState State>
constexpr TProperty CountOf(std::string_view Name, std::string_view Help) {
  return ReadOnlyOf<[](const TThis& Job) { return Job.Count(State); }>(Name, Help);
}

constexpr TProperty Properties[] = {
    TPolicyRows::ExistingStructures,
    TPolicyRows::Columns,
    TPolicyRows::DryRun,
    PropertyOf<&TThis::Names>("Names", "the tables, views, generators and procedures to describe; empty: all"),
    CountOf<TThis::TState::Added>("StructuresAdded", "structures that the last run made"),
    CountOf<TThis::TState::Replaced>("StructuresReplaced", "structures that it changed"),
    CountOf<TThis::TState::Unchanged>("StructuresUnchanged", "structures that described the object already"),
    CountOf<TThis::TState::LeftOut>("StructuresLeftOut", "structures that an answer kept as they were"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobAdoptObjects");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobAdoptObjectsInterface", {&JobProperties, Properties});

int TThis::Count(TState State) const {
  return static_cast<int>(std::count_if(FAdoptions.begin(), FAdoptions.end(),
                                        [=](const TAdoption& Adoption) { return Adoption.State == State; }));
}

std::string_view TThis::StateText(TState State) {
  switch (State) {
    case TState::Added:
      return "added";
    case TState::Replaced:
      return "replaced";
    case TState::Unchanged:
      return "unchanged";
    case TState::LeftOut:
      break;
  }
  return "left-out";
}

void TThis::Forget() {
  FAdoptions.clear();
  FLeftBehind.clear();
  ForgetPlan();
}

void TThis::Run() {
  std::vector<TDescribedObject> Described = DescribeAll();
  Settle(Described);
  if (!Policies.DryRun) Store(std::move(Described));
}

std::vector<TDescribedObject> TThis::DescribeAll() {
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  TConnection& Connection = Manager().Databases().Connection(DatabaseName);
  const std::vector<TDefinedObject> All = Connection.Definitions().Objects();
  const std::vector<TDefinedObject> Objects = ChosenObjects(All, Names, DatabaseText());
  RefuseInsides(Connection.Schema(), Objects, All);
  TDescriber Describer(Connection, DatabaseName, {.ScanColumns = Policies.Columns == TColumnTypes::Scanned});
  BeginPart(LText("M_Velkrund_Jobs_ObjectsOfDatabase").Local(), "objects", static_cast<std::int64_t>(Objects.size()));
  std::int32_t Count = 0;
  std::vector<TDescribedObject> Result = Describer.Describe(Objects, [&](const TDefinedObject& Object) {
    if (IsCanceled()) throw EAbort("cancelled");
    SetSubject(FullName(Object.Table));
    ShowPart(Count++, static_cast<std::int32_t>(Objects.size()), FullName(Object.Table));
  });
  EndPart();
  FLeftBehind = Connection.Definitions().LeftBehind();
  return Result;
}

/// Decides about structures that are there, before anything is stored.
void TThis::Settle(const std::vector<TDescribedObject>& Described) {
  std::vector<std::string> Met;
  for (const TDescribedObject& Each : Described) {
    const TStructureId Structure{Each.Item.ObjectType, Each.Item.ObjectName};
    if (Each.IsStored && Each.IsChanged) Met.push_back(StructureText(Structure));
    FAdoptions.push_back({Structure,
                          !Each.IsStored   ? TState::Added
                          : Each.IsChanged ? TState::Replaced
                                           : TState::Unchanged,
                          Each.Gone});
  }
  const TExisting Existing = Policies.ExistingStructures;
  if (Existing == TExisting::Ask && !Met.empty() && !CanAsk())
    throw EPolicyUnanswered(TPolicy::ExistingStructures, LText("M_Velkrund_Jobs_DescribeChanged", LJoinedInShort(Met)));
  TRepeatedQuestion Question;
  for (TAdoption& Adoption : FAdoptions) {
    if (Adoption.State != TState::Replaced || Existing == TExisting::Replace) continue;
    const bool Replaces = Existing == TExisting::Ask &&
                          Question.Ask({LText("M_Velkrund_Jobs_ReplaceDescription", StructureText(Adoption.Structure)),
                                        {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Cancel},
                                        TPolicy::ExistingStructures}) == TAnswer::Yes;
    if (!Replaces) Adoption.State = TState::LeftOut;
  }
  for (const TAdoption& Adoption : FAdoptions)
    if (Adoption.State == TState::Added || Adoption.State == TState::Replaced)
      AddToPlan({Format("%s the structure %s", Adoption.State == TState::Added ? "add" : "replace",
                        StructureText(Adoption.Structure))});
}

void TThis::Store(std::vector<TDescribedObject> Described) {
  TTransaction Transaction(DatabaseName);
  for (std::size_t I = 0; I < Described.size(); ++I) {
    if (IsCanceled()) throw EAbort("cancelled");
    if (FAdoptions[I].State == TState::Added || FAdoptions[I].State == TState::Replaced)
      StoreDescribed(std::move(Described[I]), DatabaseName);
  }
  Transaction.Commit();
}

void TThis::Describe(TDocument& Document) const {
  TDocument Structures = TDocument::List();
  for (const TAdoption& Adoption : FAdoptions) {
    TDocument Entry = StructureDocument(Adoption.Structure);
    Entry.Set("state", StateText(Adoption.State)).Set("gone", Adoption.Gone);
    Structures.Add(std::move(Entry));
  }
  Document.Set("database", DatabaseText()).Set("structures", std::move(Structures)).Set("leftBehind", FLeftBehind);
}

}  // namespace velkrund
