#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velkrund/eif/EIFile.h"
#include "velkrund/platform/database/Relations.h"

namespace velkrund {

/// The table data sections of a run, of one file or several, and the loading that they have in common.
class TTablePlan {
 public:
  struct TStep {
    TEIFile* File;  // borrowed
    int Index;      // of the section
    std::optional<TLoadTarget> Target;
  };

  /// Target: nothing for a table that takes no part in the loading. To be called before Settle.
  void Add(TEIFile& File, int Index, std::optional<TLoadTarget> Target) {
    FSteps.push_back({&File, Index, std::move(Target)});
  }
  /// Makes the loading, where foreign keys are minded, and puts the steps in its order. Raises EDatabaseError.
  void Settle(const std::string& DatabaseName);

  const std::vector<TStep>& Steps() const { return FSteps; }
  /// Null where there is none.
  TTableLoading* Loading() const { return FLoading.get(); }
  TTableLoading* LoadingOf(const TStep& Step) const { return Step.Target ? Loading() : nullptr; }
  bool AreOne() const { return FLoading && FLoading->AreOne(); }
  /// Takes back what was begun and not ended, whatever the engine says to that.
  void Abandon() { FLoading.reset(); }

 private:
  std::size_t Rank(const TStep& Step) const { return Step.Target ? FLoading->Rank(Step.Target->Table) : 0; }

  std::vector<TStep> FSteps;
  std::unique_ptr<TTableLoading> FLoading;
};

}  // namespace velkrund
