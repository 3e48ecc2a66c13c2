#include "jobs/run/LoadOptions.h"

#include "jobs/policies/Questions.h"

namespace velkrund {

TLoadOptions LoadOptionsOf(const TPolicies& Policies) {
  TLoadOptions Result;
  // Only where something may be left of a run that has failed, it matters what hangs together.
  Result.InGroups = Policies.Commit == TCommit::Each || Policies.OnError == TOnError::Continue ||
                    (Policies.OnError == TOnError::Ask && CanAsk());
  Result.Triggers = Policies.Triggers == TTriggers::Fire;
  Result.Indexes = Policies.TableIndexes == TIndexPolicy::Keep      ? TIndexUpkeep::Keep
                   : Policies.TableIndexes == TIndexPolicy::Rebuild ? TIndexUpkeep::Rebuild
                                                                    : TIndexUpkeep::Auto;
  Result.BrokenReferences = Policies.BrokenReferences == TBrokenReferencePolicy::Allow;
  return Result;
}

}  // namespace velkrund
