#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>

#include "standalone/drivers/Safeguards.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// The tables of a load as the text of an array of qualified names.
std::string PostgreSQLNamesOf(const TLoadNeeds& Needs, const TPostgreSQLDialect& Dialect);

/// The locks of a load, on all of its tables in one order, each in the strongest mode that the load needs.
class TPostgreSQLLocks {
 public:
  /// Altered: the full names of those that nobody else is to see meanwhile, beside what circles of keys ask for. All
  /// but the last borrowed.
  TPostgreSQLLocks(TPostgreSQLSession& Session, const TLoadNeeds& Needs, std::set<std::string> Altered)
      : FSession(Session), FNeeds(Needs), FAltered(std::move(Altered)) {}

  /// As the first statements of a transaction. Raises EDatabaseError, of the code DatabaseLocks where the server has no
  /// room for all that the load will take.
  void Take();

 private:
  struct TWanted {
    const TLoadNeeds::TTarget* Target;
    const char* Mode;
    std::string Name;
  };

  const char* ModeFor(const TLoadNeeds::TTarget& Target) const;
  void LockWeakly(std::span<const TWanted> Tables);
  void LockOne(const TWanted& Table);
  void CheckRoom();
  [[noreturn]] static void RaiseNoRoom(const std::string& EngineCode);

  TPostgreSQLSession& FSession;
  const TLoadNeeds& FNeeds;
  std::set<std::string> FAltered;  // full names of tables that are, for which their owner's rights are needed
};

}  // namespace velkrund
