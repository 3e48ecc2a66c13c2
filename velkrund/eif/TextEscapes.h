#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/CodePage.h"

namespace velkrund {

// How texts stand in files: control characters, "#" and, within records, "|" are written as "#" and hexadecimal digits,
// everything else as itself. Current escapes have four digits of a UTF-16 unit and cover the control characters 127 ..
// 159 too; old ones have two digits of a byte in the code page. Quotes are the caller's.
//
// A database's text may have bytes that are not UTF-8. In current escapes each of them is a unit of its own, U+DC80 ..
// U+DCFF for the bytes 80 .. FF, so that every text comes back byte for byte. The three-byte forms of surrogates are
// such bytes too.

/// Where a text stands: among others in a record, or alone.
enum class TEscapePlace { Record, Alone };

/// What a unit U+DC80 .. U+DCFF alone is: the byte that it stands for, or a character in three-byte form. To a writer
/// whose units are characters, bytes that are not UTF-8 are nothing to escape: they stay as they are.
enum class TLoneUnit { Byte, Character };

/// Appends the current escape of a text, which is UTF-8 for the most part.
void AppendEscaped(std::string& Out, std::string_view Text, TEscapePlace Place = TEscapePlace::Record,
                   TLoneUnit Lone = TLoneUnit::Byte);

/// Decodes current escapes in place and returns the length of the result, which is never longer. "#" with fewer than
/// four characters behind it ends the text there. A low surrogate joins the escape of a high one directly before it.
/// BadDigits: set to the four characters that are no hexadecimal number, empty when all are; then the result is
/// meaningless.
std::size_t UnescapeInPlace(std::span<char> Text, std::string& BadDigits, TLoneUnit Lone = TLoneUnit::Byte);

/// Appends the old escape of a UTF-8 text; characters that the page lacks become '?', malformed sequences too. Returns
/// how many were replaced.
std::int64_t AppendOldEscaped(std::string& Out, std::string_view Text, const TCodePage& Page,
                              TEscapePlace Place = TEscapePlace::Record);
/// The same for bytes of the code page.
void AppendOldEscapedBytes(std::string& Out, std::string_view Bytes, const TCodePage& Page,
                           TEscapePlace Place = TEscapePlace::Record);
/// Appends "#" and the two digits of a byte.
void AppendByteEscape(std::string& Out, unsigned char Byte);

/// Makes room for a long value at once, so that appending it does not double the buffer.
void ReserveFor(std::string& Out, std::size_t Bytes);

}  // namespace velkrund
