#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

// What was meant by a misspelt name, for messages.

/// The candidate that Text most likely meant, case ignored: one that differs in a few letters that were changed, added,
/// dropped or swapped with their neighbour, or one that Text is the beginning of. Empty when none is near.
std::string Nearest(std::string_view Text, const std::vector<std::string>& Candidates);

/// The same as the end of a message: "; did you mean 'ORDERS'?".
std::string NearestHint(std::string_view Text, const std::vector<std::string>& Candidates);

/// What there is, and what was most likely meant: ": it has LINES, ORDERS; did you mean 'ORDERS'?". Intro: ": it has ".
/// Of a long list what was meant is enough; else it is cut.
std::string ContentHint(std::string_view Text, const std::vector<std::string>& Candidates, std::string_view Intro);

}  // namespace velkrund
