#pragma once

#include <signal.h>

#include <array>

namespace velkrund {

/// Turns the wish to stop (Ctrl-C, a termination signal, a terminal that goes away) into a flag that the work polls, so
/// that it can be undone. The second wish is obeyed at once. Whoever has the loss of the terminal ignored (nohup) keeps
/// that. A pipe whose reader is gone, and a file that reaches the size limit, become ordinary write errors. One at a
/// time; restores what was before.
class TInterrupt {
 public:
  TInterrupt();
  TInterrupt(const TInterrupt&) = delete;
  TInterrupt& operator=(const TInterrupt&) = delete;
  ~TInterrupt();

  static bool Requested() noexcept;

 private:
  static constexpr std::array<int, 5> Signals = {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ};

  std::array<struct sigaction, Signals.size()> FBefore;
};

}  // namespace velkrund
