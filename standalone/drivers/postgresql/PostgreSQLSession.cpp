#include "standalone/drivers/postgresql/PostgreSQLSession.h"

#include <libpq-fe.h>

#include <algorithm>
#include <utility>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// The first version whose catalogue tells generated columns.
constexpr int OldestServer = 120'000;

/// Texts that depend on settings get one form; rows come in the table's own order, not in that of a scan that another
/// session has begun or that several processes share. Rows that a policy hides are an error, not less rows.
constexpr const char* SetUpStatement =
    "SELECT pg_catalog.set_config('DateStyle', 'ISO, YMD', false), "
    "pg_catalog.set_config('IntervalStyle', 'postgres', false), pg_catalog.set_config('TimeZone', 'UTC', false), "
    "pg_catalog.set_config('extra_float_digits', '3', false), pg_catalog.set_config('bytea_output', 'hex', false), "
    "pg_catalog.set_config('standard_conforming_strings', 'on', false), "
    "pg_catalog.set_config('xmloption', 'content', false), pg_catalog.set_config('array_nulls', 'on', false), "
    "pg_catalog.set_config('synchronize_seqscans', 'off', false), "
    "pg_catalog.set_config('max_parallel_workers_per_gather', '0', false), "
    "pg_catalog.set_config('row_security', 'off', false), pg_catalog.set_config('lock_timeout', $1, false), "
    "pg_catalog.current_schema(), pg_catalog.current_setting('server_version'), "
    "pg_catalog.current_setting('transaction_read_only')::pg_catalog.bool OR pg_catalog.pg_is_in_recovery()";
constexpr int CurrentSchemaColumn = 12;
constexpr int ServerVersionColumn = 13;
constexpr int ReadOnlyColumn = 14;

/// What the server says of a statement that was told to stop.
constexpr std::string_view StoppedCode = "57014";

pg_conn* Connect(const std::string& ConnectionInfo) {
  const char* const Keywords[] = {"dbname", "client_encoding", "fallback_application_name", nullptr};
  const char* const Values[] = {ConnectionInfo.c_str(), "UTF8", "velkrund", nullptr};
  return PQconnectdbParams(Keywords, Values, 1);
}

}  // namespace

void TPostgreSQLSession::TFinish::operator()(pg_conn* Connection) const { PQfinish(Connection); }

TPostgreSQLSession::TPostgreSQLSession(const std::string& ConnectionInfo, std::string ShownName,
                                       const TConnectOptions& Options)
    : FShownName(std::move(ShownName)),
      // For the server 0 means to wait for ever.
      FLockTimeout(
          std::to_string(std::clamp<std::chrono::milliseconds::rep>(Options.BusyTime.count(), 1, 1'000'000'000))),
      FTrace(Options.Trace),
      FCodePage(Options.CodePage),
      FWait(Options.Canceled),
      FConnection(Connect(ConnectionInfo)) {
  if (!FConnection) throw EDatabaseError(About("open") + ": out of memory");
  if (IsLost())
    throw EDatabaseError(PostgreSQLErrorText(About("open"), Handle(), TPostgreSQLResult()),
                         PostgreSQLErrorInfo(TPostgreSQLResult()));
  PQsetNoticeReceiver(Handle(), TakeNotice, this);
  SetUp();
}

void TPostgreSQLSession::TakeNotice(void* Session, const pg_result* Notice) noexcept {
  const auto& Trace = static_cast<TPostgreSQLSession*>(Session)->FTrace;
  if (!Trace) return;
  try {
    const char* Severity = PQresultErrorField(Notice, PG_DIAG_SEVERITY_NONLOCALIZED);
    const bool IsWarning = Severity && std::string_view(Severity) == "WARNING";
    Trace(IsWarning ? TTraceLevel::Info : TTraceLevel::Detail, "From the server: " + PostgreSQLNoticeText(Notice));
  } catch (...) {
    // The client library's code, through which no exception may pass, is the caller.
  }
}

void TPostgreSQLSession::SetUp() {
  if (PQserverVersion(Handle()) < OldestServer)
    throw EDatabaseError(About("open") + ": the server is older than version 12");
  const TPostgreSQLResult Result = Run(SetUpStatement, {FLockTimeout.c_str()}, TFormat::Text);
  if (Result.IsError()) Raise(About("open"), Result);
  FDialect = TPostgreSQLDialect(Result.Copy(0, CurrentSchemaColumn));
  const std::string_view Version = Result.Text(0, ServerVersionColumn);
  FServerVersion = Version.substr(0, Version.find(' '));
  FReadOnly = Result.Boolean(0, ReadOnlyColumn);
}

std::string TPostgreSQLSession::About(std::string_view Failed) const {
  return Format("Cannot %s the database '%s'", Failed, FShownName);
}

bool TPostgreSQLSession::IsLost() const { return PQstatus(Handle()) != CONNECTION_OK; }

void TPostgreSQLSession::Raise(std::string_view What, const TPostgreSQLResult& Result, std::string_view Statement,
                               const TErrorInfo& Place) {
  std::string Message = PostgreSQLErrorText(What, Handle(), Result, Statement);
  if (IsLost()) {
    Message += "; the connection is lost";
    if (FTransactionOpen) Message += ", and the server has undone the transaction";
  }
  if (FWait.Stopped() && Result.Diagnostic(PG_DIAG_SQLSTATE) == StoppedCode)
    throw EAbort(Format("%s: cancelled while the server was at it", What));
  TErrorInfo Info = Place;
  Info.Fill(PostgreSQLErrorInfo(Result, Statement));
  throw EDatabaseError(Message, std::move(Info));
}

void TPostgreSQLSession::NoteTransaction() {
  if (IsLost()) return;
  const PGTransactionStatusType Status = PQtransactionStatus(Handle());
  if (Status != PQTRANS_IDLE && Status != PQTRANS_INTRANS && Status != PQTRANS_INERROR) return;
  const bool Open = Status != PQTRANS_IDLE;
  if (Open && !FTransactionOpen) ++FTransactionNumber;
  if (!Open) FToClose.clear();
  FTransactionOpen = Open;
}

void TPostgreSQLSession::CheckAlive(std::string_view What) {
  if (!FTransactionOpen && !IsLost()) {
    // A server that has ended the session while nobody asked has left a word and a closed connection behind it.
    if (PQconsumeInput(Handle()) == 1 && PQisBusy(Handle()) == 0) PQconsumeInput(Handle());
  }
  if (!IsLost()) return;
  if (FTransactionOpen)
    throw EDatabaseError(Format("%s: the connection to the database '%s' is lost, and the server has undone the "
                                "transaction",
                                What, FShownName),
                         {.Code = TErrorCode::Connection});
  PQreset(Handle());
  if (IsLost())
    throw EDatabaseError(
        PostgreSQLErrorText(Format("%s: %s again", What, About("open")), Handle(), TPostgreSQLResult()),
        {.Code = TErrorCode::Connection});
  SetUp();
}

void TPostgreSQLSession::Prepare(std::string_view What) {
  if (FStream) FStream->GiveWay(What);
  CheckAlive(What);
  for (const std::string& Name : std::exchange(FToClose, {})) {
    const std::string Statement = "CLOSE " + QuoteStandardName(Name);
    // In a transaction that has failed the server refuses it; the cursor is gone with the transaction.
    if (PQtransactionStatus(Handle()) == PQTRANS_INTRANS) Run(Statement, {}, TFormat::Text);
  }
}

void TPostgreSQLSession::Begin(std::string_view Level) {
  const std::string What = About("start a transaction in");
  if (FTransactionOpen && !IsLost()) throw EDatabaseError(What + ": one is open");
  Query(What, Format("BEGIN ISOLATION LEVEL %s", Level));
  FOnlyReads = false;
}

void TPostgreSQLSession::BeginReading() {
  // Not READ ONLY: a view may call a function that writes, a log of who has read it for example.
  Begin("REPEATABLE READ");
  FOnlyReads = true;
}

void TPostgreSQLSession::Commit() {
  const std::string What = About("commit the transaction in");
  if (!FTransactionOpen) throw EDatabaseError(What + ": no transaction is open");
  Prepare(What);
  const TPostgreSQLResult Result = Run("COMMIT", {}, TFormat::Text);
  if (IsLost()) {
    FTransactionOpen = false;
    throw EDatabaseError(
        PostgreSQLErrorText(What, Handle(), Result) +
            "; the connection was lost before the server answered: whether the transaction is committed "
            "is not known",
        {.Code = TErrorCode::Connection});
  }
  if (!Result.Handle() || Result.IsError()) Raise(What, Result);
  if (Result.Tag() == "ROLLBACK") throw EDatabaseError(What + ": the server has rolled it back after an error");
}

void TPostgreSQLSession::Rollback() {
  if (!FTransactionOpen) return;
  if (FStream) FStream->Abandon();
  FToClose.clear();
  const TPostgreSQLResult Result = IsLost() ? TPostgreSQLResult() : Run("ROLLBACK", {}, TFormat::Text, false);
  if (IsLost()) {
    // The server has rolled back by itself.
    FTransactionOpen = false;
    return;
  }
  if (!Result.Handle() || Result.IsError()) Raise(About("roll the transaction back in"), Result);
}

void TPostgreSQLSession::Occupy(TPostgreSQLStream& Stream, std::string_view What) {
  Prepare(What);
  FStream = &Stream;
}

void TPostgreSQLSession::Vacate(const TPostgreSQLStream& Stream) {
  if (FStream == &Stream) FStream = nullptr;
}

void TPostgreSQLSession::CloseLater(std::string CursorName) { FToClose.push_back(std::move(CursorName)); }

}  // namespace velkrund
