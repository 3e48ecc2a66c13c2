#pragma once

#include <optional>
#include <string_view>

namespace velkrund {

// What the engine's readers of texts would change without a word, found before the engine sees it.

/// Number of characters of a text in UTF-8.
std::size_t CharacterCount(std::string_view Text);

/// Whether Text is the one way to write an integer: no "+", no zeros in front, no "-0".
bool IsPlainInteger(std::string_view Text);
/// The same for decimals, which keep the zeros behind the point: "-12.50", not ".5", "1." or "1e3".
bool IsPlainDecimal(std::string_view Text);

/// The place of the last digit other than 0 of a decimal, behind the point from 1, before it from 0 downwards; an
/// exponent counts. The least int for zero.
int LastPlace(std::string_view Decimal);

/// The most digits behind a point in Text, zeros at the end apart.
int LongestFraction(std::string_view Text);

// Dates and times in ISO form, as the engine's or with "T", without seconds, and nothing else: neither words for the
// current moment nor parts that the type would drop. Zoned: any zone may follow; otherwise that of UTC, "Z" or
// "+00:00".
/// A day, or midnight of one.
bool IsPostgreSQLDate(std::string_view Text);
bool IsPostgreSQLTime(std::string_view Text, bool Zoned);
bool IsPostgreSQLTimestamp(std::string_view Text, bool Zoned);
/// A day alone.
bool IsPostgreSQLDay(std::string_view Text);

}  // namespace velkrund
