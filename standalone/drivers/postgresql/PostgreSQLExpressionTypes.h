#pragma once

#include <optional>
#include <string>
#include <vector>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// Whether the engine takes a neutral expression over those fields as it is: it compares values of like types alone,
/// and takes no number for a truth. Wanted: of what type the value has to be; nothing: of any that has an order.
bool FitsPostgreSQL(const std::string& Neutral, const std::vector<TDicField>& Fields,
                    std::optional<TDicFieldType> Wanted);

}  // namespace velkrund
