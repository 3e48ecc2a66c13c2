#include "standalone/drivers/sqlite/SQLiteHandle.h"

#include <sched.h>
#include <sqlite3.h>

namespace velkrund {
namespace {

/// Whether this program may use more than one at a time.
bool HasProcessorToSpare() {
  cpu_set_t Set;
  CPU_ZERO(&Set);
  return sched_getaffinity(0, sizeof Set, &Set) == 0 && CPU_COUNT(&Set) > 1;
}

}  // namespace

std::int64_t TSQLiteTurn::Writes() const { return sqlite3_total_changes64(FDatabase); }

bool TSQLiteTurn::InTransaction() const { return sqlite3_get_autocommit(FDatabase) == 0; }

/// A statement that stands on a row lends its values without asking whose turn it is.
bool TSQLiteTurn::MayWorkAhead(int OwnStatements) const {
  if (sqlite3_threadsafe() == 0 || !HasProcessorToSpare()) return false;
  int Busy = 0;
  for (sqlite3_stmt* One = sqlite3_next_stmt(FDatabase, nullptr); One; One = sqlite3_next_stmt(FDatabase, One))
    Busy += sqlite3_stmt_busy(One) != 0 ? 1 : 0;
  return Busy <= OwnStatements;
}

}  // namespace velkrund
