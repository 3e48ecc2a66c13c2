#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "standalone/databases/StandaloneManager.h"
#include "standalone/relations/LoadOrder.h"
#include "standalone/relations/ReferenceCheck.h"
#include "velkrund/platform/database/Relations.h"
#include "velkrund/platform/database/Transaction.h"

namespace velkrund {

/// A loading of tables as the engine's foreign keys and triggers ask for it.
class TKeyedLoading final : public TTableLoading {
 public:
  /// Manager: borrowed. Raises EDatabaseError as TRelations::Load does.
  TKeyedLoading(TStandaloneManager& Manager, std::string DatabaseName, const std::vector<TLoadTarget>& Targets,
                const TLoadOptions& Options);

  void BeginAll() override;
  void CommitAll() override;
  std::size_t Rank(const std::string& Table) const override { return FOrder->Rank(Table); }
  std::size_t Group(const std::string& Table) const override { return FOrder->Group(Table); }
  void Begin(std::size_t Group) override;
  std::int64_t TakeDeletedRows(const std::string& Table) override;
  void End(bool Whole) override;
  const std::vector<TLText>& Remarks() const override { return FRemarks; }

 private:
  struct TTarget {
    TTableInfo Info;
    bool Replaced = false;
    bool Many = false;               // rows come
    bool HasDeleteTriggers = false;  // which fire when it is emptied
    std::int64_t Deleted = 0;
  };

  /// What it has of keys and triggers.
  struct TGroup {
    std::vector<const TForeignKey*> Keys;
    std::vector<const TTrigger*> Triggers;
  };

  void TakeTargets(const std::vector<TLoadTarget>& Targets);
  std::vector<TForeignKey> ReadKeys() const;
  std::vector<TTrigger> ReadTriggers() const;
  void CheckPlan() const;
  void MakeOrder(const std::vector<TLoadTarget>& Targets);
  bool IsReplaced(const std::string& Table) const;
  void CheckEmptying() const;
  void MakeGroups();
  void AddNeeds(std::size_t Group, TLoadNeeds& Needs) const;
  std::unique_ptr<TTransaction> Locked(TSafeguards& Safeguards) const;
  void Prepare();
  void CountBroken();
  std::string SlowDeletion(const std::string& Table) const;
  void EmptyTables();
  bool DropsIndexes(const TTarget& Target) const;
  void DropIndexes();
  void MakeIndexes(TSafeguards& Safeguards);
  bool TriggersFire() const;
  void RebuildTextIndexes(std::vector<TLText>& Remarks);
  void TellTriggers();
  void TellNames(const char* Key, const std::function<bool(const TTrigger&)>& IsMeant);
  void NoteMoved();

  TStandaloneManager& FManager;
  const std::string FDatabaseName;
  TConnection& FConnection;
  const TLoadOptions FOptions;
  std::map<std::string, TTarget> FTargets;
  std::vector<TForeignKey> FKeys;   // with a target at one of their ends at least
  std::vector<TTrigger> FTriggers;  // that what is done to targets makes fire
  std::unique_ptr<const TLoadOrder> FOrder;
  std::vector<TGroup> FGroups;
  std::vector<TTextIndex> FTextIndexes;
  std::unique_ptr<TTransaction> FAll;  // around all groups
  std::set<std::string> FMoved;        // tables that rows went from or came into
  // Of the group at hand.
  std::size_t FGroup = 0;
  std::unique_ptr<TTransaction> FTransaction;
  std::unique_ptr<TSafeguards> FSafeguards;
  std::unique_ptr<TReferenceCheck> FReferences;
  std::vector<TLText> FIndexRemarks;  // of indexes that were to be made again, and stay
  std::vector<TLText> FRemarks;
};

}  // namespace velkrund
