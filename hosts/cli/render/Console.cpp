#include "hosts/cli/render/Console.h"

#include <unistd.h>

#include "jobs/files/Spool.h"

namespace velkrund {

TConsole::TConsole() : TTerminal(STDERR_FILENO) {}

void TConsole::Result(std::string_view Text) {
  ClearStatus();
  WriteToDescriptor(STDOUT_FILENO, Text, "standard output", {});
}

TDocument TConsole::NewEvent(std::string_view Kind) {
  TDocument Result;
  Result.Set("event", Kind);
  return Result;
}

void TConsole::Event(const TDocument& Told) noexcept {
  try {
    WriteToDescriptor(STDERR_FILENO, Told.Line(), "standard error", {});
  } catch (...) {
    // Nobody listens any more; the work itself goes on.
  }
}

void TConsole::Message(std::string_view Text) noexcept {
  if (!FTellsEvents) return TTerminal::Message(Text);
  try {
    TDocument Told = NewEvent("message");
    // Whoever reads events knows whose they are.
    constexpr std::string_view Name = "velkrund: ";
    Told.Set("text", Text.substr(Text.starts_with(Name) ? Name.size() : 0));
    Event(Told);
  } catch (...) {
    // As above.
  }
}

}  // namespace velkrund
