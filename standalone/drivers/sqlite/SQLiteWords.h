#pragma once

#include <string>
#include <string_view>

#include "standalone/drivers/expressions/NeutralExpression.h"
#include "velkrund/platform/dictionary/EngineWords.h"

namespace velkrund {

/// How the engine writes what is neutral.
const TExpressionWords& SQLiteExpressionWords();

/// The words of another engine, and its name for people; null when there are none.
struct TForeignWords {
  const TDicWords* Words = nullptr;
  std::string Engine = {};
};
TForeignWords ForeignWords(const TDicEngineWords& Words);

/// Equal for names that the engine takes for the same: it folds ASCII letters only.
std::string FoldedSQLiteName(std::string_view Name);

}  // namespace velkrund
