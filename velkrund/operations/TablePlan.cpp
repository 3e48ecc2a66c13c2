#include "velkrund/operations/TablePlan.h"

#include <algorithm>

namespace velkrund {

void TTablePlan::Settle(const std::string& DatabaseName, const TLoadOptions& Options) {
  std::vector<TLoadTarget> Targets;
  for (const TStep& Step : FSteps)
    if (Step.Target) Targets.push_back(*Step.Target);
  if (!Targets.empty() && Relations()) {
    FLoading = Relations()->Load(DatabaseName, Targets, Options);
    std::stable_sort(FSteps.begin(), FSteps.end(),
                     [this](const TStep& A, const TStep& B) { return Rank(A) < Rank(B); });
  }
  for (std::size_t Number = 0; Number < FSteps.size(); ++Number) {
    const std::optional<std::size_t> Own = Group(FSteps[Number]);
    if (Own && !FParts.empty() && FParts.back().Group == Own)
      ++FParts.back().Count;
    else
      FParts.push_back({Number, 1, Own});
  }
}

std::optional<std::size_t> TTablePlan::Group(const TStep& Step) const {
  if (!Step.Target || !FLoading) return std::nullopt;
  return FLoading->Group(Step.Target->Table);
}

}  // namespace velkrund
