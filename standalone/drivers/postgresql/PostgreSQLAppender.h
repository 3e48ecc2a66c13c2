#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/BulkAppender.h"
#include "standalone/drivers/Schema.h"
#include "standalone/drivers/postgresql/PostgreSQLEncoder.h"
#include "standalone/drivers/postgresql/PostgreSQLInsertTriggers.h"
#include "standalone/drivers/postgresql/PostgreSQLSequences.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// Rows through COPY, in pieces: one ends when it is large, and before every other statement of the connection. The
/// server tells of most errors at the end of a piece, and then looks whether the rows that others refer to are there: a
/// table that refers to itself makes one piece.
class TPostgreSQLAppender final : public TBulkAppender, private TPostgreSQLStream {
 public:
  /// Raises EDatabaseError when the table takes no such rows.
  TPostgreSQLAppender(TPostgreSQLSession& Session, TPostgreSQLSequences& Sequences, const TTableDescription& Table,
                      std::span<const int> Columns, const TAppendOptions& Options);
  ~TPostgreSQLAppender() override;

  void Append(std::span<const TKvVariant* const> Row) override;
  void Finish() override;
  std::int64_t ChangedValues() const override;

 private:
  void GiveWay(std::string_view What) override;
  void Abandon() noexcept override;
  void CheckUsable() const;
  void InsertDefaults();
  bool PutRow(std::span<const TKvVariant* const> Row);
  void TakeForm(const TPostgreSQLForm& Form);
  void BeginPiece();
  void Send();
  void EndPiece();
  [[noreturn]] void RaisePiece(const TPostgreSQLResult& Result);
  void GiveUp(std::string Why);
  void MarkPiece();
  void KeepSent();
  [[noreturn]] void RaiseIgnored(std::int64_t Count);
  std::int64_t FindRefused();
  bool IsOfTrigger(const TPostgreSQLResult& Result, TErrorCode Code) const;
  [[noreturn]] void RaiseOfTrigger(const EDatabaseError& Error, std::string_view What);
  [[noreturn]] void Fail(const std::string& Message, std::int64_t Record);
  [[noreturn]] void RaiseRefused(std::size_t Column, const TKvVariant& Value, std::string_view Reason) const;
  std::string Records(std::int64_t First, std::int64_t Last) const;

  TPostgreSQLSession& FSession;
  TPostgreSQLSequences& FSequences;
  std::string FTableName;      // as people know it
  std::string FTableBareName;  // without the schema
  std::string FWhat;
  std::string FTableOid;
  std::string FStatement;        // without the words about the form
  const TPostgreSQLForm* FForm;  // of the piece's rows
  std::vector<std::string> FNames;
  std::vector<TPostgreSQLEncoder> FEncoders;  // one per column
  std::vector<std::string> FTriggers;         // that fire for its rows
  bool FMovesSequences;
  bool FOneWhole = false;      // no end of a piece by size
  std::string FRows;           // with what stands before them; made and not yet handed to the client library
  std::size_t FPieceSize = 0;  // bytes handed over
  const std::int64_t FFirst;   // number of the first record
  std::int64_t FPieceFirst;    // number of the piece's first record
  std::int64_t FRecord;        // of the next record
  std::string FSent;           // the piece's rows, where a trigger can refuse some
  bool FInPiece = false;       // this holds the connection
  bool FCopying = false;       // the server has begun the piece
  std::string FFailure;        // why nothing can be appended any more
};

}  // namespace velkrund
