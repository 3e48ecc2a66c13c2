#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace velkrund {

/// Actions of worker threads on their way to the main thread: the part of a window system that Synchronize needs. The
/// main thread takes them while it runs a modal loop. While it runs none there is nobody to take them, so they are run
/// on the worker's own thread: never two at once, and never beside a modal loop.
class TMainThreadQueue {
 public:
  /// The thread that makes the queue is the main thread.
  TMainThreadQueue() : FMainThread(std::this_thread::get_id()) {}

  /// Runs Action on the main thread and waits; at once when called there. Its errors come back.
  void Run(const std::function<void()>& Action);

  /// A modal loop of the main thread. With the end of the outermost one, actions that still wait are run.
  class TLoop {
   public:
    explicit TLoop(TMainThreadQueue& Queue);
    TLoop(const TLoop&) = delete;
    TLoop& operator=(const TLoop&) = delete;
    ~TLoop();

   private:
    TMainThreadQueue& FQueue;
  };

  /// Runs what waits; to be called often by the loop, on the main thread.
  void Pump();

 private:
  /// Waits until this thread may run an action or a loop, which Leave ends; false: the loop of another one takes it.
  bool Enter(std::unique_lock<std::mutex>& Lock);
  void Leave();

  struct TWaiting {
    const std::function<void()>& Action;
    std::exception_ptr Error = nullptr;
    bool Done = false;
  };

  const std::thread::id FMainThread;
  std::mutex FLock;  // of what follows
  std::condition_variable FChanged;
  std::list<TWaiting*> FWaiting;  // borrowed from the threads that wait
  int FLoops = 0;
  std::thread::id FOwner;  // the thread whose action or loop runs; none: nobody's
  int FDepth = 0;          // of that thread's actions and loops
};

}  // namespace velkrund
