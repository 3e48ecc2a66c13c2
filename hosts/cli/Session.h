#pragma once

#include "hosts/cli/line/Command.h"
#include "hosts/cli/render/Console.h"
#include "hosts/cli/render/Progress.h"
#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

/// What a running command works with. All borrowed.
struct TSession {
  TConsole& Console;
  TProgress& Progress;
  const TCommand& Command;
  const TUtilOperationInterface* Interface = nullptr;  // of the job that runs, or that has failed

  bool Json() const { return Command.Shared.Json; }
};

}  // namespace velkrund
