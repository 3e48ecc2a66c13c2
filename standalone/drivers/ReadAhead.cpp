#include "standalone/drivers/ReadAhead.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

namespace velkrund {
namespace {

// Few enough that a batch is still in the processor's cache when it is used, enough that handing it over costs nothing.
constexpr std::size_t MostValues = 4'096;
constexpr std::size_t MostBytes = std::size_t{256} << 10U;
constexpr std::size_t BlockSize = std::size_t{64} << 10U;
constexpr int BatchCount = 3;
/// Of the first batch, which the caller reads itself: small tables are not worth a thread.
constexpr std::size_t RowsWithoutThread = 32;

/// How often the host is asked meanwhile whether to go on.
constexpr std::chrono::milliseconds LongestWait(20);

}  // namespace

std::string_view TReadAheadCursor::TBytes::Keep(std::string_view Bytes) {
  if (Bytes.empty()) return {};
  while (FBlock < FBlocks.size() && FBlocks[FBlock].Size - FUsed < Bytes.size()) ++FBlock, FUsed = 0;
  if (FBlock == FBlocks.size()) {
    const std::size_t Size = std::max(BlockSize, Bytes.size());
    FBlocks.push_back({std::make_unique_for_overwrite<char[]>(Size), Size});
  }
  char* const Kept = FBlocks[FBlock].Bytes.get() + FUsed;
  std::memcpy(Kept, Bytes.data(), Bytes.size());
  FUsed += Bytes.size();
  FSize += Bytes.size();
  return {Kept, Bytes.size()};
}

/// Blocks of large values are given back.
void TReadAheadCursor::TBytes::Clear() {
  std::erase_if(FBlocks, [](const TBlock& Block) { return Block.Size > BlockSize; });
  FBlock = FUsed = FSize = 0;
}

TReadAheadCursor::TReadAheadCursor(std::unique_ptr<TCursor> Cursor, std::size_t Columns)
    : FCursor(std::move(Cursor)),
      FColumns(Columns),
      FMostRows(std::max<std::size_t>(MostValues / std::max<std::size_t>(Columns, 1), 1)),
      FBatch(std::make_unique<TBatch>()) {
  Fill(*FBatch, std::min(FMostRows, RowsWithoutThread));
  if (FBatch->IsLast) return;
  for (int I = 1; I < BatchCount; ++I) FEmpty.push_back(std::make_unique<TBatch>());
  FThread.emplace([this] { ReadAll(); },
                  [this] {
                    const std::lock_guard Lock(FMutex);
                    FServes = true;
                    FChanged.notify_all();
                  });
}

TReadAheadCursor::~TReadAheadCursor() {
  if (!FThread) return;
  {
    const std::lock_guard Lock(FMutex);
    FEnding = true;
    FChanged.notify_all();
  }
  if (FCursor->StopsAlone()) FThread->Stop();
}

void TReadAheadCursor::Fill(TBatch& Batch, std::size_t MostRows) noexcept {
  try {
    Batch.Bytes.Clear();
    Batch.Rows = 0;
    Batch.Values.resize(FMostRows * FColumns);
    while (Batch.Rows < MostRows && Batch.Bytes.Size() < MostBytes && !Batch.IsLast) ReadRow(Batch);
  } catch (...) {
    Batch.Error = std::current_exception();
    Batch.IsLast = true;
  }
}

void TReadAheadCursor::ReadRow(TBatch& Batch) {
  if (!FCursor->Next()) {
    Batch.IsLast = true;
    return;
  }
  TKvVariant* Value = Batch.Values.data() + Batch.Rows * FColumns;
  for (std::size_t Column = 0; Column < FColumns; ++Column, ++Value) {
    FCursor->Read(static_cast<int>(Column), *Value);
    if (HasBytes(Value->Kind())) Value->BorrowText(Batch.Bytes.Keep(Value->AsText()), Value->Kind());
  }
  ++Batch.Rows;
}

/// The reading thread.
void TReadAheadCursor::ReadAll() {
  for (bool IsLast = false; !IsLast;) {
    std::unique_ptr<TBatch> Batch = TakeEmpty();
    if (!Batch) return;
    Fill(*Batch, FMostRows);
    IsLast = Batch->IsLast;
    const std::lock_guard Lock(FMutex);
    FFilledBytes += Batch->Bytes.Size();
    FFilled.push_back(std::move(Batch));
    FChanged.notify_all();
  }
}

/// Null: the caller has ended the walk. Of large rows one at a time waits for the caller.
std::unique_ptr<TReadAheadCursor::TBatch> TReadAheadCursor::TakeEmpty() {
  std::unique_lock Lock(FMutex);
  FChanged.wait(Lock, [this] { return FEnding || (!FEmpty.empty() && FFilledBytes < 2 * MostBytes); });
  if (FEnding) return nullptr;
  std::unique_ptr<TBatch> Batch = std::move(FEmpty.front());
  FEmpty.pop_front();
  return Batch;
}

std::unique_ptr<TReadAheadCursor::TBatch> TReadAheadCursor::TakeFilled() {
  for (;;) {
    {
      std::unique_lock Lock(FMutex);
      FChanged.wait_for(Lock, LongestWait, [this] { return FServes || !FFilled.empty(); });
      if (!std::exchange(FServes, false) && !FFilled.empty()) {
        std::unique_ptr<TBatch> Batch = std::move(FFilled.front());
        FFilled.pop_front();
        FFilledBytes -= Batch->Bytes.Size();
        return Batch;
      }
    }
    FThread->Serve();
  }
}

bool TReadAheadCursor::NextBatch() {
  FRow = nullptr;
  if (FBatch->Error) std::rethrow_exception(std::exchange(FBatch->Error, nullptr));
  if (FBatch->IsLast) return false;
  // Large values are given back before the next ones come.
  FBatch->Bytes.Clear();
  {
    const std::lock_guard Lock(FMutex);
    FEmpty.push_back(std::exchange(FBatch, nullptr));
    FChanged.notify_all();
  }
  FBatch = TakeFilled();
  FNextRow = 0;
  return Next();
}

bool TReadAheadCursor::Next() {
  // The host has raised something instead of an answer.
  if (!FBatch) return false;
  if (FNextRow == FBatch->Rows) return NextBatch();
  FRow = FBatch->Values.data() + FNextRow++ * FColumns;
  return true;
}

void TReadAheadCursor::Read(int Column, TKvVariant& Value) {
  const TKvVariant& Cell = FRow[Column];
  if (HasBytes(Cell.Kind()))
    Value.BorrowText(Cell.AsText(), Cell.Kind());
  else
    Value = Cell;
}

}  // namespace velkrund
