#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "standalone/drivers/RowAccess.h"
#include "standalone/drivers/Schema.h"
#include "standalone/drivers/postgresql/PostgreSQLBatches.h"
#include "standalone/drivers/postgresql/PostgreSQLDecoder.h"
#include "standalone/drivers/postgresql/PostgreSQLReadOnly.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// What a cursor reads: the question in the engine's language, and how to read the answers.
struct TPostgreSQLSource {
  TPostgreSQLSession& Session;
  std::string What;       // how an error message begins
  std::string Name;       // in messages: "table 'T'"
  std::string Statement;  // the whole COPY, or the SELECT of a server's cursor
  std::vector<TPostgreSQLDecoder> Decoders;
  bool OnlyReads = false;                             // the server refuses whatever would write, batch by batch
  std::unique_ptr<TPostgreSQLReadOnly> Reading = {};  // or as long as the cursor lives
  std::string Table = {}, Oid = {};                   // quoted, and its number; empty: a query
};

/// The value of the column of T as it is sent.
std::string PostgreSQLValueOf(const TPostgreSQLColumn& Column);

/// The rows of a table in the engine's binary format. What is common to both ways of fetching them.
class TPostgreSQLCursor : public TCursor {
 public:
  void Read(int Column, TKvVariant& Value) final;

 protected:
  struct TCell {
    const char* Bytes;  // null: NULL
    int Size;
  };

  explicit TPostgreSQLCursor(TPostgreSQLSource Source) : FSource(std::move(Source)), FCells(FSource.Decoders.size()) {}

  TPostgreSQLSource FSource;
  std::vector<TCell> FCells;  // of the current row
};

/// One COPY, which holds the connection until its last row.
class TPostgreSQLCopyCursor final : public TPostgreSQLCursor, private TPostgreSQLStream {
 public:
  explicit TPostgreSQLCopyCursor(TPostgreSQLSource Source);
  ~TPostgreSQLCopyCursor() override;

  bool Next() override;

 private:
  void GiveWay(std::string_view What) override;
  void Abandon() noexcept override;
  bool Receive();
  void RefuseChanges();
  void SkipHeader();
  void FreeRow();
  [[noreturn]] void RaiseMalformed();

  char* FRow = nullptr;  // the client library's
  const char* FAt = nullptr;
  const char* FEnd = nullptr;
  bool FOpen = false;
};

/// A cursor of the server, inside a transaction, which sends a batch whenever one is used up. Other statements run
/// between the batches.
class TPostgreSQLFetchCursor final : public TPostgreSQLCursor {
 public:
  explicit TPostgreSQLFetchCursor(TPostgreSQLSource Source);

  bool Next() override;
  /// The transaction would be lost, too.
  bool StopsAlone() const override { return false; }

 private:
  TPostgreSQLBatches FBatches;
};

/// All rows of one statement, held in memory.
class TPostgreSQLQueryCursor final : public TCursor {
 public:
  TPostgreSQLQueryCursor(TPostgreSQLSession& Session, const std::string& Statement,
                         std::span<const TKvVariant> Parameters);

  bool Next() override { return ++FRow < FRows.RowCount(); }
  void Read(int Column, TKvVariant& Value) override;

 private:
  TPostgreSQLResult FRows;
  std::vector<TPostgreSQLDecoder> FDecoders;
  int FRow = -1;
};

enum class TPostgreSQLReading { Copy, InBatches };

/// Raises EDatabaseError, with What at the beginning, unless Condition is one expression about rows of Table.
void CheckPostgreSQLSelection(TPostgreSQLSession& Session, const TTableDescription& Table, std::string_view Condition,
                              const std::string& What);

/// Columns, Options: as for TRowAccess.
std::unique_ptr<TCursor> OpenPostgreSQLCursor(TPostgreSQLSession& Session, const TTableDescription& Table,
                                              std::span<const int> Columns, const TWalkOptions& Options,
                                              TPostgreSQLReading Reading);

}  // namespace velkrund
