// The data of a COPY, during which the server takes no other statement.

#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

void TPostgreSQLSession::Occupy(TPostgreSQLStream& Stream, std::string_view What) {
  Prepare(What);
  FStream = &Stream;
}

void TPostgreSQLSession::Vacate(const TPostgreSQLStream& Stream) {
  if (FStream == &Stream) FStream = nullptr;
}

void TPostgreSQLSession::StartCopy(std::string_view What, const std::string& Statement) {
  const TPostgreSQLResult Result = Run(Statement, {}, TFormat::Text);
  const ExecStatusType Status = PQresultStatus(Result.Handle());
  if (Status != PGRES_COPY_IN && Status != PGRES_COPY_OUT) Raise(What, Result, {}, {.Statement = Statement});
}

bool TPostgreSQLSession::SendRows(std::string_view Rows) {
  if (PQputCopyData(Handle(), Rows.data(), static_cast<int>(Rows.size())) != 1) return false;
  FWait.ForRoom(Handle());
  return !IsLost();
}

void TPostgreSQLSession::EndRows(const char* Reason) {
  PQputCopyEnd(Handle(), Reason);
  FWait.ForRoom(Handle());
}

void TPostgreSQLSession::DropData() noexcept {
  for (char* Row = nullptr; FWait.ForRow(Handle(), Row) > 0;) PQfreemem(Row);
}

void TPostgreSQLSession::DropRows() noexcept {
  FWait.Stop(Handle());
  DropData();
  Drain();
}

TPostgreSQLResult TPostgreSQLSession::Drain() {
  TPostgreSQLResult Last;
  while (PGresult* Next = NextResult()) {
    TPostgreSQLResult Result(Next);
    // Copying that nobody goes on with would be offered again for ever.
    if (PQresultStatus(Next) == PGRES_COPY_IN) PQputCopyEnd(Handle(), "dropped");
    if (PQresultStatus(Next) == PGRES_COPY_OUT) DropData();
    if (!Last.Handle() || !Last.IsError()) Last = std::move(Result);
  }
  NoteTransaction();
  return Last;
}

}  // namespace velkrund
