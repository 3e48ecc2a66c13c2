// Variant forms of version 100, which knows fewer kinds: values take the nearest one that holds them exactly.

#include <utility>

#include "velkrund/dsp/NodeEscapes.h"
#include "velkrund/dsp/NodeTexts.h"
#include "velkrund/dsp/NodeValueParts.h"
#include "velkrund/dsp/VariantForms.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

void AppendForm(std::string& Out, std::string_view Word, const TKvVariant& Value) {
  Out += Word;
  Out += '(';
  Value.AppendAsText(Out);
  Out += ')';
}

void AppendRealForm(std::string& Out, std::string_view Word, double Value) {
  Out += Word;
  Out += '(';
  AppendReal(Out, Value);
  Out += ')';
}

template <typename T>
void AppendInteger(std::string& Out, T Value, const TKvVariant& Source) {
  if (std::in_range<std::int32_t>(Value)) return AppendForm(Out, "INTEGER", Source);
  if (!IsExactAsReal(Value)) InvalidVariantKind(Source.Kind());
  AppendRealForm(Out, "DOUBLE", static_cast<double>(Value));
}

bool ReadReal(std::string_view Text, TKvVariant& Value) {
  const auto Real = StrToReal(Text);
  if (Real) Value.SetReal(*Real);
  return Real.has_value();
}

bool ReadDate(std::string_view Text, TKvVariant& Value) {
  const auto Real = StrToReal(Text);
  const auto Moment = Real ? DayNumberToDateTime(*Real) : std::nullopt;
  if (Moment) Value.SetDateTime(*Moment);
  return Moment.has_value();
}

bool ReadCurrency(std::string_view Text, TKvVariant& Value) {
  const auto Amount = StrToCurrency(Text);
  if (Amount) Value.SetCurrency(*Amount);
  return Amount.has_value();
}

bool ReadTruth(std::string_view Text, TKvVariant& Value) {
  const bool Truth = SameAsciiWord(Text, "TRUE");
  Value.SetBoolean(Truth);
  return Truth || SameAsciiWord(Text, "FALSE");
}

}  // namespace

void TOldNodeTexts::AppendVariant(std::string& Out, const TKvVariant& Value, TTextLosses& Losses) const {
  switch (Value.Kind()) {
    case TKvKind::Null:
      Out += "NULL";
      return;
    case TKvKind::Byte:
      return AppendForm(Out, "BYTE", Value);
    case TKvKind::SmallInt:
      return AppendForm(Out, "SMALLINT", Value);
    case TKvKind::Word:
    case TKvKind::Integer:
    case TKvKind::LongWord:
    case TKvKind::Int64:
      return AppendInteger(Out, Value.AsInteger(), Value);
    case TKvKind::UInt64:
      return AppendInteger(Out, Value.AsUnsigned(), Value);
    case TKvKind::Double:
    case TKvKind::Extended:
      return AppendForm(Out, "DOUBLE", Value);
    case TKvKind::Currency:
      return AppendForm(Out, "CURRENCY", Value);
    case TKvKind::SysDate:
    case TKvKind::DateTime:
      return AppendRealForm(Out, "DATE", DateTimeToDayNumber(Value.AsDateTime()));
    case TKvKind::SysTime:
      return AppendRealForm(Out, "DATE", static_cast<double>(Value.AsTimeOfDay()) / MicrosecondsPerDay);
    case TKvKind::Boolean:
    case TKvKind::WordBool:
      return AppendForm(Out, "BOOLEAN", Value);
    case TKvKind::Char:
    case TKvKind::String:
    case TKvKind::AnsiChar:
    case TKvKind::AnsiString:
      Out += IsAnsiKind(Value.Kind()) ? "STRING(" : "OLESTR(";
      AppendText(Out, Value, Losses);
      Out += ')';
      return;
    case TKvKind::Bytes:
      break;
  }
  InvalidVariantKind(Value.Kind());
}

bool TOldNodeTexts::ReadVariant(std::string_view Word, std::string_view Text, TKvVariant& Value,
                                TTextLosses& Losses) const {
  if (Word == "SMALLINT") return ReadInteger(Text, TKvKind::SmallInt, Value);
  if (Word == "INTEGER") return ReadInteger(Text, TKvKind::Integer, Value);
  if (Word == "BYTE") return ReadInteger(Text, TKvKind::Byte, Value);
  if (Word == "SINGLE" || Word == "DOUBLE") return ReadReal(Text, Value);
  if (Word == "CURRENCY") return ReadCurrency(Text, Value);
  if (Word == "DATE") return ReadDate(Text, Value);
  if (Word == "BOOLEAN") return ReadTruth(Text, Value);
  if (Word == "OLESTR") {
    ReadPageEscapedAsUtf8(Text, FPage, Value.StartText(), Losses);
    return Value.FinishText(TKvKind::String), true;
  }
  if (Word == "STRING") {
    ReadPageEscaped(Text, FPage, Value.StartText(), Losses);
    return Value.FinishText(TKvKind::AnsiString), true;
  }
  UnknownVariantWord();
}

}  // namespace velkrund
