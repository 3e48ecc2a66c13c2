#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <vector>

#include "standalone/drivers/ConnectionTurn.h"
#include "standalone/drivers/Cursor.h"
#include "standalone/drivers/ahead/BatchExchange.h"
#include "standalone/drivers/ahead/RowBatch.h"

namespace velkrund {

/// The rows of another cursor, read and decoded by a thread of its own into a few batches of bounded memory. What that
/// one raises comes out at the row where it would have. Few rows are read without a thread, and large ones where they
/// stand. A row that is changed after it was read ahead comes as it was.
class TReadAheadCursor final : public TCursor, private TConnectionTurn::TWorker {
 public:
  /// Columns: how many Cursor was opened with. Turn: of the connection; borrowed. It has the thread stand still for
  /// good before anybody else uses the connection; and no thread begins where rows are written between the first ones,
  /// or not all columns are asked for. Null: from the beginning to the end of this one nobody else uses the connection.
  TReadAheadCursor(std::unique_ptr<TCursor> Cursor, std::size_t Columns, TConnectionTurn* Turn);
  ~TReadAheadCursor() override;

  bool Next() override;
  void Read(int Column, TKvVariant& Value) override;
  const TKvVariant* Decoded() const override { return FRow; }

 private:
  /// What comes behind the rows of a batch.
  enum class TEnd { Batch, Error, Nothing, LargeRow };
  struct TBatch {
    explicit TBatch(std::size_t Columns) : Rows(Columns) {}
    TRowBatch Rows;
    TEnd End = TEnd::Batch;
    std::exception_ptr Error = nullptr;
  };

  // The thread.
  void ReadAll() noexcept;
  void Fill(TBatch& Batch) noexcept;
  void AddRow(TBatch& Batch);

  std::exception_ptr StandStill(bool Undone) noexcept override;
  bool BeginAhead();
  bool NextHere();
  bool NextAhead();
  bool EndBatch();
  void SwapBatch();
  void EndThread() noexcept;
  bool AllAskedFor() const;

  const std::unique_ptr<TCursor> FCursor;
  const std::size_t FColumns;
  TConnectionTurn* const FTurn;

  // Of the caller.
  std::int64_t FWrites = 0;          // at the beginning
  std::vector<char> FAsked;          // per column, before a thread begins
  std::size_t FRowsHere = 0;         // without a thread, since the last one
  bool FStaysHere = false;           // no thread begins any more
  bool FIsOver = false;              // after the last row, or an error
  std::exception_ptr FHostsOwn;      // raised by the host while the thread was waited for
  std::vector<TKvVariant> FRowHere;  // once all of its values are asked for; until then none
  std::unique_ptr<TBatch> FBatch;
  std::size_t FNextRow = 0;          // of the batch
  const TKvVariant* FRow = nullptr;  // null: the cursor stands on it

  TBatchExchange<TBatch> FExchange;
};

}  // namespace velkrund
