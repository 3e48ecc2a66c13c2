#pragma once

#include <cstddef>
#include <vector>

#include "jobs/policies/Policies.h"
#include "jobs/report/Outcome.h"

namespace velkrund {

/// Decides about languages that are there already under other names; those that stay as they are become left out. Met:
/// the numbers of their items. Raises EPolicyUnanswered where nobody can be asked.
void SettleLanguages(TOutcome& Outcome, const std::vector<std::size_t>& Met, TExisting Existing);

}  // namespace velkrund
