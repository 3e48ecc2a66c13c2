#pragma once

#include "standalone/drivers/Safeguards.h"
#include "standalone/drivers/sqlite/SQLiteIndexesAside.h"

namespace velkrund {

/// The transaction locks the whole database by itself. Triggers have one switch for the connection.
class TSQLiteSafeguards final : public TSafeguards {
 public:
  /// Database: borrowed. EnforcesKeys: the engine itself refuses rows that refer to nothing.
  TSQLiteSafeguards(const TSQLiteDatabase& Database, TLoadNeeds Needs, bool EnforcesKeys)
      : FDatabase(Database), FNeeds(std::move(Needs)), FEnforcesKeys(EnforcesKeys), FIndexes(Database) {}
  ~TSQLiteSafeguards() override { SwitchTriggers(true); }

  void Lock() override {}
  void SetAside() override;
  void EndEmptying() override {}
  TIndexObstacle DropIndexes(const TTableInfo& Table) override { return FIndexes.Drop(Table.Name); }
  void BeginRows() override {}
  /// Deferred keys are checked by the commit.
  void EndRows() override {}
  std::size_t DroppedIndexes(const TTableInfo& Table) const override { return FIndexes.Dropped(Table.Name); }
  void MakeIndexes(const TTableInfo& Table) override { FIndexes.Make(Table.Name); }
  void PutBack() override { SwitchTriggers(true); }

 private:
  void SwitchTriggers(bool On) noexcept;

  const TSQLiteDatabase& FDatabase;
  const TLoadNeeds FNeeds;
  const bool FEnforcesKeys;
  bool FTriggersOff = false;
  TSQLiteIndexesAside FIndexes;
};

}  // namespace velkrund
