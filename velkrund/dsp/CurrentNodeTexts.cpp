// The texts of nodes in version 200.

#include <algorithm>
#include <array>

#include "velkrund/dsp/NodeEscapes.h"
#include "velkrund/dsp/NodeNames.h"
#include "velkrund/dsp/NodeTexts.h"
#include "velkrund/dsp/NodeValueParts.h"
#include "velkrund/dsp/VariantForms.h"
#include "velkrund/eif/TextEscapes.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/KindWords.h"

namespace velkrund {

namespace {

// By the numbers of the types.
constexpr std::array<std::string_view, DSPValueTypeCount> MakeWords() {
  std::array<std::string_view, DSPValueTypeCount> Result{};
  for (std::size_t Type = 0; Type < Result.size(); ++Type)
    Result[Type] = KindWord(KindOfType(static_cast<TDSPValueType>(Type)));
  Result[static_cast<std::size_t>(TDSPValueType::Variant)] = "variant";
  Result[static_cast<std::size_t>(TDSPValueType::Deleted)] = "DELETED";
  return Result;
}

constexpr std::array<std::string_view, DSPValueTypeCount> Words = MakeWords();

void AppendQuoted(std::string& Out, const TDSPNode& Node, TTextLosses& Losses) {
  Out += '\'';
  if (Node.ValueType() == TDSPValueType::String || Node.ValueType() == TDSPValueType::Char)
    AppendEscaped(Out, Node.Value().AsText(), TEscapePlace::Alone);
  else
    AppendAnsiEscaped(Out, Node.Value().AsText(), Losses);
  Out += '\'';
}

void ReadQuoted(std::string_view Text, TDSPValueType Type, TKvVariant& Value) {
  const std::string_view Inside = InsideQuotes(Text, Type);
  std::string& Out = Value.StartText();
  if (Type == TDSPValueType::String || Type == TDSPValueType::Char) {
    Out = Inside;
    UnescapeText(Out);
  } else {
    ReadAnsiEscaped(Inside, Out);
  }
  Value.FinishText(KindOfType(Type));
  if (!FitsType(Type, Value)) InvalidNodeValue(Text, Type);
}

template <typename T>
T Converted(const std::optional<T>& Parsed, std::string_view Text, std::string_view What) {
  if (!Parsed) throw EConvertError(Format("'%s' is not a valid %s", Text, What));
  return *Parsed;
}

void ReadTyped(std::string_view Text, TDSPValueType Type, TKvVariant& Value) {
  const TKvKind Kind = KindOfType(Type);
  switch (Type) {
    case TDSPValueType::None:
    case TDSPValueType::Deleted:
      if (!Text.empty()) InvalidNodeValue(Text, Type);
      return;
    case TDSPValueType::String:
    case TDSPValueType::Char:
    case TDSPValueType::AnsiChar:
    case TDSPValueType::AnsiString:
      return ReadQuoted(Text, Type, Value);
    case TDSPValueType::Boolean:
    case TDSPValueType::WordBool:
      return Value.SetBoolean(ReadTruth(Text, Type), Kind);
    case TDSPValueType::Double:
    case TDSPValueType::Extended:
      return Value.SetReal(ReadReal(Text, Type), Kind);
    case TDSPValueType::Variant:
      return ReadVariantForm(Text, Value);
    case TDSPValueType::Binary:
      return ReadHexBytes(Text, Value);
    case TDSPValueType::SysDate:
      return Value.SetSysDate(Converted(StrToSysDate(Text), Text, "date"));
    case TDSPValueType::SysTime:
      return Value.SetSysTime(Converted(StrToSysTime(Text), Text, "time"));
    case TDSPValueType::DateTime:
      return Value.SetDateTime(Converted(SysStrToDateTime(Text), Text, "date and time"));
    case TDSPValueType::Currency:
      return Value.SetCurrency(Converted(StrToCurrency(Text), Text, "currency value"));
    default:
      return ReadNodeInteger(Text, Type, Value);
  }
}

}  // namespace

void TCurrentNodeTexts::AppendName(std::string& Out, std::string_view Name, TTextLosses& Losses) const {
  AppendNodeName(Out, Name, nullptr, Losses);
}

std::string_view TCurrentNodeTexts::TypeWord(TDSPValueType Type) const { return Words[static_cast<std::size_t>(Type)]; }

std::optional<TDSPValueType> TCurrentNodeTexts::FindType(std::string_view Word) const {
  const auto* const Found = std::find(Words.begin(), Words.end(), Word);
  if (Found == Words.end()) return std::nullopt;
  return static_cast<TDSPValueType>(Found - Words.begin());
}

std::string_view TCurrentNodeTexts::LineBreak(TDSPValueType Type) const {
  if (Type == TDSPValueType::String) return "#000D#000A";
  return Type == TDSPValueType::AnsiString ? "#0D#0A" : "";
}

void TCurrentNodeTexts::AppendValue(std::string& Out, const TDSPNode& Node, TTextLosses& Losses) const {
  switch (Node.ValueType()) {
    case TDSPValueType::String:
    case TDSPValueType::Char:
    case TDSPValueType::AnsiChar:
    case TDSPValueType::AnsiString:
      return AppendQuoted(Out, Node, Losses);
    case TDSPValueType::Variant:
      return AppendVariantForm(Out, Node.Value(), Losses);
    case TDSPValueType::Binary:
      return AppendHexBytes(Out, Node.Value().AsText());
    default:
      return Node.Value().AppendAsText(Out);
  }
}

void TCurrentNodeTexts::ReadValue(TDSPNode& Node, TDSPValueType Type, std::string_view Text, TTextLosses&) const {
  TKvVariant Value;
  ReadTyped(Text, Type, Value);
  Node.SetValueType(Type);
  Node.SetValue(std::move(Value));
}

}  // namespace velkrund
