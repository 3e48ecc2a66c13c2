#include "standalone/drivers/postgresql/CatalogueStatement.h"

#include <algorithm>

namespace velkrund {

std::string CatalogueStatement(std::string_view Statement) {
  constexpr std::string_view Operators[] = {"=", "<>", ">", "||", "&"};
  std::string Result;
  while (!Statement.empty()) {
    const std::size_t End = std::min(Statement.find(' '), Statement.size());
    const std::string_view Word = Statement.substr(0, End);
    const bool IsOperator = std::find(std::begin(Operators), std::end(Operators), Word) != std::end(Operators);
    Result += IsOperator ? "OPERATOR(pg_catalog." + std::string(Word) + ")" : std::string(Word);
    if (End < Statement.size()) Result += ' ';
    Statement.remove_prefix(std::min(End + 1, Statement.size()));
  }
  return Result;
}

}  // namespace velkrund
