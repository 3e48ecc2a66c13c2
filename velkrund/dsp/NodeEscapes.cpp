#include "velkrund/dsp/NodeEscapes.h"

#include "velkrund/dsp/DSPUtilErrors.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::size_t ByteDigits = 2;

[[noreturn]] void BadEscape(std::string_view Digits) {
  throw EDSPUtilError(Format("Error importing DSP structure. Invalid character (#$%s) in string constant.", Digits));
}

constexpr bool IsPlain(char Byte) { return Byte >= 0x20 && static_cast<unsigned char>(Byte) < 0x80; }

// Characters of an 8-bit text that stand for themselves in every reading.
std::size_t PlainEnd(std::string_view Text, std::size_t At) {
  while (At < Text.size() && IsPlain(Text[At]) && Text[At] != '#') ++At;
  return At;
}

// Takes an 8-bit text apart: Run gets stretches of plain ASCII, Byte the bytes of escapes, Character all else.
template <typename TRun, typename TByte, typename TCharacter>
void WalkEscaped(std::string_view Text, TRun Run, TByte Byte, TCharacter Character) {
  for (std::size_t At = 0, Stop; At < Text.size();) {
    Stop = PlainEnd(Text, At);
    Run(Text.substr(At, Stop - At));
    if ((At = Stop) == Text.size()) break;
    if (Text[At] == '#') {
      const std::string_view Rest = Text.substr(At + 1);
      const std::string_view Digits = Rest.substr(0, Utf16Prefix(Rest, ByteDigits));
      if (Digits.size() == Rest.size() && Utf16Length(Digits) < ByteDigits) return;
      const auto Code = HexToUnsigned(Digits);
      if (!Code || Digits.size() != ByteDigits) BadEscape(Digits);
      Byte(static_cast<unsigned char>(*Code));
      At += 1 + ByteDigits;
    } else if (static_cast<unsigned char>(Text[At]) < 0x20) {
      throw EDSPUtilError(Format("Error importing DSP structure. Invalid character (#%d) in string constant.",
                                 static_cast<int>(Text[At])));
    } else {
      Character(NextCodePoint(Text, At));
    }
  }
}

unsigned char PageByte(char32_t Code, const TCodePage& Page, TTextLosses& Losses) {
  const auto Byte = Page.FromUnicode(Code);
  if (!Byte) ++Losses.Unrepresentable;
  return Byte.value_or('?');
}

}  // namespace

void UnescapeText(std::string& Text, TLoneUnit Lone) {
  std::string BadDigits;
  const std::size_t Length = UnescapeInPlace(Text, BadDigits, Lone);
  if (!BadDigits.empty()) BadEscape(BadDigits);
  Text.resize(Length);
}

void AppendAnsiEscaped(std::string& Out, std::string_view Bytes, TTextLosses& Losses) {
  if (Bytes.find('#') != std::string_view::npos) ++Losses.Altered;
  for (const char Byte : Bytes) {
    if (IsPlain(Byte))
      Out += Byte;
    else
      AppendByteEscape(Out, static_cast<unsigned char>(Byte));
  }
}

void ReadAnsiEscaped(std::string_view Text, std::string& Bytes) {
  WalkEscaped(
      Text, [&](std::string_view Run) { Bytes += Run; }, [&](unsigned char Byte) { Bytes += static_cast<char>(Byte); },
      [&](char32_t Code) {
        if (Code > 0xFFFF) Bytes += static_cast<char>(0xD800 + ((Code - 0x10000) >> 10));
        Bytes += static_cast<char>(Code);
      });
}

void ReadPageEscaped(std::string_view Text, const TCodePage& Page, std::string& Bytes, TTextLosses& Losses) {
  WalkEscaped(
      Text, [&](std::string_view Run) { Bytes += Run; }, [&](unsigned char Byte) { Bytes += static_cast<char>(Byte); },
      [&](char32_t Code) { Bytes += static_cast<char>(PageByte(Code, Page, Losses)); });
}

void ReadPageEscapedAsUtf8(std::string_view Text, const TCodePage& Page, std::string& Out, TTextLosses& Losses) {
  WalkEscaped(
      Text, [&](std::string_view Run) { Out += Run; },
      [&](unsigned char Byte) { AppendUtf8(Out, Page.ToUnicode(Byte)); },
      [&](char32_t Code) { AppendUtf8(Out, Page.ToUnicode(PageByte(Code, Page, Losses))); });
}

}  // namespace velkrund
