#pragma once

#include <string>
#include <string_view>

namespace velkrund {

/// Text with line ends as one line feed, and other control characters and malformed bytes visible ("\x1B"), so that
/// what came out of a file or a database cannot take a terminal over.
std::string Printable(std::string_view Text);
/// The same for a name or a value on one line: line ends are visible too.
std::string OnOneLine(std::string_view Text);

}  // namespace velkrund
