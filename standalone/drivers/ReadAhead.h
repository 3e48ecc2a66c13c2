#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "standalone/drivers/Cursor.h"
#include "standalone/drivers/ReadingThread.h"

namespace velkrund {

/// The rows of another cursor, read and decoded by a thread of its own into a few batches of bounded memory. What that
/// one raises comes out at the row where it would have. From the beginning to the end of this one nobody else uses the
/// connection. Few rows are read without a thread.
class TReadAheadCursor final : public TCursor {
 public:
  /// Columns: how many Cursor was opened with.
  TReadAheadCursor(std::unique_ptr<TCursor> Cursor, std::size_t Columns);
  ~TReadAheadCursor() override;

  bool Next() override;
  void Read(int Column, TKvVariant& Value) override;
  const TKvVariant* Decoded() const override { return FRow; }

 private:
  /// Bytes of a batch, in blocks that are used again.
  class TBytes {
   public:
    std::string_view Keep(std::string_view Bytes);
    void Clear();
    std::size_t Size() const { return FSize; }

   private:
    struct TBlock {
      std::unique_ptr<char[]> Bytes;
      std::size_t Size;
    };
    std::vector<TBlock> FBlocks;
    std::size_t FBlock = 0;  // that is filled
    std::size_t FUsed = 0;   // of it
    std::size_t FSize = 0;
  };
  struct TBatch {
    std::vector<TKvVariant> Values;  // row by row
    TBytes Bytes;                    // that the values borrow
    std::size_t Rows = 0;
    bool IsLast = false;
    std::exception_ptr Error = nullptr;  // behind the rows
  };
  using TBatches = std::deque<std::unique_ptr<TBatch>>;

  void Fill(TBatch& Batch, std::size_t MostRows) noexcept;
  void ReadRow(TBatch& Batch);
  void ReadAll();
  std::unique_ptr<TBatch> TakeEmpty();
  std::unique_ptr<TBatch> TakeFilled();
  bool NextBatch();

  const std::unique_ptr<TCursor> FCursor;
  const std::size_t FColumns;
  const std::size_t FMostRows;  // of a batch

  // Of the caller.
  std::unique_ptr<TBatch> FBatch;
  std::size_t FNextRow = 0;  // of the batch
  const TKvVariant* FRow = nullptr;

  std::mutex FMutex;  // of what follows
  std::condition_variable FChanged;
  TBatches FEmpty, FFilled;
  std::size_t FFilledBytes = 0;
  bool FServes = false;  // the caller has something to serve
  bool FEnding = false;

  std::optional<TReadingThread> FThread;
};

}  // namespace velkrund
