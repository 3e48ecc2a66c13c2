#include "standalone/drivers/postgresql/PostgreSQLConnection.h"

#include "standalone/drivers/postgresql/PostgreSQLAppender.h"
#include "standalone/drivers/postgresql/PostgreSQLCursor.h"

namespace velkrund {
namespace {

std::string_view LevelWords(TIsolationLevel Level) {
  switch (Level) {
    case TIsolationLevel::ReadUncommitted:
      return "READ UNCOMMITTED";
    case TIsolationLevel::ReadCommitted:
      return "READ COMMITTED";
    case TIsolationLevel::RepeatableRead:
      return "REPEATABLE READ";
    case TIsolationLevel::Serializable:
      break;
  }
  return "SERIALIZABLE";
}

}  // namespace

TPostgreSQLConnection::TPostgreSQLConnection(const std::string& ConnectionInfo, const std::string& ShownName,
                                             const TConnectOptions& Options)
    : FSession(ConnectionInfo, ShownName, Options) {
  FCapabilities.ReadOnly = FSession.ReadOnly();
  FCapabilities.TransactionalSchema = true;
  FCapabilities.NotANumber = true;
  FCapabilities.NegativeZero = true;
  FCapabilities.TableSizes = true;
  FCapabilities.EnforcesForeignKeys = true;
}

void TPostgreSQLConnection::Begin(TIsolationLevel Level) {
  FSession.Begin(LevelWords(Level));
  FReading = false;
}

void TPostgreSQLConnection::BeginReading() {
  // Not READ ONLY: a view may call a function that writes, a log of who has read it for example.
  Begin(TIsolationLevel::RepeatableRead);
  FReading = true;
}

std::int64_t TPostgreSQLConnection::Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) {
  return FSession.Execute(Statement, Parameters);
}

std::unique_ptr<TCursor> TPostgreSQLConnection::Query(const std::string& Statement,
                                                      std::span<const TKvVariant> Parameters) {
  return std::make_unique<TPostgreSQLQueryCursor>(FSession, Statement, Parameters);
}

std::unique_ptr<TCursor> TPostgreSQLConnection::OpenCursor(const TTableDescription& Table,
                                                           std::span<const int> Columns) {
  // A COPY is the quickest, but holds the connection.
  const bool Whole = FReading || !FSession.InTransaction();
  return OpenPostgreSQLCursor(FSession, Table, Columns,
                              Whole ? TPostgreSQLReading::Copy : TPostgreSQLReading::InBatches);
}

std::unique_ptr<TBulkAppender> TPostgreSQLConnection::OpenAppender(const TTableDescription& Table,
                                                                   std::span<const int> Columns,
                                                                   const TAppendOptions& Options) {
  return std::make_unique<TPostgreSQLAppender>(FSession, Table, Columns, Options);
}

}  // namespace velkrund
