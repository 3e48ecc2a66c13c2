#include <libpq-fe.h>

#include <algorithm>

#include "standalone/drivers/postgresql/PostgreSQLCursor.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Memory of one batch, in bytes.
constexpr std::size_t BatchMemory = std::size_t{1} << 20U;

/// Rows of a batch at most.
constexpr std::int64_t MaxBatchSize = 16'384;

}  // namespace

TPostgreSQLFetchCursor::TPostgreSQLFetchCursor(TPostgreSQLSource Source)
    : TPostgreSQLCursor(std::move(Source)),
      FNumber(FSource.Session.NextCursorNumber()),
      FName(FSource.Session.CursorName(FNumber)),
      FTransaction(FSource.Session.TransactionNumber()) {
  FSource.Session.Query(FSource.What, "DECLARE " + FName + " NO SCROLL CURSOR FOR " + FSource.Statement);
}

TPostgreSQLFetchCursor::~TPostgreSQLFetchCursor() {
  TPostgreSQLSession& Session = FSource.Session;
  if (Session.InTransaction() && Session.TransactionNumber() == FTransaction) Session.CloseLater(FNumber);
}

void TPostgreSQLFetchCursor::Fetch() {
  FBatch = FSource.Session.Query(FSource.What, Format("FETCH FORWARD %d FROM %s", FBatchSize, FName), {},
                                 TPostgreSQLSession::TFormat::Binary);
  FRow = 0;
  FRowCount = FBatch.RowCount();
  FEnded = FRowCount < FBatchSize;
  // As many rows as fit, by those that came; a few at a time, since the next ones may be longer.
  const std::size_t PerRow = PQresultMemorySize(FBatch.Handle()) / static_cast<std::size_t>(std::max(FRowCount, 1)) + 1;
  const auto Fitting = static_cast<std::int64_t>(BatchMemory / PerRow);
  FBatchSize =
      static_cast<int>(std::clamp<std::int64_t>(Fitting, 1, std::min<std::int64_t>(MaxBatchSize, 2L * FBatchSize)));
}

bool TPostgreSQLFetchCursor::Next() {
  if (FRow == FRowCount) {
    if (!FEnded) Fetch();
    if (FRow == FRowCount) return false;
  }
  for (std::size_t I = 0; I < FCells.size(); ++I) {
    const int Column = static_cast<int>(I);
    const bool IsNull = PQgetisnull(FBatch.Handle(), FRow, Column) != 0;
    FCells[I] = {IsNull ? nullptr : PQgetvalue(FBatch.Handle(), FRow, Column),
                 PQgetlength(FBatch.Handle(), FRow, Column)};
  }
  ++FRow;
  return true;
}

}  // namespace velkrund
