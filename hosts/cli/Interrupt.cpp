#include "hosts/cli/Interrupt.h"

#include <atomic>

namespace velkrund {

namespace {

std::atomic<bool> Wish = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler can set nothing else");

extern "C" void OnSignal(int Signal) {
  if (!Wish.exchange(true)) return;
  // Asked once more: the system's own way, as soon as this handler returns.
  struct sigaction Default = {};
  Default.sa_handler = SIG_DFL;
  sigaction(Signal, &Default, nullptr);
  raise(Signal);
}

}  // namespace

TInterrupt::TInterrupt() {
  Wish = false;
  for (std::size_t I = 0; I < Signals.size(); ++I) {
    sigaction(Signals[I], nullptr, &FBefore[I]);
    struct sigaction Action = {};
    sigemptyset(&Action.sa_mask);
    // A write that fails with an error says all that these two can say, and it can be rolled back.
    const bool OfWriting = Signals[I] == SIGPIPE || Signals[I] == SIGXFSZ;
    Action.sa_handler = OfWriting ? SIG_IGN : &OnSignal;  // no SA_RESTART: what waits looks at the flag
    // The others are wished by somebody even where a shell has them ignored for what it runs in the background.
    if (Signals[I] == SIGHUP && FBefore[I].sa_handler == SIG_IGN) continue;
    sigaction(Signals[I], &Action, nullptr);
  }
}

TInterrupt::~TInterrupt() {
  for (std::size_t I = 0; I < Signals.size(); ++I) sigaction(Signals[I], &FBefore[I], nullptr);
}

bool TInterrupt::Requested() noexcept { return Wish.load(std::memory_order_relaxed); }

}  // namespace velkrund
