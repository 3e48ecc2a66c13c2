#include "standalone/drivers/expressions/ExpressionMaker.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace velkrund {

using TKind = TExpressionKind;

TExpressionMaker::TNodes TExpressionMaker::Two(TExpression A, TExpression B) {
  TNodes Nodes;
  Nodes.push_back(std::move(A));
  Nodes.push_back(std::move(B));
  return Nodes;
}

std::optional<bool> TExpressionMaker::IsTruth(const TExpression& Node) const {
  switch (Node.Kind) {
    case TKind::Or:
    case TKind::And:
    case TKind::Not:
    case TKind::Comparison:
    case TKind::In:
    case TKind::Is:
      return true;
    case TKind::Word:
      return Node.IsNull() ? std::nullopt : std::optional(true);
    case TKind::Column:
      return FSource.IsBoolean(Node.Text);
    case TKind::Case:
    case TKind::CaseOf:
      return std::nullopt;
    case TKind::Call:
      return Node.Text == "COALESCE" || Node.Text == "NULLIF" ? std::nullopt : std::optional(false);
    default:
      return false;
  }
}

TExpression TExpressionMaker::Truth(TExpression Node) const {
  if (!FSource.IsBoolean || IsTruth(Node).value_or(true)) return Node;
  if (!Node.Is(TKind::Number) || (Node.Text != "0" && Node.Text != "1"))
    throw ENotNeutral("it takes something else for a truth");
  return {TKind::Word, Node.Text == "1" ? "TRUE" : "FALSE"};
}

TExpression TExpressionMaker::Number(TExpression Node) const {
  if (FSource.IsBoolean && IsTruth(Node).value_or(false)) throw ENotNeutral("it takes a truth for a number");
  return Node;
}

TExpression TExpressionMaker::AsOther(TExpression Node, const TExpression& Other) const {
  return FSource.IsBoolean && IsTruth(Other).value_or(false) ? Truth(std::move(Node)) : Node;
}

TExpression TExpressionMaker::Compared(TExpression A, std::string Sign, TExpression B) const {
  A = AsOther(std::move(A), B);
  B = AsOther(std::move(B), A);
  return {TKind::Comparison, std::move(Sign), Two(std::move(A), std::move(B))};
}

TExpression TExpressionMaker::Between(const TExpression& What, TExpression Low, TExpression High, bool Not) const {
  return {Not ? TKind::Or : TKind::And, "",
          Two(Compared(What, Not ? "<" : ">=", std::move(Low)), Compared(What, Not ? ">" : "<=", std::move(High)))};
}

TExpression TExpressionMaker::InList(const TExpression& What, TNodes Items, bool Not) const {
  TNodes Parts;
  for (TExpression& Item : Items) Item = AsOther(std::move(Item), What);
  const auto IsConstant = [](const TExpression& Item) { return !Item.HasColumns(); };
  if (std::ranges::count_if(Items, IsConstant) > 1) {
    const auto Others = std::stable_partition(Items.begin(), Items.end(), IsConstant);
    TNodes Constants = {What};
    std::move(Items.begin(), Others, std::back_inserter(Constants));
    Items.erase(Items.begin(), Others);
    Parts.emplace_back(TKind::In, Not ? "NOT IN" : "IN", std::move(Constants));
  }
  for (TExpression& Item : Items) Parts.push_back(Compared(What, Not ? "<>" : "=", std::move(Item)));
  if (Parts.size() == 1) return std::move(Parts.front());
  return {Not ? TKind::And : TKind::Or, "", std::move(Parts)};
}

}  // namespace velkrund
