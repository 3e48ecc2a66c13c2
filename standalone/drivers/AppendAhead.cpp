#include "standalone/drivers/AppendAhead.h"

#include <chrono>
#include <utility>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {
namespace {

constexpr std::size_t BatchCount = 3;

/// How often the host is asked meanwhile whether to go on.
constexpr std::chrono::milliseconds LongestWait(20);

}  // namespace

TAppendAhead::TAppendAhead(std::unique_ptr<TBulkAppender> Appender, std::size_t Columns, TConnectionTurn& Turn)
    : FAppender(std::move(Appender)), FColumns(Columns), FTurn(Turn), FRow(Columns) {}

TAppendAhead::~TAppendAhead() {
  FDrops = true;
  WaitUntilDone();
  FThread.reset();
  FTurn.Return(*this, FError);
}

// The thread.

void TAppendAhead::AppendAll() noexcept {
  FTurn.IsHere();
  try {
    while (std::unique_ptr<TRowBatch> Batch = TakeFilled()) {
      AppendRows(*Batch);
      Batch->Clear();
      {
        const std::lock_guard Lock(FMutex);
        FEmpty.push_back(std::move(Batch));
      }
      FChanged.notify_all();
    }
  } catch (...) {
    Fail(std::current_exception());
  }
  const std::lock_guard Lock(FMutex);
  FDone = true;
  FChanged.notify_all();
}

/// Null: the thread is to end.
std::unique_ptr<TRowBatch> TAppendAhead::TakeFilled() {
  std::unique_lock Lock(FMutex);
  FChanged.wait(Lock, [this] { return FDrops || FEnds || !FFilled.empty(); });
  if (FDrops || FFilled.empty()) return nullptr;
  std::unique_ptr<TRowBatch> Batch = std::move(FFilled.front());
  FFilled.pop_front();
  return Batch;
}

void TAppendAhead::AppendRows(const TRowBatch& Batch) {
  for (std::size_t Row = 0; Row < Batch.Rows() && !FDrops.load(std::memory_order_relaxed); ++Row) {
    const TKvVariant* Value = Batch.Row(Row);
    for (const TKvVariant*& Place : FRow) Place = Value++;
    FAppender->Append(FRow);
  }
}

// The caller.

void TAppendAhead::Append(TRow Row) {
  if (!FBatch) {
    if (FError) RaiseFailure();
    if (FStaysHere || FRowsHere < TRowBatch::RowsWithoutThread || !BeginAhead()) return AppendHere(Row);
  } else if (FStaysHere) {
    EndAhead();
    return AppendHere(Row);
  }
  std::size_t Bytes = 0;
  for (const TKvVariant* Value : Row) Bytes += Value->AsText().size();
  if (Bytes > TRowBatch::MostBytes) {
    // A copy would take its size once more.
    EndAhead();
    return AppendHere(Row);
  }
  TKvVariant* Kept = FBatch->NewRow();
  for (const TKvVariant* Value : Row) {
    if (HasBytes(Value->Kind()))
      Kept->BorrowText(Value->AsText(), Value->Kind());
    else
      *Kept = *Value;
    FBatch->Keep(*Kept++);
  }
  FBatch->AddRow();
  if (FBatch->IsFull()) HandOver();
}

void TAppendAhead::AppendHere(TRow Row) {
  ++FRowsHere;
  FAppender->Append(Row);
}

/// False: the rows go on without a thread.
bool TAppendAhead::BeginAhead() {
  FStaysHere = true;
  if (!FTurn.Give(*this, 0)) return false;
  FEnds = FDone = FServes = false;
  try {
    FBatch = std::make_unique<TRowBatch>(FColumns);
    while (FEmpty.size() + 1 < BatchCount) FEmpty.push_back(std::make_unique<TRowBatch>(FColumns));
    FThread.emplace([this] { AppendAll(); },
                    [this] {
                      const std::lock_guard Lock(FMutex);
                      FServes = true;
                      FChanged.notify_all();
                    });
  } catch (const std::exception&) {
    // Memory or threads are short: nothing that the rows need.
    FBatch.reset();
    FDone = true;
    FTurn.Return(*this);
    return false;
  }
  FStaysHere = false;
  return true;
}

void TAppendAhead::HandOver() {
  {
    const std::lock_guard Lock(FMutex);
    FFilled.push_back(std::move(FBatch));
  }
  FChanged.notify_all();
  for (;;) {
    {
      std::unique_lock Lock(FMutex);
      FChanged.wait_for(Lock, LongestWait, [this] { return FServes || FDone || !FEmpty.empty(); });
      if (!std::exchange(FServes, false)) {
        if (FDone) break;
        if (!FEmpty.empty()) {
          FBatch = std::move(FEmpty.front());
          FEmpty.pop_front();
          return;
        }
      }
    }
    Serve();
  }
  EndAhead();
}

/// What the host raises ends the append.
void TAppendAhead::Serve() noexcept {
  try {
    FThread->Serve();
  } catch (...) {
    Fail(std::current_exception());
    FThread->Stop();
  }
}

void TAppendAhead::Fail(std::exception_ptr Error) noexcept {
  const std::lock_guard Lock(FMutex);
  if (!FError) FError = std::move(Error);
  FDrops = true;
}

void TAppendAhead::WaitUntilDone() noexcept {
  for (;;) {
    {
      std::unique_lock Lock(FMutex);
      FEnds = true;
      FChanged.notify_all();
      FChanged.wait_for(Lock, LongestWait, [this] { return FServes || FDone; });
      if (!std::exchange(FServes, false) && FDone) return;
    }
    Serve();
  }
}

/// What is handed over by then goes in, unless it would go again; the rest with the next row, or at the end.
std::exception_ptr TAppendAhead::StandStill(bool Undone) noexcept {
  FStaysHere = true;
  if (Undone) Fail(std::make_exception_ptr(EDatabaseError("Cannot append: the transaction was rolled back meanwhile")));
  WaitUntilDone();
  return FError;
}

/// All is in, and there is no thread any more.
void TAppendAhead::EndAhead() {
  WaitUntilDone();
  FThread.reset();
  FTurn.Return(*this);
  FRowsHere = 0;
  const std::unique_ptr<TRowBatch> Kept = std::move(FBatch);
  if (!FError && Kept) try {
      AppendRows(*Kept);
    } catch (...) {
      FError = std::current_exception();
    }
  if (FError) RaiseFailure();
}

void TAppendAhead::RaiseFailure() {
  FTurn.ForgetLoss();
  std::rethrow_exception(FError);
}

void TAppendAhead::Finish() {
  if (FBatch) EndAhead();
  if (FError) RaiseFailure();
  FAppender->Finish();
}

}  // namespace velkrund
