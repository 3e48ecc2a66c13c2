#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/windows/terminal/TerminalText.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

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

/// Columns of texts, padded so that they stand under each other. RightAligned: per column.
std::string ColumnsText(const std::vector<std::vector<std::string>>& Rows, const std::vector<bool>& RightAligned);

}  // namespace velkrund
