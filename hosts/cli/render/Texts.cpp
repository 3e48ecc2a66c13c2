#include "hosts/cli/render/Texts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

std::string Decimals(double Value, int Digits) {
  std::array<char, 64> Buffer;
  const int Length = std::snprintf(Buffer.data(), Buffer.size(), "%.*f", Digits, Value);
  return {Buffer.data(), static_cast<std::size_t>(std::clamp(Length, 0, static_cast<int>(Buffer.size()) - 1))};
}

/// The number in the largest unit that leaves at least 1 before the point.
std::string InUnits(double Value, const std::vector<const char*>& Keys) {
  std::size_t Unit = 0;
  while (Value >= 999.5 && Unit < Keys.size()) {
    Value /= 1000;
    ++Unit;
  }
  const std::string Number = Decimals(Value, Unit > 0 && Value < 9.95 ? 1 : 0);
  return Unit == 0 ? Number : LText(Keys[Unit - 1], Number).Local();
}

}  // namespace

std::string StringsText(std::int64_t Count) { return LCounted("M_Velkrund_Jobs_Strings", Count, Count).Local(); }
std::string TextsText(std::int64_t Count) { return LCounted("M_Velkrund_Jobs_Texts", Count, Count).Local(); }
std::string RowsText(std::int64_t Count) { return LCounted("M_Velkrund_Cli_Rows", Count, Count).Local(); }

std::string SectionsText(std::int64_t Count) { return LCounted("M_Velkrund_Cli_Sections", Count, Count).Local(); }

std::string ByteText(double Bytes) {
  if (Bytes < 1000) return LCounted("M_Velkrund_Cli_Bytes", std::llround(Bytes), std::llround(Bytes)).Local();
  return InUnits(Bytes, {"M_Velkrund_Cli_Kilobytes", "M_Velkrund_Cli_Megabytes", "M_Velkrund_Cli_Gigabytes",
                         "M_Velkrund_Cli_Terabytes", "M_Velkrund_Cli_Petabytes"});
}

std::string ShortNumber(double Number) {
  return InUnits(Number, {"M_Velkrund_Cli_Thousands", "M_Velkrund_Cli_Millions", "M_Velkrund_Cli_Billions"});
}

std::string ClockText(std::int64_t Seconds) {
  if (Seconds < 60) return LText("M_Velkrund_Cli_Seconds", Seconds).Local();
  const auto TwoDigits = [](std::int64_t Value) { return Format(Value < 10 ? "0%d" : "%d", Value); };
  if (Seconds < 3600) return Format("%d:%s", Seconds / 60, TwoDigits(Seconds % 60));
  return Format("%d:%s:%s", Seconds / 3600, TwoDigits(Seconds / 60 % 60), TwoDigits(Seconds % 60));
}

std::string DurationText(double Seconds) {
  if (Seconds < 1) return LText("M_Velkrund_Cli_Milliseconds", std::llround(Seconds * 1000)).Local();
  return Seconds < 10 ? LText("M_Velkrund_Cli_DecimalSeconds", Decimals(Seconds, 2)).Local()
                      : ClockText(std::llround(Seconds));
}

std::string Wrapped(std::string_view Text, int Indent, int Width) {
  const std::string Margin = "\n" + std::string(static_cast<std::size_t>(Indent), ' ');
  std::string Result;
  int Column = Indent;
  for (std::size_t At = 0; At < Text.size();) {
    if (Text[At] == '\n') {
      Result += Result.ends_with('\n') || Indent == 0 ? "\n" : Margin;
      Column = Indent;
      ++At;
      continue;
    }
    const std::size_t End = std::min(Text.find_first_of(" \n", At), Text.size());
    const std::string_view Word = Text.substr(At, End - At);
    const int Length = DisplayWidth(Word);
    if (Column > Indent && Column + 1 + Length > Width) {
      Result += Margin;
      Column = Indent;
    } else if (Column > Indent) {
      Result += ' ';
      ++Column;
    }
    Result += Word;
    Column += Length;
    At = End;
    while (At < Text.size() && Text[At] == ' ') ++At;
  }
  return Result;
}

void WriteColumns(std::size_t RowCount, const TRowOfColumns& RowAt, const std::vector<bool>& RightAligned,
                  const std::function<void(std::string_view)>& Write) {
  constexpr std::size_t PieceSize = 65'536;
  std::vector<int> Widths(RightAligned.size());
  for (std::size_t Number = 0; Number < RowCount; ++Number) {
    const std::vector<std::string> Row = RowAt(Number);
    for (std::size_t I = 0; I < Row.size(); ++I) Widths[I] = std::max(Widths[I], DisplayWidth(Row[I]));
  }
  std::string Piece;
  for (std::size_t Number = 0; Number < RowCount; ++Number) {
    const std::vector<std::string> Row = RowAt(Number);
    for (std::size_t I = 0; I < Row.size(); ++I) {
      const std::string Padding(static_cast<std::size_t>(Widths[I] - DisplayWidth(Row[I])), ' ');
      if (I > 0) Piece += "  ";
      Piece += RightAligned[I] ? Padding + Row[I] : Row[I] + Padding;
    }
    Piece.erase(Piece.find_last_not_of(' ') + 1);
    Piece += '\n';
    if (Piece.size() < PieceSize) continue;
    Write(Piece);
    Piece.clear();
  }
  if (!Piece.empty()) Write(Piece);
}

std::string ColumnsText(const std::vector<std::vector<std::string>>& Rows, const std::vector<bool>& RightAligned) {
  std::string Result;
  WriteColumns(
      Rows.size(), [&Rows](std::size_t Number) { return Rows[Number]; }, RightAligned,
      [&Result](std::string_view Piece) { Result += Piece; });
  return Result;
}

}  // namespace velkrund
