#pragma once

#include <optional>
#include <string>
#include <vector>

#include "standalone/drivers/expressions/ExpressionTree.h"
#include "standalone/drivers/expressions/NeutralExpression.h"

namespace velkrund {

/// Makes of what was written what engines keep of it, and of numbers that are truths truths. Raises ENotNeutral.
class TExpressionMaker {
 public:
  using TNodes = std::vector<TExpression>;

  /// Source: borrowed.
  explicit TExpressionMaker(const TExpressionSource& Source) : FSource(Source) {}

  static TNodes Two(TExpression A, TExpression B);
  /// Where a truth is needed.
  TExpression Truth(TExpression Node) const;
  /// Where a number is needed.
  TExpression Number(TExpression Node) const;
  /// What is to be compared with Other.
  TExpression AsOther(TExpression Node, const TExpression& Other) const;
  TExpression Compared(TExpression A, std::string Sign, TExpression B) const;
  /// As engines keep it that turn it into comparisons.
  TExpression Between(const TExpression& What, TExpression Low, TExpression High, bool Not) const;
  /// As engines keep it that compare with constants at once, and with every other item by itself behind them.
  TExpression InList(const TExpression& What, TNodes Items, bool Not) const;

 private:
  /// Whether it is a truth; nothing: it may be one.
  std::optional<bool> IsTruth(const TExpression& Node) const;

  const TExpressionSource& FSource;
};

}  // namespace velkrund
