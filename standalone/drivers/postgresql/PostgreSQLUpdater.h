#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "standalone/drivers/BulkAppender.h"
#include "standalone/drivers/postgresql/PostgreSQLEncoder.h"
#include "standalone/drivers/postgresql/PostgreSQLSequences.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// Rows that take the place of those with the same key, or are added: one statement each, many of them on their way to
/// the server at once. Those that are held back go before every other statement of the connection.
class TPostgreSQLUpdater final : public TBulkAppender, private TPostgreSQLStream {
 public:
  /// Raises EDatabaseError when the table takes no such rows.
  TPostgreSQLUpdater(TPostgreSQLSession& Session, TPostgreSQLSequences& Sequences, const TTableDescription& Table,
                     std::span<const int> Columns, const TAppendOptions& Options);
  ~TPostgreSQLUpdater() override;

  void Append(std::span<const TKvVariant* const> Row) override;
  void Finish() override;
  std::int64_t ChangedValues() const override;
  std::int64_t UpdatedRecords() const override { return FUpdated; }

 private:
  void MakeStatement(const TTableDescription& Table, const std::vector<std::size_t>& Key);
  void GiveWay(std::string_view What) override;
  void Abandon() noexcept override;
  void CheckUsable() const;
  void Hold();
  void Send();
  void Take(std::int64_t Record, const TPostgreSQLResult& Counts);
  std::string RecordText(std::int64_t Record) const;
  std::string ColumnOfError(const TPostgreSQLResult& Result) const;
  [[noreturn]] void RaiseRefused(std::size_t Column, const TKvVariant& Value, std::string_view Reason) const;
  [[noreturn]] void RaiseRecord(std::int64_t Record, const TPostgreSQLResult& Result);
  [[noreturn]] void Fail(const std::string& Message, TErrorInfo Info);

  TPostgreSQLSession& FSession;
  TPostgreSQLSequences& FSequences;
  const std::string FTableName;  // as people know it
  const std::string FWhat;
  std::string FTableOid;
  std::string FStatement;
  std::vector<unsigned> FTypes;  // of its parameters, one per column
  std::vector<std::string> FNames;
  std::vector<TPostgreSQLEncoder> FEncoders;
  std::vector<std::string> FTriggers;  // that fire for its rows
  const bool FMovesSequences;
  std::string FEncoded;                 // a value as the encoder writes it
  std::string FTexts;                   // values that are held back, each with a zero behind it
  std::vector<std::ptrdiff_t> FStarts;  // where they begin; -1: NULL
  const std::int64_t FFirst;            // number of the first record
  std::int64_t FHeldFirst;              // of the first one that is held back
  std::int64_t FRecord;                 // of the next record
  std::int64_t FUpdated = 0;
  std::int64_t FIgnored = 0;  // the first record that is neither added nor has updated a row; 0: none
  std::string FFailure;       // why nothing can be appended any more
};

}  // namespace velkrund
