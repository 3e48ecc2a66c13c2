#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace velkrund {

// Texts are UTF-8 throughout. A lone UTF-16 surrogate, which an escape in a file can produce, is kept as its three-byte
// form (ED A0 80 .. ED BF BF); every function here takes it as one valid character. Where a rule counts characters it
// means UTF-16 units: a character beyond U+FFFF is two of them.

/// Stands before the first line of a file, where it says that the file is UTF-8.
inline constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
/// U+FFFD, in place of what is malformed.
inline constexpr std::string_view ReplacementUtf8 = "\xEF\xBF\xBD";

/// Number of bytes of the longest beginning of Text that is ASCII.
std::size_t AsciiPrefix(std::string_view Text);

/// Number of UTF-16 units of Text. A malformed sequence counts as one, as the U+FFFD that it decodes to.
std::size_t Utf16Length(std::string_view Text);

/// The bytes of the longest beginning of Text with at most Units UTF-16 units. A character of two units is never cut:
/// the piece is then one unit shorter.
std::size_t Utf16Prefix(std::string_view Text, std::size_t Units);

/// Decodes the character that starts at Position and moves Position behind it. Malformed input yields U+FFFD and moves
/// over the bytes that belong to the broken sequence, at least one (the practice recommended by the Unicode Standard,
/// section "U+FFFD Substitution of Maximal Subparts"). Position must be below Text.size().
char32_t NextCodePoint(std::string_view Text, std::size_t& Position);

/// Appends the UTF-8 form of Code (surrogates: three bytes; above 0x10FFFF: U+FFFD).
void AppendUtf8(std::string& Out, char32_t Code);

/// Appends one UTF-16 unit; a low surrogate that meets the three-byte form of a high one at the end of Out joins it to
/// the four-byte form.
void AppendUtf16Unit(std::string& Out, char16_t Unit);

/// Position of the first malformed byte of Text; std::string_view::npos when there is none. Lone surrogates in
/// three-byte form are well-formed here.
std::size_t FindMalformedUtf8(std::string_view Text);

/// Replaces every malformed sequence of Text by U+FFFD, from position From on; returns how many there were.
std::int64_t RepairUtf8(std::string& Text, std::size_t From = 0);

/// Whether Text is UTF-8 to everybody: neither malformed sequences nor lone surrogates.
bool IsStrictUtf8(std::string_view Text);
/// Appends Text with U+FFFD for each of those.
void AppendStrictUtf8(std::string& Out, std::string_view Text);

/// UTF-8 to UTF-16 and back, for outside hosts. Malformed sequences become U+FFFD; lone surrogates pass unchanged.
std::u16string ToUtf16(std::string_view Text);
std::string FromUtf16(std::u16string_view Text);

/// Text without the bytes up to 0x20 at both ends / at the end.
std::string_view Trim(std::string_view Text);
std::string_view TrimRight(std::string_view Text);
/// Text without trailing blanks (0x20 only; tabs stay).
std::string_view TrimRightBlanks(std::string_view Text);

/// Case folding of a character by Unicode's simple case mapping, the same in every locale (built-in table: Latin,
/// Greek, Cyrillic, Armenian, Georgian and full-width letters).
char32_t LowerCase(char32_t Code);
char32_t UpperCase(char32_t Code);
std::string LowerCase(std::string_view Text);
std::string UpperCase(std::string_view Text);

/// Equality and order of names without regard to case: by lower-cased code points.
bool SameText(std::string_view A, std::string_view B);
int CompareText(std::string_view A, std::string_view B);
/// SameText for an ASCII word, without any table look-up.
bool SameAsciiWord(std::string_view Text, std::string_view UpperCaseWord);

}  // namespace velkrund
