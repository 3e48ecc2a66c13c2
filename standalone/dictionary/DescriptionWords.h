#pragma once

#include <array>
#include <span>
#include <string_view>

namespace velkrund {

/// The words of an enumeration in trees, by its values.
template <typename T>
using TWords = std::span<const std::string_view>;

/// Engines whose own words structures keep.
inline constexpr std::array<std::string_view, 3> EngineNames = {"sqlite", "postgresql", "odbc"};

// In an engine's own words.
inline constexpr std::string_view LineNode = "L";
inline constexpr std::string_view TextNode = "Text";  // beside lines; else the text is the value of the engine's node

}  // namespace velkrund
