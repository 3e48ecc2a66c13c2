#include "standalone/drivers/expressions/NeutralExpression.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "standalone/drivers/expressions/ExpressionCasts.h"
#include "standalone/drivers/expressions/ExpressionLexer.h"
#include "standalone/drivers/expressions/ExpressionParser.h"
#include "standalone/drivers/expressions/ExpressionTree.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

using TType = TDicFieldType;
using TPieces = std::vector<std::pair<TExpressionPiece, std::string>>;

std::string QuotedName(std::string_view Name) {
  std::string Result = "\"";
  for (const char C : Name) Result.append(C == '"' ? 2 : 1, C);
  return Result + '"';
}

const TExpressionWords& NeutralWords() {
  static const TExpressionWords Words = {.Quoted = QuotedName,
                                         .Bytes = [](std::string_view Digits) { return Format("x'%s'", Digits); },
                                         .Now = "NOW",
                                         .Today = "TODAY",
                                         .Time = "TIME",
                                         .Uuid = "UUID"};
  return Words;
}

/// Neutral texts as a source: every quoted name is a column.
const TExpressionSource& NeutralSource() {
  static const TExpressionSource Source = {
      .Column = [](std::string_view Name,
                   bool Quoted) { return Quoted ? std::optional<std::string>(Name) : std::nullopt; },
      .IsIdleCast = [](std::string_view) { return false; }};
  return Source;
}

/// What an engine's word for the value of a moment, or for a random key, is, and to which types of fields it goes.
struct TMoment {
  std::string_view Text;  // pieces with a blank between two
  std::string_view Neutral;
};

constexpr std::array<TMoment, 12> Moments = {{{"CURRENT_TIMESTAMP", "NOW"},
                                              {"LOCALTIMESTAMP", "NOW"},
                                              {"NOW ( )", "NOW"},
                                              {"TRANSACTION_TIMESTAMP ( )", "NOW"},
                                              {"DATETIME ( 'NOW' )", "NOW"},
                                              {"CURRENT_DATE", "TODAY"},
                                              {"DATE ( 'NOW' )", "TODAY"},
                                              {"CURRENT_TIME", "TIME"},
                                              {"LOCALTIME", "TIME"},
                                              {"TIME ( 'NOW' )", "TIME"},
                                              {"GEN_RANDOM_UUID ( )", "UUID"},
                                              {"UUID_GENERATE_V4 ( )", "UUID"}}};

/// Other fields would get the value in a form that is another type's.
bool Holds(TType Type, std::string_view Moment) {
  if (Moment == "NOW") return Type == TType::DateTime || Type == TType::ZonedDateTime;
  if (Moment == "TODAY") return Type == TType::Date || Type == TType::DateTime;
  if (Moment == "TIME") return Type == TType::Time || Type == TType::ZonedTime;
  return Type == TType::Uuid || Type == TType::String || Type == TType::FixedString;
}

/// A cast of a value to the type of its own field, which gets it anyway.
bool IsOwnCast(TType Field, std::string_view Type) {
  using TOwn = std::pair<TType, std::string_view>;
  static constexpr std::array<TOwn, 14> Own = {{{TType::Real32, "real"},
                                                {TType::Boolean, "boolean"},
                                                {TType::String, "text"},
                                                {TType::String, "character varying"},
                                                {TType::FixedString, "bpchar"},
                                                {TType::Date, "date"},
                                                {TType::Time, "time without time zone"},
                                                {TType::DateTime, "timestamp without time zone"},
                                                {TType::ZonedDateTime, "timestamp with time zone"},
                                                {TType::ZonedTime, "time with time zone"},
                                                {TType::Interval, "interval"},
                                                {TType::Uuid, "uuid"},
                                                {TType::Json, "json"},
                                                {TType::Json, "jsonb"}}};
  return std::ranges::find(Own, TOwn(Field, Type)) != Own.end();
}

bool IsNumber(TType Type) { return (Type >= TType::Int16 && Type <= TType::Money); }

TPieces PiecesOf(std::string_view Text) {
  TPieces Pieces;
  for (TExpressionLexer Lexer(Text); Lexer.Kind() != TExpressionPiece::End; Lexer.Next())
    Pieces.emplace_back(Lexer.Kind(), Lexer.Text());
  return Pieces;
}

/// Without the brackets around all of it.
TPieces Bare(TPieces Pieces) {
  for (;;) {
    if (Pieces.size() < 2 || Pieces.front() != TPieces::value_type(TExpressionPiece::Sign, "(")) return Pieces;
    std::size_t At = 0;
    int Depth = 0;
    for (; At < Pieces.size(); ++At) {
      if (Pieces[At].first != TExpressionPiece::Sign) continue;
      if (Pieces[At].second == "(") ++Depth;
      if (Pieces[At].second == ")" && --Depth == 0) break;
    }
    if (At + 1 != Pieces.size()) return Pieces;
    Pieces.pop_back();
    Pieces.erase(Pieces.begin());
  }
}

std::string Joined(const TPieces& Pieces, std::size_t First, std::size_t End) {
  std::string Text;
  for (std::size_t I = First; I < End; ++I) {
    if (I > First) Text += ' ';
    const bool Quoted = Pieces[I].first == TExpressionPiece::String || Pieces[I].first == TExpressionPiece::Name;
    Text += Quoted ? '\'' + Pieces[I].second + '\'' : Pieces[I].second;
  }
  return UpperCase(Text);
}

/// NOW, TODAY, TIME, UUID; empty: it is none of them.
std::string_view MomentOf(TPieces Pieces, TType Type) {
  constexpr std::size_t MostPieces = 40;
  if (Pieces.size() > MostPieces) return {};
  for (;;) {
    Pieces = Bare(std::move(Pieces));
    std::size_t Cast = Pieces.size();
    while (Cast > 0 && Pieces[Cast - 1] != TPieces::value_type(TExpressionPiece::Sign, "::")) --Cast;
    if (Cast == 0 || !IsOwnCast(Type, LowerCase(Joined(Pieces, Cast, Pieces.size())))) break;
    Pieces.resize(Cast - 1);
  }
  const std::string Text = Joined(Pieces, 0, Pieces.size());
  const auto Found = std::ranges::find(Moments, Text, &TMoment::Text);
  return Found != Moments.end() && Holds(Type, Found->Neutral) ? Found->Neutral : std::string_view();
}

/// A literal as fields of that type hold it anyway.
TExpression OfType(TExpression Literal, TType Type) {
  if (Type == TType::Boolean && Literal.Is(TExpressionKind::Number) && (Literal.Text == "0" || Literal.Text == "1"))
    return {TExpressionKind::Word, Literal.Text == "1" ? "TRUE" : "FALSE"};
  if (IsNumber(Type) && Literal.Is(TExpressionKind::String)) {
    std::string Number = NumberText(Literal.Text);
    if (!Number.empty()) return {TExpressionKind::Number, std::move(Number)};
  }
  return Literal;
}

bool IsLiteral(const TExpression& Expression) {
  return Expression.Is(TExpressionKind::Number) || Expression.Is(TExpressionKind::String) ||
         Expression.Is(TExpressionKind::Bytes) || Expression.Is(TExpressionKind::Word);
}

TExpression Literal(std::string_view Text, const TPieces& Pieces, TType Type, const TExpressionSource& Source) {
  // A default knows no columns: a name between quotes is a text.
  if (Pieces.size() == 1 && Pieces[0].first == TExpressionPiece::Name)
    return {TExpressionKind::String, Pieces[0].second};
  const TExpressionSource Own = {.Column = [](std::string_view, bool) { return std::nullopt; },
                                 .IsIdleCast =
                                     [&](std::string_view Cast) {
                                       return IsOwnCast(Type, Cast) || (Source.IsIdleCast && Source.IsIdleCast(Cast));
                                     }};
  return ParseExpression(Text, Own);
}

}  // namespace

std::optional<std::string> NeutralExpression(std::string_view Text, const TExpressionSource& Source) {
  try {
    return Printed(ParseExpression(Text, Source), NeutralWords());
  } catch (const ENotNeutral&) {
    return std::nullopt;
  }
}

std::optional<std::string> NeutralDefault(std::string_view Text, TDicFieldType Type, const TExpressionSource& Source) {
  try {
    const TPieces Pieces = Bare(PiecesOf(Text));
    if (const std::string_view Moment = MomentOf(Pieces, Type); !Moment.empty()) return std::string(Moment);
    const TExpression Value = Literal(Text, Pieces, Type, Source);
    if (!IsLiteral(Value)) return std::nullopt;
    return Printed(OfType(Value, Type), NeutralWords());
  } catch (const ENotNeutral&) {
    return std::nullopt;
  }
}

std::optional<std::string> ExpressionIn(std::string_view Neutral, const TExpressionWords& Words) {
  const std::array<std::pair<std::string_view, std::string_view>, 4> Values = {
      {{"NOW", Words.Now}, {"TODAY", Words.Today}, {"TIME", Words.Time}, {"UUID", Words.Uuid}}};
  for (const auto& [Name, Word] : Values)
    if (Neutral == Name) return Word.empty() ? std::nullopt : std::optional<std::string>(Word);
  try {
    return Printed(ParseExpression(Neutral, NeutralSource()), Words);
  } catch (const ENotNeutral& E) {
    throw EDatabaseError(Format("The expression \"%s\" is not neutral: %s", Neutral, E.what()));
  }
}

}  // namespace velkrund
