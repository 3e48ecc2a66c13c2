#pragma once

#include <chrono>

namespace velkrund {

/// Tells the caller of something quick, such as one row, when it is worth looking at the clock: reading the time for
/// every row would be a noticeable part of an export. As long as the calls come quickly ever more of them go by between
/// two glances, up to MostSkipped; slow ones are each told.
class TGlances {
 public:
  using TClock = std::chrono::steady_clock;

  void Begin(TClock::time_point Now) {
    FLast = Now;
    FSkip = FLeft = 0;
  }
  /// False: go on. True: Now is the time.
  bool Due(TClock::time_point& Now) {
    if (FLeft > 0) {
      --FLeft;
      return false;
    }
    Now = TClock::now();
    FSkip = Now - FLast < Quick ? (FSkip < MostSkipped ? 2 * FSkip + 1 : FSkip) : 0;
    FLeft = FSkip;
    FLast = Now;
    return true;
  }

 private:
  static constexpr TClock::duration Quick = std::chrono::milliseconds(1);
  static constexpr int MostSkipped = 15;

  TClock::time_point FLast;
  int FSkip = 0, FLeft = 0;
};

}  // namespace velkrund
