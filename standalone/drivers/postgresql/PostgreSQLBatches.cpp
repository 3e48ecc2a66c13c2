#include "standalone/drivers/postgresql/PostgreSQLBatches.h"

#include <algorithm>
#include <optional>

#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLReadOnly.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Memory of one batch, in bytes.
constexpr std::size_t BatchMemory = std::size_t{1} << 20U;

/// Rows of a batch at most.
constexpr std::int64_t MaxBatchSize = 16'384;

}  // namespace

TPostgreSQLBatches::TPostgreSQLBatches(TPostgreSQLSession& Session, std::string What, const std::string& Select,
                                       std::span<const TKvVariant> Parameters, TPostgreSQLSession::TFormat Format,
                                       bool OnlyReads)
    : FSession(Session),
      FWhat(std::move(What)),
      FNumber(Session.NextCursorNumber()),
      FName(TPostgreSQLSession::CursorName(FNumber)),
      FTransaction(Session.TransactionNumber()),
      FFormat(Format),
      FOnlyReads(OnlyReads) {
  FSession.Query(FWhat, "DECLARE " + FName + " NO SCROLL CURSOR FOR " + Select, Parameters,
                 TPostgreSQLSession::TFormat::Text);
}

TPostgreSQLBatches::~TPostgreSQLBatches() {
  if (FSession.InTransaction() && FSession.TransactionNumber() == FTransaction) FSession.CloseLater(FNumber);
}

void TPostgreSQLBatches::Fetch() {
  std::optional<TPostgreSQLReadOnly> Part;
  if (FOnlyReads) Part.emplace(FSession, FWhat);
  FBatch = FSession.Query(FWhat, Format("FETCH FORWARD %d FROM %s", FBatchSize, FName), {}, FFormat);
  if (Part) Part->Keep();
  FRow = 0;
  FRowCount = FBatch.RowCount();
  FEnded = FRowCount < FBatchSize;
  // As many rows as fit, by those that came; a few at a time, since the next ones may be longer.
  const std::size_t PerRow = PQresultMemorySize(FBatch.Handle()) / static_cast<std::size_t>(std::max(FRowCount, 1)) + 1;
  const auto Fitting = static_cast<std::int64_t>(BatchMemory / PerRow);
  FBatchSize =
      static_cast<int>(std::clamp<std::int64_t>(Fitting, 1, std::min<std::int64_t>(MaxBatchSize, 2L * FBatchSize)));
}

bool TPostgreSQLBatches::Next() {
  if (FRow == FRowCount) {
    if (!FEnded) Fetch();
    if (FRow == FRowCount) return false;
  }
  ++FRow;
  return true;
}

}  // namespace velkrund
