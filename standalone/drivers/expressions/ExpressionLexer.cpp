#include "standalone/drivers/expressions/ExpressionLexer.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "standalone/drivers/expressions/ExpressionTree.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr std::int64_t MostMovedDigits = 60;  // by an exponent; more are the limits of a floating point type

bool IsDigit(char C) { return C >= '0' && C <= '9'; }

bool IsHexDigit(char C) { return IsDigit(C) || (C >= 'a' && C <= 'f') || (C >= 'A' && C <= 'F'); }

bool IsOfWord(char C) {
  return IsDigit(C) || (C >= 'A' && C <= 'Z') || (C >= 'a' && C <= 'z') || C == '_' || C == '$' ||
         static_cast<unsigned char>(C) >= 0x80;
}

template <typename TTest>
std::size_t Span(std::string_view Text, std::size_t From, TTest Test) {
  return static_cast<std::size_t>(std::find_if_not(Text.begin() + static_cast<std::ptrdiff_t>(From), Text.end(), Test) -
                                  Text.begin());
}

/// The length of a number, without a sign, at the beginning of Text; 0: none.
std::size_t NumberLength(std::string_view Text) {
  if (Text.size() > 2 && Text[0] == '0' && (Text[1] == 'x' || Text[1] == 'X')) {
    const std::size_t End = Span(Text, 2, IsHexDigit);
    return End > 2 ? End : 0;
  }
  std::size_t End = Span(Text, 0, IsDigit);
  std::size_t Digits = End;
  if (End < Text.size() && Text[End] == '.') {
    const std::size_t Behind = Span(Text, End + 1, IsDigit);
    Digits += Behind - End - 1;
    End = Behind;
  }
  if (Digits == 0) return 0;
  if (End < Text.size() && (Text[End] == 'e' || Text[End] == 'E')) {
    const std::size_t Sign = End + 1 < Text.size() && (Text[End + 1] == '+' || Text[End + 1] == '-') ? 1 : 0;
    const std::size_t Behind = Span(Text, End + 1 + Sign, IsDigit);
    if (Behind > End + 1 + Sign) End = Behind;
  }
  return End;
}

/// Hexadecimal numbers are the bits of a signed one.
std::string HexNumberText(std::string_view Digits) {
  std::uint64_t Bits = 0;
  const auto [End, Error] = std::from_chars(Digits.data(), Digits.data() + Digits.size(), Bits, 16);
  if (Error != std::errc() || End != Digits.data() + Digits.size()) return {};
  return std::to_string(static_cast<std::int64_t>(Bits));
}

std::string DecimalText(std::string_view Text) {
  const std::size_t E = std::min(Text.find_first_of("eE"), Text.size());
  std::int64_t Exponent = 0;
  if (E < Text.size()) {
    std::string_view Digits = Text.substr(E + 1);
    if (Digits.starts_with('+')) Digits.remove_prefix(1);
    const auto [End, Error] = std::from_chars(Digits.data(), Digits.data() + Digits.size(), Exponent);
    if (Error != std::errc() || Exponent > MostMovedDigits || Exponent < -MostMovedDigits) return {};
  }
  const std::string_view Mantissa = Text.substr(0, E);
  const std::size_t Point = Mantissa.find('.');
  std::string Whole(Mantissa.substr(0, Point));
  std::string Behind(Point == std::string_view::npos ? std::string_view() : Mantissa.substr(Point + 1));
  const bool Integer = Point == std::string_view::npos && E == Text.size();
  for (; Exponent > 0; --Exponent) {
    Whole += Behind.empty() ? '0' : Behind.front();
    if (!Behind.empty()) Behind.erase(0, 1);
  }
  for (; Exponent < 0; ++Exponent) {
    Behind.insert(Behind.begin(), Whole.empty() ? '0' : Whole.back());
    if (!Whole.empty()) Whole.pop_back();
  }
  Whole.erase(0, std::min(Whole.find_first_not_of('0'), Whole.size()));
  if (Whole.empty()) Whole = "0";
  if (Integer) return Whole;
  return Whole + '.' + (Behind.empty() ? "0" : Behind);
}

}  // namespace

std::string NumberText(std::string_view Text) {
  const bool Minus = Text.starts_with('-');
  if (Minus || Text.starts_with('+')) Text.remove_prefix(1);
  if (Text.empty() || NumberLength(Text) != Text.size()) return {};
  const bool Hexadecimal = Text.size() > 1 && (Text[1] == 'x' || Text[1] == 'X');
  std::string Result = Hexadecimal ? HexNumberText(Text.substr(2)) : DecimalText(Text);
  if (!Minus || Result.empty() || Result.find_first_not_of("0.") == std::string::npos) return Result;
  return Result.starts_with('-') ? Result.substr(1) : '-' + Result;
}

bool TExpressionLexer::IsWord(std::string_view Word) const {
  return FKind == TExpressionPiece::Word && SameAsciiWord(FText, Word);
}

void TExpressionLexer::Next() {
  PassBlanks();
  if (FRest.empty()) {
    FKind = TExpressionPiece::End;
    FText.clear();
    return;
  }
  const char First = FRest.front();
  if (First == '\'')
    TakeQuoted('\'', TExpressionPiece::String);
  else if (First == '"' || First == '`')
    TakeQuoted(First, TExpressionPiece::Name);
  else if (First == '[' && !FRest.starts_with("[]") && !IsWord("ARRAY"))
    TakeQuoted(']', TExpressionPiece::Name);
  else if (NumberLength(FRest) > 0)
    TakeNumber();
  else if (IsOfWord(First))
    TakeWord();
  else
    TakeSign();
}

void TExpressionLexer::PassBlanks() {
  for (;;) {
    FRest.remove_prefix(std::min(FRest.find_first_not_of(" \t\n\v\f\r"), FRest.size()));
    std::string_view End;
    if (FRest.starts_with("--"))
      End = "\n";
    else if (FRest.starts_with("/*"))
      End = "*/";
    else
      return;
    const std::size_t At = FRest.find(End, 2);
    FRest.remove_prefix(At == std::string_view::npos ? FRest.size() : At + End.size());
  }
}

void TExpressionLexer::Pass(std::size_t Count, TExpressionPiece Kind, std::string Text) {
  FKind = Kind;
  FText = std::move(Text);
  FRest.remove_prefix(Count);
}

void TExpressionLexer::TakeQuoted(char Close, TExpressionPiece Kind) {
  std::string Text;
  for (std::size_t At = 1; At < FRest.size(); ++At) {
    if (FRest[At] == Close) {
      // Two in a row are one of the text; a bracket cannot be written at all.
      if (Close == ']' || At + 1 == FRest.size() || FRest[At + 1] != Close) return Pass(At + 1, Kind, std::move(Text));
      ++At;
    }
    Text += FRest[At];
  }
  throw ENotNeutral("it ends between quotes");
}

void TExpressionLexer::TakeWord() {
  const std::size_t End = Span(FRest, 0, IsOfWord);
  if (End == FRest.size() || FRest[End] != '\'')
    return Pass(End, TExpressionPiece::Word, std::string(FRest.substr(0, End)));
  const std::size_t Close = Span(FRest, End + 1, IsHexDigit);
  if (!SameAsciiWord(FRest.substr(0, End), "X") || Close == FRest.size() || FRest[Close] != '\'' ||
      (Close - End - 1) % 2 != 0)
    throw ENotNeutral("it has a text of an unusual kind");
  Pass(Close + 1, TExpressionPiece::Bytes, LowerCase(FRest.substr(End + 1, Close - End - 1)));
}

void TExpressionLexer::TakeNumber() {
  const std::size_t End = NumberLength(FRest);
  std::string Text = NumberText(FRest.substr(0, End));
  if (Text.empty() || (End < FRest.size() && (IsOfWord(FRest[End]) || FRest[End] == '\'')))
    throw ENotNeutral("it has a number of an unusual kind");
  Pass(End, TExpressionPiece::Number, std::move(Text));
}

void TExpressionLexer::TakeSign() {
  // Engines read the characters of an operator as one as long as they go on; "=-" is two, though.
  static constexpr std::string_view Signs[] = {"::", "[]", "<>", "<=", ">=", "==", "!=", "(", ")", "[",
                                               "]",  ",",  "<",  ">",  "=",  "+",  "-",  "*", "."};
  static constexpr std::string_view OfOperator = "<>=!~|&#@%^?/";
  for (const std::string_view Sign : Signs) {
    if (!FRest.starts_with(Sign)) continue;
    const bool Operator = OfOperator.find(Sign.front()) != std::string_view::npos;
    if (Operator && FRest.size() > Sign.size() && OfOperator.find(FRest[Sign.size()]) != std::string_view::npos) break;
    return Pass(Sign.size(), TExpressionPiece::Sign, std::string(Sign == "==" ? "=" : Sign == "!=" ? "<>" : Sign));
  }
  throw ENotNeutral("'" + std::string(FRest.substr(0, FRest.find_first_of(" \t\r\n'\"(", 1))) +
                    "' is no neutral operator");
}

}  // namespace velkrund
