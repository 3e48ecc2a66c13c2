#include "velkrund/platform/lctrls/MainThreadQueue.h"

namespace velkrund {

bool TMainThreadQueue::Enter(std::unique_lock<std::mutex>& Lock) {
  const std::thread::id Mine = std::this_thread::get_id();
  const auto IsOwner = [&] { return FDepth > 0 && FOwner == Mine; };
  const auto IsTaken = [&] { return FLoops > 0 && Mine != FMainThread && !IsOwner(); };
  FChanged.wait(Lock, [&] { return FDepth == 0 || IsOwner() || IsTaken(); });
  // A loop that has begun meanwhile takes the action: waiting for its end might be waiting for ourselves.
  if (IsTaken()) return false;
  FOwner = Mine;
  ++FDepth;
  return true;
}

void TMainThreadQueue::Leave() {
  const std::lock_guard Lock(FLock);
  --FDepth;
  FChanged.notify_all();
}

void TMainThreadQueue::Run(const std::function<void()>& Action) {
  std::unique_lock Lock(FLock);
  if (!Enter(Lock)) {
    TWaiting Mine{Action};
    FWaiting.push_back(&Mine);
    FChanged.wait(Lock, [&] { return Mine.Done; });
    if (Mine.Error) std::rethrow_exception(Mine.Error);
    return;
  }
  Lock.unlock();
  struct TLeave {
    TMainThreadQueue& Queue;
    ~TLeave() { Queue.Leave(); }
  } const AtEnd{*this};
  Action();
}

void TMainThreadQueue::Pump() {
  std::unique_lock Lock(FLock);
  while (!FWaiting.empty()) {
    TWaiting& Next = *FWaiting.front();
    FWaiting.pop_front();
    Lock.unlock();
    try {
      Next.Action();
    } catch (...) {
      Next.Error = std::current_exception();
    }
    Lock.lock();
    Next.Done = true;
    FChanged.notify_all();
  }
}

TMainThreadQueue::TLoop::TLoop(TMainThreadQueue& Queue) : FQueue(Queue) {
  std::unique_lock Lock(FQueue.FLock);
  FQueue.Enter(Lock);  // never refused: a loop begins on the main thread, or within an action
  ++FQueue.FLoops;
  FQueue.FChanged.notify_all();
}

TMainThreadQueue::TLoop::~TLoop() {
  {
    const std::lock_guard Lock(FQueue.FLock);
    --FQueue.FLoops;
  }
  FQueue.Pump();
  FQueue.Leave();
}

}  // namespace velkrund
