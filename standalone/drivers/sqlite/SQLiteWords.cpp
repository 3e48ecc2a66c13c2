#include "standalone/drivers/sqlite/SQLiteWords.h"

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/sqlite/SQLiteTableDefinition.h"
#include "velkrund/platform/ormtools/Exceptions.h"
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

std::string FilledPattern(const std::string& Pattern, const std::string& Table, const std::string& Items,
                          const std::string& Words) {
  std::string Result;
  bool HasTable = false;
  bool HasItems = false;
  for (std::size_t At = 0;;) {
    const std::size_t Open = Pattern.find('{', At);
    Result += Pattern.substr(At, Open - At);
    if (Open == std::string::npos) break;
    const std::size_t Close = Pattern.find('}', Open);
    const std::string Place = Pattern.substr(Open, Close == std::string::npos ? Close : Close - Open + 1);
    HasTable = HasTable || Place == "{table}";
    HasItems = HasItems || Place == "{items}";
    if (Place == "{table}")
      Result += Table;
    else if (Place == "{items}")
      Result += Items;
    else if (Place == "{words}")
      Result += Words;
    else
      throw EDatabaseError(
          Format("Cannot make table %s: its pattern has the place '%s'; there are {table}, {items} "
                 "and {words}",
                 Table, Place));
    At = Close + 1;
  }
  if (!HasTable || !HasItems)
    throw EDatabaseError(
        Format("Cannot make table %s: its pattern lacks the place %s", Table, HasTable ? "{items}" : "{table}"));
  return Result;
}

std::string FoldedSQLiteName(std::string_view Name) {
  std::string Result(Name);
  for (char& C : Result)
    if (C >= 'A' && C <= 'Z') C = static_cast<char>(C - 'A' + 'a');
  return Result;
}

}  // namespace velkrund
