#pragma once

#include <cstdint>
#include <string>

#include "jobs/policies/Policies.h"
#include "jobs/policies/Questions.h"

namespace velkrund {

/// What becomes of the rows that are in a table already.
enum class TRowsFate {
  Go,      // before the new ones come
  Stay,    // beside the new ones
  Prevail  // and nothing comes
};

/// Answers that for one table after another, by the policy given, else by asking, before anything is changed.
class TExistingRows {
 public:
  /// Policies: borrowed. New: what is put in their place, for the question: "the file's".
  TExistingRows(const TPolicies& Policies, TLText New) : FPolicies(Policies), FNew(std::move(New)) {}

  /// Whether the rows have to be counted for it.
  bool Counts() const;
  /// A table that will be asked about. Rows: 0 needs no answer.
  void Announce(const std::string& Table, std::int64_t Rows);
  /// When all are announced: EPolicyUnanswered where nobody can answer.
  void RefuseUnanswered() const;
  /// EAbort where a person cancels.
  TRowsFate FateOf(const std::string& Table, std::int64_t Rows);

 private:
  const TPolicies& FPolicies;
  const TLText FNew;
  TLText FMet;  // tables with rows
  TRepeatedQuestion FQuestion;
};

}  // namespace velkrund
