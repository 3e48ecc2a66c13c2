#pragma once

#include <atomic>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// The running operation of the process, or what has to be alone like one.
class TCRun {
 public:
  TCRun() {
    if (Running.test_and_set()) throw Exception("Another operation is running; one runs at a time in a process");
  }
  TCRun(const TCRun&) = delete;
  TCRun& operator=(const TCRun&) = delete;
  ~TCRun() { Running.clear(); }

 private:
  static inline std::atomic_flag Running;
};

/// Marks something as being at work.
class TCBusy {
 public:
  /// Flag: borrowed; false.
  explicit TCBusy(bool& Flag) noexcept : FFlag(Flag) { FFlag = true; }
  TCBusy(const TCBusy&) = delete;
  TCBusy& operator=(const TCBusy&) = delete;
  ~TCBusy() { FFlag = false; }

 private:
  bool& FFlag;
};

}  // namespace velkrund
