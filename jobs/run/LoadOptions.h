#pragma once

#include "jobs/policies/Policies.h"
#include "velkrund/platform/database/Relations.h"

namespace velkrund {

/// How tables are loaded under these policies.
TLoadOptions LoadOptionsOf(const TPolicies& Policies);

}  // namespace velkrund
