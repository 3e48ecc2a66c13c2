#pragma once

#include "jobs/policies/Questions.h"

namespace velkrund {

/// Answers whether a run goes on without something that it was told to take and that is not there: by the policy given,
/// else by asking.
class TMissingSources {
 public:
  explicit TMissingSources(TMissingSourcePolicy Policy) : FPolicy(Policy) {}

  /// Whether it is left out; otherwise its error is to be passed on. Error: that says that it is missing. Raises EAbort
  /// on Cancel, EPolicyUnanswered when nobody can answer.
  bool LeavesOut(const std::exception& Error);

 private:
  const TMissingSourcePolicy FPolicy;
  TRepeatedQuestion FQuestion;
};

}  // namespace velkrund
