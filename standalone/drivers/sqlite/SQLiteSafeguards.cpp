#include "standalone/drivers/sqlite/SQLiteSafeguards.h"

#include <sqlite3.h>

#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

void TSQLiteSafeguards::SetAside() {
  if (FEnforcesKeys && FNeeds.BrokenReferences)
    throw EDatabaseError(
        FDatabase.About("load rows that refer to nothing into") +
            ": the engine is set to enforce foreign keys, and nothing can change that in a transaction",
        {.Code = TErrorCode::References});
  if (FNeeds.TriggersOff) SwitchTriggers(false);
  if (!FEnforcesKeys || FNeeds.Circular.empty()) return;
  TSQLiteStatement(FDatabase.Handle(), "PRAGMA defer_foreign_keys = ON", FDatabase.About("load rows into")).Step();
}

void TSQLiteSafeguards::SwitchTriggers(bool On) noexcept {
  if (FTriggersOff != On) return;
  sqlite3_db_config(FDatabase.Handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, On ? 1 : 0, nullptr);
  FTriggersOff = !On;
}

}  // namespace velkrund
