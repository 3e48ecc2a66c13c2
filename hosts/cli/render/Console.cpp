#include "hosts/cli/render/Console.h"

#include <unistd.h>

#include "jobs/files/Spool.h"

namespace velkrund {

TConsole::TConsole() : TTerminal(STDERR_FILENO) {}

void TConsole::Result(std::string_view Text) {
  ClearStatus();
  WriteToDescriptor(STDOUT_FILENO, Text, "standard output", {});
}

}  // namespace velkrund
