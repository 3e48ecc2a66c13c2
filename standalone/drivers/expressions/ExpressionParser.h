#pragma once

#include <string_view>

#include "standalone/drivers/expressions/ExpressionTree.h"
#include "standalone/drivers/expressions/NeutralExpression.h"

namespace velkrund {

/// Reads what people wrote for SQLite, what PostgreSQL prints, and neutral expressions. What means the same gives the
/// same tree: BETWEEN becomes two comparisons, a list of one an equation, names in a list equations of their own, a
/// missing ELSE is that of NULL. Raises ENotNeutral.
TExpression ParseExpression(std::string_view Text, const TExpressionSource& Source);

}  // namespace velkrund
