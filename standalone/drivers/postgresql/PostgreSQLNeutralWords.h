#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

// What is neutral in the engine's words; nothing where it has none.

/// A condition, or another expression, on a table with these fields. Where truth is compared with a number, as engines
/// without a type for it do, it is taken as one. Nothing where values of different kinds meet otherwise, which other
/// engines compare.
/// Wanted: as of FitsPostgreSQL.
std::optional<std::string> ConditionWords(const std::string& Neutral, const std::vector<TDicField>& Fields,
                                          std::optional<TDicFieldType> Wanted);

/// Whether a field of the type takes the literal as it is.
bool FitsPostgreSQLField(std::string_view Neutral, TDicFieldType Type);

/// A default of a field of that type. Nothing also for a value that the engine would refuse for the type, or change.
std::optional<std::string> DefaultWords(const std::string& Neutral, TDicFieldType Type);

}  // namespace velkrund
