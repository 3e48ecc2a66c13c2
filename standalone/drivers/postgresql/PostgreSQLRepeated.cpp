#include "standalone/drivers/postgresql/PostgreSQLRepeated.h"

#include <functional>

namespace velkrund {

const std::string* TPostgreSQLRepeated::NameOf(const std::string& Statement) {
  // The driver has fewer; more would be texts with names of tables in them.
  constexpr std::size_t MostKept = 200;
  if (const auto Known = FNames.find(Statement); Known != FNames.end()) return &Known->second;
  const bool IsFirst = FAsked.insert(std::hash<std::string>()(Statement)).second;
  if (IsFirst || FNames.size() == MostKept) return nullptr;
  return &FNames.emplace(Statement, "velkrund_statement_" + std::to_string(++FLastName)).first->second;
}

}  // namespace velkrund
