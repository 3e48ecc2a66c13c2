#include "velkrund/resources/TextLines.h"

#include <algorithm>

#include "velkrund/eif/RecordPieces.h"
#include "velkrund/eif/TextEscapes.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/LUtilErrors.h"

namespace velkrund {

namespace {

constexpr std::size_t Digits = 4;
constexpr std::size_t OldDigits = 2;

/// The characters behind a "#" that should be Count digits; nothing: there are fewer.
std::optional<std::string_view> DigitsIn(std::string_view Rest, std::size_t Count) {
  const std::string_view Found = Rest.substr(0, Utf16Prefix(Rest, Count));
  if (Found.size() == Rest.size() && Utf16Length(Found) < Count) return std::nullopt;
  return Found;
}

bool IsEscapedInOld(char Byte) { return static_cast<unsigned char>(Byte) < 0x20 || Byte == '#'; }

}  // namespace

void AppendEscapedLine(std::string& Out, std::string_view Line) {
  AppendEscaped(Out, Line, TEscapePlace::Alone, TLoneUnit::Character);
}

void AppendOldEscapedLine(std::string& Out, std::string_view Line) {
  ReserveFor(Out, Line.size());
  while (!Line.empty()) {
    const auto Plain = static_cast<std::size_t>(std::find_if(Line.begin(), Line.end(), IsEscapedInOld) - Line.begin());
    Out += Line.substr(0, Plain);
    Line.remove_prefix(Plain);
    if (Line.empty()) return;
    AppendByteEscape(Out, static_cast<unsigned char>(Line.front()));
    Line.remove_prefix(1);
  }
}

bool UnescapeText(std::string& Text) {
  const std::size_t Last = Text.rfind('#');
  if (Last == std::string::npos) return true;
  // The last "#" begins an escape, or stands where digits of another should be.
  const bool IsWhole = DigitsIn(std::string_view(Text).substr(Last + 1), Digits).has_value();
  std::string BadDigits;
  const std::size_t Length = UnescapeInPlace(Text, BadDigits, TLoneUnit::Character);
  if (!BadDigits.empty())
    throw ELUtilError(Format("Error importing localized resource. Invalid encoded char: %s.", "$" + BadDigits),
                      {.Code = TErrorCode::Value});
  Text.resize(Length);
  return IsWhole;
}

bool UnescapeOldText(std::string& Text, const TCodePage& Page) {
  std::string Character;
  std::size_t End = 0;
  for (std::size_t At = 0; At < Text.size();) {
    const auto Byte = static_cast<unsigned char>(Text[At]);
    if (Byte < 0x20)
      throw ELUtilError(Format("Error importing localized resource. Invalid character (#%d) in string constant.", Byte),
                        {.Code = TErrorCode::Value});
    if (Byte != '#') {
      Text[End++] = Text[At++];
      continue;
    }
    const auto Found = DigitsIn(std::string_view(Text).substr(At + 1), OldDigits);
    if (!Found) {
      Text.resize(End);
      return false;
    }
    const auto Code = HexToUnsigned(*Found);
    if (!Code || Found->size() != OldDigits)
      throw ELUtilError(Format("Error importing localized resource. Invalid character (#%s) in string constant.",
                               "$" + std::string(*Found)),
                        {.Code = TErrorCode::Value});
    Character.clear();
    AppendUtf8(Character, Page.ToUnicode(static_cast<unsigned char>(*Code)));
    // A character takes no more bytes than its escape.
    End = static_cast<std::size_t>(
        std::copy(Character.begin(), Character.end(), Text.begin() + static_cast<std::ptrdiff_t>(End)) - Text.begin());
    At += 1 + OldDigits;
  }
  Text.resize(End);
  return true;
}

void WriteTextLine(TEIStream& Stream, std::string_view Line) {
  // A text has at most as many units as bytes, so that counting is only due for the long ones.
  if (Line.size() <= MaxRecordPiece) return Stream.Writeln(Line);
  WritePieces(Stream, {}, Line, [](std::string_view Rest) { return Utf16Prefix(Rest, MaxRecordPiece); });
}

}  // namespace velkrund
