#include "standalone/drivers/ReadAhead.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace velkrund {
namespace {

constexpr int BatchCount = 3;

/// How often the host is asked meanwhile whether to go on.
constexpr std::chrono::milliseconds LongestWait(20);

}  // namespace

TReadAheadCursor::TReadAheadCursor(std::unique_ptr<TCursor> Cursor, std::size_t Columns, TConnectionTurn* Turn)
    : FCursor(std::move(Cursor)), FColumns(Columns), FTurn(Turn), FWrites(Turn ? Turn->Writes() : 0), FAsked(Columns) {}

TReadAheadCursor::~TReadAheadCursor() {
  {
    const std::lock_guard Lock(FMutex);
    FEnds = true;
    FChanged.notify_all();
  }
  if (FThread && FCursor->StopsAlone()) FThread->Stop();
  EndThread();
}

/// Waits for its end.
void TReadAheadCursor::EndThread() noexcept {
  FThread.reset();
  if (FTurn) FTurn->Return(*this);
}

// The thread.

void TReadAheadCursor::ReadAll() noexcept {
  if (FTurn) FTurn->IsHere();
  for (bool IsLast = false; !IsLast;) {
    std::unique_ptr<TBatch> Batch = TakeEmpty();
    if (!Batch) break;
    Fill(*Batch);
    IsLast = Batch->End != TEnd::Batch;
    {
      const std::lock_guard Lock(FMutex);
      FFilled.push_back(std::move(Batch));
    }
    FChanged.notify_all();
  }
  const std::lock_guard Lock(FMutex);
  FDone = true;
  FChanged.notify_all();
}

/// Null: the thread is to end.
std::unique_ptr<TReadAheadCursor::TBatch> TReadAheadCursor::TakeEmpty() {
  std::unique_lock Lock(FMutex);
  FChanged.wait(Lock, [this] { return FEnds || !FEmpty.empty(); });
  if (FEnds) return nullptr;
  std::unique_ptr<TBatch> Batch = std::move(FEmpty.front());
  FEmpty.pop_front();
  return Batch;
}

void TReadAheadCursor::Fill(TBatch& Batch) noexcept {
  Batch.Rows.Clear();
  Batch.End = TEnd::Batch;
  try {
    while (!Batch.Rows.IsFull() && Batch.End == TEnd::Batch && !FEnds.load(std::memory_order_relaxed)) ReadRow(Batch);
  } catch (...) {
    Batch.Error = std::current_exception();
    Batch.End = TEnd::Error;
  }
}

/// A large row stays where it stands: copied, it would take its size once more.
void TReadAheadCursor::ReadRow(TBatch& Batch) {
  if (!FCursor->Next()) {
    Batch.End = TEnd::Nothing;
    return;
  }
  TKvVariant* const Row = Batch.Rows.NewRow();
  std::size_t Bytes = 0;
  for (std::size_t Column = 0; Column < FColumns; ++Column) {
    TKvVariant& Value = Row[Column];
    FCursor->Read(static_cast<int>(Column), Value);
    Bytes += Value.AsText().size();
    if (Bytes > TRowBatch::MostBytes) {
      Batch.End = TEnd::LargeRow;
      return;
    }
    Batch.Rows.Keep(Value);
  }
  Batch.Rows.AddRow();
}

// The caller.

/// What was read ahead still comes; then the rows that the cursor reaches.
std::exception_ptr TReadAheadCursor::StandStill(bool /*Undone*/) noexcept {
  FStaysHere = true;
  FEnds = true;
  for (;;) {
    {
      std::unique_lock Lock(FMutex);
      FChanged.notify_all();
      FChanged.wait_for(Lock, LongestWait, [this] { return FDone; });
      if (FDone) return nullptr;
    }
    try {
      FThread->Serve();
    } catch (...) {
      FHostsOwn = std::current_exception();
      FThread->Stop();
    }
  }
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
  FIsOver = true;
  FIsOver = !FCursor->Next();
  return !FIsOver;
}

bool TReadAheadCursor::AllAskedFor() const { return std::find(FAsked.begin(), FAsked.end(), char{0}) == FAsked.end(); }

/// False: the walk goes on without a thread.
bool TReadAheadCursor::BeginAhead() {
  FStaysHere = true;
  if (FTurn && (FTurn->Writes() != FWrites || !AllAskedFor() || !FTurn->Give(*this, 1))) return false;
  FEnds = FDone = FServes = false;
  try {
    FBatch = std::make_unique<TBatch>(FColumns);
    while (FEmpty.size() + 1 < BatchCount) FEmpty.push_back(std::make_unique<TBatch>(FColumns));
    FThread.emplace([this] { ReadAll(); },
                    [this] {
                      const std::lock_guard Lock(FMutex);
                      FServes = true;
                      FChanged.notify_all();
                    });
  } catch (const std::exception&) {
    // Memory or threads are short: nothing that the walk needs.
    FBatch.reset();
    EndThread();
    return false;
  }
  FStaysHere = false;
  FNextRow = 0;
  return true;
}

bool TReadAheadCursor::NextAhead() {
  while (FNextRow == FBatch->Rows.Rows()) {
    if (FBatch->End != TEnd::Batch) return EndBatch();
    std::unique_ptr<TBatch> Next = TakeFilled();
    FNextRow = 0;
    if (!Next) {
      // The thread has been made to stand still.
      FBatch.reset();
      EndThread();
      return this->Next();
    }
    FBatch = std::move(Next);
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

std::unique_ptr<TReadAheadCursor::TBatch> TReadAheadCursor::TakeFilled() {
  {
    const std::lock_guard Lock(FMutex);
    FEmpty.push_back(std::exchange(FBatch, nullptr));
  }
  FChanged.notify_all();
  for (;;) {
    {
      std::unique_lock Lock(FMutex);
      FChanged.wait_for(Lock, LongestWait, [this] { return FServes || FDone || !FFilled.empty(); });
      if (!std::exchange(FServes, false) && (FDone || !FFilled.empty())) {
        if (FFilled.empty()) return nullptr;
        std::unique_ptr<TBatch> Batch = std::move(FFilled.front());
        FFilled.pop_front();
        return Batch;
      }
    }
    FIsOver = true;  // where the host raises something instead of an answer
    FThread->Serve();
    FIsOver = false;
  }
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
