#include "standalone/drivers/expressions/ExpressionParser.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "standalone/drivers/expressions/ExpressionCasts.h"
#include "standalone/drivers/expressions/ExpressionLexer.h"
#include "standalone/drivers/expressions/ExpressionMaker.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr int MostLevels = 250;  // more than any tree is deep

using TKind = TExpressionKind;
using TNodes = TExpressionMaker::TNodes;

// How tightly operators bind, loosest first.
enum TLevel { OfOr = 1, OfAnd, OfNot, OfEquation, OfOrder, OfSum, OfProduct, OfUnary };

struct TFunction {
  std::string_view Name;
  std::string_view Neutral;
  std::size_t Least, Most;  // arguments
};

constexpr std::array<TFunction, 6> Functions = {{{"COALESCE", "COALESCE", 2, 1000},
                                                 {"IFNULL", "COALESCE", 2, 2},
                                                 {"NULLIF", "NULLIF", 2, 2},
                                                 {"LOWER", "LOWER", 1, 1},
                                                 {"UPPER", "UPPER", 1, 1},
                                                 {"ABS", "ABS", 1, 1}}};

class TParser {
 public:
  TParser(std::string_view Text, const TExpressionSource& Source) : FLexer(Text), FSource(Source), FMaker(Source) {}

  TExpression Whole() {
    TExpression Result = Parse(OfOr);
    if (FLexer.Kind() != TExpressionPiece::End) Fail();
    return Result;
  }

 private:
  struct TDeeper {
    explicit TDeeper(int& Level) : FLevel(Level) {
      if (++FLevel > MostLevels) throw ENotNeutral("it is too deep");
    }
    TDeeper(const TDeeper&) = delete;
    TDeeper& operator=(const TDeeper&) = delete;
    ~TDeeper() { --FLevel; }
    int& FLevel;
  };

  [[noreturn]] void Fail() const {
    if (FLexer.Kind() == TExpressionPiece::End) throw ENotNeutral("it ends too early");
    throw ENotNeutral("'" + FLexer.Text() + "' is not neutral");
  }
  bool Take(std::string_view Word) {
    const bool Found = FLexer.IsWord(Word);
    if (Found) FLexer.Next();
    return Found;
  }
  bool TakeSign(std::string_view Sign) {
    const bool Found = FLexer.IsSign(Sign);
    if (Found) FLexer.Next();
    return Found;
  }
  void Expect(std::string_view Word) {
    if (!Take(Word)) Fail();
  }
  void ExpectSign(std::string_view Sign) {
    if (!TakeSign(Sign)) Fail();
  }

  TExpression Parse(int Least) {
    const TDeeper Deeper(FLevel);
    TExpression Left = Prefix(Least);
    while (Extend(Left, Least)) {
    }
    return Left;
  }

  TExpression Prefix(int Least) {
    if (Least > OfNot || !Take("NOT")) return Unary();
    TNodes Nodes;
    Nodes.push_back(FMaker.Truth(Parse(OfNot)));
    return {TKind::Not, "", std::move(Nodes)};
  }

  /// Takes one operator, with what stands behind it, that binds at least as tightly as Least.
  bool Extend(TExpression& Left, int Least) {
    if (Least <= OfOr && Take("OR")) return Join(Left, TKind::Or, "", OfAnd);
    if (Least <= OfAnd && Take("AND")) return Join(Left, TKind::And, "", OfNot);
    if (Least <= OfEquation && ExtendEquation(Left)) return true;
    if (FLexer.Kind() != TExpressionPiece::Sign) return false;
    const std::string Sign = FLexer.Text();
    const bool Orders = Sign == "<" || Sign == "<=" || Sign == ">" || Sign == ">=";
    if (Least <= OfOrder && Orders && TakeSign(Sign)) return Join(Left, TKind::Comparison, Sign, OfSum);
    if (Least <= OfSum && (Sign == "+" || Sign == "-") && TakeSign(Sign))
      return Join(Left, TKind::Sum, Sign, OfProduct);
    if (Least <= OfProduct && TakeSign("*")) return Join(Left, TKind::Product, Sign, OfUnary);
    return false;
  }

  bool Join(TExpression& Left, TKind Kind, std::string Text, int Least) {
    TExpression Right = Parse(Least);
    if (Kind == TKind::Comparison)
      Left = FMaker.Compared(std::move(Left), std::move(Text), std::move(Right));
    else if (Kind == TKind::Or || Kind == TKind::And)
      Left =
          TExpression(Kind, "", TExpressionMaker::Two(FMaker.Truth(std::move(Left)), FMaker.Truth(std::move(Right))));
    else
      Left = TExpression(Kind, std::move(Text),
                         TExpressionMaker::Two(FMaker.Number(std::move(Left)), FMaker.Number(std::move(Right))));
    return true;
  }

  bool ExtendEquation(TExpression& Left) {
    const bool Equal = FLexer.IsSign("=");
    if (Equal || FLexer.IsSign("<>")) {
      FLexer.Next();
      if (FLexer.IsWord("ANY") || FLexer.IsWord("ALL")) {
        if (Take("ANY") != Equal) Fail();
        if (!Equal) Expect("ALL");
        ExpectSign("(");
        Left = FMaker.InList(Left, Array(), !Equal);
        ExpectSign(")");
        return true;
      }
      return Join(Left, TKind::Comparison, Equal ? "=" : "<>", OfOrder);
    }
    if (Take("IS")) {
      const bool Not = Take("NOT");
      Expect("NULL");
      return MakeIs(Left, Not);
    }
    if (Take("ISNULL")) return MakeIs(Left, false);
    if (Take("NOTNULL")) return MakeIs(Left, true);
    const bool Not = Take("NOT");
    if (Not && Take("NULL")) return MakeIs(Left, true);
    if (Take("IN")) {
      ExpectSign("(");
      Left = FMaker.InList(Left, List(), Not);
      return true;
    }
    if (Take("BETWEEN")) {
      TExpression Low = Parse(OfOrder);
      Expect("AND");
      Left = FMaker.Between(Left, std::move(Low), Parse(OfOrder), Not);
      return true;
    }
    if (Not) Fail();
    return false;
  }

  static bool MakeIs(TExpression& Left, bool Not) {
    TNodes Nodes;
    Nodes.push_back(std::move(Left));
    Left = TExpression(TKind::Is, Not ? "IS NOT NULL" : "IS NULL", std::move(Nodes));
    return true;
  }

  /// What stands before the closing bracket, which goes with it.
  TNodes List() {
    TNodes Items;
    do Items.push_back(Parse(OfOr));
    while (TakeSign(","));
    ExpectSign(")");
    return Items;
  }

  /// ARRAY[...], in any number of brackets, with casts.
  TNodes Array() {
    const TDeeper Deeper(FLevel);
    TNodes Items;
    if (TakeSign("(")) {
      Items = Array();
      ExpectSign(")");
    } else {
      Expect("ARRAY");
      ExpectSign("[");
      do Items.push_back(Parse(OfOr));
      while (TakeSign(","));
      ExpectSign("]");
    }
    while (TakeSign("::")) {
      const std::string Type = TakeCastType(FLexer);
      if (!Type.ends_with("[]")) throw ENotNeutral("it has a cast to '" + Type + "'");
      for (TExpression& Item : Items)
        Item = WithoutCast(std::move(Item), std::string_view(Type).substr(0, Type.size() - 2), FSource.IsIdleCast);
    }
    return Items;
  }

  TExpression Unary() {
    const TDeeper Deeper(FLevel);
    if (TakeSign("+")) {
      TExpression Number = Unary();
      if (!Number.Is(TKind::Number)) throw ENotNeutral("it has a plus before something else than a number");
      return Number;
    }
    if (!TakeSign("-")) return Primary();
    TExpression Operand = Unary();
    if (Operand.Is(TKind::Number)) {
      const bool Minus = Operand.Text.starts_with('-');
      return {TKind::Number, Minus ? Operand.Text.substr(1) : NumberText('-' + Operand.Text)};
    }
    TNodes Nodes;
    Nodes.push_back(FMaker.Number(std::move(Operand)));
    return {TKind::Minus, "", std::move(Nodes)};
  }

  TExpression Primary() {
    TExpression Result = Uncast();
    while (TakeSign("::")) {
      const std::string Type = TakeCastType(FLexer);
      Result = WithoutCast(std::move(Result), Type, FSource.IsIdleCast);
    }
    return Result;
  }

  TExpression Uncast() {
    if (TakeSign("(")) {
      TExpression Result = Parse(OfOr);
      ExpectSign(")");
      return Result;
    }
    if (Take("CASE")) return Case();
    const TExpressionPiece Kind = FLexer.Kind();
    if (Kind == TExpressionPiece::End || Kind == TExpressionPiece::Sign) Fail();
    const std::string Text = FLexer.Text();
    FLexer.Next();
    switch (Kind) {
      case TExpressionPiece::Number:
        return {TKind::Number, Text};
      case TExpressionPiece::String:
        return {TKind::String, Text};
      case TExpressionPiece::Bytes:
        return {TKind::Bytes, Text};
      case TExpressionPiece::Name:
        return Named(Text, true);
      default:
        break;
    }
    if (TakeSign("(")) return Call(Text);
    const std::string Word = UpperCase(Text);
    if (Word == "NULL") return {TKind::Word, Word};
    // One engine has such columns without quotes, the other means the value.
    if ((Word == "TRUE" || Word == "FALSE") && !Column(Text, false)) return {TKind::Word, Word};
    if (Word == "TRUE" || Word == "FALSE") throw ENotNeutral("'" + Text + "' is a value or a column");
    return Named(Text, false);
  }

  std::optional<std::string> Column(const std::string& Name, bool Quoted) const {
    return FSource.Column ? FSource.Column(Name, Quoted) : std::nullopt;
  }

  TExpression Named(const std::string& Name, bool Quoted) const {
    auto Exact = Column(Name, Quoted);
    if (!Exact) throw ENotNeutral("'" + Name + "' is not neutral");
    return {TKind::Column, std::move(*Exact)};
  }

  TExpression Call(const std::string& Name) {
    for (const TFunction& Function : Functions) {
      if (!SameAsciiWord(Name, Function.Name)) continue;
      TNodes Arguments = List();
      if (Arguments.size() < Function.Least || Arguments.size() > Function.Most) break;
      return {TKind::Call, std::string(Function.Neutral), std::move(Arguments)};
    }
    throw ENotNeutral("the function '" + Name + "' is not neutral");
  }

  TExpression Case() {
    TNodes Nodes;
    const bool Of = !FLexer.IsWord("WHEN");
    if (Of) Nodes.push_back(Parse(OfOr));
    do {
      Expect("WHEN");
      Nodes.push_back(Of ? FMaker.AsOther(Parse(OfOr), Nodes.front()) : FMaker.Truth(Parse(OfOr)));
      Expect("THEN");
      Nodes.push_back(Parse(OfOr));
    } while (FLexer.IsWord("WHEN"));
    if (Take("ELSE")) {
      TExpression Else = Parse(OfOr);
      if (!Else.IsNull()) Nodes.push_back(std::move(Else));
    }
    Expect("END");
    return {Of ? TKind::CaseOf : TKind::Case, "", std::move(Nodes)};
  }

  TExpressionLexer FLexer;
  const TExpressionSource& FSource;
  const TExpressionMaker FMaker;
  int FLevel = 0;
};

}  // namespace

TExpression ParseExpression(std::string_view Text, const TExpressionSource& Source) {
  return TParser(Text, Source).Whole();
}

}  // namespace velkrund
