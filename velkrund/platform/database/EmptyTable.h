#pragma once

#include <cstdint>
#include <string>

#include "velkrund/platform/database/Tables.h"

namespace velkrund {

/// Deletes all rows of a table of that database, within a transaction of the caller; returns how many. Raises
/// EDatabaseError, also for rows that stay although the engine reports success: a trigger or a rule can keep them.
/// Remark: what people are told beside, in their language.
std::int64_t EmptyTable(TODBCTable& Table, const std::string& DatabaseName, const std::string& Remark = {});

}  // namespace velkrund
