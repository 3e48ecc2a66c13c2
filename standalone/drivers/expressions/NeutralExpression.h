#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// How an engine writes the expressions of a table.
struct TExpressionSource {
  /// The exact name of the column that is meant; nothing: there is none. Quoted: as it stood in the text.
  std::function<std::optional<std::string>(std::string_view Name, bool Quoted)> Column;
  /// Types, in lower case as the engine writes them behind "::", whose casts change nothing of a literal or a column:
  /// "text", "character varying". Others leave an expression without a neutral form.
  std::function<bool(std::string_view Type)> IsIdleCast;
  /// Of an engine whose truths are numbers: whether the column of that exact name is of truths. Its 0 and 1 become
  /// FALSE and TRUE, and what takes other numbers for truths, or the other way round, has no neutral form. Empty: the
  /// engine keeps them apart by itself.
  std::function<bool(std::string_view Column)> IsBoolean = {};
};

/// An expression that every engine understands: literals, columns, comparison, + - *, AND OR NOT IN BETWEEN IS NULL,
/// CASE, coalesce, nullif, lower, upper, abs. In the neutral form columns stand between double quotes, all other words
/// in upper case, and one blank between two pieces where one is needed; so equal ones are equal texts. Nothing when
/// Text is of another kind.
std::optional<std::string> NeutralExpression(std::string_view Text, const TExpressionSource& Source);

/// The same of a field's default: a literal ('x', 1.5, TRUE, NULL, x'00'), or NOW, TODAY, TIME (of the field's type,
/// when the row is inserted) or UUID (a random one).
std::optional<std::string> NeutralDefault(std::string_view Text, TDicFieldType Type, const TExpressionSource& Source);

/// How an engine writes what is neutral.
struct TExpressionWords {
  std::function<std::string(std::string_view Name)> Quoted;
  std::string_view True = "TRUE", False = "FALSE";
  std::function<std::string(std::string_view Hexadecimal)> Bytes;  // of x'00': the digits between the quotes
  std::string_view Now = {}, Today = {}, Time = {}, Uuid = {};     // empty: the engine has no such default
};

/// A neutral expression, or default, in an engine's words; nothing where it has none for it. Raises EDatabaseError for
/// a text that is not neutral.
std::optional<std::string> ExpressionIn(std::string_view Neutral, const TExpressionWords& Words);

}  // namespace velkrund
