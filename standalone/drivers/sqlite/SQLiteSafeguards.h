#pragma once

#include "standalone/drivers/Safeguards.h"

namespace velkrund {

class TSQLiteDatabase;

/// The transaction locks the whole database by itself. Triggers have one switch for the connection.
class TSQLiteSafeguards final : public TSafeguards {
 public:
  /// Database: borrowed. EnforcesKeys: the engine itself refuses rows that refer to nothing.
  TSQLiteSafeguards(const TSQLiteDatabase& Database, TLoadNeeds Needs, bool EnforcesKeys)
      : FDatabase(Database), FNeeds(std::move(Needs)), FEnforcesKeys(EnforcesKeys) {}
  ~TSQLiteSafeguards() override { SwitchTriggers(true); }

  void Lock() override {}
  void SetAside() override;
  void EndEmptying() override {}
  void BeginRows() override {}
  /// Deferred keys are checked by the commit.
  void EndRows() override {}
  void PutBack() override { SwitchTriggers(true); }

 private:
  void SwitchTriggers(bool On) noexcept;

  const TSQLiteDatabase& FDatabase;
  const TLoadNeeds FNeeds;
  const bool FEnforcesKeys;
  bool FTriggersOff = false;
};

}  // namespace velkrund
