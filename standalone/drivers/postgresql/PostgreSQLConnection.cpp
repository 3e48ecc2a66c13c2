#include "standalone/drivers/postgresql/PostgreSQLConnection.h"

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

TCapabilities CapabilitiesOf(const TPostgreSQLSession& Session) {
  TCapabilities Result;
  Result.ReadOnly = Session.ReadOnly();
  Result.TransactionalSchema = true;
  Result.NotANumber = true;
  Result.NegativeZero = true;
  Result.TableSizes = true;
  Result.EnforcesForeignKeys = true;
  return Result;
}

}  // namespace

TPostgreSQLConnection::TPostgreSQLConnection(const std::string& ConnectionInfo, const std::string& ShownName,
                                             const TConnectOptions& Options)
    : FSession(ConnectionInfo, ShownName, Options), FCapabilities(CapabilitiesOf(FSession)) {}

void TPostgreSQLConnection::Begin(TIsolationLevel Level) { FSession.Begin(LevelWords(Level)); }

std::int64_t TPostgreSQLConnection::Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) {
  return FSession.Execute(Statement, Parameters);
}

std::unique_ptr<TCursor> TPostgreSQLConnection::Query(const std::string& Statement,
                                                      std::span<const TKvVariant> Parameters) {
  return std::make_unique<TPostgreSQLQueryCursor>(FSession, Statement, Parameters);
}

}  // namespace velkrund
