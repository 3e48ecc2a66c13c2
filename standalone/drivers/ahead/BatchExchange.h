#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "standalone/drivers/ConnectionThread.h"

namespace velkrund {

/// Rows are filled into it, or are to be.
enum class TBatchState { Empty, Filled };

/// Batches that go round between a caller and a thread that uses a connection for it: one fills them, the other empties
/// them. There are so few that neither gets far ahead.
template <typename TBatch>
class TBatchExchange {
 public:
  using TOwnBatch = std::unique_ptr<TBatch>;

  // The caller.

  /// Begins Work, which raises nothing, on a thread of its own, and returns the first empty batch. Null: memory or
  /// threads are short.
  TOwnBatch Begin(const std::function<TOwnBatch()>& Make, std::function<void()> Work);
  /// Hands a batch over, and waits for one of the other state; null: the thread has ended, and there is none any more.
  /// Meanwhile: called again and again; may raise.
  template <typename TMeanwhile>
  TOwnBatch Swap(TOwnBatch Batch, TBatchState State, TMeanwhile Meanwhile);
  /// Asks the host whether to go on, and tells it what there is to tell.
  void Serve() { FThread->Serve(); }
  /// What the engine does ends soon, with EAbort.
  void Stop() {
    if (FThread) FThread->Stop();
  }
  /// The thread is to end when nothing is left to take.
  void EndWhenTaken() {
    Change([this] { FEnds = true; });
  }
  /// Waits until the thread uses the connection no more. Meanwhile: as in Swap, but raises nothing.
  template <typename TMeanwhile>
  void WaitUntilDone(TMeanwhile Meanwhile) noexcept;
  /// Waits for the end of the thread, if there is one.
  void Join() noexcept { FThread.reset(); }

  // The thread.

  /// Null: it is to end.
  TOwnBatch Take(TBatchState State);
  void Give(TOwnBatch Batch, TBatchState State) {
    Change([&] { Of(State).push_back(std::move(Batch)); });
  }

  // Both.

  /// The thread is to end whatever is left to take.
  void Drop() noexcept {
    Change([this] { FDrops = true; });
  }
  bool Drops() const { return FDrops.load(std::memory_order_relaxed); }

 private:
  static constexpr std::size_t Count = 3;
  /// How often the host is asked meanwhile whether to go on.
  static constexpr std::chrono::milliseconds LongestWait{20};

  std::deque<TOwnBatch>& Of(TBatchState State) { return State == TBatchState::Empty ? FEmpty : FFilled; }

  template <typename TChange>
  void Change(TChange Change) {
    {
      const std::lock_guard Lock(FMutex);
      Change();
    }
    FChanged.notify_all();
  }

  static TOwnBatch First(std::deque<TOwnBatch>& Batches) {
    TOwnBatch Result = std::move(Batches.front());
    Batches.pop_front();
    return Result;
  }

  std::mutex FMutex;  // of what follows
  std::condition_variable FChanged;
  std::deque<TOwnBatch> FEmpty, FFilled;
  bool FServes = false;  // the caller has something to serve
  bool FEnds = false;
  bool FDone = true;
  std::atomic<bool> FDrops = false;

  std::optional<TConnectionThread> FThread;
};

template <typename TBatch>
typename TBatchExchange<TBatch>::TOwnBatch TBatchExchange<TBatch>::Begin(const std::function<TOwnBatch()>& Make,
                                                                         std::function<void()> Work) {
  FServes = FEnds = FDone = FDrops = false;
  try {
    TOwnBatch Result = Make();
    while (FEmpty.size() + 1 < Count) FEmpty.push_back(Make());
    FThread.emplace(
        [this, Work = std::move(Work)] {
          Work();
          Change([this] { FDone = true; });
        },
        [this] { Change([this] { FServes = true; }); });
    return Result;
  } catch (const std::exception&) {
    FDone = true;
    return nullptr;
  }
}

template <typename TBatch>
template <typename TMeanwhile>
typename TBatchExchange<TBatch>::TOwnBatch TBatchExchange<TBatch>::Swap(TOwnBatch Batch, TBatchState State,
                                                                        TMeanwhile Meanwhile) {
  Give(std::move(Batch), State);
  std::deque<TOwnBatch>& Others = Of(State == TBatchState::Empty ? TBatchState::Filled : TBatchState::Empty);
  for (;;) {
    {
      std::unique_lock Lock(FMutex);
      FChanged.wait_for(Lock, LongestWait, [&] { return FServes || FDone || !Others.empty(); });
      if (!std::exchange(FServes, false)) {
        if (!Others.empty()) return First(Others);
        if (FDone) return nullptr;
      }
    }
    Meanwhile();
  }
}

template <typename TBatch>
template <typename TMeanwhile>
void TBatchExchange<TBatch>::WaitUntilDone(TMeanwhile Meanwhile) noexcept {
  for (;;) {
    {
      std::unique_lock Lock(FMutex);
      FChanged.wait_for(Lock, LongestWait, [this] { return FServes || FDone; });
      if (!std::exchange(FServes, false) && FDone) return;
    }
    Meanwhile();
  }
}

template <typename TBatch>
typename TBatchExchange<TBatch>::TOwnBatch TBatchExchange<TBatch>::Take(TBatchState State) {
  std::unique_lock Lock(FMutex);
  std::deque<TOwnBatch>& Batches = Of(State);
  FChanged.wait(Lock, [&] { return FDrops || FEnds || !Batches.empty(); });
  return FDrops || Batches.empty() ? nullptr : First(Batches);
}

}  // namespace velkrund
