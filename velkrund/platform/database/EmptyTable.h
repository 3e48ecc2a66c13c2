#pragma once

#include <string>

#include "velkrund/platform/database/Tables.h"

namespace velkrund {

/// Deletes all rows of a table of that database, within a transaction of the caller. Raises EDatabaseError, also for
/// rows that stay although the engine reports success: a trigger or a rule can keep them.
void EmptyTable(TODBCTable& Table, const std::string& DatabaseName);

}  // namespace velkrund
