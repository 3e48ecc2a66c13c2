#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// "1 row", "2 rows".
std::string Counted(std::int64_t Count, std::string_view Noun);
/// Of the forms that a text has for numbers, with "|" between them, the one for Count: "row|rows", and where a language
/// needs them "строка|строки|строк" (for 1, for 2 to 4, for the rest; 21 is as 1, 11 is not). A text without "|" is its
/// only form.
std::string_view FormFor(std::int64_t Count, std::string_view Forms);
/// The items with ", " between them.
std::string Joined(const std::vector<std::string>& Items);
/// The same for messages, which name the first 20 and say how many more there are.
std::string JoinedInShort(std::vector<std::string> Items, std::string_view MoreText = " and %d more");

}  // namespace velkrund
