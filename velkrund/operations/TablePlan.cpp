#include "velkrund/operations/TablePlan.h"

#include <algorithm>

namespace velkrund {

void TTablePlan::Settle(const std::string& DatabaseName) {
  std::vector<TLoadTarget> Targets;
  for (const TStep& Step : FSteps)
    if (Step.Target) Targets.push_back(*Step.Target);
  if (Targets.empty() || !Relations()) return;
  FLoading = Relations()->Load(DatabaseName, Targets);
  std::stable_sort(FSteps.begin(), FSteps.end(), [this](const TStep& A, const TStep& B) { return Rank(A) < Rank(B); });
}

}  // namespace velkrund
