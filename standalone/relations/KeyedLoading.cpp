#include "standalone/relations/KeyedLoading.h"

#include <algorithm>
#include <utility>

#include "velkrund/platform/database/EmptyTable.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

TKeyedLoading::TKeyedLoading(TStandaloneManager& Manager, std::string DatabaseName,
                             const std::vector<TLoadTarget>& Targets)
    : FManager(Manager),
      FDatabaseName(std::move(DatabaseName)),
      FConnection(Manager.Databases().Connection(FDatabaseName)) {
  for (const TLoadTarget& Target : Targets) {
    TLoaded& Table = FTables.try_emplace(Target.Table, TLoaded{Target.Empty}).first->second;
    Table.Empty = Table.Empty || Target.Empty;
  }
  TakeKeys();
  PutInOrder(Targets);
  CheckEmptying();
  FAreOne = ShouldBeOne();
}

void TKeyedLoading::TakeKeys() {
  for (const TForeignKey& Key : FConnection.Schema().ForeignKeys()) {
    TTie Tie{FullName(Key.From), FullName(Key.To), Key.From, Key.ActsOnDelete};
    const auto Child = FTables.find(Tie.Child);
    const bool HasParent = IsLoaded(Tie.Parent);
    if (Child == FTables.end() && !HasParent) continue;
    if (Child != FTables.end() && HasParent) {
      Child->second.Parents.push_back(Tie.Parent);
      FRelated = FRelated || Tie.OfTwo();
    }
    FTies.push_back(std::move(Tie));
  }
}

void TKeyedLoading::PutInOrder(const std::vector<TLoadTarget>& Targets) {
  for (const TLoadTarget& Target : Targets) Visit(Target.Table);
}

/// What a table refers to comes before it; in a circle, whatever was met first comes last.
void TKeyedLoading::Visit(const std::string& Table) {
  TLoaded& Loaded = FTables.at(Table);
  if (std::exchange(Loaded.Visited, true)) return;
  for (const std::string& Parent : Loaded.Parents) {
    const TLoaded& Above = FTables.at(Parent);
    FCircular = FCircular || (Parent != Table && Above.Visited && !Above.Placed);
    Visit(Parent);
  }
  Loaded.Placed = true;
  Loaded.Rank = FOrder.size();
  FOrder.push_back(Table);
}

std::size_t TKeyedLoading::Rank(const std::string& Table) const {
  const auto Found = FTables.find(Table);
  return FRelated && Found != FTables.end() ? Found->second.Rank : 0;
}

bool TKeyedLoading::IsEmptied(const std::string& Table) const {
  const auto Found = FTables.find(Table);
  return Found != FTables.end() && Found->second.Empty;
}

bool TKeyedLoading::Empties(const std::string& Table) const {
  const auto Found = FTables.find(Table);
  return Found != FTables.end() && Found->second.Empty && !Found->second.Emptied;
}

std::int64_t TKeyedLoading::DeletedRows(const std::string& Table) const {
  const auto Found = FTables.find(Table);
  return Found == FTables.end() ? 0 : Found->second.Deleted;
}

void TKeyedLoading::SetLoaded(const std::string& Table) {
  if (const auto Found = FTables.find(Table); Found != FTables.end()) Found->second.Emptied = true;
}

void TKeyedLoading::CheckEmptying() const {
  for (const TTie& Tie : FTies) {
    if (!Tie.ActsOnDelete || !Tie.OfTwo() || !IsEmptied(Tie.Parent) || IsEmptied(Tie.Child)) continue;
    if (const std::int64_t Rows = FConnection.Schema().RowCount(Tie.ChildTable))
      throw EDatabaseError(
          Format("Cannot empty the table '%s': the engine would also delete or change rows of '%s', which has %s that "
                 "may refer to it. Replace the rows of both in one run, or keep the rows that are there",
                 Tie.Parent, Tie.Child, Counted(Rows, "row")),
          {.Code = TErrorCode::References, .Table = Tie.Parent});
  }
}

bool TKeyedLoading::ShouldBeOne() const {
  if (!FConnection.Capabilities().EnforcesForeignKeys) return !FTies.empty();
  // A key of a circle can only be kept by what is checked at the end, and that has to be the end of all of it.
  return FCircular || std::any_of(FTies.begin(), FTies.end(), [this](const TTie& Tie) {
           return Tie.OfTwo() && IsLoaded(Tie.Child) && IsLoaded(Tie.Parent) &&
                  (IsEmptied(Tie.Child) || IsEmptied(Tie.Parent));
         });
}

void TKeyedLoading::Begin() {
  if (!FAreOne) return;
  auto Transaction = std::make_unique<TTransaction>(FDatabaseName);
  CountBroken();
  EmptyTables();
  FTransaction = std::move(Transaction);
}

/// Children first: the engine deletes no row that another one refers to.
void TKeyedLoading::EmptyTables() {
  for (auto Table = FOrder.rbegin(); Table != FOrder.rend(); ++Table) {
    if (!Empties(*Table)) continue;
    const auto Target = FManager.GetUserTable(*Table, FDatabaseName, true);
    if (auto* SQLTable = dynamic_cast<TODBCTable*>(Target.get()))
      FTables.at(*Table).Deleted = EmptyTable(*SQLTable, FDatabaseName);
  }
  for (auto& [Name, Table] : FTables) Table.Emptied = true;
}

void TKeyedLoading::CountBroken() {
  if (FConnection.Capabilities().EnforcesForeignKeys) return;
  for (const TTie& Tie : FTies) {
    if (FBrokenBefore.contains(Tie.Child) || FUnchecked.contains(Tie.Child)) continue;
    try {
      FBrokenBefore.emplace(Tie.Child, FConnection.Schema().BrokenReferences(Tie.ChildTable).Count);
    } catch (const EDatabaseError& Error) {
      // A key that the engine itself cannot follow.
      FUnchecked.emplace(Tie.Child, Error.what());
    }
  }
}

std::vector<std::string> TKeyedLoading::Warnings() const {
  std::vector<std::string> Result;
  for (const auto& [Table, Reason] : FUnchecked) Result.push_back(Reason);
  return Result;
}

void TKeyedLoading::CheckBroken() const {
  for (const auto& [Name, Before] : FBrokenBefore) {
    const TBrokenReferences After = FConnection.Schema().BrokenReferences({Name, {}});
    if (After.Count <= Before) continue;
    throw EDatabaseError(
        Format(
            "Foreign keys of the table '%s' would be broken by what was loaded, and nothing was changed: %s to "
            "rows that are not there (before: %d), for example %s. Load what they refer to in the same run, or before",
            Name, Counted(After.Count, "value") + (After.Count == 1 ? " refers" : " refer"), Before, After.Example),
        {.Code = TErrorCode::References, .Table = Name});
  }
}

void TKeyedLoading::End(bool Whole) {
  const std::unique_ptr<TTransaction> Transaction = std::move(FTransaction);
  if (!Transaction || !Whole) return;
  CheckBroken();
  Transaction->Commit();
}

}  // namespace velkrund
