#pragma once

#include <string>

#include "jobs/policies/Policies.h"

namespace velkrund {

/// Answers whether a run goes on after a failure: by the policy given, else by asking.
class TErrorPolicy {
 public:
  explicit TErrorPolicy(TOnError OnError) : FOnError(OnError) {}

  /// Whether to go on. Text: what is asked. Raises EAbort on Cancel, EPolicyUnanswered when nobody can answer.
  bool GoOn(const TLText& Text);

 private:
  TOnError FOnError;  // Continue once a person has answered for all
};

}  // namespace velkrund
