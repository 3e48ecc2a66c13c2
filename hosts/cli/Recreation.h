#pragma once

#include "hosts/cli/Session.h"
#include "jobs/recreation/RecreationJob.h"

namespace velkrund {

/// Runs a command that makes objects anew, and says what became of each; the exit code.
int RunRecreation(TSession& Session, TUtilOperationInterface& Interface);

}  // namespace velkrund
