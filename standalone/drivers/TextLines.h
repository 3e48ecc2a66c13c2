#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// The lines of a text, without the line feeds between them; at least one.
std::vector<std::string> SplitLines(std::string_view Text);
/// The way back.
std::string JoinedLines(const std::vector<std::string>& Lines);

}  // namespace velkrund
