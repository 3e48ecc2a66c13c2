#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// The lines of a text, as descriptions keep them: without the line feeds between them; and the text again.
std::vector<std::string> SplitLines(std::string_view Text);
std::string JoinedLines(const std::vector<std::string>& Lines);

}  // namespace velkrund
