#include "standalone/drivers/postgresql/PostgreSQLRowAccess.h"

#include "standalone/drivers/postgresql/PostgreSQLAppender.h"
#include "standalone/drivers/postgresql/PostgreSQLCursor.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

std::unique_ptr<TCursor> TPostgreSQLRowAccess::OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                                          std::span<const int> Order) {
  // A COPY is the quickest, but holds the connection.
  const bool Whole = FSession.OnlyReads() || !FSession.InTransaction();
  return OpenPostgreSQLCursor(FSession, Table, Columns, Order,
                              Whole ? TPostgreSQLReading::Copy : TPostgreSQLReading::InBatches);
}

std::unique_ptr<TBulkAppender> TPostgreSQLRowAccess::OpenAppender(const TTableDescription& Table,
                                                                  std::span<const int> Columns,
                                                                  const TAppendOptions& Options) {
  return std::make_unique<TPostgreSQLAppender>(FSession, FSequences, Table, Columns, Options);
}

bool TPostgreSQLRowAccess::CopiesExactly(const TTableDescription&, const TTableDescription&,
                                         std::span<const TColumnPair>) {
  return false;
}

std::int64_t TPostgreSQLRowAccess::CopyRows(const TTableDescription&, const TTableDescription&,
                                            std::span<const TColumnPair>) {
  throw EDatabaseError("rows are not copied yet");
}

}  // namespace velkrund
