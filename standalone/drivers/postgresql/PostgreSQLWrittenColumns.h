#pragma once

#include <span>
#include <string>
#include <vector>

#include "standalone/drivers/Schema.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "standalone/drivers/postgresql/PostgreSQLTypes.h"

namespace velkrund {

/// The columns that are to be written. Raises EDatabaseError when the table takes no rows, or the engine computes one.
std::vector<TPostgreSQLColumn> PostgreSQLWrittenColumns(const TPostgreSQLSession& Session,
                                                        const TTableDescription& Table, const TPostgreSQLTable& Known,
                                                        std::span<const int> Columns, const std::string& What);

}  // namespace velkrund
