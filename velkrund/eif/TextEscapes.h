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

/// Where a text stands: among others in a record, or alone.
enum class TEscapePlace { Record, Alone };

/// Appends the current escape of a UTF-8 text. Malformed sequences become U+FFFD; returns how many there were.
std::int64_t AppendEscaped(std::string& Out, std::string_view Text, TEscapePlace Place = TEscapePlace::Record);

/// Decodes current escapes in place and returns the length of the result, which is never longer. "#" with fewer than
/// four characters behind it ends the text there. BadDigits: set to the four characters that are no hexadecimal number,
/// empty when all are; then the result is meaningless.
std::size_t UnescapeInPlace(std::span<char> Text, std::string& BadDigits);

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
