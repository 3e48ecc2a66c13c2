#pragma once

#include <string>
#include <string_view>

namespace velkrund {

/// Text with line ends as one line feed, and what could take a terminal over, or make people read something else than
/// is there, visible: control characters of ASCII and malformed bytes as "\x1B", other controls, characters of
/// direction, byte-order marks and lone surrogates as "\u202E". For all that is shown to people; what programs get
/// stays as it is.
std::string Printable(std::string_view Text);
/// The same for a name or a value on one line: line ends are visible too.
std::string OnOneLine(std::string_view Text);

}  // namespace velkrund
