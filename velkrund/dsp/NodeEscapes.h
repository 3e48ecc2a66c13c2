#pragma once

#include <string>
#include <string_view>

#include "velkrund/eif/TextEscapes.h"
#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/LineReader.h"

namespace velkrund {

// Texts within values. Current ones escape control characters and "#" as "#" and four digits of a UTF-16 unit, 8-bit
// ones as "#" and two digits of a byte. Readers raise EDSPUtilError for digits that are none, and take "#" with too few
// characters behind it for the end of the text.

/// Decodes current escapes in place.
void UnescapeText(std::string& Text, TLoneUnit Lone = TLoneUnit::Byte);

/// Appends 8-bit text: bytes 32 to 127 as themselves, all others escaped. "#" is not escaped, though readers always
/// take it for the beginning of an escape: files have been so from the beginning, and their readers rely on neither.
/// Such a text comes back as another one, and is counted.
void AppendAnsiEscaped(std::string& Out, std::string_view Bytes, TTextLosses& Losses);
/// Reads 8-bit text. Characters stand for their low eight bits. Control characters below 32 are EDSPUtilError.
void ReadAnsiEscaped(std::string_view Text, std::string& Bytes);

/// Reads 8-bit text in which characters stand for their bytes in the page, as version 100 has it; those that the page
/// lacks become '?' and are counted. To bytes, and to UTF-8.
void ReadPageEscaped(std::string_view Text, const TCodePage& Page, std::string& Bytes, TTextLosses& Losses);
void ReadPageEscapedAsUtf8(std::string_view Text, const TCodePage& Page, std::string& Out, TTextLosses& Losses);

}  // namespace velkrund
