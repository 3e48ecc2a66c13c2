#pragma once

#include <optional>
#include <string_view>

namespace velkrund {

// What the engine's readers of texts would change without a word, found before the engine sees it.

/// Whether the engine holds such a text: well-formed UTF-8 without lone surrogates. A character U+0000 is not looked
/// for.
bool IsPostgreSQLText(std::string_view Text);
/// Number of characters of such a text.
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

// Dates and times in the engine's ISO form and nothing else: neither words for the current moment nor parts that the
// type would drop. Zoned: a zone may follow.
bool IsPostgreSQLDate(std::string_view Text);
bool IsPostgreSQLTime(std::string_view Text, bool Zoned);
bool IsPostgreSQLTimestamp(std::string_view Text, bool Zoned);

}  // namespace velkrund
