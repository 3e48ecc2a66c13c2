#pragma once

#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/LineReader.h"

namespace velkrund {

/// Whether files can hold a node of that name: it is not empty, begins with no blank and has no ":".
bool IsWritableName(std::string_view Name);

/// Appends the name of a node: control characters and "#" become "#" and two hexadecimal digits. With a Page it is
/// written in its characters and the digits are those of the byte in it; null: in any characters. One with such digits
/// is counted, since readers take it for another. Refused with EDSPError as TNodeTexts::AppendName says.
void AppendNodeName(std::string& Out, std::string_view Name, const TCodePage* Page, TTextLosses& Losses);

/// Reads the name of a node. "#" takes four digits here, though writers give it two: files have always been read so,
/// and a name that holds "#" or a control character comes back as another one. Fewer than four characters behind it end
/// the name. EDSPUtilError for digits that are none.
void ReadNodeName(std::string_view Text, std::string& Name);

}  // namespace velkrund
