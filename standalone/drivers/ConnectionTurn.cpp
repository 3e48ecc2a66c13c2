#include "standalone/drivers/ConnectionTurn.h"

#include <utility>

namespace velkrund {
namespace {

/// That of which this thread has the turn; null on the threads of callers.
thread_local const TConnectionTurn* OfThisThread = nullptr;

}  // namespace

bool TConnectionTurn::Give(TWorker& Worker, int OwnStatements) {
  Take();
  if (FLoss || !MayWorkAhead(OwnStatements)) return false;
  FWithinTransaction = InTransaction();
  FWorker = &Worker;
  return true;
}

void TConnectionTurn::IsHere() const noexcept { OfThisThread = this; }

void TConnectionTurn::Return(const TWorker& Worker) noexcept {
  if (FWorker == &Worker) FWorker = nullptr;
}

void TConnectionTurn::Return(const TWorker& Worker, std::exception_ptr Untold) noexcept {
  if (FWorker != &Worker) return;
  FWorker = nullptr;
  Keep(std::move(Untold));
}

void TConnectionTurn::EndWork(bool Undone) noexcept {
  if (OfThisThread == this) return;
  // By then it may have been told to somebody while it was waited for.
  std::exception_ptr Untold = FWorker->StandStill(Undone);
  if (FWorker) Keep(std::move(Untold));
  FWorker = nullptr;
}

/// What is executed now would stay, whatever becomes of the transaction that its caller takes it for a part of.
void TConnectionTurn::Keep(std::exception_ptr Untold) noexcept {
  if (Untold && FWithinTransaction && !InTransaction()) FLoss = std::move(Untold);
}

void TConnectionTurn::RaiseLoss() { std::rethrow_exception(std::exchange(FLoss, nullptr)); }

}  // namespace velkrund
