#pragma once

#include <string>

#include "standalone/drivers/Safeguards.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// The tables of a load as the text of an array of qualified names.
std::string PostgreSQLNamesOf(const TLoadNeeds& Needs, const TPostgreSQLDialect& Dialect);

/// The locks of a load, on all of its tables in one order, each in the strongest mode that the load needs.
class TPostgreSQLLocks {
 public:
  /// Both borrowed.
  TPostgreSQLLocks(TPostgreSQLSession& Session, const TLoadNeeds& Needs) : FSession(Session), FNeeds(Needs) {}

  /// As the first statements of a transaction. Raises EDatabaseError, of the code DatabaseLocks where the server has no
  /// room for all that the load will take.
  void Take();

 private:
  bool NeedsOwner(const TTableInfo& Table) const;
  const char* ModeFor(const TLoadNeeds::TTarget& Target) const;
  bool MayLock(const TLoadNeeds::TTarget& Target);
  void LockOne(const TLoadNeeds::TTarget& Target);
  void CheckRoom();
  [[noreturn]] static void RaiseNoRoom(const std::string& EngineCode);

  TPostgreSQLSession& FSession;
  const TLoadNeeds& FNeeds;
};

}  // namespace velkrund
