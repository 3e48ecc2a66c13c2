#pragma once

#include "hosts/cli/line/Command.h"
#include "hosts/cli/render/Console.h"
#include "hosts/cli/render/Progress.h"

namespace velkrund {

/// What a running command works with. All borrowed.
struct TSession {
  TConsole& Console;
  TProgress& Progress;
  const TCommand& Command;

  bool Json() const { return Command.Shared.Json; }
};

}  // namespace velkrund
