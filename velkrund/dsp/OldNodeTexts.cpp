// The texts of nodes in version 100.

#include <algorithm>

#include "velkrund/dsp/NodeEscapes.h"
#include "velkrund/dsp/NodeNames.h"
#include "velkrund/dsp/NodeTexts.h"
#include "velkrund/dsp/NodeValueParts.h"
#include "velkrund/dsp/VariantForms.h"
#include "velkrund/eif/TextEscapes.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

namespace {

constexpr struct {
  std::string_view Word;
  TDSPValueType Type;
} Words[] = {{"string", TDSPValueType::String},   {"integer", TDSPValueType::Integer},
             {"boolean", TDSPValueType::Boolean}, {"double", TDSPValueType::Double},
             {"variant", TDSPValueType::Variant}, {"binary", TDSPValueType::Binary},
             {"DELETED", TDSPValueType::Deleted}};

// The type that stands for Type in files.
TDSPValueType Written(TDSPValueType Type) {
  switch (Type) {
    case TDSPValueType::Char:
    case TDSPValueType::AnsiChar:
    case TDSPValueType::AnsiString:
      return TDSPValueType::String;
    case TDSPValueType::Byte:
    case TDSPValueType::SmallInt:
    case TDSPValueType::Word:
    case TDSPValueType::UInt32:
    case TDSPValueType::Int64:
    case TDSPValueType::UInt64:
      return TDSPValueType::Integer;
    case TDSPValueType::WordBool:
      return TDSPValueType::Boolean;
    case TDSPValueType::Extended:
    case TDSPValueType::SysDate:
    case TDSPValueType::SysTime:
    case TDSPValueType::DateTime:
    case TDSPValueType::Currency:
      return TDSPValueType::Double;
    default:
      return Type;
  }
}

// One word stands for the integers of all sizes: the smallest of the three that holds the number takes it.
TDSPValueType ReadAnyInteger(std::string_view Text, TKvVariant& Value) {
  for (const auto Type : {TDSPValueType::Integer, TDSPValueType::Int64, TDSPValueType::UInt64})
    if (ReadInteger(Text, KindOfType(Type), Value)) return Type;
  throw EConvertError(Format("'%s' is not a valid integer value", Text));
}

}  // namespace

void TOldNodeTexts::AppendName(std::string& Out, std::string_view Name, TTextLosses& Losses) const {
  AppendNodeName(Out, Name, &FPage, Losses);
}

std::string_view TOldNodeTexts::TypeWord(TDSPValueType Type) const {
  const auto* const Found = std::find_if(std::begin(Words), std::end(Words),
                                         [Type = Written(Type)](const auto& Word) { return Word.Type == Type; });
  return Found == std::end(Words) ? std::string_view() : Found->Word;
}

std::optional<TDSPValueType> TOldNodeTexts::FindType(std::string_view Text) const {
  for (const auto& Word : Words)
    if (Word.Word == Text) return Word.Type;
  return std::nullopt;
}

void TOldNodeTexts::AppendText(std::string& Out, const TKvVariant& Value, TTextLosses& Losses) const {
  if (IsAnsiKind(Value.Kind()))
    AppendOldEscapedBytes(Out, Value.AsText(), FPage, TEscapePlace::Alone);
  else
    Losses.Unrepresentable += AppendOldEscaped(Out, Value.AsText(), FPage, TEscapePlace::Alone);
}

void TOldNodeTexts::AppendValue(std::string& Out, const TDSPNode& Node, TTextLosses& Losses) const {
  switch (Written(Node.ValueType())) {
    case TDSPValueType::String:
      Out += '\'';
      AppendText(Out, Node.Value(), Losses);
      Out += '\'';
      return;
    case TDSPValueType::Double:
      return AppendReal(Out, Node.GetAsDouble());
    case TDSPValueType::Variant:
      return AppendVariant(Out, Node.Value(), Losses);
    case TDSPValueType::Binary:
      return AppendHexBytes(Out, Node.Value().AsText());
    default:
      return Node.Value().AppendAsText(Out);
  }
}

void TOldNodeTexts::ReadValue(TDSPNode& Node, TDSPValueType Type, std::string_view Text, TTextLosses& Losses) const {
  TKvVariant Value;
  switch (Type) {
    case TDSPValueType::String: {
      const std::string_view Inside = InsideQuotes(Text, Type);
      ReadPageEscapedAsUtf8(Inside, FPage, Value.StartText(), Losses);
      Value.FinishText();
      break;
    }
    case TDSPValueType::Integer:
      Type = ReadAnyInteger(Text, Value);
      break;
    case TDSPValueType::Boolean:
      Value.SetBoolean(ReadTruth(Text, Type));
      break;
    case TDSPValueType::Double:
      Value.SetReal(ReadReal(Text, Type));
      break;
    case TDSPValueType::Variant:
      ReadVariantForm(
          Text,
          [&](std::string_view Word, std::string_view Inside, TKvVariant& Into) {
            return ReadVariant(Word, Inside, Into, Losses);
          },
          Value);
      break;
    case TDSPValueType::Binary:
      ReadHexBytes(Text, Value);
      break;
    default:
      if (!Text.empty()) InvalidNodeValue(Text, Type);
  }
  Node.SetValueType(Type);
  Node.SetValue(std::move(Value));
}

}  // namespace velkrund
