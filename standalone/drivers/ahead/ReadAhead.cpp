#include "standalone/drivers/ahead/ReadAhead.h"

#include <algorithm>
#include <utility>

namespace velkrund {

TReadAheadCursor::TReadAheadCursor(std::unique_ptr<TCursor> Cursor, std::size_t Columns, TConnectionTurn* Turn)
    : FCursor(std::move(Cursor)), FColumns(Columns), FTurn(Turn), FWrites(Turn ? Turn->Writes() : 0), FAsked(Columns) {}

TReadAheadCursor::~TReadAheadCursor() {
  FExchange.Drop();
  if (FCursor->StopsAlone()) FExchange.Stop();
  EndThread();
}

/// Waits for its end.
void TReadAheadCursor::EndThread() noexcept {
  FExchange.Join();
  if (FTurn) FTurn->Return(*this);
}

// The thread.

void TReadAheadCursor::ReadAll() noexcept {
  if (FTurn) FTurn->IsHere();
  for (bool IsLast = false; !IsLast;) {
    std::unique_ptr<TBatch> Batch = FExchange.Take(TBatchState::Empty);
    if (!Batch) break;
    Fill(*Batch);
    IsLast = Batch->End != TEnd::Batch;
    FExchange.Give(std::move(Batch), TBatchState::Filled);
  }
}

void TReadAheadCursor::Fill(TBatch& Batch) noexcept {
  Batch.Rows.Clear();
  Batch.End = TEnd::Batch;
  try {
    while (!Batch.Rows.IsFull() && Batch.End == TEnd::Batch && !FExchange.Drops()) AddRow(Batch);
  } catch (...) {
    Batch.Error = std::current_exception();
    Batch.End = TEnd::Error;
  }
}

/// A large row stays where it stands: copied, it would take its size once more.
void TReadAheadCursor::AddRow(TBatch& Batch) {
  if (!FCursor->Next()) {
    Batch.End = TEnd::Nothing;
    return;
  }
  const std::span Row(Batch.Rows.NewRow(), FColumns);
  FCursor->ReadRow(Row);
  std::size_t Bytes = 0;
  for (const TKvVariant& Value : Row) Bytes += Value.AsText().size();
  if (Bytes > TRowBatch::MostBytes) {
    Batch.End = TEnd::LargeRow;
    return;
  }
  for (TKvVariant& Value : Row) Batch.Rows.Keep(Value);
  Batch.Rows.AddRow();
}

// The caller.

/// What was read ahead still comes; then the rows that the cursor reaches.
std::exception_ptr TReadAheadCursor::StandStill(bool /*Undone*/) noexcept {
  FStaysHere = true;
  FExchange.Drop();
  FExchange.WaitUntilDone([this] {
    try {
      FExchange.Serve();
    } catch (...) {
      FHostsOwn = std::current_exception();
      FExchange.Stop();
    }
  });
  return nullptr;
}

bool TReadAheadCursor::Next() {
  FRow = nullptr;
  if (FBatch) return NextAhead();
  if (FIsOver) return false;
  if (FHostsOwn) {
    FIsOver = true;
    std::rethrow_exception(std::exchange(FHostsOwn, nullptr));
  }
  if (FStaysHere || FRowsHere < TRowBatch::RowsWithoutThread || !BeginAhead()) return NextHere();
  return NextAhead();
}

bool TReadAheadCursor::NextHere() {
  ++FRowsHere;
  FIsOver = true;  // unless the row is read
  if (!FCursor->Next()) return false;
  if (!FRowHere.empty()) {
    FCursor->ReadRow(FRowHere);
    FRow = FRowHere.data();
  }
  FIsOver = false;
  return true;
}

bool TReadAheadCursor::AllAskedFor() const { return std::find(FAsked.begin(), FAsked.end(), char{0}) == FAsked.end(); }

/// False: the walk goes on without a thread.
bool TReadAheadCursor::BeginAhead() {
  FStaysHere = true;
  if (AllAskedFor()) FRowHere.resize(FColumns);
  if (FTurn && (FTurn->Writes() != FWrites || !AllAskedFor() || !FTurn->Give(*this, 1))) return false;
  FBatch = FExchange.Begin([this] { return std::make_unique<TBatch>(FColumns); }, [this] { ReadAll(); });
  if (!FBatch) EndThread();
  FStaysHere = !FBatch;
  FNextRow = 0;
  return !FStaysHere;
}

bool TReadAheadCursor::NextAhead() {
  while (FNextRow == FBatch->Rows.Rows()) {
    if (FBatch->End != TEnd::Batch) return EndBatch();
    SwapBatch();
    if (!FBatch) {
      // The thread has been made to stand still.
      EndThread();
      return Next();
    }
  }
  FRow = FBatch->Rows.Row(FNextRow++);
  return true;
}

/// Behind the last row that a thread has read.
bool TReadAheadCursor::EndBatch() {
  EndThread();
  FRowsHere = 0;
  const std::unique_ptr<TBatch> Last = std::move(FBatch);
  if (Last->End == TEnd::LargeRow) return true;
  FIsOver = true;
  if (Last->End == TEnd::Error) std::rethrow_exception(Last->Error);
  return false;
}

void TReadAheadCursor::SwapBatch() {
  FNextRow = 0;
  FBatch = FExchange.Swap(std::move(FBatch), TBatchState::Empty, [this] {
    FIsOver = true;  // where the host raises something instead of an answer
    FExchange.Serve();
    FIsOver = false;
  });
}

void TReadAheadCursor::Read(int Column, TKvVariant& Value) {
  if (!FRow) {
    FAsked[static_cast<std::size_t>(Column)] = 1;
    return FCursor->Read(Column, Value);
  }
  const TKvVariant& Cell = FRow[Column];
  if (HasBytes(Cell.Kind()))
    Value.BorrowText(Cell.AsText(), Cell.Kind());
  else
    Value = Cell;
}

}  // namespace velkrund
