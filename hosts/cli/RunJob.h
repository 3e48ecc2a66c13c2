#pragma once

#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/Session.h"
#include "jobs/run/Job.h"
#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

/// Runs a command's job with its progress and its errors shown as they come, stopped by the person's wish. An error
/// that ended it early is raised again. Its document is printed where one was asked for, unless standard output carries
/// the data.
void RunJob(TSession& Session, TUtilOperationInterface& Interface);
/// Shows what a dry run has found; false when the job was none.
bool SayDryRun(const TSession& Session, const TPolicyJob& Job, const std::vector<TLText>& Notes = {});
/// RunJob for a job on sections, whose end report follows; the exit code.
int RunSectionsJob(TSession& Session, TUtilOperationInterface& Interface);

}  // namespace velkrund
