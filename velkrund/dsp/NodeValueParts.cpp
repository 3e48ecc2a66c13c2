#include "velkrund/dsp/NodeValueParts.h"

#include "velkrund/dsp/DSPUtilErrors.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

// The characters beyond ASCII as one question mark a UTF-16 unit, so that places can be counted.
std::string Counted(std::string_view Text) {
  std::string Out;
  for (std::size_t At = 0; At < Text.size();) {
    const char32_t Code = NextCodePoint(Text, At);
    Out.append(Code > 0xFFFF ? 2 : 1, Code < 0x80 ? static_cast<char>(Code) : '?');
  }
  return Out;
}

void AppendBytesOf(std::string_view Pairs, std::string& Bytes) {
  if ((Pairs.size() + 1) % 3 != 0) throw EDSPUtilError("Error importing DSP structure. Incorrect binary value");
  Bytes.reserve((Pairs.size() + 1) / 3);
  for (std::size_t At = 0; At < Pairs.size(); At += 3) {
    const auto Byte = HexToUnsigned(Pairs.substr(At, 2));
    if (!Byte) throw EConvertError(Format("'$%s' is not a valid integer value", Pairs.substr(At, 2)));
    Bytes += static_cast<char>(*Byte);
  }
}

}  // namespace

void InvalidNodeValue(std::string_view Text, TDSPValueType Type) {
  throw EDSPUtilError(
      Format("Can not import DSP structure. Invalid node value('%s') for type %d.", Text, static_cast<int>(Type)));
}

std::string_view InsideQuotes(std::string_view Text, TDSPValueType Type) {
  if (Text.size() < 2 || Text.front() != '\'' || Text.back() != '\'') InvalidNodeValue(Text, Type);
  return Text.substr(1, Text.size() - 2);
}

bool ReadTruth(std::string_view Text, TDSPValueType Type) {
  if (SameAsciiWord(Text, "TRUE")) return true;
  if (!SameAsciiWord(Text, "FALSE")) InvalidNodeValue(Text, Type);
  return false;
}

double ReadReal(std::string_view Text, TDSPValueType Type) {
  const auto Real = StrToReal(Text);
  if (!Real)
    throw EDSPUtilError(
        Format("Error importing DSP structure. Invalid node value('%s') for type %d.", Text, static_cast<int>(Type)));
  return *Real;
}

bool ReadInteger(std::string_view Text, TKvKind Kind, TKvVariant& Value) {
  if (Kind == TKvKind::UInt64) {
    const auto Unsigned = StrToUInt64(Text);
    if (Unsigned) Value.SetUnsigned(*Unsigned);
    return Unsigned.has_value();
  }
  const auto Integer = StrToInt64(Text);
  if (!Integer || !HoldsInteger(Kind, *Integer)) return false;
  Value.SetInteger(*Integer, Kind);
  return true;
}

void ReadNodeInteger(std::string_view Text, TDSPValueType Type, TKvVariant& Value) {
  if (ReadInteger(Text, KindOfType(Type), Value)) return;
  throw EConvertError(Format("'%s' is not a valid integer value", Text));
}

void AppendHexBytes(std::string& Out, std::string_view Bytes) {
  for (std::size_t Index = 0; Index < Bytes.size(); ++Index) {
    if (Index > 0) Out += ' ';
    AppendHex(Out, Bytes.substr(Index, 1));
  }
}

void ReadHexBytes(std::string_view Text, TKvVariant& Value) {
  std::string& Bytes = Value.StartText();
  // No bytes are no text, although that is of no pair's length: what is written has to be readable.
  if (!Text.empty()) AppendBytesOf(AsciiPrefix(Text) == Text.size() ? Text : Counted(Text), Bytes);
  Value.FinishText(TKvKind::Bytes);
}

}  // namespace velkrund
