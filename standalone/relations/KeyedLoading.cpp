#include "standalone/relations/KeyedLoading.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "velkrund/platform/database/EmptyTable.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

TLoadOrder::TTie TieOf(const TForeignKey& Key) { return {FullName(Key.From), FullName(Key.To)}; }

}  // namespace

TKeyedLoading::TKeyedLoading(TStandaloneManager& Manager, std::string DatabaseName,
                             const std::vector<TLoadTarget>& Targets, const TLoadOptions& Options)
    : FManager(Manager),
      FDatabaseName(std::move(DatabaseName)),
      FConnection(Manager.Databases().Connection(FDatabaseName)),
      FOptions(Options) {
  TakeTargets(Targets);
  FKeys = ReadKeys();
  FTriggers = ReadTriggers();
  MakeOrder(Targets);
  MakeGroups();
  CheckEmptying();
}

void TKeyedLoading::TakeTargets(const std::vector<TLoadTarget>& Targets) {
  std::map<std::string, TTableInfo> Known;
  if (Targets.size() > 1)
    for (TTableInfo& Table : FConnection.Schema().Tables()) Known.emplace(FullName(Table), std::move(Table));
  for (const TLoadTarget& Target : Targets) {
    const auto [Place, IsNew] = FTargets.try_emplace(Target.Table);
    Place->second.Replaced = Place->second.Replaced || Target.Empty;
    Place->second.Many = Place->second.Many || Target.Many;
    if (!IsNew) continue;
    // The list leaves parts of other tables out.
    const auto Found = Known.find(Target.Table);
    if (Found != Known.end())
      Place->second.Info = Found->second;
    else if (const auto Info = FConnection.Schema().FindTable(Target.Table))
      Place->second.Info = *Info;
    else
      throw EDatabaseError(Format("There is no table '%s' in the database", Target.Table),
                           {.Code = TErrorCode::TableMissing, .Table = Target.Table});
  }
}

/// A part of a table goes by its own name where it is a target by itself, otherwise by that of the whole.
std::vector<TForeignKey> TKeyedLoading::ReadKeys() const {
  std::vector<TForeignKey> Result;
  for (TForeignKey& Key : FConnection.Schema().ForeignKeys()) {
    if (!FTargets.contains(FullName(Key.From))) Key.From = Key.FromWhole;
    if (!FTargets.contains(FullName(Key.To))) Key.To = Key.ToWhole;
    if (FTargets.contains(FullName(Key.From)) || FTargets.contains(FullName(Key.To))) Result.push_back(std::move(Key));
  }
  return Result;
}

/// Those that what is done to targets makes fire.
std::vector<TTrigger> TKeyedLoading::ReadTriggers() const {
  std::vector<TTrigger> Result;
  for (TTrigger& Trigger : FConnection.Schema().Triggers()) {
    const std::string Table = FullName(Trigger.Table);
    if (!FTargets.contains(Table)) continue;
    if (Trigger.OnInsert || (Trigger.OnDelete && IsReplaced(Table))) Result.push_back(std::move(Trigger));
  }
  return Result;
}

void TKeyedLoading::MakeOrder(const std::vector<TLoadTarget>& Targets) {
  std::vector<std::string> Tables;
  for (const TLoadTarget& Target : Targets) Tables.push_back(Target.Table);
  std::vector<TLoadOrder::TTie> Ties;
  for (const TForeignKey& Key : FKeys) Ties.push_back(TieOf(Key));
  // What such a trigger does to other tables would undo what was loaded before.
  const bool ActsOnDelete = std::any_of(FTriggers.begin(), FTriggers.end(), [this](const TTrigger& One) {
    return One.OnDelete && (FOptions.Triggers || One.IsRule) && IsReplaced(FullName(One.Table));
  });
  FOrder = std::make_unique<const TLoadOrder>(Tables, Ties, FOptions.InGroups && !ActsOnDelete);
}

/// What of keys and triggers is whose, found once: there may be as many groups as tables.
void TKeyedLoading::MakeGroups() {
  FGroups.resize(FOrder->GroupCount());
  for (const TForeignKey& Key : FKeys) {
    const auto [Child, Parent] = TieOf(Key);
    FGroups[FOrder->Group(FOrder->Has(Child) ? Child : Parent)].Keys.push_back(&Key);
  }
  for (const TTrigger& Trigger : FTriggers) {
    const std::string Table = FullName(Trigger.Table);
    FGroups[FOrder->Group(Table)].Triggers.push_back(&Trigger);
    if (Trigger.OnDelete) FTargets.at(Table).HasDeleteTriggers = true;
  }
  FTextIndexes = FConnection.Schema().TextIndexes();
}

bool TKeyedLoading::IsReplaced(const std::string& Table) const {
  const auto Found = FTargets.find(Table);
  return Found != FTargets.end() && Found->second.Replaced;
}

void TKeyedLoading::CheckEmptying() const {
  for (const TForeignKey& Key : FKeys) {
    const auto [Child, Parent] = TieOf(Key);
    if (!Key.ActsOnDelete || Child == Parent || !IsReplaced(Parent) || IsReplaced(Child)) continue;
    if (const std::int64_t Rows = FConnection.Schema().RowCount(Key.From))
      throw EDatabaseError(
          Format("Cannot empty the table '%s': the engine would also delete or change rows of '%s', which has %s that "
                 "may refer to it. Replace the rows of both in one run, or keep the rows that are there",
                 Parent, Child, Counted(Rows, "row")),
          {.Code = TErrorCode::RowRefused, .Table = Parent});
  }
}

void TKeyedLoading::AddNeeds(std::size_t Group, TLoadNeeds& Needs) const {
  Needs.TriggersOff = !FOptions.Triggers;
  Needs.BrokenReferences = FOptions.BrokenReferences;
  Needs.RebuildsIndexes = FOptions.Indexes == TIndexUpkeep::Rebuild && !TriggersFire();
  for (const std::string& Table : FOrder->Tables(Group)) {
    const TTarget& Target = FTargets.at(Table);
    Needs.Targets.push_back({Target.Info, Target.Replaced, Target.HasDeleteTriggers});
  }
  for (const TForeignKey* Key : FGroups[Group].Keys)
    if (FOrder->IsBackwards(TieOf(*Key))) Needs.Circular.push_back(*Key);
}

/// A transaction that holds the locks. Who waits for each other in a circle is refused by the engine, and comes in the
/// next time; a transaction around this one would not survive that.
std::unique_ptr<TTransaction> TKeyedLoading::Locked(TSafeguards& Safeguards) const {
  constexpr auto Pause = std::chrono::milliseconds(100);
  const bool IsOutermost = !FManager.Databases().IsInTransaction(FDatabaseName);
  const auto Until = std::chrono::steady_clock::now() + FManager.Databases().BusyTime();
  for (;;) {
    try {
      auto Transaction = std::make_unique<TTransaction>(FDatabaseName);
      // The one around it holds them already.
      if (!FAll) Safeguards.Lock();
      return Transaction;
    } catch (const EDatabaseError& Error) {
      if (!IsOutermost || Error.Info().Code != TErrorCode::DatabaseBusy || std::chrono::steady_clock::now() >= Until)
        throw;
    }
    std::this_thread::sleep_for(Pause);
  }
}

void TKeyedLoading::BeginAll() {
  TLoadNeeds Needs;
  for (std::size_t Group = 0; Group < FGroups.size(); ++Group) AddNeeds(Group, Needs);
  FAll = Locked(*FConnection.Safeguards(std::move(Needs)));
}

void TKeyedLoading::CommitAll() { std::exchange(FAll, nullptr)->Commit(); }

void TKeyedLoading::Begin(std::size_t Group) {
  FGroup = Group;
  TLoadNeeds Needs;
  AddNeeds(Group, Needs);
  FSafeguards = FConnection.Safeguards(std::move(Needs));
  FTransaction = Locked(*FSafeguards);
  try {
    if (!FAll) CheckPlan();
    Prepare();
  } catch (...) {
    End(false);
    throw;
  }
}

/// Before the locks were held, anybody could change what the plan is made of.
void TKeyedLoading::CheckPlan() const {
  if (ReadKeys() == FKeys && ReadTriggers() == FTriggers) return;
  throw EDatabaseError("Foreign keys or triggers of the tables were changed since the load was planned",
                       {.Code = TErrorCode::DatabaseBusy});
}

void TKeyedLoading::Prepare() {
  FSafeguards->SetAside();
  CountBroken();
  EmptyTables();
  FSafeguards->EndEmptying();
  DropIndexes();
  FSafeguards->BeginRows();
}

/// Any of the run's, which may ask any of its tables.
bool TKeyedLoading::TriggersFire() const {
  return std::any_of(FTriggers.begin(), FTriggers.end(),
                     [this](const TTrigger& One) { return FOptions.Triggers || One.IsRule; });
}

/// Where rows come and go, the engine may find less to do in the indexes than in all of the table.
bool TKeyedLoading::DropsIndexes(const TTarget& Target) const {
  if (Target.Info.Kind != TTableKind::Table || FOptions.Indexes == TIndexUpkeep::Keep) return false;
  if (FOptions.Indexes == TIndexUpkeep::Rebuild) return true;
  return Target.Many && Target.Deleted == 0 && !TriggersFire() && !FConnection.Schema().HasRows(Target.Info);
}

void TKeyedLoading::DropIndexes() {
  FIndexRemarks.clear();
  constexpr const char* Reasons[] = {"",
                                     "M_Velkrund_ComUtils_IndexesStayForCursor",
                                     "M_Velkrund_ComUtils_IndexesStayForOthers",
                                     "M_Velkrund_ComUtils_IndexesStayForRight",
                                     "M_Velkrund_ComUtils_IndexesStayForWatcher",
                                     "M_Velkrund_ComUtils_IndexesStayForName",
                                     "M_Velkrund_ComUtils_IndexesStayForMarks"};
  for (const std::string& Table : FOrder->Tables(FGroup)) {
    TTarget& Target = FTargets.at(Table);
    if (!DropsIndexes(Target)) continue;
    TLText Remark;
    if (TriggersFire())
      Remark = LText("M_Velkrund_ComUtils_IndexesStayForTriggers", Table);
    else if (const TIndexObstacle Obstacle = FSafeguards->DropIndexes(Target.Info); Obstacle != TIndexObstacle::None)
      Remark = LText(Reasons[static_cast<std::size_t>(Obstacle)], Table);
    if (!Remark.Empty() && FOptions.Indexes == TIndexUpkeep::Rebuild) FIndexRemarks.push_back(std::move(Remark));
  }
}

void TKeyedLoading::MakeIndexes(TSafeguards& Safeguards) {
  for (const std::string& Table : FOrder->Tables(FGroup)) {
    const TTableInfo& Info = FTargets.at(Table).Info;
    const auto Count = static_cast<std::int64_t>(Safeguards.DroppedIndexes(Info));
    if (Count == 0) continue;
    FManager.Notice(LCounted("M_Velkrund_ComUtils_MakingIndexes", Count, Count, Table).Local());
    Safeguards.MakeIndexes(Info);
  }
}

/// Of the group's tables, and of all others that refer to them.
void TKeyedLoading::CountBroken() {
  FReferences = std::make_unique<TReferenceCheck>(FConnection.Schema(), FOptions.BrokenReferences);
  const bool Enforces = FConnection.Capabilities().EnforcesForeignKeys && !FOptions.BrokenReferences;
  for (const TForeignKey* Key : FGroups[FGroup].Keys)
    if (!Enforces || !Key->IsEnforced) FReferences->Count(Key->From, FOrder->Has(FullName(Key->From)));
}

/// Why the rows of a table take long to delete, for people; empty: they do not. The rows that refer to them cost as
/// much when they have just been deleted themselves.
std::string TKeyedLoading::SlowDeletion(const std::string& Table) const {
  if (!FConnection.Capabilities().EnforcesForeignKeys || FOptions.BrokenReferences) return {};
  for (const TForeignKey* Key : FGroups[FGroup].Keys) {
    const auto [Child, Parent] = TieOf(*Key);
    if (Parent != Table || Key->Unindexed.empty() || !Key->IsEnforced) continue;
    if (FMoved.contains(Child) || FConnection.Schema().HasRows(Key->From))
      return LText("M_Velkrund_ComUtils_IndexIsMissing", Child, Key->Unindexed).Local();
  }
  return {};
}

/// Children first: the engine deletes no row that another one refers to.
void TKeyedLoading::EmptyTables() {
  const std::vector<std::string>& Tables = FOrder->Tables(FGroup);
  for (auto Table = Tables.rbegin(); Table != Tables.rend(); ++Table) {
    TTarget& Target = FTargets.at(*Table);
    Target.Deleted = 0;
    if (!Target.Replaced) continue;
    const auto Opened = FManager.GetUserTable(*Table, FDatabaseName, true);
    if (auto* SQLTable = dynamic_cast<TODBCTable*>(Opened.get()))
      Target.Deleted = EmptyTable(*SQLTable, FDatabaseName, SlowDeletion(*Table));
    if (Target.Deleted > 0) FMoved.insert(*Table);
  }
}

std::int64_t TKeyedLoading::TakeDeletedRows(const std::string& Table) {
  const auto Found = FTargets.find(Table);
  return Found == FTargets.end() ? 0 : std::exchange(Found->second.Deleted, 0);
}

void TKeyedLoading::End(bool Whole) {
  const std::unique_ptr<TTransaction> Transaction = std::move(FTransaction);
  const std::unique_ptr<TSafeguards> Safeguards = std::move(FSafeguards);
  const std::unique_ptr<TReferenceCheck> References = std::move(FReferences);
  if (!Transaction || !Whole) return;
  std::vector<TLText> Remarks = std::exchange(FIndexRemarks, {});
  Safeguards->EndRows();
  References->Compare(Remarks);
  NoteMoved();
  MakeIndexes(*Safeguards);
  RebuildTextIndexes(Remarks);
  Safeguards->PutBack();
  Transaction->Commit();
  FRemarks.insert(FRemarks.end(), Remarks.begin(), Remarks.end());
  TellTriggers();
}

/// Triggers are of interest where something was done.
void TKeyedLoading::NoteMoved() {
  for (const TTrigger* Trigger : FGroups[FGroup].Triggers) {
    const std::string Table = FullName(Trigger->Table);
    if (FMoved.contains(Table)) continue;
    if (FConnection.Schema().HasRows(FTargets.at(Table).Info)) FMoved.insert(Table);
  }
}

/// Those that the engine keeps beside a table's rows, which its triggers may have passed by.
void TKeyedLoading::RebuildTextIndexes(std::vector<TLText>& Remarks) {
  for (const TTextIndex& Each : FTextIndexes) {
    const std::string Table = FullName(Each.Table);
    // What a view shows may come from any table.
    const bool IsMeant = FOrder->Has(Table) ? FOrder->Group(Table) == FGroup : Each.Table.Kind == TTableKind::View;
    if (!IsMeant) continue;
    FManager.Notice(LText("M_Velkrund_ComUtils_MakingTextIndex", FullName(Each.Index)).Local());
    FConnection.RebuildTextIndex(Each.Index);
    Remarks.push_back(LText("M_Velkrund_ComUtils_TextIndexMade", FullName(Each.Index), Table));
  }
}

/// What was loaded is not all that has happened.
void TKeyedLoading::TellTriggers() {
  const bool ReferencesOff = FOptions.BrokenReferences && FConnection.Capabilities().EnforcesForeignKeys;
  if (ReferencesOff) FRemarks.push_back(LText("M_Velkrund_ComUtils_ReferencesOff"));
  const auto IsRule = [](const TTrigger& One) { return One.IsRule; };
  const auto IsOff = [&](const TTrigger& One) {
    return !One.IsRule && (!FOptions.Triggers || (ReferencesOff && !One.Always));
  };
  const auto IsOn = [&](const TTrigger& One) { return !One.IsRule && !IsOff(One); };
  TellNames("M_Velkrund_ComUtils_TriggersOn", IsOn);
  TellNames("M_Velkrund_ComUtils_TriggersOff", IsOff);
  TellNames("M_Velkrund_ComUtils_RulesRewrote", IsRule);
}

void TKeyedLoading::TellNames(const char* Key, const std::function<bool(const TTrigger&)>& IsMeant) {
  std::vector<TLText> Names;
  for (const TTrigger* Trigger : FGroups[FGroup].Triggers) {
    const std::string Table = FullName(Trigger->Table);
    if (FMoved.contains(Table) && IsMeant(*Trigger))
      Names.push_back(LText("M_Velkrund_ComUtils_TriggerOf", Trigger->Name, Table));
  }
  if (!Names.empty()) FRemarks.push_back(LText(Key, LJoinedInShort(Names)));
}

}  // namespace velkrund
