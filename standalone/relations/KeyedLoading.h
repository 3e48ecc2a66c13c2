#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "standalone/databases/StandaloneManager.h"
#include "velkrund/platform/database/Relations.h"
#include "velkrund/platform/database/Transaction.h"

namespace velkrund {

/// A loading of tables as their foreign keys ask for it: parents before children, except in circles.
class TKeyedLoading final : public TTableLoading {
 public:
  /// Manager: borrowed. Raises EDatabaseError as TRelations::Load does.
  TKeyedLoading(TStandaloneManager& Manager, std::string DatabaseName, const std::vector<TLoadTarget>& Targets);

  std::size_t Rank(const std::string& Table) const override;
  bool AreOne() const override { return FAreOne; }
  void Begin() override;
  bool Empties(const std::string& Table) const override;
  std::int64_t DeletedRows(const std::string& Table) const override;
  void SetLoaded(const std::string& Table) override;
  std::vector<std::string> Warnings() const override;
  void End(bool Whole) override;

 private:
  /// A foreign key with a table of the loading at one of its ends at least.
  struct TTie {
    std::string Child, Parent;  // which may be the same
    TTableInfo ChildTable;
    bool ActsOnDelete;

    bool OfTwo() const { return Child != Parent; }
  };
  struct TLoaded {
    bool Empty;                             // its rows are deleted first
    bool Emptied = false;                   // by Begin, or rows were loaded since
    std::int64_t Deleted = 0;               // by Begin
    std::vector<std::string> Parents = {};  // those that are loaded
    bool Visited = false;
    bool Placed = false;  // and all that it refers to visited as well
    std::size_t Rank = 0;
  };

  void TakeKeys();
  void PutInOrder(const std::vector<TLoadTarget>& Targets);
  void Visit(const std::string& Table);
  bool IsLoaded(const std::string& Table) const { return FTables.contains(Table); }
  /// Whether the loading as a whole deletes the table's rows.
  bool IsEmptied(const std::string& Table) const;
  void CheckEmptying() const;
  bool ShouldBeOne() const;
  void CountBroken();
  void EmptyTables();
  void CheckBroken() const;

  TStandaloneManager& FManager;
  const std::string FDatabaseName;
  TConnection& FConnection;
  std::vector<TTie> FTies;
  std::map<std::string, TLoaded> FTables;
  std::vector<std::string> FOrder;  // of their ranks
  bool FRelated = false;            // a table that is loaded refers to another one that is
  bool FCircular = false;           // tables that are loaded refer to each other
  bool FAreOne = false;
  std::map<std::string, std::int64_t> FBrokenBefore;  // rows, by the table that has the keys
  std::map<std::string, std::string> FUnchecked;      // the engine's reason, by that table
  std::unique_ptr<TTransaction> FTransaction;
};

}  // namespace velkrund
