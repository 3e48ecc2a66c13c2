#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// The rows of a SELECT through a cursor of the server, inside a transaction: a batch at a time, of as many rows as fit
/// into a bounded memory.
class TPostgreSQLBatches {
 public:
  /// Session: borrowed. What begins messages. OnlyReads: while a batch is made the server refuses whatever would write.
  TPostgreSQLBatches(TPostgreSQLSession& Session, std::string What, const std::string& Select,
                     std::span<const TKvVariant> Parameters, TPostgreSQLSession::TFormat Format,
                     bool OnlyReads = false);
  TPostgreSQLBatches(const TPostgreSQLBatches&) = delete;
  TPostgreSQLBatches& operator=(const TPostgreSQLBatches&) = delete;
  ~TPostgreSQLBatches();

  /// Asks for the first batch, which names the columns also where there are no rows.
  void Fetch();
  /// Moves to the next row; false behind the last one.
  bool Next();
  const TPostgreSQLResult& Batch() const { return FBatch; }
  /// The current one of the batch.
  int Row() const { return FRow - 1; }

 private:
  TPostgreSQLSession& FSession;
  const std::string FWhat;
  const std::int64_t FNumber;
  const std::string FName;
  std::int64_t FTransaction;  // which the server's cursor lives in
  const TPostgreSQLSession::TFormat FFormat;
  const bool FOnlyReads;
  TPostgreSQLResult FBatch;
  int FRow = 0;         // next row of the batch
  int FRowCount = 0;    // of the batch
  int FBatchSize = 32;  // rows to ask for next
  bool FEnded = false;
};

}  // namespace velkrund
