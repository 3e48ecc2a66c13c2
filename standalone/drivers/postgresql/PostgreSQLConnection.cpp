#include "standalone/drivers/postgresql/PostgreSQLConnection.h"

#include <libpq-fe.h>

#include "standalone/drivers/ReadingThread.h"
#include "standalone/drivers/postgresql/PostgreSQLCursor.h"
#include "standalone/drivers/postgresql/PostgreSQLRoutineSurroundings.h"
#include "standalone/drivers/postgresql/PostgreSQLSafeguards.h"
#include "standalone/drivers/postgresql/PostgreSQLSurroundings.h"

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
  Result.LocksTables = true;
  Result.TableSizes = true;
  Result.Generators = true;
  Result.Procedures = true;
  Result.Threads = PQisthreadsafe() != 0;
  Result.RedefinesViews = true;
  Result.EnforcesForeignKeys = Session.ChecksReferences();
  return Result;
}

}  // namespace

TPostgreSQLConnection::TPostgreSQLConnection(const std::string& ConnectionInfo, const std::string& ShownName,
                                             const TConnectOptions& Options)
    : FSession(ConnectionInfo, ShownName, TReadingThread::WithCallersCalls(Options)),
      FCapabilities(CapabilitiesOf(FSession)),
      FSequences(FSession, [Warn = Options.Warn](const std::string& Text) {
        if (Warn) Warn(Text);
      }) {}

void TPostgreSQLConnection::Begin(TIsolationLevel Level) { FSession.Begin(LevelWords(Level)); }

std::unique_ptr<TSafeguards> TPostgreSQLConnection::Safeguards(TLoadNeeds Needs) {
  return std::make_unique<TPostgreSQLSafeguards>(FSession, std::move(Needs));
}

std::unique_ptr<TSurroundings> TPostgreSQLConnection::Surroundings(const TTableInfo& Object, TRenamedFields Renamed) {
  return std::make_unique<TPostgreSQLSurroundings>(FSession, Object, std::move(Renamed));
}

std::unique_ptr<TSurroundings> TPostgreSQLConnection::SurroundingsOfProcedure(const TTableInfo& Procedure) {
  return std::make_unique<TPostgreSQLRoutineSurroundings>(FSession, Procedure);
}

void TPostgreSQLConnection::Commit() {
  FSequences.Move();
  FSession.Commit();
}

void TPostgreSQLConnection::Rollback() {
  FSequences.Rollback();
  FSession.Rollback();
}

void TPostgreSQLConnection::SetSavepoint(int Number) {
  FSession.SetSavepoint(Number);
  FSequences.SetSavepoint(Number);
}

void TPostgreSQLConnection::ReleaseSavepoint(int Number) {
  FSession.ReleaseSavepoint(Number);
  FSequences.ReleaseSavepoint(Number);
}

void TPostgreSQLConnection::RollbackToSavepoint(int Number) {
  FSequences.RollbackToSavepoint(Number);
  FSession.RollbackToSavepoint(Number);
}

std::int64_t TPostgreSQLConnection::Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) {
  return FSession.Execute(Statement, Parameters);
}

std::unique_ptr<TCursor> TPostgreSQLConnection::Query(const std::string& Statement,
                                                      std::span<const TKvVariant> Parameters) {
  return std::make_unique<TPostgreSQLQueryCursor>(FSession, Statement, Parameters);
}

}  // namespace velkrund
