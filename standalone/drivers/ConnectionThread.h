#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "standalone/drivers/Driver.h"

namespace velkrund {

/// A thread that uses a connection for the thread that made it. Functions of the host are none of its: it leaves them
/// to that one.
class TConnectionThread {
 public:
  /// Options whose functions run on callers' threads alone, also where such a thread is what asks or tells.
  static TConnectOptions WithCallersCalls(TConnectOptions Options);

  /// Runs Work, which raises nothing. Served: called, by that thread, when there is something to serve.
  TConnectionThread(std::function<void()> Work, std::function<void()> Served);
  TConnectionThread(const TConnectionThread&) = delete;
  TConnectionThread& operator=(const TConnectionThread&) = delete;
  /// Waits for the end of Work.
  ~TConnectionThread();

  /// For the thread that made it, again and again while it waits: asks the host whether to go on, and tells it what
  /// there is to tell.
  void Serve();
  /// What the engine does ends soon, with EAbort.
  void Stop() { FStopped = true; }

 private:
  using TCanceled = std::function<bool()>;

  static bool Ask(const std::shared_ptr<const TCanceled>& Canceled);
  static void Tell(std::function<void()> Call);

  std::function<void()> FServed;
  std::atomic<bool> FStopped = false;
  std::mutex FMutex;                           // of what follows
  std::shared_ptr<const TCanceled> FCanceled;  // who is asked; null: nobody yet
  std::vector<std::function<void()>> FToTell;
  std::thread FThread;
};

}  // namespace velkrund
