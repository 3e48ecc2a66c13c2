#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace velkrund::tests {

/// Stands between a program and a server, on a port of its own, and lets everything through until what was agreed on
/// happens.
class TProxy {
 public:
  enum class TFault {
    Stall,  // nothing goes through any more, on any connection, and nothing is closed
    Cut,    // the connection is closed on both sides
    Delay   // from the beginning every piece waits for 20 ms
  };
  struct TPlan {
    TFault Fault = TFault::Stall;
    std::string At = {};     // happens when the program sends this; it does not reach the server
    std::int64_t After = 0;  // or after so many bytes in both directions, where At is empty
  };

  TProxy(int ServerPort, TPlan Plan);
  TProxy(const TProxy&) = delete;
  TProxy& operator=(const TProxy&) = delete;
  ~TProxy();

  int Port() const { return FPort; }
  /// Whether it has happened.
  bool Happened() const { return FHappened; }

 private:
  void Accept();
  void Serve(int Client);
  bool Pass(int From, int To, bool FromClient);

  const int FServerPort;
  const TPlan FPlan;
  int FListener = -1;
  int FPort = 0;
  std::atomic<bool> FHappened = false, FEnds = false;
  std::atomic<std::int64_t> FPassed = 0;
  std::vector<std::thread> FServing;  // of the accepting thread
  std::thread FAccepting;
};

}  // namespace velkrund::tests
