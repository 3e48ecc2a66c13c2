#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/windows/terminal/TerminalText.h"

namespace velkrund {

/// "1 row", "2 rows".
std::string Counted(std::int64_t Count, std::string_view Noun);
/// "812 bytes", "3.4 MB" (powers of 1000).
std::string ByteText(double Bytes);
/// "350", "350k", "1.2M".
std::string ShortNumber(double Number);
/// "7 s", "1:05", "2:03:09".
std::string ClockText(std::int64_t Seconds);
/// The same, and below ten seconds "250 ms", "2.50 s".
std::string DurationText(double Seconds);

/// Paragraphs, broken at blanks to lines of at most Width characters, each begun with Indent blanks but the first.
std::string Wrapped(std::string_view Text, int Indent, int Width);
/// The items with ", " between them.
std::string Joined(const std::vector<std::string>& Items);
/// The same for messages, which name the first 20 and say how many more there are.
std::string JoinedInShort(std::vector<std::string> Items);

/// Columns of texts, padded so that they stand under each other. RightAligned: per column.
std::string ColumnsText(const std::vector<std::vector<std::string>>& Rows, const std::vector<bool>& RightAligned);

}  // namespace velkrund
