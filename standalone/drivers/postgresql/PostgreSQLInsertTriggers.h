#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// The triggers that fire when rows are inserted into a table or its parts. TableOid: in decimal. What begins messages.
std::vector<std::string> ReadPostgreSQLInsertTriggers(TPostgreSQLSession& Session, const std::string& TableOid,
                                                      const std::string& What);

}  // namespace velkrund
