#include "hosts/cli/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "hosts/cli/Texts.h"
#include "hosts/common/Spool.h"

namespace velkrund {

namespace {

constexpr int UsualWidth = 80;

bool CanTakeLinesBack() {
  const char* Kind = std::getenv("TERM");
  return isatty(STDERR_FILENO) && Kind && std::string_view(Kind) != "dumb" && *Kind;
}

}  // namespace

TConsole::TConsole() : FTerminal(CanTakeLinesBack()) {}

void TConsole::Result(std::string_view Text) {
  ClearStatus();
  WriteToDescriptor(STDOUT_FILENO, Text, "standard output", {});
}

void TConsole::Write(std::string_view Text) noexcept {
  while (!Text.empty()) {
    const ssize_t Put = write(STDERR_FILENO, Text.data(), Text.size());
    if (Put < 0 && errno != EINTR) return;
    if (Put > 0) Text.remove_prefix(static_cast<std::size_t>(Put));
  }
}

void TConsole::Message(std::string_view Text) noexcept {
  try {
    ClearStatus();
    std::string Lines = Printable(Text);
    if (!Lines.ends_with('\n')) Lines += '\n';
    Write(Lines);
  } catch (...) {
    Write("velkrund: out of memory\n");
  }
}

void TConsole::Status(std::string_view Line) noexcept {
  Write("\r");
  Write(Line);
  Write("\x1b[K");
  FStatusShown = true;
}

void TConsole::ClearStatus() noexcept {
  if (FStatusShown) Write("\r\x1b[K");
  FStatusShown = false;
}

void TConsole::Prompt(std::string_view Text) noexcept {
  ClearStatus();
  Write(Text);
}

int TConsole::Width() const {
  struct winsize Size = {};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &Size) == 0 && Size.ws_col > 0 ? Size.ws_col : UsualWidth;
}

}  // namespace velkrund
