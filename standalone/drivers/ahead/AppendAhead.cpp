#include "standalone/drivers/ahead/AppendAhead.h"

#include <utility>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

TAppendAhead::TAppendAhead(std::unique_ptr<TBulkAppender> Appender, std::size_t Columns, TConnectionTurn& Turn)
    : FAppender(std::move(Appender)), FColumns(Columns), FTurn(Turn), FRow(Columns) {}

TAppendAhead::~TAppendAhead() {
  FExchange.Drop();
  WaitUntilDone();
  FExchange.Join();
  FTurn.Return(*this, FError);
}

// The thread.

void TAppendAhead::AppendAll() noexcept {
  FTurn.IsHere();
  try {
    while (std::unique_ptr<TRowBatch> Batch = FExchange.Take(TBatchState::Filled)) {
      AppendRows(*Batch);
      Batch->Clear();
      FExchange.Give(std::move(Batch), TBatchState::Empty);
    }
  } catch (...) {
    Fail(std::current_exception());
  }
}

void TAppendAhead::AppendRows(const TRowBatch& Batch) {
  for (std::size_t Row = 0; Row < Batch.Rows() && !FExchange.Drops(); ++Row) {
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
  FBatch = FExchange.Begin([this] { return std::make_unique<TRowBatch>(FColumns); }, [this] { AppendAll(); });
  if (!FBatch) FTurn.Return(*this);
  FStaysHere = !FBatch;
  return !FStaysHere;
}

void TAppendAhead::HandOver() {
  FBatch = FExchange.Swap(std::move(FBatch), TBatchState::Filled, [this] { Serve(); });
  if (!FBatch || FExchange.Drops()) EndAhead();
}

/// What the host raises ends the append.
void TAppendAhead::Serve() noexcept {
  try {
    FExchange.Serve();
  } catch (...) {
    Fail(std::current_exception());
    FExchange.Stop();
  }
}

void TAppendAhead::Fail(std::exception_ptr Error) noexcept {
  {
    const std::lock_guard Lock(FMutex);
    if (!FError) FError = std::move(Error);
  }
  FExchange.Drop();
}

void TAppendAhead::WaitUntilDone() noexcept {
  FExchange.EndWhenTaken();
  FExchange.WaitUntilDone([this] { Serve(); });
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
  FExchange.Join();
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
