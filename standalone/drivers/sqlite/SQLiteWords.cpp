#include "standalone/drivers/sqlite/SQLiteWords.h"

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/sqlite/SQLiteTableDefinition.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

const TExpressionWords& SQLiteExpressionWords() {
  static const TExpressionWords Result = {
      .Quoted = QuoteStandardName,
      .Bytes = [](std::string_view Digits) { return Format("x'%s'", Digits); },
      .Now = "CURRENT_TIMESTAMP",
      .Today = "CURRENT_DATE",
      .Time = "CURRENT_TIME",
      .Uuid = SQLiteUuidDefault,
  };
  return Result;
}

TForeignWords ForeignWords(const TDicEngineWords& Words) {
  for (const auto& [Engine, Text] : Words) {
    if (Engine == "sqlite") continue;
    return {&Text, Engine == "postgresql" ? "PostgreSQL" : Engine};
  }
  return {};
}

std::string FoldedSQLiteName(std::string_view Name) {
  std::string Result(Name);
  for (char& C : Result)
    if (C >= 'A' && C <= 'Z') C = static_cast<char>(C - 'A' + 'a');
  return Result;
}

}  // namespace velkrund
