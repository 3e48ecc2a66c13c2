#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/windows/terminal/TerminalText.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

// All in the language of the user.

/// "1 row", "2 rows".
std::string RowsText(std::int64_t Count);
/// The same of localized strings, and of their texts.
std::string StringsText(std::int64_t Count);
std::string TextsText(std::int64_t Count);
/// "1 section", "2 sections".
std::string SectionsText(std::int64_t Count);
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
/// The same, piece by piece, of rows that are made when they are needed, twice each.
using TRowOfColumns = std::function<std::vector<std::string>(std::size_t Number)>;
void WriteColumns(std::size_t RowCount, const TRowOfColumns& RowAt, const std::vector<bool>& RightAligned,
                  const std::function<void(std::string_view)>& Write);

}  // namespace velkrund
