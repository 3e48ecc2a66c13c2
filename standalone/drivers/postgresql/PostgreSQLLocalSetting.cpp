#include "standalone/drivers/postgresql/PostgreSQLLocalSetting.h"

#include <utility>

#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

void Set(TPostgreSQLSession& Session, const std::string& Name, const std::string& Value) {
  Session.Query(Format("Cannot set %s to '%s'", Name, Value), "SELECT pg_catalog.set_config($1, $2, true)",
                {Name.c_str(), Value.c_str()});
}

}  // namespace

TPostgreSQLLocalSetting::TPostgreSQLLocalSetting(TPostgreSQLSession& Session, std::string Name,
                                                 const std::string& Value)
    : FSession(Session), FName(std::move(Name)) {
  FBefore = FSession.Query(Format("Cannot read %s", FName), "SELECT pg_catalog.current_setting($1)", {FName.c_str()})
                .Copy(0, 0);
  Set(FSession, FName, Value);
}

TPostgreSQLLocalSetting::~TPostgreSQLLocalSetting() {
  try {
    Set(FSession, FName, FBefore);
  } catch (const Exception&) {
    // A transaction that has failed takes the setting back when it ends.
  }
}

}  // namespace velkrund
