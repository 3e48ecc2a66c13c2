#pragma once

#include <string>
#include <string_view>

#include "velkrund/eif/EIStream.h"
#include "velkrund/platform/ormtools/CodePage.h"

namespace velkrund {

// The lines of localized texts, which are escaped as a whole: key and text alike. Bytes that are not UTF-8 are left to
// the stream.

/// Appends the current escape of a line, or of a part of one: "#" and four digits of a UTF-16 unit for "#" and control
/// characters.
void AppendEscapedLine(std::string& Out, std::string_view Line);
/// The old one: "#" and two digits for "#" and what is below 32. What a code page lacks stays as it is.
void AppendOldEscapedLine(std::string& Out, std::string_view Line);

/// Decode a text in place; false: its end cuts an escape off, and it ends there. Raise ELUtilError for digits that are
/// none; in old texts, which have bytes of the code page, also for a control character that stands for itself.
bool UnescapeText(std::string& Text);
bool UnescapeOldText(std::string& Text, const TCodePage& Page);

/// Writes an escaped line, in pieces where it is long.
void WriteTextLine(TEIStream& Stream, std::string_view Line);

}  // namespace velkrund
