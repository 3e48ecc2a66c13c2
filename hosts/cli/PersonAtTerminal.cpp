#include "hosts/cli/PersonAtTerminal.h"

#include <fcntl.h>
#include <unistd.h>

#include "hosts/cli/EventWindows.h"
#include "hosts/cli/Interrupt.h"
#include "standalone/windows/terminal/TerminalWindows.h"

namespace velkrund {

std::unique_ptr<TWindowSystem> FindPerson(TConsole& Console, bool InputIsData) {
  if (Console.TellsEvents())
    return InputIsData ? nullptr : std::make_unique<TEventWindows>(Console, STDIN_FILENO, &TInterrupt::Requested);
  if (!isatty(STDERR_FILENO)) return nullptr;
  if (!InputIsData) {
    if (!isatty(STDIN_FILENO)) return nullptr;
    return std::make_unique<TTerminalWindows>(Console, STDIN_FILENO, &TInterrupt::Requested);
  }
  const int Descriptor = open("/dev/tty", O_RDONLY | O_CLOEXEC);
  if (Descriptor < 0) return nullptr;
  auto Result = std::make_unique<TTerminalWindows>(Console, Descriptor, &TInterrupt::Requested);
  close(Descriptor);
  return Result;
}

}  // namespace velkrund
