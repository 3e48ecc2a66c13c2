#pragma once

#include <string>
#include <string_view>

namespace velkrund {

// A condition for rows, in an engine's language and from somebody else. It stands alone in parentheses on lines of its
// own, so that a comment at its end ends there. One that would close them, or bring more than an expression, is not
// understood when it stands between other brackets, too: between words of CASE.

/// " WHERE (...)"; empty without a condition.
std::string SelectionWords(std::string_view Condition);
/// A question that the engine understands when Condition is one expression. From: what stands behind FROM.
std::string SelectionCheck(std::string_view Condition, std::string_view From);
/// How a message about it begins. What: how it begins without one.
std::string SelectionFailed(std::string_view What, std::string_view Condition);

}  // namespace velkrund
