#include "hosts/cli/render/Console.h"

#include <fcntl.h>
#include <unistd.h>

#include "jobs/files/Spool.h"

namespace velkrund {

namespace {

/// What is opened next would take the number of a stream that is closed: messages would go into a file or to a server,
/// and answers be read from there. The place is given to what fails as a closed stream does.
void HoldPlace(int Descriptor, int WrongMode) {
  if (fcntl(Descriptor, F_GETFD) < 0) open("/dev/null", WrongMode);
}

}  // namespace

TConsole::TConsole() : TTerminal(STDERR_FILENO) {
  // In this order: each gets the lowest number that is free.
  HoldPlace(STDIN_FILENO, O_WRONLY);
  HoldPlace(STDOUT_FILENO, O_RDONLY);
  HoldPlace(STDERR_FILENO, O_RDONLY);
}

void TConsole::Result(std::string_view Text) {
  ClearStatus();
  FTakesResults = false;
  WriteToDescriptor(STDOUT_FILENO, Text, "standard output", [this] { return IsStuck(STDOUT_FILENO); });
  FTakesResults = true;
}

TDocument TConsole::NewEvent(std::string_view Kind) {
  TDocument Result;
  Result.Set("event", Kind);
  return Result;
}

void TConsole::Event(const TDocument& Told) noexcept {
  try {
    WriteToDescriptor(STDERR_FILENO, Told.Line(), "standard error", [this] { return IsStuck(STDERR_FILENO); });
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
