// Variant forms of version 200.

#include "velkrund/dsp/NodeEscapes.h"
#include "velkrund/dsp/NodeValueParts.h"
#include "velkrund/dsp/VariantForms.h"
#include "velkrund/eif/TextEscapes.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPValueType.h"

namespace velkrund {

namespace {

constexpr struct {
  std::string_view Word;
  TKvKind Kind;
} Forms[] = {{"BYTE", TKvKind::Byte},
             {"SMALLINT", TKvKind::SmallInt},
             {"WORD", TKvKind::Word},
             {"INTEGER", TKvKind::Integer},
             {"UINT32", TKvKind::LongWord},
             {"DOUBLE", TKvKind::Double},
             {"EXTENDED", TKvKind::Extended},
             {"CHAR", TKvKind::Char},
             {"STRING", TKvKind::String},
             {"BOOLEAN", TKvKind::Boolean},
             {"WORDBOOL", TKvKind::WordBool},
             {"SYSDATE", TKvKind::SysDate},
             {"SYSTIME", TKvKind::SysTime},
             {"DATETIME", TKvKind::DateTime},
             {"INT64", TKvKind::Int64},
             {"UINT64", TKvKind::UInt64},
             {"CURRENCY", TKvKind::Currency},
             {"ANSICHAR", TKvKind::AnsiChar},
             {"ANSISTRING", TKvKind::AnsiString},
             {"BYTES", TKvKind::Bytes}};

std::string_view WordOf(TKvKind Kind) {
  for (const auto& Form : Forms)
    if (Form.Kind == Kind) return Form.Word;
  InvalidVariantKind(Kind);
}

TKvKind KindOf(std::string_view Word) {
  for (const auto& Form : Forms)
    if (Form.Word == Word) return Form.Kind;
  UnknownVariantWord();
}

template <typename T>
bool Take(const std::optional<T>& Parsed, const auto& Set) {
  if (Parsed) Set(*Parsed);
  return Parsed.has_value();
}

bool ReadTruth(std::string_view Text, TKvKind Kind, TKvVariant& Value) {
  const bool Truth = SameAsciiWord(Text, "TRUE");
  Value.SetBoolean(Truth, Kind);
  return Truth || SameAsciiWord(Text, "FALSE");
}

bool ReadText(std::string_view Text, TKvKind Kind, TKvVariant& Value) {
  std::string& Out = Value.StartText();
  if (IsAnsiKind(Kind)) {
    ReadAnsiEscaped(Text, Out);
  } else {
    Out = Text;
    UnescapeText(Out);
  }
  Value.FinishText(Kind);
  return FitsType(TDSPValueType::Variant, Value);
}

bool ReadAs(TKvKind Kind, std::string_view Text, TKvVariant& Value) {
  switch (Kind) {
    case TKvKind::Double:
    case TKvKind::Extended:
      return Take(StrToReal(Text), [&](double Real) { Value.SetReal(Real, Kind); });
    case TKvKind::Boolean:
    case TKvKind::WordBool:
      return ReadTruth(Text, Kind, Value);
    case TKvKind::Char:
    case TKvKind::String:
    case TKvKind::AnsiChar:
    case TKvKind::AnsiString:
      return ReadText(Text, Kind, Value);
    case TKvKind::SysDate:
      return Take(StrToSysDate(Text), [&](TDateTime Date) { Value.SetSysDate(Date); });
    case TKvKind::SysTime:
      return Take(StrToSysTime(Text), [&](std::int64_t Time) { Value.SetSysTime(Time); });
    case TKvKind::DateTime:
      return Take(SysStrToDateTime(Text), [&](TDateTime Moment) { Value.SetDateTime(Moment); });
    case TKvKind::Currency:
      return Take(StrToCurrency(Text), [&](TCurrency Amount) { Value.SetCurrency(Amount); });
    case TKvKind::Bytes:
      ReadHexBytes(Text, Value);
      return true;
    default:
      return ReadInteger(Text, Kind, Value);
  }
}

}  // namespace

void AppendVariantForm(std::string& Out, const TKvVariant& Value, TTextLosses& Losses) {
  const TKvKind Kind = Value.Kind();
  if (Kind == TKvKind::Null) {
    Out += "NULL";
    return;
  }
  Out += WordOf(Kind);
  Out += '(';
  if (IsAnsiKind(Kind))
    AppendAnsiEscaped(Out, Value.AsText(), Losses);
  else if (IsTextKind(Kind))
    AppendEscaped(Out, Value.AsText(), TEscapePlace::Alone);
  else if (Kind == TKvKind::Bytes)
    AppendHexBytes(Out, Value.AsText());
  else
    Value.AppendAsText(Out);
  Out += ')';
}

void ReadVariantForm(std::string_view Text, TKvVariant& Value) {
  ReadVariantForm(
      Text,
      [](std::string_view Word, std::string_view Inside, TKvVariant& Into) {
        return ReadAs(KindOf(Word), Inside, Into);
      },
      Value);
}

}  // namespace velkrund
