#pragma once

#include <map>
#include <string>
#include <vector>

#include "hosts/cli/Report.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/TableTargets.h"
#include "standalone/drivers/Connection.h"
#include "velkrund/platform/database/Relations.h"

namespace velkrund {

/// The tables that a run loads, as far as foreign keys tie them to each other and to others. Parents are loaded before
/// the tables that refer to them. One transaction holds the run where tables that refer to each other are emptied
/// first, and where the engine enforces no keys, so that what is broken at the end can be taken back. Raises
/// EDatabaseError.
class TRelatedTables final : public TTableLoading {
 public:
  /// Targets: settled. An emptying that would delete or change rows of tables that are not emptied is an error. Both
  /// are borrowed.
  TRelatedTables(const TSession& Session, TTableTargets& Targets);
  /// Takes back what was not ended.
  ~TRelatedTables() override;

  /// By which sections are put in order; equal for all where no table refers to another one.
  std::size_t Rank(const std::string& Table) const override;

  /// Whether all tables come in one transaction. After a failure it is of no use to go on.
  bool AreOne() const override { return FAreOne; }
  /// Starts that transaction, where there is to be one, and empties the tables whose rows go.
  void Begin() override;
  bool Empties(const std::string& Table) const override { return FTargets.StillEmpties(Table); }
  void SetLoaded(const std::string& Table) override { FTargets.SetLoaded(Table); }
  std::vector<std::string> Warnings() const override;
  /// Whole: everything was loaded. Otherwise, and when rows refer to nothing that did not before, which is an error,
  /// all is taken back.
  void End(bool Whole) override;

 private:
  bool IsLoaded(const TTableInfo& Table) const { return FRanks.contains(FullName(Table)); }
  void PutInOrder(const std::vector<std::string>& Tables);
  void Visit(const std::string& Table, std::map<std::string, bool>& Visited);
  void CheckEmptying() const;
  bool ShouldBeOne() const;
  void Empty();
  void CountBroken();
  void CheckBroken() const;

  const TSession& FSession;
  TTableTargets& FTargets;
  TConnection& FConnection;
  const std::vector<TForeignKey> FKeys;
  std::map<std::string, std::size_t> FRanks;  // of all tables that are loaded, parents before children
  bool FRelated = false;                      // a table that is loaded refers to another one
  bool FAreOne = false;
  bool FBegun = false;
  std::map<std::string, std::int64_t> FBrokenBefore;  // rows, by the table that has the keys
  std::map<std::string, std::string> FUnchecked;
};

/// Ends a run over such tables, and enters in the report what became of it.
void EndRelated(TRelatedTables& Related, TReport& Report);

}  // namespace velkrund
