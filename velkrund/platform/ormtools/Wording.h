#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// "1 row", "2 rows".
std::string Counted(std::int64_t Count, std::string_view Noun);
/// The items with ", " between them.
std::string Joined(const std::vector<std::string>& Items);
/// The same for messages, which name the first 20 and say how many more there are.
std::string JoinedInShort(std::vector<std::string> Items);

}  // namespace velkrund
