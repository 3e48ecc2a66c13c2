#include "velkrund/dsp/NodeNames.h"

#include "velkrund/dsp/NodeEscapes.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

namespace {

constexpr bool IsControl(char32_t Code) { return Code < 0x20 || (Code >= 0x7F && Code < 0xA0); }

std::size_t PlainEnd(std::string_view Name, std::size_t At) {
  while (At < Name.size() && Name[At] >= 0x20 && Name[At] < 0x7F && Name[At] != '#') ++At;
  return At;
}

}  // namespace

bool IsWritableName(std::string_view Name) {
  return !Name.empty() && Name.front() != ' ' && Name.find(':') == std::string_view::npos;
}

void AppendNodeName(std::string& Out, std::string_view Name, const TCodePage* Page, TTextLosses& Losses) {
  if (!IsWritableName(Name)) throw EDSPError(std::string("Invalid name of node for export: ").append(Name));
  bool HasEscape = false;
  for (std::size_t At = 0, Stop; At < Name.size();) {
    Stop = PlainEnd(Name, At);
    Out += Name.substr(At, Stop - At);
    if ((At = Stop) == Name.size()) break;
    const std::size_t Start = At;
    const char32_t Code = NextCodePoint(Name, At);
    const std::string_view Character = Name.substr(Start, At - Start);
    const bool Broken = Code == 0xFFFD && Character != ReplacementUtf8;
    const auto Byte = Page ? Page->FromUnicode(Code) : std::nullopt;
    if (Broken) ++Losses.Malformed;
    if (Page && !Byte)
      Out += '?', Losses.Unrepresentable += !Broken;
    else if (Code == '#' || IsControl(Code))
      AppendByteEscape(Out, Byte.value_or(static_cast<unsigned char>(Code))), HasEscape = true;
    else
      AppendUtf8(Out, Code);
  }
  Losses.Altered += HasEscape;
}

void ReadNodeName(std::string_view Text, std::string& Name) {
  Name = Text;
  UnescapeText(Name, TLoneUnit::Character);
}

}  // namespace velkrund
