#include "velkrund/dictionary/QueryParameters.h"

#include <algorithm>
#include <set>

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/KindWords.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::string_view BytesPrefix = "0x";

[[noreturn]] void ParameterError(const std::string& Name, const std::string& What) {
  throw EDicUtilError(Format("The parameter '%s' %s", Name, What), {.Code = TErrorCode::Value});
}

bool ReadInteger(std::string_view Text, TKvKind Kind, TKvVariant& Value) {
  const auto Integer = StrToInt64(Text);
  if (!Integer || !HoldsInteger(Kind, *Integer)) return false;
  Value.SetInteger(*Integer, Kind);
  return true;
}

bool ReadTruth(std::string_view Text, TKvKind Kind, TKvVariant& Value) {
  Value.SetBoolean(SameAsciiWord(Text, "TRUE"), Kind);
  return Value.AsBoolean() || SameAsciiWord(Text, "FALSE");
}

bool ReadBytes(std::string_view Text, TKvVariant& Value) {
  if (!Text.starts_with(BytesPrefix) || Text.size() % 2 != 0) return false;
  std::string& Bytes = Value.StartText();
  for (std::size_t At = BytesPrefix.size(); At < Text.size(); At += 2) {
    const auto Byte = HexToUnsigned(Text.substr(At, 2));
    if (!Byte) return false;
    Bytes += static_cast<char>(*Byte);
  }
  Value.FinishText(TKvKind::Bytes);
  return true;
}

bool ReadAnsi(std::string_view Text, TKvKind Kind, TKvVariant& Value) {
  if (WorkSettings().AnsiCodePage->Encode(Text, Value.StartText()) > 0) return false;
  Value.FinishText(Kind);
  return Kind == TKvKind::AnsiString || Value.AsText().size() == 1;
}

template <typename TParsed, typename TSet>
bool Store(const std::optional<TParsed>& Parsed, const TSet& Set) {
  if (Parsed) Set(*Parsed);
  return Parsed.has_value();
}

/// False when the text is no value of the kind.
bool ReadValue(std::string_view Text, TKvKind Kind, TKvVariant& Value) {
  switch (Kind) {
    case TKvKind::Null:
      return false;
    case TKvKind::UInt64:
      return Store(StrToUInt64(Text), [&](std::uint64_t Number) { Value.SetUnsigned(Number); });
    case TKvKind::Double:
    case TKvKind::Extended:
      return Store(StrToReal(Text), [&](double Number) { Value.SetReal(Number, Kind); });
    case TKvKind::Boolean:
    case TKvKind::WordBool:
      return ReadTruth(Text, Kind, Value);
    case TKvKind::SysDate:
      return Store(StrToSysDate(Text), [&](TDateTime Date) { Value.SetSysDate(Date); });
    case TKvKind::SysTime:
      return Store(StrToSysTime(Text), [&](std::int64_t Time) { Value.SetSysTime(Time); });
    case TKvKind::DateTime:
      return Store(SysStrToDateTime(Text), [&](TDateTime Moment) { Value.SetDateTime(Moment); });
    case TKvKind::Currency:
      return Store(StrToCurrency(Text), [&](TCurrency Amount) { Value.SetCurrency(Amount); });
    case TKvKind::Char:
    case TKvKind::String:
      Value.SetText(Text, Kind);
      return Kind == TKvKind::String || Utf16Length(Text) == 1;
    case TKvKind::AnsiChar:
    case TKvKind::AnsiString:
      return ReadAnsi(Text, Kind, Value);
    case TKvKind::Bytes:
      return ReadBytes(Text, Value);
    default:
      return ReadInteger(Text, Kind, Value);
  }
}

void AppendValueText(std::string& Out, const TKvVariant& Value) {
  if (IsAnsiKind(Value.Kind())) return WorkSettings().AnsiCodePage->Decode(Value.AsText(), Out);
  if (Value.Kind() != TKvKind::Bytes) return Value.AppendAsText(Out);
  Out += BytesPrefix;
  AppendHex(Out, Value.AsText());
}

/// Type and name end with a "|", the value with its line.
void CheckPart(const TQueryParameter& Parameter, std::string_view Part, const char* What, const char* Ends) {
  if (Part.find_first_of(Ends) != std::string_view::npos)
    ParameterError(Parameter.Name,
                   Format("cannot be written: its %s has %sa line end inside", What, *Ends == '|' ? "a '|' or " : ""));
}

}  // namespace

TQueryParameter ParameterOf(const std::string& Name, std::string_view Text) {
  const std::size_t Colon = Text.find(':');
  const std::string_view Word = Text.substr(0, Colon);
  const std::optional<TKvKind> Kind = FindKindWord(Word);
  if (!Kind)
    ParameterError(Name, Format("is to be written like \"integer:5\", and there is no type '%s'%s", Word,
                                ContentHint(Word, KindWords(), ": there are ")));
  TQueryParameter Result{Name, *Kind};
  if (Colon == std::string_view::npos) return Result;
  const std::string_view Value = Text.substr(Colon + 1);
  if (!ReadValue(Value, *Kind, Result.Value))
    ParameterError(Name, Format("has a value that is none of the type %s: '%s'", KindWord(*Kind), Shortened(Value)));
  return Result;
}

void SetParameters(TSelectQuery& Query, const TStringPairs& Parameters) {
  std::set<const TQueryParameter*> Given;
  for (const auto& [Name, Text] : Parameters) {
    const auto IsIt = [&Wanted = Name](const TQueryParameter& Parameter) { return SameText(Parameter.Name, Wanted); };
    std::vector<TQueryParameter>& All = Query.Parameters();
    const auto Found = std::find_if(All.begin(), All.end(), IsIt);
    if (Found == All.end()) {
      std::vector<std::string> Names;
      for (const TQueryParameter& Parameter : All) Names.push_back(Parameter.Name);
      ParameterError(Name, "is none of the query" +
                               (Names.empty() ? ", which has no parameters" : ContentHint(Name, Names, ": it has ")));
    }
    if (!Given.insert(&*Found).second) ParameterError(Name, "is given twice");
    TQueryParameter Parameter = ParameterOf(Name, Text);
    Found->DataType = Parameter.DataType;
    Found->Value = std::move(Parameter.Value);
  }
}

std::string ParameterLine(const TQueryParameter& Parameter) {
  std::string Value;
  AppendValueText(Value, Parameter.Value);
  CheckPart(Parameter, Parameter.Name, "name", "|\r\n");
  CheckPart(Parameter, Value, "value", "\r\n");
  return Format("<%s|%s|%s>", Parameter.Name, KindWord(Parameter.DataType), Value);
}

std::string FaultOfParameterLine(std::string_view Line) {
  if (Line.size() < 2 || Line.front() != '<' || Line.back() != '>') return "it does not stand between '<' and '>'";
  const std::string_view Inside = Line.substr(1, Line.size() - 2);
  const std::size_t First = Inside.find('|');
  const std::size_t Second = First == Inside.npos ? First : Inside.find('|', First + 1);
  if (Second == Inside.npos) return "it has not three parts";
  const std::string_view Word = Inside.substr(First + 1, Second - First - 1);
  const std::optional<TKvKind> Kind = FindKindWord(Word);
  if (!Kind) return Format("'%s' is no type", Word);
  TKvVariant Ignored;
  const std::string_view Value = Inside.substr(Second + 1);
  if (Value.empty() || ReadValue(Value, *Kind, Ignored)) return {};
  return Format("'%s' is no value of the type %s", Shortened(Value), KindWord(*Kind));
}

}  // namespace velkrund
