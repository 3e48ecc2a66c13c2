#pragma once

#include <string>
#include <string_view>

namespace velkrund {

/// Text with the middle of very long lines replaced by the number of characters left out there.
std::string WithShortLines(std::string_view Text);

/// How many columns of a terminal the text takes: two for wide characters, none for those that combine with the one
/// before. For text without control characters.
int DisplayWidth(std::string_view Text);
/// The longest beginning that takes at most Columns, characters and what combines with them kept together.
std::string_view CutToWidth(std::string_view Text, int Columns);

}  // namespace velkrund
