#include "standalone/dictionary/Arguments.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

/// What a floating number keeps of a decimal, digit by digit.
constexpr std::size_t ExactDigits = 15;

bool SetNumber(std::string_view Text, TKvKind Kind, TKvVariant& Value) {
  const auto Number = StrToInt64(Text);
  if (!Number || !HoldsInteger(Kind, *Number)) return false;
  Value.SetInteger(*Number);
  return true;
}

bool SetUnsigned(std::string_view Text, TKvVariant& Value) {
  if (const auto Number = StrToUInt64(Text)) return Value.SetUnsigned(*Number), true;
  return false;
}

bool SetReal(std::string_view Text, TKvVariant& Value) {
  if (const auto Number = StrToReal(Text)) return Value.SetReal(*Number), true;
  return false;
}

/// A number, so that engines compare it as one; its text where a number would not keep all digits.
bool SetDecimal(std::string_view Text, TKvVariant& Value) {
  if (SetNumber(Text, TKvKind::Int64, Value)) return true;
  const auto IsDigit = [](char C) { return C >= '0' && C <= '9'; };
  const bool IsExact = static_cast<std::size_t>(std::count_if(Text.begin(), Text.end(), IsDigit)) <= ExactDigits;
  if (!SetReal(Text, Value)) return false;
  if (!IsExact) Value.SetText(Text);
  return true;
}

bool SetBoolean(std::string_view Text, TKvVariant& Value) {
  for (const auto& [Word, Truth] : {std::pair("TRUE", true), {"1", true}, {"FALSE", false}, {"0", false}})
    if (SameAsciiWord(Text, Word)) return Value.SetBoolean(Truth), true;
  return false;
}

bool SetBytes(std::string_view Text, TKvVariant& Value) {
  std::string& Bytes = Value.StartText();
  if (Text.size() % 2 != 0) return false;
  for (std::size_t At = 0; At < Text.size(); At += 2) {
    const auto Byte = HexToUnsigned(Text.substr(At, 2));
    if (!Byte) return false;
    Bytes += static_cast<char>(*Byte);
  }
  return Value.FinishText(TKvKind::Bytes), true;
}

/// What is expected where Text is none; null: it has become the value.
const char* Convert(TDicFieldType Type, std::string_view Text, TKvVariant& Value) {
  switch (Type) {
    case TDicFieldType::Int16:
      return SetNumber(Text, TKvKind::SmallInt, Value) ? nullptr : "a whole number of 16 bits";
    case TDicFieldType::Int32:
      return SetNumber(Text, TKvKind::Integer, Value) ? nullptr : "a whole number of 32 bits";
    case TDicFieldType::Int64:
      return SetNumber(Text, TKvKind::Int64, Value) ? nullptr : "a whole number of 64 bits";
    case TDicFieldType::UInt64:
      return SetUnsigned(Text, Value) ? nullptr : "a whole number from 0 on";
    case TDicFieldType::Real32:
    case TDicFieldType::Real64:
      return SetReal(Text, Value) ? nullptr : "a number";
    case TDicFieldType::Decimal:
    case TDicFieldType::Money:
      return SetDecimal(Text, Value) ? nullptr : "a decimal number";
    case TDicFieldType::Boolean:
      return SetBoolean(Text, Value) ? nullptr : "true or false";
    case TDicFieldType::Bytes:
      return SetBytes(Text, Value) ? nullptr : "bytes as pairs of hexadecimal digits";
    case TDicFieldType::Date:
      if (const auto Day = StrToSysDate(Text)) return Value.SetSysDate(*Day), nullptr;
      return "a date, such as 2024-02-29";
    case TDicFieldType::Time:
      if (const auto Time = StrToSysTime(Text)) return Value.SetSysTime(*Time), nullptr;
      return "a time, such as 13:45:00";
    case TDicFieldType::DateTime:
      if (const auto Moment = SysStrToDateTime(Text)) return Value.SetDateTime(*Moment), nullptr;
      return "a date and a time, such as '2024-02-29 13:45:00'";
    default:
      return Value.SetText(Text), nullptr;
  }
}

/// The parameters of a procedure that take values, and what was said of them.
class TArgumentReader {
 public:
  explicit TArgumentReader(const TDicProcedureDescription& Procedure)
      : FProcedure(Procedure), FResult(Procedure.Parameters.size()) {
    for (std::size_t I = 0; I < FResult.size(); ++I)
      if (TakesValue(Procedure.Parameters[I])) FNames.push_back(NameOf(I));
  }

  void SetText(const std::string& Name, std::string_view Text) {
    const std::size_t Place = Find(Name);
    if (const char* const Expected = Convert(FProcedure.Parameters[Place].Type, Text, *FResult[Place]))
      Raise(Format("'%s' is no value for its parameter '%s', which takes %s", Shortened(Text), NameOf(Place), Expected),
            {.Code = TErrorCode::Value, .Value = Shortened(Text)});
  }
  void SetNull(const std::string& Name) { Find(Name); }

  TProcedureArguments Take() {
    std::vector<std::string> Missing;
    for (std::size_t I = 0; I < FResult.size(); ++I) {
      const TDicParameter& Parameter = FProcedure.Parameters[I];
      if (!FResult[I] && TakesValue(Parameter) && !HasDefault(Parameter)) Missing.push_back("'" + NameOf(I) + "'");
    }
    if (!Missing.empty())
      Raise(Format("no value is given for %s; it takes %s", JoinedInShort(std::move(Missing)), JoinedInShort(FNames)));
    return std::move(FResult);
  }

 private:
  std::string NameOf(std::size_t Place) const {
    const std::string& Name = FProcedure.Parameters[Place].Name;
    return Name.empty() ? std::to_string(Place + 1) : Name;
  }

  static bool HasDefault(const TDicParameter& Parameter) {
    const auto HasOne = [](const auto& Words) { return Words.second.Part("Default") != nullptr; };
    return Parameter.Default || std::any_of(Parameter.Words.begin(), Parameter.Words.end(), HasOne);
  }

  /// The exact name before one in another case. The place then has a value, which is NULL.
  std::size_t Find(const std::string& Name) {
    std::optional<std::size_t> Found;
    for (std::size_t I = 0; I < FResult.size(); ++I)
      if (TakesValue(FProcedure.Parameters[I]) && (NameOf(I) == Name || (!Found && SameText(NameOf(I), Name)))) {
        Found = I;
        if (NameOf(I) == Name) break;
      }
    if (!Found)
      Raise(Format("it has no parameter '%s'%s", Name,
                   FNames.empty() ? "; it takes none" : ContentHint(Name, FNames, ": it takes ")));
    if (FResult[*Found]) Raise(Format("its parameter '%s' is given twice", NameOf(*Found)));
    FResult[*Found].emplace();
    return *Found;
  }

  [[noreturn]] void Raise(const std::string& Why, TErrorInfo Info = {.Code = TErrorCode::Settings}) const {
    throw EDatabaseError(Format("Cannot run procedure '%s': %s", FProcedure.FullName(), Why), std::move(Info));
  }

  const TDicProcedureDescription& FProcedure;
  std::vector<std::string> FNames;
  TProcedureArguments FResult;
};

}  // namespace

TProcedureArguments ArgumentsOf(const TDicProcedureDescription& Procedure, const TArgumentTexts& Texts) {
  TArgumentReader Reader(Procedure);
  for (const auto& [Name, Text] : Texts.Values) Reader.SetText(Name, Text);
  for (const std::string& Name : Texts.Nulls) Reader.SetNull(Name);
  return Reader.Take();
}

}  // namespace velkrund
