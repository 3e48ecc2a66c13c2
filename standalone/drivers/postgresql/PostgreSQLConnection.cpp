#include "standalone/drivers/postgresql/PostgreSQLConnection.h"

#include "standalone/drivers/ConnectionThread.h"
#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLCursor.h"
#include "standalone/drivers/postgresql/PostgreSQLRoutineSurroundings.h"
#include "standalone/drivers/postgresql/PostgreSQLSafeguards.h"
#include "standalone/drivers/postgresql/PostgreSQLSurroundings.h"
#include "velkrund/platform/ormtools/Exceptions.h"

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

/// The number by which the server knows a lock. Other programs may lock numbers, too; two names that should meet in one
/// only wait for each other. Made as FNV-1a, since every version of this program has to come to the same.
std::int64_t LockNumber(std::string_view Name) {
  std::uint64_t Hash = 0xCBF2'9CE4'8422'2325;
  for (const std::string_view Part : {std::string_view("velkrund "), Name})
    for (const char C : Part) Hash = (Hash ^ static_cast<unsigned char>(C)) * 0x100'0000'01B3;
  return static_cast<std::int64_t>(Hash);
}

}  // namespace

TPostgreSQLConnection::TPostgreSQLConnection(TPostgreSQLAddress Address, const TConnectOptions& Options)
    : FSession(std::move(Address), TConnectionThread::WithCallersCalls(Options)),
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

void TPostgreSQLConnection::LockName(std::string_view Name, const std::string& What) {
  if (FCapabilities.ReadOnly)
    throw EDatabaseError(What + ": the database is opened for reading only", {.Code = TErrorCode::DatabaseReadOnly});
  const std::string Number = std::to_string(LockNumber(Name));
  FSession.Query(What, "SELECT pg_catalog.pg_advisory_xact_lock($1::pg_catalog.int8)", {Number.c_str()});
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
