// The statements half of TPostgreSQLSession.

#include <libpq-fe.h>

#include "standalone/drivers/postgresql/PostgreSQLParameters.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// What begins a message about a statement that is not the driver's own.
constexpr std::string_view ExecutionFailed = "Cannot execute a statement";

/// Whether a statement with this tag tells how many rows it has changed.
bool CountsChanges(std::string_view Tag) {
  for (const std::string_view Word : {"INSERT ", "UPDATE ", "DELETE ", "MERGE "})
    if (Tag.starts_with(Word)) return true;
  return false;
}

}  // namespace

TPostgreSQLResult TPostgreSQLSession::Run(const std::string& Statement, std::initializer_list<const char*> Parameters,
                                          TFormat Format, bool MayStop) {
  FWait.Begin(MayStop);
  if (PQsendQueryParams(Handle(), Statement.c_str(), static_cast<int>(Parameters.size()), nullptr,
                        std::data(Parameters), nullptr, nullptr, Format == TFormat::Binary ? 1 : 0) == 0)
    return TPostgreSQLResult();
  return Answer();
}

pg_result* TPostgreSQLSession::NextResult() {
  FWait.ForAnswer(Handle());
  return PQgetResult(Handle());
}

/// The first error, else the last answer; with a COPY, whose data are still to come, that.
TPostgreSQLResult TPostgreSQLSession::Answer() {
  TPostgreSQLResult Last;
  while (PGresult* Next = NextResult()) {
    TPostgreSQLResult Result(Next);
    if (!Last.Handle() || !Last.IsError()) Last = std::move(Result);
    const ExecStatusType Status = PQresultStatus(Next);
    if (Status == PGRES_COPY_IN || Status == PGRES_COPY_OUT) break;
  }
  NoteTransaction();
  return Last;
}

TPostgreSQLResult TPostgreSQLSession::Query(std::string_view What, const std::string& Statement,
                                            std::initializer_list<const char*> Parameters, TFormat Format) {
  Prepare(What);
  TPostgreSQLResult Result = Run(Statement, Parameters, Format);
  if (!Result.Handle() || Result.IsError()) Raise(What, Result);
  return Result;
}

void TPostgreSQLSession::Send(std::string_view What, const std::string& Statement,
                              std::span<const TKvVariant> Parameters, TFormat Format) {
  if (Statement.find('\0') != std::string::npos)
    throw EDatabaseError(velkrund::Format("%s: it holds a character U+0000", What));
  const TPostgreSQLParameters Texts(Parameters, *FCodePage);
  Prepare(What);
  FWait.Begin(true);
  if (PQsendQueryParams(Handle(), Statement.c_str(), Texts.Count(), Texts.Types(), Texts.Values(), Texts.Lengths(),
                        Texts.Formats(), Format == TFormat::Binary ? 1 : 0) == 0)
    Raise(What, TPostgreSQLResult(), Statement);
}

std::int64_t TPostgreSQLSession::Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) {
  Send(ExecutionFailed, Statement, Parameters, TFormat::Text);
  PQsetSingleRowMode(Handle());
  const TPostgreSQLResult Result = DropRows(ExecutionFailed, Statement);
  return CountsChanges(Result.Tag()) ? Result.TagCount() : 0;
}

TPostgreSQLResult TPostgreSQLSession::Ask(const std::string& Statement, std::span<const TKvVariant> Parameters) {
  Send(ExecutionFailed, Statement, Parameters, TFormat::Binary);
  TPostgreSQLResult Result = Answer();
  if (!Result.Handle() || Result.IsError()) Raise(ExecutionFailed, Result, Statement);
  return Result;
}

TPostgreSQLResult TPostgreSQLSession::DropRows(std::string_view What, const std::string& Statement) {
  TPostgreSQLResult Last;
  bool IsCopy = false;
  while (PGresult* Next = NextResult()) {
    TPostgreSQLResult Result(Next);
    const ExecStatusType Status = PQresultStatus(Next);
    if (Status == PGRES_COPY_IN) PQputCopyEnd(Handle(), "not a statement to execute");
    if (Status == PGRES_COPY_OUT)
      for (char* Row = nullptr; PQgetCopyData(Handle(), &Row, 0) > 0;) PQfreemem(Row);
    IsCopy = IsCopy || Status == PGRES_COPY_IN || Status == PGRES_COPY_OUT;
    if (!Last.Handle() || !Last.IsError()) Last = std::move(Result);
  }
  NoteTransaction();
  if (IsCopy && !IsLost())
    throw EDatabaseError(Format("%s: it copies between the database and its caller; statement: %s", What, Statement));
  // The one thing that is an error of syntax before the server has looked at a word of it.
  if (Last.Diagnostic(PG_DIAG_SQLSTATE) == "42601" && Last.Diagnostic(PG_DIAG_STATEMENT_POSITION).empty() &&
      Last.Diagnostic(PG_DIAG_SOURCE_FUNCTION) == "exec_parse_message")
    throw EDatabaseError(Format("Cannot execute more than one statement at once: %s", Statement));
  if (!Last.Handle() || Last.IsError()) Raise(What, Last, Statement);
  if (PQresultStatus(Last.Handle()) == PGRES_EMPTY_QUERY) throw EDatabaseError(Format("%s: it is empty", What));
  return Last;
}

void TPostgreSQLSession::StartCopy(std::string_view What, const std::string& Statement) {
  const TPostgreSQLResult Result = Run(Statement, {}, TFormat::Text);
  const ExecStatusType Status = PQresultStatus(Result.Handle());
  if (Status != PGRES_COPY_IN && Status != PGRES_COPY_OUT) Raise(What, Result, Statement);
  // So that nothing waits inside the client library.
  if (Status == PGRES_COPY_IN) PQsetnonblocking(Handle(), 1);
}

bool TPostgreSQLSession::SendRows(std::string_view Rows) {
  if (PQputCopyData(Handle(), Rows.data(), static_cast<int>(Rows.size())) != 1) {
    PQsetnonblocking(Handle(), 0);
    return false;
  }
  FWait.ForRoom(Handle());
  return true;
}

void TPostgreSQLSession::EndRows(const char* Reason) {
  PQputCopyEnd(Handle(), Reason);
  FWait.ForRoom(Handle());
  PQsetnonblocking(Handle(), 0);
}

TPostgreSQLResult TPostgreSQLSession::Drain() {
  TPostgreSQLResult Last;
  while (PGresult* Next = NextResult()) {
    TPostgreSQLResult Result(Next);
    // Copying that nobody goes on with would be offered again for ever.
    if (PQresultStatus(Next) == PGRES_COPY_IN) PQputCopyEnd(Handle(), "dropped");
    if (PQresultStatus(Next) == PGRES_COPY_OUT)
      for (char* Row = nullptr; PQgetCopyData(Handle(), &Row, 0) > 0;) PQfreemem(Row);
    if (!Last.Handle() || !Last.IsError()) Last = std::move(Result);
  }
  NoteTransaction();
  return Last;
}

}  // namespace velkrund
