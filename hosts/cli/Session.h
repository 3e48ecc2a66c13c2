#pragma once

#include <optional>
#include <string>

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
  std::optional<TDocument> Report = {};                // of the job, where events are told

  /// The end report, to people: programs have it as a document.
  void Say(const std::string& Text) const {
    if (!Console.TellsEvents()) Console.Message(Text);
  }
  bool Json() const { return Command.Shared.Json; }
};

}  // namespace velkrund
