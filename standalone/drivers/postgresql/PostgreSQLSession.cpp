#include "standalone/drivers/postgresql/PostgreSQLSession.h"

#include <algorithm>
#include <utility>

#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLMoment.h"
#include "standalone/drivers/postgresql/PostgreSQLParameters.h"
#include "standalone/drivers/postgresql/PostgreSQLPipeline.h"
#include "standalone/drivers/postgresql/PostgreSQLSettings.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// The first version whose catalogue tells generated columns.
constexpr int OldestServer = 120'000;

/// What the server says of a statement that was told to stop.
constexpr std::string_view StoppedCode = "57014";

/// What the server says where it knows no statement by the name.
constexpr std::string_view UnknownStatementCode = "26000";

/// What begins a message about a statement that is not the driver's own.
constexpr std::string_view ExecutionFailed = "Cannot execute a statement";

/// Whether a statement with this tag tells how many rows it has changed.
bool CountsChanges(std::string_view Tag) {
  for (const std::string_view Word : {"INSERT ", "UPDATE ", "DELETE ", "MERGE "})
    if (Tag.starts_with(Word)) return true;
  return false;
}

}  // namespace

TPostgreSQLSession::TPostgreSQLSession(TPostgreSQLAddress Address, const TConnectOptions& Options)
    : FAddress(std::move(Address)),
      FOptions(Options),
      // For the server 0 means to wait for ever.
      FLockTimeout(
          std::to_string(std::clamp<std::chrono::milliseconds::rep>(Options.BusyTime.count(), 1, 1'000'000'000))),
      FWait(Options.Canceled, [this] {
        if (FOptions.Tell) FOptions.Tell(LText("M_Velkrund_ComUtils_WaitingForCommit").Local());
      }) {
  Open();
}

TPostgreSQLSession::~TPostgreSQLSession() = default;

void TPostgreSQLSession::Open() {
  FConnection = ConnectToPostgreSQL(FAddress, FOptions);
  FRepeated.Forget();
  FWait.Renew();
  PQsetNoticeReceiver(Handle(), TakeNotice, this);
  SetUp();
}

void TPostgreSQLSession::TakeNotice(void* Session, const pg_result* Notice) noexcept {
  const auto& Trace = static_cast<TPostgreSQLSession*>(Session)->FOptions.Trace;
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
  // A server that takes a connection and then says nothing has not been connected to.
  const TPostgreSQLResult Result = Run(PostgreSQLSettingsStatement(), {FLockTimeout.c_str()}, TFormat::Text,
                                       TAtWish::Stop, PostgreSQLConnectTimeout(Handle()));
  if (!Result.Handle() || Result.IsError()) Raise(About("open"), Result);
  FDialect = TPostgreSQLDialect(Result.Copy(0, CurrentSchemaColumn));
  const std::string_view Version = Result.Text(0, ServerVersionColumn);
  FServerVersion = Version.substr(0, Version.find(' '));
  FReadOnly = Result.Boolean(0, ReadOnlyColumn);
  FChecksReferences = Result.Text(0, RoleColumn) != "replica";
  FSettingsInDoubt = false;
  // Outside of a transaction an error changes nothing.
  if (!Run(PostgreSQLCheckClientStatement, {}, TFormat::Text).Handle()) Raise(About("open"), TPostgreSQLResult());
}

void TPostgreSQLSession::RestoreSettings() {
  if (!std::exchange(FSettingsInDoubt, false)) return;
  Query(About("go on in"), PostgreSQLSettingsStatement(), {FLockTimeout.c_str()});
}

std::string TPostgreSQLSession::About(std::string_view Failed) const {
  return Format("Cannot %s the database '%s'", Failed, FAddress.ShownName);
}

bool TPostgreSQLSession::IsLost() const { return PQstatus(Handle()) != CONNECTION_OK; }

void TPostgreSQLSession::Raise(std::string_view What, const TPostgreSQLResult& Result, std::string_view Statement,
                               const TErrorInfo& Place) {
  if (FWait.LetGo() && !FWait.TookTooLong())
    throw EAbort(
        Format("%s: cancelled; the server did not answer in time, and the connection was closed: the server "
               "undoes what was begun when it notices",
               What));
  if (FWait.Stopped() && Result.Diagnostic(PG_DIAG_SQLSTATE) == StoppedCode)
    throw EAbort(Format("%s: cancelled while the server was at it", What));
  if (FWait.TookTooLong())
    throw EDatabaseError(Format("%s: the server does not answer", What), {.Code = TErrorCode::Connection});
  std::string Message = PostgreSQLErrorText(What, Handle(), Result, Statement);
  if (IsLost()) {
    Message += "; the connection is lost";
    if (FTransactionOpen) Message += ", and the server has undone the transaction";
  }
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
  if (!Open) ForgetCursors(0);
  if (!Open) FMoment.reset();
  FTransactionOpen = Open;
}

void TPostgreSQLSession::CheckAlive(std::string_view What) {
  if (!FTransactionOpen && !IsLost()) {
    // A server that has ended the session while nobody asked has left a word and a closed connection behind it.
    if (PQconsumeInput(Handle()) == 1 && PQisBusy(Handle()) == 0) PQconsumeInput(Handle());
  }
  if (!IsLost()) return;
  if (FTransactionOpen && FWait.LetGo()) Raise(What, TPostgreSQLResult());
  if (FTransactionOpen)
    throw EDatabaseError(Format("%s: the connection to the database '%s' is lost, and the server has undone the "
                                "transaction",
                                What, FAddress.ShownName),
                         {.Code = TErrorCode::Connection});
  try {
    Open();
  } catch (EDatabaseError& Error) {
    throw EDatabaseError(Format("%s, to which the connection was lost: %s", What, Error.what()), Error.Info());
  }
}

void TPostgreSQLSession::Prepare(std::string_view What) {
  if (FStream) FStream->GiveWay(What);
  CheckAlive(What);
  for (const std::int64_t Number : std::exchange(FToClose, {})) {
    // In a transaction that has failed the server refuses it; the cursor is gone with the transaction.
    if (PQtransactionStatus(Handle()) == PQTRANS_INTRANS) Run("CLOSE " + CursorName(Number), {}, TFormat::Text);
    FCursors.erase(Number);
  }
  CatchUpWithMarks(What);
}

std::int64_t TPostgreSQLSession::NextCursorNumber() {
  FCursors.insert(++FCursorNumber);
  return FCursorNumber;
}

std::string TPostgreSQLSession::CursorName(std::int64_t Number) { return velkrund::Format("velkrund_%d", Number); }

void TPostgreSQLSession::CloseLater(std::int64_t Number) {
  if (FCursors.contains(Number)) FToClose.push_back(Number);
}

TPostgreSQLResult TPostgreSQLSession::Run(const std::string& Statement, std::initializer_list<const char*> Parameters,
                                          TFormat Format, TAtWish AtWish, std::chrono::milliseconds Limit) {
  FWait.Begin(Handle(), AtWish, Limit);
  if (PQsendQueryParams(Handle(), Statement.c_str(), static_cast<int>(Parameters.size()), nullptr,
                        std::data(Parameters), nullptr, nullptr, Format == TFormat::Binary ? 1 : 0) == 0)
    return TPostgreSQLResult();
  return Answer();
}

TPostgreSQLResult TPostgreSQLSession::RunAgain(const std::string& Name, const std::string& Statement,
                                               std::initializer_list<const char*> Parameters, TFormat Format) {
  if (!FRepeated.IsReady(Name)) {
    FWait.Begin(Handle(), TAtWish::Stop);
    if (PQsendPrepare(Handle(), Name.c_str(), Statement.c_str(), 0, nullptr) == 0) return TPostgreSQLResult();
    TPostgreSQLResult Result = Answer();
    if (!Result.Handle() || Result.IsError()) return Result;
    FRepeated.NoteReady(Name);
  }
  FWait.Begin(Handle(), TAtWish::Stop);
  if (PQsendQueryPrepared(Handle(), Name.c_str(), static_cast<int>(Parameters.size()), std::data(Parameters), nullptr,
                          nullptr, Format == TFormat::Binary ? 1 : 0) == 0)
    return TPostgreSQLResult();
  TPostgreSQLResult Result = Answer();
  if (!Result.Handle() || Result.Diagnostic(PG_DIAG_SQLSTATE) != UnknownStatementCode) return Result;
  // Somebody's function has thrown them away.
  FRepeated.Forget();
  return FTransactionOpen ? std::move(Result) : Run(Statement, Parameters, Format);
}

/// The first error, else the last answer; with a COPY, whose data are still to come, that.
TPostgreSQLResult TPostgreSQLSession::Answer() {
  FWait.ForRoom(Handle());
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
  const std::string* const Name = Parameters.size() > 0 ? FRepeated.NameOf(Statement) : nullptr;
  TPostgreSQLResult Result = Name ? RunAgain(*Name, Statement, Parameters, Format) : Run(Statement, Parameters, Format);
  if (!Result.Handle() || Result.IsError()) Raise(What, Result);
  return Result;
}

TPostgreSQLResult TPostgreSQLSession::Query(std::string_view What, const std::string& Statement,
                                            std::span<const TKvVariant> Parameters, TFormat Format) {
  Send(What, Statement, Parameters, Format);
  TPostgreSQLResult Result = Answer();
  if (!Result.Handle() || Result.IsError()) Raise(What, Result);
  return Result;
}

TPostgreSQLResult TPostgreSQLSession::Describe(std::string_view What, const std::string& Statement) {
  Prepare(What);
  FWait.Begin(Handle(), TAtWish::Stop);
  TPostgreSQLResult Result;
  if (PQsendPrepare(Handle(), "", Statement.c_str(), 0, nullptr) != 0) Result = Answer();
  if (!Result.Handle() || Result.IsError()) Raise(What, Result);
  Result = PQsendDescribePrepared(Handle(), "") != 0 ? Answer() : TPostgreSQLResult();
  if (!Result.Handle() || Result.IsError()) Raise(What, Result);
  return Result;
}

void TPostgreSQLSession::Send(std::string_view What, const std::string& Statement,
                              std::span<const TKvVariant> Parameters, TFormat Format) {
  if (Statement.find('\0') != std::string::npos)
    throw EDatabaseError(velkrund::Format("%s: it holds a character U+0000", What));
  const TPostgreSQLParameters Texts(Parameters, *FOptions.CodePage);
  Prepare(What);
  FWait.Begin(Handle(), TAtWish::Stop);
  if (PQsendQueryParams(Handle(), Statement.c_str(), Texts.Count(), Texts.Types(), Texts.Values(), Texts.Lengths(),
                        Texts.Formats(), Format == TFormat::Binary ? 1 : 0) == 0)
    Raise(What, TPostgreSQLResult(), Statement);
}

std::int64_t TPostgreSQLSession::Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) {
  Send(ExecutionFailed, Statement, Parameters, TFormat::Text);
  PQsetSingleRowMode(Handle());
  FWait.ForRoom(Handle());
  const TPostgreSQLResult Result = LastAnswer(ExecutionFailed, Statement);
  FSettingsInDoubt = true;
  FMoment.reset();
  if (Result.Tag().starts_with("DEALLOCATE") || Result.Tag().starts_with("DISCARD")) FRepeated.Forget();
  return CountsChanges(Result.Tag()) ? Result.TagCount() : 0;
}

TPostgreSQLResult TPostgreSQLSession::Ask(const std::string& Statement, std::span<const TKvVariant> Parameters) {
  Send(ExecutionFailed, Statement, Parameters, TFormat::Binary);
  TPostgreSQLResult Result = Answer();
  if (!Result.Handle() || Result.IsError()) Raise(ExecutionFailed, Result, Statement);
  return Result;
}

TPostgreSQLResult TPostgreSQLSession::LastAnswer(std::string_view What, const std::string& Statement) {
  TPostgreSQLResult Last;
  bool IsCopy = false;
  while (PGresult* Next = NextResult()) {
    TPostgreSQLResult Result(Next);
    const ExecStatusType Status = PQresultStatus(Next);
    if (Status == PGRES_COPY_IN) PQputCopyEnd(Handle(), "not a statement to execute");
    if (Status == PGRES_COPY_OUT) DropData();
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

TPostgreSQLResult TPostgreSQLSession::ExecuteForEach(const std::string& Statement, const std::vector<unsigned>& Types,
                                                     const std::vector<const char*>& Values,
                                                     const std::function<void(const TPostgreSQLResult& Answer)>& Took) {
  FWait.Begin(Handle(), TAtWish::Stop);
  TPostgreSQLResult Failed = RunPostgreSQLPipeline(Handle(), FWait, Statement, Types, Values, Took);
  NoteTransaction();
  return Failed;
}

}  // namespace velkrund
