#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// A text that is no neutral expression; the message says which piece of it is not, without naming the whole.
VELKRUND_EXCEPTION(ENotNeutral, EDatabaseError);

enum class TExpressionKind {
  Number,      // Text: decimal digits, with a sign only when it is less than zero
  String,      // Text: what stands between the quotes, unquoted
  Bytes,       // Text: hexadecimal digits in lower case
  Word,        // Text: TRUE, FALSE, NULL
  Column,      // Text: the name
  Or,          // two nodes or more, none of them an Or
  And,         // the same
  Not,         //
  Comparison,  // Text: = <> < <= > >=
  In,          // Text: IN, NOT IN. The first node in a list of the others, two or more
  Is,          // Text: IS NULL, IS NOT NULL
  Sum,         // Text: + -
  Product,     // Text: *
  Minus,       //
  Call,        // Text: the function
  Case,        // condition, value, condition, value ...; a last single one is that of ELSE
  CaseOf,      // the same behind what is compared
};

/// A neutral expression: the same for all texts that mean the same to every engine but for brackets and words.
struct TExpression {
  TExpressionKind Kind;
  std::string Text = {};
  std::vector<TExpression> Nodes = {};
  std::size_t Depth = 1, Size = 1;  // of the whole tree

  TExpression(TExpressionKind K, std::string T) : Kind(K), Text(std::move(T)) {}
  /// Puts the nodes of an Or in an Or, and of an And in an And, in its own place. Raises ENotNeutral for a tree that is
  /// too large or too deep to be walked.
  TExpression(TExpressionKind K, std::string T, std::vector<TExpression> N);

  bool Is(TExpressionKind K) const { return Kind == K; }
  bool IsNull() const { return Kind == TExpressionKind::Word && Text == "NULL"; }
  bool HasColumns() const;
};

struct TExpressionWords;

/// With as few brackets as every engine's order of operators allows.
std::string Printed(const TExpression& Expression, const TExpressionWords& Words);

}  // namespace velkrund
