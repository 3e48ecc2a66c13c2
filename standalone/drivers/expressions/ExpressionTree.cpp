#include "standalone/drivers/expressions/ExpressionTree.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "standalone/drivers/expressions/NeutralExpression.h"

namespace velkrund {
namespace {

constexpr std::size_t MostDepth = 200;
constexpr std::size_t MostSize = 5000;

/// How tightly a node holds together. Engines disagree about comparisons of comparisons: those get brackets.
int Strength(const TExpression& Node) {
  switch (Node.Kind) {
    case TExpressionKind::Or:
      return 1;
    case TExpressionKind::And:
      return 2;
    case TExpressionKind::Not:
      return 3;
    case TExpressionKind::Comparison:
    case TExpressionKind::In:
    case TExpressionKind::Is:
      return 4;
    case TExpressionKind::Sum:
      return 5;
    case TExpressionKind::Product:
      return 6;
    case TExpressionKind::Minus:
      return 7;
    default:
      return 8;
  }
}

std::string Quoted(const std::string& Text) {
  std::string Result = "'";
  for (const char C : Text) Result.append(C == '\'' ? 2 : 1, C);
  return Result + '\'';
}

class TPrinter {
 public:
  explicit TPrinter(const TExpressionWords& Words) : FWords(Words) {}

  void Print(const TExpression& Node) {
    const int Own = Strength(Node);
    switch (Node.Kind) {
      case TExpressionKind::Number:
      case TExpressionKind::String:
      case TExpressionKind::Bytes:
      case TExpressionKind::Word:
      case TExpressionKind::Column:
        FText += Leaf(Node);
        break;
      case TExpressionKind::Or:
        PrintAll(Node, 0, " OR ", Own + 1);
        break;
      case TExpressionKind::And:
        PrintAll(Node, 0, " AND ", Own + 1);
        break;
      case TExpressionKind::Not:
        FText += "NOT ";
        PrintIn(Node.Nodes[0], Own);
        break;
      case TExpressionKind::Minus:
        FText += '-';
        PrintIn(Node.Nodes[0], Own + 1);
        break;
      case TExpressionKind::Comparison:
        PrintTwo(Node, Own + 1);
        break;
      case TExpressionKind::Sum:
      case TExpressionKind::Product:
        PrintTwo(Node, Own);
        break;
      case TExpressionKind::Is:
        PrintIn(Node.Nodes[0], Own + 1);
        FText += ' ' + Node.Text;
        break;
      case TExpressionKind::In:
        PrintIn(Node.Nodes[0], Own + 1);
        FText += ' ' + Node.Text + " (";
        PrintAll(Node, 1, ", ", 0);
        FText += ')';
        break;
      case TExpressionKind::Call:
        FText += Node.Text + '(';
        PrintAll(Node, 0, ", ", 0);
        FText += ')';
        break;
      case TExpressionKind::Case:
      case TExpressionKind::CaseOf:
        PrintCase(Node);
        break;
    }
  }

  std::string Take() { return std::move(FText); }

 private:
  std::string Leaf(const TExpression& Node) const {
    switch (Node.Kind) {
      case TExpressionKind::String:
        return Quoted(Node.Text);
      case TExpressionKind::Bytes:
        return FWords.Bytes(Node.Text);
      case TExpressionKind::Column:
        return FWords.Quoted(Node.Text);
      default:
        break;
    }
    if (Node.Text == "TRUE") return std::string(FWords.True);
    if (Node.Text == "FALSE") return std::string(FWords.False);
    return Node.Text;
  }

  void PrintIn(const TExpression& Node, int Least) {
    const bool Brackets = Strength(Node) < Least;
    if (Brackets) FText += '(';
    Print(Node);
    if (Brackets) FText += ')';
  }

  /// Left: the least strength on the left side; the right side needs more.
  void PrintTwo(const TExpression& Node, int Left) {
    PrintIn(Node.Nodes[0], Left);
    FText += ' ' + Node.Text + ' ';
    PrintIn(Node.Nodes[1], Strength(Node) + 1);
  }

  void PrintAll(const TExpression& Node, std::size_t First, const char* Between, int Least) {
    for (std::size_t I = First; I < Node.Nodes.size(); ++I) {
      if (I > First) FText += Between;
      PrintIn(Node.Nodes[I], Least);
    }
  }

  void PrintCase(const TExpression& Node) {
    FText += "CASE";
    std::size_t At = 0;
    if (Node.Is(TExpressionKind::CaseOf)) {
      FText += ' ';
      Print(Node.Nodes[At++]);
    }
    for (; At + 1 < Node.Nodes.size(); At += 2) {
      FText += " WHEN ";
      Print(Node.Nodes[At]);
      FText += " THEN ";
      Print(Node.Nodes[At + 1]);
    }
    if (At < Node.Nodes.size()) {
      FText += " ELSE ";
      Print(Node.Nodes[At]);
    }
    FText += " END";
  }

  const TExpressionWords& FWords;
  std::string FText;
};

}  // namespace

TExpression::TExpression(TExpressionKind K, std::string T, std::vector<TExpression> N) : Kind(K), Text(std::move(T)) {
  for (TExpression& Node : N) {
    if (Node.Kind == K && (K == TExpressionKind::Or || K == TExpressionKind::And))
      std::move(Node.Nodes.begin(), Node.Nodes.end(), std::back_inserter(Nodes));
    else
      Nodes.push_back(std::move(Node));
  }
  for (const TExpression& Node : Nodes) {
    Depth = std::max(Depth, Node.Depth + 1);
    Size += Node.Size;
  }
  if (Depth > MostDepth || Size > MostSize) throw ENotNeutral("it is too long or too deep");
}

bool TExpression::HasColumns() const {
  return Kind == TExpressionKind::Column || std::ranges::any_of(Nodes, &TExpression::HasColumns);
}

std::string Printed(const TExpression& Expression, const TExpressionWords& Words) {
  TPrinter Printer(Words);
  Printer.Print(Expression);
  return Printer.Take();
}

}  // namespace velkrund
