#include "velkrund/platform/ormtools/XML.h"

#include <cstddef>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// What stands for an ASCII character in a document; empty: itself.
std::string_view EscapeOf(char Character, TXMLPlace Place) {
  switch (Character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    case '\r':
      return "&#13;";
    case '\n':
      return Place == TXMLPlace::Attribute ? "&#10;" : "";
    case '\t':
      return Place == TXMLPlace::Attribute ? "&#9;" : "";
    default:
      return static_cast<unsigned char>(Character) < ' ' ? ReplacementUtf8 : "";
  }
}

bool IsCarried(char32_t Code) {
  constexpr char32_t FirstSurrogate = 0xD800, BehindSurrogates = 0xE000, FirstNoCharacter = 0xFFFE, LastOne = 0xFFFF;
  return (Code < FirstSurrogate || Code >= BehindSurrogates) && (Code < FirstNoCharacter || Code > LastOne);
}

}  // namespace

std::int64_t StrToXML(std::string& Out, std::string_view Text, TXMLPlace Place) {
  std::int64_t Lost = 0;
  std::size_t Position = 0;
  while (Position < Text.size()) {
    const std::size_t Start = Position;
    if (static_cast<signed char>(Text[Start]) >= 0) {
      const std::string_view Escape = EscapeOf(Text[Position++], Place);
      if (Escape == ReplacementUtf8) ++Lost;
      Out += Escape.empty() ? Text.substr(Start, 1) : Escape;
      continue;
    }
    const char32_t Code = NextCodePoint(Text, Position);
    const std::string_view Bytes = Text.substr(Start, Position - Start);
    const bool IsMalformed = Code == 0xFFFD && Bytes != ReplacementUtf8;
    const bool IsLost = IsMalformed || !IsCarried(Code);
    if (IsLost) ++Lost;
    Out += IsLost ? ReplacementUtf8 : Bytes;
  }
  return Lost;
}

}  // namespace velkrund
