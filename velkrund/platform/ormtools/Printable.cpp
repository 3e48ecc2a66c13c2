#include "velkrund/platform/ormtools/Printable.h"

#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

bool IsControl(char32_t Code) { return (Code < 0x20 && Code != '\n' && Code != '\t') || (Code >= 0x7F && Code < 0xA0); }

void AppendVisible(std::string& Out, std::string_view Bytes) {
  for (const char Byte : Bytes) {
    Out += "\\x";
    AppendHex(Out, {&Byte, 1});
  }
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
    if (Malformed || IsControl(Code))
      AppendVisible(Result, Bytes);
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
