#include "hosts/cli/RelatedTables.h"

#include <algorithm>
#include <utility>

#include "hosts/cli/Interrupt.h"
#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/database/EmptyTable.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

/// Whether rows of one table refer to rows of another.
bool Ties(const TForeignKey& Key) { return FullName(Key.From) != FullName(Key.To); }

}  // namespace

TRelatedTables::TRelatedTables(const TSession& Session, TTableTargets& Targets)
    : FSession(Session),
      FTargets(Targets),
      FConnection(Session.Manager().Databases().Connection(Session.Database())),
      FKeys(FConnection.Schema().ForeignKeys()) {
  PutInOrder(Targets.Loaded());
  FRelated = std::any_of(FKeys.begin(), FKeys.end(), [this](const TForeignKey& Key) {
    return Ties(Key) && IsLoaded(Key.From) && IsLoaded(Key.To);
  });
  CheckEmptying();
  FAreOne = ShouldBeOne();
}

TRelatedTables::~TRelatedTables() {
  try {
    if (FBegun) End(false);
  } catch (const std::exception&) {
    // The error on its way out is the one to tell.
  }
}

void TRelatedTables::PutInOrder(const std::vector<std::string>& Tables) {
  std::map<std::string, bool> Visited;
  for (const std::string& Table : Tables) Visited[Table] = false;
  for (const std::string& Table : Tables) Visit(Table, Visited);
}

/// What a table refers to comes before it; in a circle, whatever was met first comes last.
void TRelatedTables::Visit(const std::string& Table, std::map<std::string, bool>& Visited) {
  const auto Found = Visited.find(Table);
  if (Found == Visited.end() || std::exchange(Found->second, true)) return;
  for (const TForeignKey& Key : FKeys)
    if (FullName(Key.From) == Table) Visit(FullName(Key.To), Visited);
  FRanks.emplace(Table, FRanks.size());
}

std::size_t TRelatedTables::Rank(const std::string& Table) const {
  const auto Found = FRanks.find(Table);
  return FRelated && Found != FRanks.end() ? Found->second : 0;
}

void TRelatedTables::CheckEmptying() const {
  for (const TForeignKey& Key : FKeys) {
    if (!Key.ActsOnDelete || !Ties(Key)) continue;
    if (!FTargets.Empties(FullName(Key.To)) || FTargets.Empties(FullName(Key.From))) continue;
    if (const std::int64_t Rows = FConnection.Schema().RowCount(Key.From))
      throw EDatabaseError(
          Format("Can not empty the table '%s': the engine would also delete or change rows of '%s', which has %s that "
                 "may refer to it. Load both with --replace in one run, or use --append",
                 FullName(Key.To), FullName(Key.From), Counted(Rows, "row")));
  }
}

bool TRelatedTables::ShouldBeOne() const {
  const bool Enforced = FConnection.Capabilities().EnforcesForeignKeys;
  return std::any_of(FKeys.begin(), FKeys.end(), [&](const TForeignKey& Key) {
    if (!Enforced) return IsLoaded(Key.From) || IsLoaded(Key.To);
    return Ties(Key) && IsLoaded(Key.From) && IsLoaded(Key.To) &&
           (FTargets.Empties(FullName(Key.From)) || FTargets.Empties(FullName(Key.To)));
  });
}

void TRelatedTables::Begin() {
  if (!FAreOne) return;
  FSession.Manager().StartTransaction(FSession.Database(), TIsolationLevel::RepeatableRead);
  FBegun = true;
  try {
    CountBroken();
    Empty();
  } catch (...) {
    End(false);
    throw;
  }
}

/// Children first: the engine deletes no row that another one refers to.
void TRelatedTables::Empty() {
  std::vector<std::string> Tables(FRanks.size());
  for (const auto& [Table, Rank] : FRanks) Tables[FRanks.size() - 1 - Rank] = Table;
  for (const std::string& Table : Tables) {
    if (!FTargets.Empties(Table)) continue;
    const auto Target = FSession.Manager().GetUserTable(Table, FSession.Database(), true);
    if (auto* SQLTable = dynamic_cast<TODBCTable*>(Target.get())) EmptyTable(*SQLTable, FSession.Database());
    FTargets.SetLoaded(Table);
  }
}

void TRelatedTables::CountBroken() {
  if (FConnection.Capabilities().EnforcesForeignKeys) return;
  for (const TForeignKey& Key : FKeys) {
    const std::string Name = FullName(Key.From);
    if (!(IsLoaded(Key.From) || IsLoaded(Key.To)) || FBrokenBefore.contains(Name) || FUnchecked.contains(Name))
      continue;
    try {
      FBrokenBefore.emplace(Name, FConnection.Schema().BrokenReferences(Key.From).Count);
    } catch (const EDatabaseError& Error) {
      // A key that the engine itself can not follow.
      FUnchecked.emplace(Name, Error.what());
    }
  }
}

std::vector<std::string> TRelatedTables::Warnings() const {
  std::vector<std::string> Result;
  for (const auto& [Table, Reason] : FUnchecked) Result.push_back(Reason);
  return Result;
}

void TRelatedTables::CheckBroken() const {
  for (const auto& [Name, Before] : FBrokenBefore) {
    const TBrokenReferences After = FConnection.Schema().BrokenReferences({Name, {}});
    if (After.Count <= Before) continue;
    throw EDatabaseError(Format(
        "Foreign keys of the table '%s' would be broken by what was loaded, and nothing was changed: %s refer to "
        "rows that are not there (before: %d), for example %s. Load what they refer to in the same run, or before",
        Name, Counted(After.Count, "value"), Before, After.Example));
  }
}

void TRelatedTables::End(bool Whole) {
  if (!std::exchange(FBegun, false)) return;
  TApplicationManager& Manager = FSession.Manager();
  try {
    if (Whole) CheckBroken();
  } catch (...) {
    Manager.RollbackTransaction(FSession.Database());
    throw;
  }
  if (Whole)
    Manager.CommitTransaction(FSession.Database());
  else
    Manager.RollbackTransaction(FSession.Database());
}

void EndRelated(TRelatedTables& Related, TReport& Report) {
  if (!Related.AreOne()) return;
  for (const std::string& Reason : Related.Warnings()) Report.Notes.push_back("warning: " + Reason);
  const auto IsTable = [](const TReportItem& Item) { return !Item.Table.empty(); };
  bool Whole = Report.Error.empty() && Report.Cancelled.empty();
  for (const TReportItem& Item : Report.Items)
    if (IsTable(Item) && Item.State != TItemState::Done && Item.State != TItemState::LeftOut) Whole = false;
  if (Whole && TInterrupt::Requested()) {
    Whole = false;
    Report.Cancelled = "cancelled";
  }
  try {
    Related.End(Whole);
    if (Whole) return;
  } catch (const std::exception& Error) {
    Report.Error = ExceptionClassName(Error) + ":" + Error.what();
  }
  for (TReportItem& Item : Report.Items)
    if (IsTable(Item) && Item.State == TItemState::Done) Item.State = TItemState::TakenBack;
  Report.Notes.emplace_back("tables with foreign keys are loaded together or not at all");
}

}  // namespace velkrund
