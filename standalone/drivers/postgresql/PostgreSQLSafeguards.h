#pragma once

#include <set>
#include <string>
#include <vector>

#include "standalone/drivers/Safeguards.h"
#include "standalone/drivers/postgresql/PostgreSQLIndexesAside.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// Table locks; keys of circles made deferrable for the load; triggers disabled one by one, since each has a state of
/// its own to go back to. All of it is undone by a roll back of the transaction.
class TPostgreSQLSafeguards final : public TSafeguards {
 public:
  /// Session: borrowed.
  TPostgreSQLSafeguards(TPostgreSQLSession& Session, TLoadNeeds Needs);

  void Lock() override;
  void SetAside() override;
  void EndEmptying() override;
  TIndexObstacle DropIndexes(const TTableInfo& Table) override { return FIndexes.Drop(Table, FNeeds.RebuildsIndexes); }
  void BeginRows() override;
  void EndRows() override;
  std::size_t DroppedIndexes(const TTableInfo& Table) const override { return FIndexes.Dropped(Table); }
  void MakeIndexes(const TTableInfo& Table) override { FIndexes.Make(Table); }
  void PutBack() override;

 private:
  /// Of tables and their parts, as statements name them.
  struct TTriggerState {
    std::string Table, Name;
    char State;
  };
  struct TKey {
    std::string Table, Name;
  };

  void DisableTriggers();
  void DeferKeys();
  void DeferWhatWasDeferred();
  void RefuseLateKeys();
  std::string Role() const;
  void RequireReplicaRole();
  void SetRole(const std::string& Role);

  TPostgreSQLSession& FSession;
  const TLoadNeeds FNeeds;
  std::vector<TTriggerState> FTriggers;  // that were disabled
  std::vector<TKey> FKeys;               // that were made deferrable
  std::string FRole;                     // of replication, as it was
  std::set<std::string> FAltered;        // full names of tables whose indexes may be dropped, where that is asked for
  TPostgreSQLIndexesAside FIndexes;
};

}  // namespace velkrund
