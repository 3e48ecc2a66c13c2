#pragma once

#include <array>
#include <span>
#include <string_view>

namespace velkrund {

/// The words of an enumeration in trees, by its values.
template <typename T>
using TWords = std::span<const std::string_view>;

// By the numbers of the enumerations.
inline constexpr std::array<std::string_view, 23> FieldTypeWords = {
    "Any",      "Int16",         "Int32",     "Int64",       "UInt64", "Real32", "Real64", "Decimal",
    "Money",    "Boolean",       "String",    "FixedString", "Bytes",  "Date",   "",       "Time",
    "DateTime", "ZonedDateTime", "ZonedTime", "Interval",    "Uuid",   "Json",   "Other"};
inline constexpr std::array<std::string_view, 4> AutoKeyWords = {"None", "Always", "ByDefault", "RowNumber"};
inline constexpr std::array<std::string_view, 3> DeferrableWords = {"No", "Immediate", "Deferred"};
inline constexpr std::array<std::string_view, 5> KeyActionWords = {"NoAction", "Cascade", "SetNull", "SetDefault",
                                                                   "Restrict"};
inline constexpr std::array<std::string_view, 2> MatchWords = {"Simple", "Full"};
inline constexpr std::array<std::string_view, 3> ParameterModeWords = {"In", "Out", "InOut"};

/// Engines whose own words structures keep.
inline constexpr std::array<std::string_view, 3> EngineNames = {"sqlite", "postgresql", "odbc"};

// In an engine's own words.
inline constexpr std::string_view LineNode = "L";
inline constexpr std::string_view TextNode = "Text";  // beside lines; else the text is the value of the engine's node

}  // namespace velkrund
