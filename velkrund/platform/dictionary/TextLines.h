#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// A longer text as descriptions keep it: cut at line feeds, of which each line but the last has lost one. Other line
/// ends stay inside. Never empty.
std::vector<std::string> SplitLines(std::string_view Text);
/// The text again.
std::string JoinedLines(const std::vector<std::string>& Lines);

}  // namespace velkrund
