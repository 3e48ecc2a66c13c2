#include "standalone/drivers/expressions/ExpressionCasts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

bool IsIntegerType(std::string_view Type) {
  static constexpr std::array<std::string_view, 3> Types = {"smallint", "integer", "bigint"};
  return std::ranges::find(Types, Type) != Types.end();
}

/// Those that hold every number of the length that people write.
bool IsWideNumberType(std::string_view Type) {
  static constexpr std::array<std::string_view, 3> Types = {"numeric", "double precision", "money"};
  return std::ranges::find(Types, Type) != Types.end();
}

bool IsNumberType(std::string_view Type) { return IsIntegerType(Type) || IsWideNumberType(Type) || Type == "real"; }

bool KeepsNumber(std::string_view Number, std::string_view Type) {
  if (IsWideNumberType(Type)) return true;
  if (!IsNumberType(Type)) return false;
  static constexpr std::size_t DigitsOfReal = 6;
  return Number.find('.') == std::string_view::npos && (IsIntegerType(Type) || Number.size() <= DigitsOfReal);
}

bool IsHexadecimal(std::string_view Text) {
  return Text.size() % 2 == 0 && Text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

using TIdle = std::function<bool(std::string_view)>;

bool IsIdle(const TIdle& Idle, std::string_view Type) { return Idle && Idle(Type); }

bool KeepsNumberOf(std::string_view Number, std::string_view Type, const TIdle& Idle) {
  return KeepsNumber(Number, Type) || (Type == "real" && IsIdle(Idle, Type));
}

/// A text as what its cast makes of it; nothing: it has no neutral form.
std::optional<TExpression> OfText(TExpression Node, std::string_view Type, const TIdle& Idle) {
  if (IsNumberType(Type)) {
    std::string Number = NumberText(Trim(Node.Text));
    if (Number.empty() || !KeepsNumberOf(Number, Type, Idle)) return std::nullopt;  // also what is not a number
    return TExpression(TExpressionKind::Number, std::move(Number));
  }
  if (Type == "bytea") {
    if (!Node.Text.starts_with("\\x") || !IsHexadecimal(std::string_view(Node.Text).substr(2))) return std::nullopt;
    return TExpression(TExpressionKind::Bytes, LowerCase(std::string_view(Node.Text).substr(2)));
  }
  if (!IsIdle(Idle, Type)) return std::nullopt;
  return Node;
}

/// Types that hold whatever is computed; others round it.
bool KeepsAll(std::string_view Type) { return Type == "numeric" || Type == "text" || Type == "character varying"; }

bool Changes(const TExpression& Node, std::string_view Type, const TIdle& Idle) {
  switch (Node.Kind) {
    case TExpressionKind::Number:
      return !KeepsNumberOf(Node.Text, Type, Idle);
    case TExpressionKind::Bytes:
      return Type != "bytea";
    case TExpressionKind::Word:
      return !Node.IsNull() && Type != "boolean";
    case TExpressionKind::Column:
      return !IsIdle(Idle, Type);
    case TExpressionKind::Case:
    case TExpressionKind::CaseOf:
      return !KeepsAll(Type) || !IsIdle(Idle, Type);
    case TExpressionKind::Call:
      return !KeepsAll(Type) || !IsIdle(Idle, Type) || (Node.Text == "ABS" && !IsNumberType(Type));
    case TExpressionKind::Sum:
    case TExpressionKind::Product:
    case TExpressionKind::Minus:
      return Type != "numeric" || !IsIdle(Idle, Type);
    default:
      return Type != "boolean";
  }
}

void TakeInto(std::string& Type, TExpressionLexer& Lexer) {
  Type += ' ' + LowerCase(Lexer.Text());
  Lexer.Next();
}

void TakeLengths(std::string& Type, TExpressionLexer& Lexer) {
  if (!Lexer.IsSign("(")) return;
  for (; !Lexer.IsSign(")"); Lexer.Next()) {
    if (Lexer.Kind() != TExpressionPiece::Sign && Lexer.Kind() != TExpressionPiece::Number)
      throw ENotNeutral("it has a cast of an unusual kind");
    Type += Lexer.Text();
  }
  Type += ')';
  Lexer.Next();
}

}  // namespace

std::string TakeCastType(TExpressionLexer& Lexer) {
  std::string Type;
  for (;; Lexer.Next()) {
    if (Lexer.Kind() == TExpressionPiece::Word)
      Type += LowerCase(Lexer.Text());
    else if (Lexer.Kind() == TExpressionPiece::Name)
      Type += '"' + Lexer.Text() + '"';
    else
      throw ENotNeutral("it has a cast of an unusual kind");
    Lexer.Next();
    if (!Lexer.IsSign(".")) break;
    Type += '.';
  }
  if ((Type == "character" || Type == "bit") && Lexer.IsWord("VARYING")) TakeInto(Type, Lexer);
  if (Type == "double" && Lexer.IsWord("PRECISION")) TakeInto(Type, Lexer);
  const bool OfTime = Type == "time" || Type == "timestamp";
  TakeLengths(Type, Lexer);
  if (OfTime && (Lexer.IsWord("WITH") || Lexer.IsWord("WITHOUT")))
    for (int Words = 0; Words < 3 && Lexer.Kind() == TExpressionPiece::Word; ++Words) TakeInto(Type, Lexer);
  for (; Lexer.IsSign("[]"); Lexer.Next()) Type += "[]";
  return Type;
}

TExpression WithoutCast(TExpression Node, std::string_view Type,
                        const std::function<bool(std::string_view Type)>& Idle) {
  if (Node.Is(TExpressionKind::String)) {
    if (auto Made = OfText(std::move(Node), Type, Idle)) return *std::move(Made);
  } else if (!Changes(Node, Type, Idle)) {
    return Node;
  }
  throw ENotNeutral("it has a cast to '" + std::string(Type) + "'");
}

}  // namespace velkrund
