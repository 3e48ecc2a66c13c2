#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velkrund/eif/EIFile.h"
#include "velkrund/platform/database/Relations.h"

namespace velkrund {

/// Whether a section with a body of that size holds so many rows that it pays to prepare a table for them.
constexpr bool HoldsManyRows(std::int64_t Bytes) { return Bytes >= std::int64_t{1} << 20U; }

/// The table data sections of a run, of one file or several, and the loading that they have in common.
class TTablePlan {
 public:
  struct TStep {
    TEIFile* File;  // borrowed
    int Index;      // of the section
    std::optional<TLoadTarget> Target;
  };
  /// Steps that follow each other: one of a table that takes no part in the loading, or all of a group of it.
  struct TPart {
    std::size_t First, Count;
    std::optional<std::size_t> Group;
  };

  /// Target: nothing for a table that takes no part in the loading. To be called before Settle.
  void Add(TEIFile& File, int Index, std::optional<TLoadTarget> Target) {
    FSteps.push_back({&File, Index, std::move(Target)});
  }
  /// Makes the loading, where the platform has relations of tables, and puts the steps in its order. Raises
  /// EDatabaseError.
  void Settle(const std::string& DatabaseName, const TLoadOptions& Options);

  const std::vector<TStep>& Steps() const { return FSteps; }
  /// Those that cannot be loaded because they have no table come first.
  const std::vector<TPart>& Parts() const { return FParts; }
  /// Null where there is none.
  TTableLoading* Loading() const { return FLoading.get(); }

 private:
  std::size_t Rank(const TStep& Step) const { return Step.Target ? FLoading->Rank(Step.Target->Table) : 0; }
  std::optional<std::size_t> Group(const TStep& Step) const;

  std::vector<TStep> FSteps;
  std::vector<TPart> FParts;
  std::unique_ptr<TTableLoading> FLoading;
};

}  // namespace velkrund
