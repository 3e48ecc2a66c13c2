#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// What the database does by itself when rows are inserted into a table or its parts.
struct TPostgreSQLInsertTriggers {
  std::vector<std::string> Names;
  bool MayIgnoreRows = false;  // one of them can drop a row without an error
};

/// Those that are not disabled. TableOid: in decimal. What begins messages.
TPostgreSQLInsertTriggers ReadPostgreSQLInsertTriggers(TPostgreSQLSession& Session, const std::string& TableOid,
                                                       const std::string& What);

}  // namespace velkrund
