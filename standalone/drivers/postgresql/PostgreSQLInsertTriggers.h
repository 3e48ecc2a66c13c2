#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

struct TPostgreSQLRowEvents {
  bool OnInsert = false, OnUpdate = false;
};

/// The triggers that fire when that happens to rows of a table or its parts. TableOid: in decimal. What begins
/// messages.
std::vector<std::string> ReadPostgreSQLTriggers(TPostgreSQLSession& Session, const std::string& TableOid,
                                                const std::string& What, TPostgreSQLRowEvents Events);

}  // namespace velkrund
