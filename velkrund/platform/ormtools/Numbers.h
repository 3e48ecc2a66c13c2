#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace velkrund {

// Number texts never depend on the locale. Parsers take the whole text and nothing else: no blanks, no rest.

void AppendInteger(std::string& Out, std::int64_t Value);
void AppendUnsigned(std::string& Out, std::uint64_t Value);

/// The plain text of a floating number: the shortest decimal text that reads back to the same double, with ".0"
/// appended when it has neither point nor exponent, so that a real stays a real; "INF", "-INF" and "NAN" for the rest.
void AppendReal(std::string& Out, double Value);
std::string Str(double Value);

/// Decimal integers with an optional sign ("+" or "-"); nothing on anything else and when out of range.
std::optional<std::int64_t> StrToInt64(std::string_view Text);
std::optional<std::int32_t> StrToInt32(std::string_view Text);
std::optional<std::uint64_t> StrToUInt64(std::string_view Text);

/// The reader of AppendReal's texts: "." as decimal point, optional sign and exponent, INF and NAN in any case.
/// A decimal beyond the range of a double becomes infinity or zero, as arithmetic would make it.
std::optional<double> StrToReal(std::string_view Text);
/// The same; on failure ErrorPosition is the 1-based position of the first character that does not fit (length + 1
/// when the text ends too early), 0 on success.
std::optional<double> StrToReal(std::string_view Text, std::size_t& ErrorPosition);

/// All integers from its negative to it are doubles.
inline constexpr std::int64_t MaxExactInteger = std::int64_t{1} << std::numeric_limits<double>::digits;

/// Whether a double holds exactly that integer. The limit is compared first: a double beyond it cannot be turned back.
constexpr bool IsExactAsReal(std::int64_t Value) {
  const auto Real = static_cast<double>(Value);
  return Real < 0x1p63 && static_cast<std::int64_t>(Real) == Value;
}
constexpr bool IsExactAsReal(std::uint64_t Value) {
  const auto Real = static_cast<double>(Value);
  return Real < 0x1p64 && static_cast<std::uint64_t>(Real) == Value;
}

/// Hexadecimal digits only, upper or lower case; at most 16 of them.
std::optional<std::uint64_t> HexToUnsigned(std::string_view Text);

/// Appends two upper-case hexadecimal digits per byte.
void AppendHex(std::string& Out, std::string_view Bytes);

}  // namespace velkrund
