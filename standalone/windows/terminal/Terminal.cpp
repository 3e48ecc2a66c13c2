#include "standalone/windows/terminal/Terminal.h"

#include <limits.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "standalone/windows/terminal/TerminalText.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

constexpr int UsualWidth = 80, UsualHeight = 24;

bool CanTakeLinesBack(int Output) {
  const char* Kind = std::getenv("TERM");
  return isatty(Output) && Kind && std::string_view(Kind) != "dumb" && *Kind;
}

}  // namespace

TTerminal::TTerminal(int Output) : FOutput(Output), FTerminal(CanTakeLinesBack(Output)) {}

bool TTerminal::IsStuck(int Descriptor) const {
  constexpr int Patience = 1000;  // milliseconds, for a reader that is only slow
  if (!FCanceled || !FCanceled()) return false;
  struct pollfd Poll = {Descriptor, POLLOUT, 0};
  return poll(&Poll, 1, Patience) == 0;
}

void TTerminal::Write(std::string_view Text) noexcept {
  constexpr int LookMilliseconds = 100;
  while (!Text.empty()) {
    struct pollfd Poll = {FOutput, POLLOUT, 0};
    if (poll(&Poll, 1, LookMilliseconds) == 0) {
      if (IsStuck(FOutput)) return;
      continue;
    }
    // A pipe that is ready takes that much at least without letting its writer wait.
    const ssize_t Put = write(FOutput, Text.data(), std::min<std::size_t>(Text.size(), PIPE_BUF));
    if (Put < 0 && errno != EINTR && errno != EAGAIN) return;
    if (Put > 0) Text.remove_prefix(static_cast<std::size_t>(Put));
  }
}

void TTerminal::Message(std::string_view Text) noexcept {
  try {
    HideStatus();
    std::string Lines = Printable(WithShortLines(Text));
    if (!Lines.ends_with('\n')) Lines += '\n';
    Write(Lines);
    ResumeStatus();
  } catch (...) {
    Write("velkrund: out of memory\n");
  }
}

void TTerminal::Status(std::string_view Line) noexcept {
  try {
    FStatus = OnOneLine(Line);
  } catch (...) {
    FStatus.clear();
  }
  ResumeStatus();
}

void TTerminal::ResumeStatus() noexcept {
  if (FStatus.empty()) return;
  Write("\r");
  Write(FStatus);
  Write("\x1b[K");
  FStatusShown = true;
}

void TTerminal::HideStatus() noexcept {
  if (FStatusShown) Write("\r\x1b[K");
  FStatusShown = false;
}

void TTerminal::ClearStatus() noexcept {
  HideStatus();
  FStatus.clear();
}

void TTerminal::Prompt(std::string_view Text) noexcept {
  HideStatus();
  try {
    Write(Printable(Text));
  } catch (...) {
    Write("velkrund: out of memory\n");
  }
}

int TTerminal::Width() const {
  struct winsize Size = {};
  return ioctl(FOutput, TIOCGWINSZ, &Size) == 0 && Size.ws_col > 0 ? Size.ws_col : UsualWidth;
}

int TTerminal::Height() const {
  struct winsize Size = {};
  return ioctl(FOutput, TIOCGWINSZ, &Size) == 0 && Size.ws_row > 0 ? Size.ws_row : UsualHeight;
}

}  // namespace velkrund
