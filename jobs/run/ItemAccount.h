#pragma once

#include <chrono>

#include "jobs/report/Outcome.h"
#include "velkrund/eif/EISource.h"

namespace velkrund {

/// What one section takes and loses, from the account's beginning to Close.
class TItemAccount {
 public:
  /// Source: whose losses are counted; borrowed.
  explicit TItemAccount(const TEISource& Source) : FSource(Source), FBefore(Source.Losses()) {}

  double Seconds() const { return std::chrono::duration<double>(TClock::now() - FStart).count(); }
  TTextLosses Losses() const {
    const TTextLosses& Now = FSource.Losses();
    return {Now.Unrepresentable - FBefore.Unrepresentable, Now.Malformed - FBefore.Malformed,
            Now.Altered - FBefore.Altered};
  }
  void Close(TItem& Item) const {
    Item.Seconds = Seconds();
    Item.Losses = Losses();
  }

 private:
  using TClock = std::chrono::steady_clock;

  const TEISource& FSource;
  const TClock::time_point FStart = TClock::now();
  const TTextLosses FBefore;
};

}  // namespace velkrund
