#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "standalone/drivers/expressions/ExpressionLexer.h"
#include "standalone/drivers/expressions/ExpressionTree.h"

namespace velkrund {

/// Reads the type behind "::", in lower case, with one blank between its words: "timestamp(3) without time zone",
/// "text[]". Raises ENotNeutral.
std::string TakeCastType(TExpressionLexer& Lexer);

/// What is cast, where that changes nothing of it: '-1' of a type of numbers is -1, '\x00' of one of bytes x'00'. Idle:
/// as in TExpressionSource. Raises ENotNeutral.
TExpression WithoutCast(TExpression Node, std::string_view Type,
                        const std::function<bool(std::string_view Type)>& Idle);

}  // namespace velkrund
