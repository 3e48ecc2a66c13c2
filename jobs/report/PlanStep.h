#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jobs/report/Document.h"

namespace velkrund {

/// One thing that a run would do, in the order in which it would.
struct TPlanStep {
  std::string What;                       // "delete the rows of table 'ORDERS'"
  std::optional<std::int64_t> Rows = {};  // at stake
  std::string Statement = {};             // in the engine's words; empty: none, or what the engine does by itself
};

/// For programs.
/// Steps: referred to.
TElements PlanElements(const std::vector<TPlanStep>& Steps);
/// For people, a line each, statements with a semicolon behind them.
std::string PlanText(const std::vector<TPlanStep>& Steps);

}  // namespace velkrund
