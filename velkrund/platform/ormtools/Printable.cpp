#include "velkrund/platform/ormtools/Printable.h"

#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

bool IsControl(char32_t Code) { return (Code < 0x20 && Code != '\n' && Code != '\t') || (Code >= 0x7F && Code < 0xA0); }

/// What changes the direction of the text around it, so that people read another name than the one that is there; and
/// what nobody sees, or some terminals take for a line's end.
bool IsHidden(char32_t Code) {
  return Code == 0x061C || Code == 0x200E || Code == 0x200F || (Code >= 0x202A && Code <= 0x202E) ||
         (Code >= 0x2066 && Code <= 0x2069) || Code == 0x2028 || Code == 0x2029 || Code == 0x00AD || Code == 0xFEFF;
}

bool IsSurrogate(char32_t Code) { return Code >= 0xD800 && Code < 0xE000; }

void AppendVisibleBytes(std::string& Out, std::string_view Bytes) {
  for (const char Byte : Bytes) {
    Out += "\\x";
    AppendHex(Out, {&Byte, 1});
  }
}

void AppendVisible(std::string& Out, char32_t Code) {
  const char Bytes[] = {static_cast<char>(Code >> 8), static_cast<char>(Code)};
  Out += "\\u";
  AppendHex(Out, {Bytes, sizeof Bytes});
}

}  // namespace

std::string Printable(std::string_view Text) {
  std::string Result;
  for (std::size_t At = 0; At < Text.size();) {
    const std::size_t Start = At;
    const char32_t Code = NextCodePoint(Text, At);
    const std::string_view Bytes = Text.substr(Start, At - Start);
    if (Code == '\r' && At < Text.size() && Text[At] == '\n') continue;
    const bool Malformed = Code == 0xFFFD && Bytes != ReplacementUtf8;
    if (Malformed || (Code < 0x80 && IsControl(Code)))
      AppendVisibleBytes(Result, Bytes);
    else if (IsControl(Code) || IsHidden(Code) || IsSurrogate(Code))
      AppendVisible(Result, Code);
    else
      Result += Bytes;
  }
  return Result;
}

std::string OnOneLine(std::string_view Text) {
  std::string Result;
  for (const char C : Printable(Text)) Result += C == '\n' ? "\\x0A" : std::string(1, C);
  return Result;
}

}  // namespace velkrund
