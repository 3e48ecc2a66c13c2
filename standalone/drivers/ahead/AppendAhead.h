#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <vector>

#include "standalone/drivers/BulkAppender.h"
#include "standalone/drivers/ConnectionTurn.h"
#include "standalone/drivers/ahead/BatchExchange.h"
#include "standalone/drivers/ahead/RowBatch.h"

namespace velkrund {

/// The way in by another appender, on a thread of its own, by a few batches of bounded memory. What that one raises
/// comes out at a later row, or at Finish, and again from then on. Few rows go in without a thread, and large ones.
class TAppendAhead final : public TBulkAppender, private TConnectionTurn::TWorker {
 public:
  /// Columns: how many Appender was opened with. Turn: of the connection; borrowed. It has the thread stand still for
  /// good before anybody else uses the connection, when the batches are in that were handed over by then.
  TAppendAhead(std::unique_ptr<TBulkAppender> Appender, std::size_t Columns, TConnectionTurn& Turn);
  ~TAppendAhead() override;

  void Append(std::span<const TKvVariant* const> Row) override;
  void Finish() override;
  std::int64_t ChangedValues() const override { return FAppender->ChangedValues(); }
  std::int64_t UpdatedRecords() const override { return FAppender->UpdatedRecords(); }

 private:
  using TRow = std::span<const TKvVariant* const>;

  // The thread.
  void AppendAll() noexcept;
  void AppendRows(const TRowBatch& Batch);

  std::exception_ptr StandStill(bool Undone) noexcept override;
  bool BeginAhead();
  void EndAhead();
  void HandOver();
  void Serve() noexcept;
  void Fail(std::exception_ptr Error) noexcept;
  void WaitUntilDone() noexcept;
  void AppendHere(TRow Row);
  [[noreturn]] void RaiseFailure();

  const std::unique_ptr<TBulkAppender> FAppender;
  const std::size_t FColumns;
  TConnectionTurn& FTurn;

  // Of the caller.
  std::size_t FRowsHere = 0;            // without a thread, since the last one
  bool FStaysHere = false;              // no thread begins any more
  std::unique_ptr<TRowBatch> FBatch;    // null: there is no thread
  std::vector<const TKvVariant*> FRow;  // of whoever appends

  std::mutex FMutex;          // of what follows
  std::exception_ptr FError;  // after which nothing goes in

  TBatchExchange<TRowBatch> FExchange;
};

}  // namespace velkrund
