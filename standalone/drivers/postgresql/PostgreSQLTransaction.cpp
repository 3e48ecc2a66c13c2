// The transaction of a session, and the marks within it.

#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLMoment.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "standalone/drivers/postgresql/PostgreSQLSettings.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// What begins a message behind About.
constexpr std::string_view StartFailed = "start a transaction in";

}  // namespace

void TPostgreSQLSession::Begin(std::string_view Level) {
  Start(Level, false);
  Query(About(StartFailed), PostgreSQLWritingStatement);
}

void TPostgreSQLSession::Start(std::string_view Level, bool OnlyReads) {
  const std::string What = About(StartFailed);
  if (FStream) FStream->GiveWay(What);
  if (FTransactionOpen && !IsLost()) throw EDatabaseError(What + ": one is open");
  FMarks.Forget();
  Query(What, Format("BEGIN ISOLATION LEVEL %s", Level));
  FOnlyReads = OnlyReads;
  FMoment.reset();
}

void TPostgreSQLSession::BeginReading() {
  // Not READ ONLY: a view may call a function that writes, a log of who has read it for example.
  Start("REPEATABLE READ", true);
  Query(About(StartFailed), "SAVEPOINT velkrund_reading");
}

TPostgreSQLMoment* TPostgreSQLSession::Moment() {
  if (!FTransactionOpen || !FOnlyReads) return nullptr;
  if (!FMoment) FMoment = std::make_unique<TPostgreSQLMoment>();
  return FMoment.get();
}

void TPostgreSQLSession::LetGoOfLocks(std::string_view What) {
  if (FTransactionOpen && FOnlyReads) Query(What, "ROLLBACK TO SAVEPOINT velkrund_reading");
}

void TPostgreSQLSession::Commit() {
  const std::string What = About("commit the transaction in");
  if (!FTransactionOpen) throw EDatabaseError(What + ": no transaction is open");
  FMarks.Forget();
  Prepare(What);
  const TPostgreSQLResult Result = Run("COMMIT", {}, TFormat::Text, TAtWish::Commit);
  if (IsLost()) {
    FTransactionOpen = false;
    throw EDatabaseError(
        (FWait.LetGo() ? What + ": the server does not answer" : PostgreSQLErrorText(What, Handle(), Result)) +
            "; the connection was lost before the server answered: whether the transaction is committed "
            "is not known",
        {.Code = TErrorCode::Connection});
  }
  if (!Result.Handle() || Result.IsError()) Raise(What, Result);
  if (Result.Tag() == "ROLLBACK") throw EDatabaseError(What + ": the server has rolled it back after an error");
}

void TPostgreSQLSession::Rollback() {
  FMarks.Forget();
  if (!FTransactionOpen) return;
  if (FStream) FStream->Abandon();
  const TPostgreSQLResult Result = IsLost() ? TPostgreSQLResult() : Run("ROLLBACK", {}, TFormat::Text, TAtWish::Finish);
  if (IsLost()) {
    // The server has rolled back by itself.
    FTransactionOpen = false;
    return;
  }
  if (!Result.Handle() || Result.IsError()) Raise(About("roll the transaction back in"), Result);
}

void TPostgreSQLSession::SetSavepoint(int Number) {
  const std::string What = About("go on with the transaction in");
  // What is under way was begun before the mark.
  if (FStream) Prepare(What);
  const bool Waits = MarksMayWait();
  if (!Waits) Query(What, "SAVEPOINT " + SavepointName(Number));
  FMarks.Begin(Number, {FCursorNumber, Waits ? 0 : Number});
}

void TPostgreSQLSession::ReleaseSavepoint(int Number) {
  const std::string What = About("go on with the transaction in");
  // What becomes of it belongs to the part.
  if (FStream) Prepare(What);
  if (MarksMayWait()) return FMarks.End(Number);
  Query(What, "RELEASE SAVEPOINT " + SavepointName(FMarks.Of(Number).Name));
  FMarks.Drop(Number);
}

void TPostgreSQLSession::RollbackToSavepoint(int Number) {
  if (!FTransactionOpen || IsLost()) return;
  // No statement has come behind a mark that the server does not know.
  if (const auto Mark = FMarks.Of(Number); Mark.Name > 0) {
    TakePartBack(SavepointName(Mark.Name), FMarks.IsShared(Number));
    if (IsLost()) return;
    ForgetCursors(Mark.Cursors);
  }
  FMarks.Drop(Number);
}

void TPostgreSQLSession::TakePartBack(const std::string& Mark, bool MarkStays) {
  if (FStream) FStream->Abandon();
  for (const char* Words : {"ROLLBACK TO SAVEPOINT ", "RELEASE SAVEPOINT "}) {
    const TPostgreSQLResult Result = Run(Words + Mark, {}, TFormat::Text, TAtWish::Finish);
    // A connection that is lost here has taken the whole transaction with it; the next statement says so.
    if (IsLost()) return;
    if (!Result.Handle() || Result.IsError()) Raise(About("take a part of the transaction back in"), Result);
    if (MarkStays) return;
  }
}

/// Those with a higher number are gone.
void TPostgreSQLSession::ForgetCursors(std::int64_t Last) {
  FCursors.erase(FCursors.upper_bound(Last), FCursors.end());
  std::erase_if(FToClose, [Last](std::int64_t Number) { return Number > Last; });
}

/// Only where the server would take them: it tells at once that it has undone the transaction.
bool TPostgreSQLSession::MarksMayWait() const {
  return FTransactionOpen && !IsLost() && PQtransactionStatus(Handle()) == PQTRANS_INTRANS;
}

void TPostgreSQLSession::CatchUpWithMarks(std::string_view What) {
  const std::string Statements = FMarks.Due();
  if (Statements.empty()) return;
  FWait.Begin(Handle(), TAtWish::Stop);
  const TPostgreSQLResult Result = PQsendQuery(Handle(), Statements.c_str()) != 0 ? Answer() : TPostgreSQLResult();
  if (!Result.Handle() || Result.IsError()) Raise(What, Result);
  FMarks.NoteDone();
}

}  // namespace velkrund
