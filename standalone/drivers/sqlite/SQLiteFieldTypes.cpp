#include "standalone/drivers/sqlite/SQLiteFieldTypes.h"

#include <algorithm>

#include "standalone/drivers/sqlite/SQLiteTokens.h"
#include "standalone/drivers/sqlite/SQLiteTypes.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

struct TDeclared {
  TDicFieldType Type;
  std::string_view Words;
  bool Tells = false;  // the words stand for nothing else, where the driver's kind alone would not say as much
};

// Whatever has no number in SQLite that is exactly its own has TEXT somewhere in its words, and so the affinity of
// texts: in a column of numbers '1.50' would become 1.5, and the text '1e5' of a JSON value or an identifier a number.
// Words that hold INT are of whole numbers, whatever else they say: therefore DURATION. Only INTEGER makes a key the
// number of its row, which then numbers itself: integers that shall not have other words.
constexpr TDeclared Declared[] = {
    {TDicFieldType::Any, ""},
    {TDicFieldType::Int16, "SMALLINT"},
    {TDicFieldType::Int32, "INT"},
    {TDicFieldType::Int64, "BIGINT"},
    {TDicFieldType::UInt64, "UNSIGNED TEXT", true},  // the engine's integers have a sign
    {TDicFieldType::Real32, "FLOAT"},
    {TDicFieldType::Real64, "DOUBLE PRECISION"},
    {TDicFieldType::Decimal, "NUMBER TEXT", true},  // see DecimalFor
    {TDicFieldType::Money, "MONEY TEXT"},           // amounts have up to 19 digits
    {TDicFieldType::Boolean, "BOOLEAN"},
    {TDicFieldType::String, "VARCHAR"},
    {TDicFieldType::FixedString, "PADDED CHAR", true},  // what others declare as CHAR is seldom padded
    {TDicFieldType::Bytes, "BLOB"},
    {TDicFieldType::Date, "DATE"},
    {TDicFieldType::Time, "TIME"},
    {TDicFieldType::DateTime, "TIMESTAMP"},
    {TDicFieldType::ZonedDateTime, "TIMESTAMP WITH TIME ZONE", true},
    {TDicFieldType::ZonedTime, "TIMETZ TEXT", true},
    {TDicFieldType::Interval, "DURATION TEXT", true},
    {TDicFieldType::Uuid, "UUID TEXT", true},
    {TDicFieldType::Json, "JSON TEXT", true},
    {TDicFieldType::Other, "TEXT"},
};

constexpr int DigitsOfReal = 15;  // those that a double gives back, whatever they are
constexpr int ScaleOfAmounts = 4;
constexpr int MaxFraction = 6;

/// Words in capitals with one blank between them, and the numbers in the brackets behind them.
struct TTypeText {
  std::string Words;
  std::optional<int> First, Second;
};

TTypeText Split(std::string_view DeclaredType) {
  TTypeText Result;
  bool Behind = false;
  std::string Sign;
  for (const TSQLiteToken& Token : SQLiteTokens(DeclaredType)) {
    Behind = Behind || Token.IsSymbol('(');
    if (!Behind && Token.IsName()) Result.Words += (Result.Words.empty() ? "" : " ") + UpperCase(Token.Name());
    if (Behind && Token.Kind == TSQLiteToken::TKind::Number)
      (Result.First ? Result.Second : Result.First) = StrToInt32(Sign + std::string(Token.Text));
    Sign = Token.IsSymbol('-') ? "-" : "";
  }
  return Result;
}

TDicFieldType TypeOf(std::string_view DeclaredType, const std::string& Words) {
  for (const TDeclared& Known : Declared)
    if (Known.Tells && Known.Words == Words) return Known.Type;
  switch (KindOf(DeclaredType)) {
    case TKvKind::Boolean:
      return TDicFieldType::Boolean;
    case TKvKind::SysDate:
      return TDicFieldType::Date;
    case TKvKind::SysTime:
      return TDicFieldType::Time;
    case TKvKind::DateTime:
      return TDicFieldType::DateTime;
    case TKvKind::Currency:
      return Words.starts_with("MONEY") || Words.starts_with("CURRENCY") ? TDicFieldType::Money
                                                                         : TDicFieldType::Decimal;
    case TKvKind::Int64:
      return TDicFieldType::Int64;
    case TKvKind::Double:
      return TDicFieldType::Real64;
    case TKvKind::String:
      return TDicFieldType::String;
    case TKvKind::Bytes:
      return TDicFieldType::Bytes;
    default:
      return TDicFieldType::Any;
  }
}

std::string WithNumber(std::string_view Words, const std::optional<int>& Number) {
  return std::string(Words) + (Number ? "(" + std::to_string(*Number) + ")" : std::string());
}

/// The driver takes the word DECIMAL for amounts, which have four decimals at most. As numbers they come back if a
/// double has as many digits.
std::string DecimalFor(const TDicField& Field, std::string_view Exact) {
  if (!Field.Size) return std::string(Exact);
  const int Scale = Field.Scale.value_or(0);
  const bool IsAmount = Scale >= 0 && Scale <= ScaleOfAmounts;
  std::string Result(!IsAmount ? Exact : *Field.Size <= DigitsOfReal ? "DECIMAL" : "DECIMAL TEXT");
  Result += "(" + std::to_string(*Field.Size);
  if (Field.Scale) Result += ", " + std::to_string(*Field.Scale);
  return Result + ")";
}

}  // namespace

TSQLiteFieldType FieldTypeOf(std::string_view DeclaredType) {
  const TTypeText Text = Split(DeclaredType);
  TSQLiteFieldType Result{TypeOf(DeclaredType, Text.Words)};
  switch (Result.Type) {
    case TDicFieldType::Decimal:
      Result.Size = Text.First;
      Result.Scale = Text.Second;
      break;
    case TDicFieldType::String:
    case TDicFieldType::FixedString:
    case TDicFieldType::Bytes:
      if (Text.First && *Text.First > 0) Result.Size = Text.First;
      break;
    case TDicFieldType::Time:
    case TDicFieldType::DateTime:
    case TDicFieldType::ZonedDateTime:
    case TDicFieldType::ZonedTime:
    case TDicFieldType::Interval:
      if (Text.First && *Text.First >= 0 && *Text.First <= MaxFraction) Result.Scale = Text.First;
      break;
    default:
      break;
  }
  return Result;
}

std::string DeclaredTypeFor(const TDicField& Field) {
  if (Field.Type == TDicFieldType::String && !Field.Size) return "TEXT";
  const auto Found = std::find_if(std::begin(Declared), std::end(Declared),
                                  [&](const TDeclared& Known) { return Known.Type == Field.Type; });
  if (Field.Type == TDicFieldType::Decimal) return DecimalFor(Field, Found->Words);
  const bool HasSize = Field.Type == TDicFieldType::String || Field.Type == TDicFieldType::FixedString ||
                       Field.Type == TDicFieldType::Bytes;
  const bool HasScale = Field.Type >= TDicFieldType::Time && Field.Type <= TDicFieldType::Interval;
  return WithNumber(Found->Words, HasSize ? Field.Size : HasScale ? Field.Scale : std::nullopt);
}

bool KeepsNumbersAsTexts(TDicFieldType Type, std::string_view DeclaredType) {
  const bool IsNumber = Type == TDicFieldType::Decimal || Type == TDicFieldType::UInt64 || Type == TDicFieldType::Money;
  return IsNumber && AffinityOf(DeclaredType, false) == TAffinity::Text;
}

}  // namespace velkrund
