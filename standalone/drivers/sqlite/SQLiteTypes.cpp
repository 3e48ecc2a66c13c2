#include "standalone/drivers/sqlite/SQLiteTypes.h"

#include <array>
#include <cmath>
#include <string>

#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

std::string UpperAscii(std::string_view Text) {
  std::string Result(Text);
  for (char& C : Result)
    if (C >= 'a' && C <= 'z') C = static_cast<char>(C - 'a' + 'A');
  return Result;
}

bool Contains(std::string_view Text, std::initializer_list<std::string_view> Words) {
  for (const std::string_view Word : Words)
    if (Text.find(Word) != std::string_view::npos) return true;
  return false;
}

struct TNamedKind {
  std::string_view Word;
  TKvKind Kind;
};

constexpr std::array<TNamedKind, 10> NamedKinds = {{
    {"BOOL", TKvKind::Boolean},
    {"BOOLEAN", TKvKind::Boolean},
    {"DATE", TKvKind::SysDate},
    {"TIME", TKvKind::SysTime},
    {"DATETIME", TKvKind::DateTime},
    {"TIMESTAMP", TKvKind::DateTime},
    {"DECIMAL", TKvKind::Currency},
    {"NUMERIC", TKvKind::Currency},
    {"MONEY", TKvKind::Currency},
    {"CURRENCY", TKvKind::Currency},
}};

bool IsBlank(char C) { return C == ' ' || (C >= '\t' && C <= '\r'); }

}  // namespace

TAffinity AffinityOf(std::string_view DeclaredType, bool Strict) {
  const std::string Type = UpperAscii(DeclaredType);
  if (Strict && Type == "ANY") return TAffinity::None;
  if (Contains(Type, {"INT"})) return TAffinity::Integer;
  if (Contains(Type, {"CHAR", "CLOB", "TEXT"})) return TAffinity::Text;
  if (Type.empty() || Contains(Type, {"BLOB"})) return TAffinity::None;
  if (Contains(Type, {"REAL", "FLOA", "DOUB"})) return TAffinity::Real;
  return TAffinity::Numeric;
}

TKvKind KindOf(std::string_view DeclaredType) {
  const std::string Type = UpperAscii(Trim(DeclaredType));
  const std::string_view Word = std::string_view(Type).substr(0, Type.find_first_of(" (\t\r\n"));
  const TAffinity Affinity = AffinityOf(Type, false);
  for (const TNamedKind& Named : NamedKinds) {
    // Where numbers are stored as they come, 5 differs from 5.0; as amounts they are the same.
    const bool TellsNumbersApart = Affinity == TAffinity::None && Named.Kind == TKvKind::Currency;
    if (Named.Word == Word && !TellsNumbersApart) return Named.Kind;
  }
  switch (Affinity) {
    case TAffinity::Integer:
      return TKvKind::Int64;
    case TAffinity::Text:
      return TKvKind::String;
    case TAffinity::Real:
      return TKvKind::Double;
    case TAffinity::None:
      return Type.empty() ? TKvKind::Null : TKvKind::Bytes;
    case TAffinity::Numeric:
      break;
  }
  return TKvKind::Null;
}

bool IsNumberText(std::string_view Text) {
  std::size_t At = 0;
  const auto Skip = [&](auto Accepts) {
    const std::size_t Start = At;
    while (At < Text.size() && Accepts(Text[At])) ++At;
    return At - Start;
  };
  const auto IsDigit = [](char C) { return C >= '0' && C <= '9'; };
  const auto IsOneOf = [&](std::string_view Set) {
    return At < Text.size() && Set.find(Text[At]) != std::string_view::npos ? (++At, true) : false;
  };

  Skip(IsBlank);
  IsOneOf("+-");
  std::size_t Digits = Skip(IsDigit);
  if (IsOneOf(".")) Digits += Skip(IsDigit);
  if (Digits == 0) return false;
  if (IsOneOf("eE")) {
    IsOneOf("+-");
    if (Skip(IsDigit) == 0) return false;
  }
  Skip(IsBlank);
  return At == Text.size();
}

TTextFate FateOfText(std::string_view Text, TAffinity Affinity, TKvVariant& Value) {
  if (!IsNumberText(Text)) return TTextFate::StaysText;
  std::string Again;
  if (const std::optional<std::int64_t> Integer = StrToInt64(Text)) {
    AppendInteger(Again, *Integer);
    if (Again != Text) return TTextFate::Changed;
    if (Affinity == TAffinity::Real) {
      if (*Integer < -MaxExactInteger || *Integer > MaxExactInteger) return TTextFate::Changed;
      return Value.SetReal(static_cast<double>(*Integer)), TTextFate::Real;
    }
    return Value.SetInteger(*Integer), TTextFate::Integer;
  }
  const std::optional<double> Real = StrToReal(Text);
  if (!Real) return TTextFate::Changed;
  AppendReal(Again, *Real);
  // A whole number becomes an integer, whose text has neither point nor exponent; zero loses its sign everywhere.
  const bool BecomesInteger = Affinity != TAffinity::Real && std::abs(*Real) < 0x1p63 && *Real == std::trunc(*Real);
  const bool LosesSign = *Real == 0 && std::signbit(*Real);
  if (Again != Text || BecomesInteger || LosesSign) return TTextFate::Changed;
  return Value.SetReal(*Real), TTextFate::Real;
}

}  // namespace velkrund
