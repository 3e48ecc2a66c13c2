#pragma once

#include <initializer_list>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/Driver.h"
#include "standalone/drivers/postgresql/PostgreSQLConnecting.h"
#include "standalone/drivers/postgresql/PostgreSQLDialect.h"
#include "standalone/drivers/postgresql/PostgreSQLMarks.h"
#include "standalone/drivers/postgresql/PostgreSQLRepeated.h"
#include "standalone/drivers/postgresql/PostgreSQLResult.h"
#include "standalone/drivers/postgresql/PostgreSQLWait.h"
#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

struct TPostgreSQLMoment;

/// Whoever holds the connection for the data of a COPY, during which the server takes no other statement.
class TPostgreSQLStream {
 public:
  TPostgreSQLStream() = default;
  TPostgreSQLStream(const TPostgreSQLStream&) = delete;
  TPostgreSQLStream& operator=(const TPostgreSQLStream&) = delete;
  virtual ~TPostgreSQLStream() = default;

  /// Another statement is about to run; What begins messages about it. Ends the COPY and vacates the session, or raises
  /// EDatabaseError.
  virtual void GiveWay(std::string_view What) = 0;
  /// The same with the rows dropped, for a roll back.
  virtual void Abandon() noexcept = 0;
};

/// One connection to a server, set up so that every value has one text form. Knows the state of its transaction also
/// when the connection is lost: inside a transaction every further statement is then an error; outside, the next
/// statement connects anew. Raises EDatabaseError; EAbort when what runs was told to stop.
class TPostgreSQLSession {
 public:
  /// Options.BusyTime: how long a statement waits for a lock.
  TPostgreSQLSession(TPostgreSQLAddress Address, const TConnectOptions& Options);
  TPostgreSQLSession(const TPostgreSQLSession&) = delete;
  TPostgreSQLSession& operator=(const TPostgreSQLSession&) = delete;
  ~TPostgreSQLSession();

  pg_conn* Handle() const { return FConnection.get(); }
  const std::string& ServerVersion() const { return FServerVersion; }
  bool ReadOnly() const { return FReadOnly; }
  /// Not in the role of a replica, which somebody has set for the database or the user.
  bool ChecksReferences() const { return FChecksReferences; }
  /// Puts right what a trigger may have changed of how values are read.
  void RestoreSettings();
  /// Triggers may have run.
  void DoubtSettings() { FSettingsInDoubt = true; }
  /// Its current schema is the one in which names without one were looked for first when the connection was made.
  const TPostgreSQLDialect& Dialect() const { return FDialect; }
  /// Of 8-bit texts.
  const TCodePage& CodePage() const { return *FOptions.CodePage; }

  /// Level: in the engine's words.
  void Begin(std::string_view Level);
  void BeginReading();
  void Commit();
  void Rollback();
  void SetSavepoint(int Number);
  void ReleaseSavepoint(int Number);
  void RollbackToSavepoint(int Number);
  /// Undoes what came after the mark of that name, and forgets it unless it stays.
  void TakePartBack(const std::string& Mark, bool MarkStays = false);
  bool InTransaction() const { return FTransactionOpen; }
  /// Whether the last transaction was begun by BeginReading.
  bool OnlyReads() const { return FOnlyReads; }
  /// What is known of the moment that such a transaction sees, for readers of the catalogue to keep; null outside of
  /// one.
  TPostgreSQLMoment* Moment();
  /// Lets go of the locks on tables and indexes that a transaction which only reads has taken so far: they would be
  /// held to its end, and a server has room for a few thousand. What it sees stays of one moment. What begins a
  /// message.
  void LetGoOfLocks(std::string_view What);
  /// Tells one transaction from those before and after it.
  std::int64_t TransactionNumber() const { return FTransactionNumber; }

  /// Executes one statement and returns how many rows it changed; rows that it yields are dropped as they come.
  std::int64_t Execute(const std::string& Statement, std::span<const TKvVariant> Parameters);

  /// Executes one statement and returns its rows in the binary format.
  TPostgreSQLResult Ask(const std::string& Statement, std::span<const TKvVariant> Parameters);

  enum class TFormat { Text, Binary };
  /// Executes one statement of the driver's own. What begins an error message. Parameters are texts; with them the
  /// server keeps a statement ready that comes again.
  TPostgreSQLResult Query(std::string_view What, const std::string& Statement,
                          std::initializer_list<const char*> Parameters = {}, TFormat Format = TFormat::Text);

  /// The same with parameters of any kind.
  TPostgreSQLResult Query(std::string_view What, const std::string& Statement, std::span<const TKvVariant> Parameters,
                          TFormat Format);

  /// Has the server read one statement that it does not run. The answer names the columns of its rows.
  TPostgreSQLResult Describe(std::string_view What, const std::string& Statement);

  /// For the holder: executes one statement for every row of Values, texts whose types the server is told, without
  /// waiting for one answer before the next. Took is called with each answer, in order; an error ends the rows and is
  /// returned. Outside of a transaction all of them are undone then.
  TPostgreSQLResult ExecuteForEach(const std::string& Statement, const std::vector<unsigned>& Types,
                                   const std::vector<const char*>& Values,
                                   const std::function<void(const TPostgreSQLResult& Answer)>& Took);

  /// Makes whoever holds the connection give way, and Stream the holder.
  void Occupy(TPostgreSQLStream& Stream, std::string_view What);
  void Vacate(const TPostgreSQLStream& Stream);
  /// Starts a COPY for the holder.
  void StartCopy(std::string_view What, const std::string& Statement);
  /// Sends a piece of its data. False: the connection is lost.
  bool SendRows(std::string_view Rows);
  /// Ends its data; Reason: why they are to be dropped, else null. Drain tells what became of them.
  void EndRows(const char* Reason);
  /// Receives the next message of its data, as the client library's PQgetCopyData.
  int ReceiveRow(char*& Row) { return FWait.ForRow(Handle(), Row); }
  /// Stops the server, which may have much to send still.
  void DropRows() noexcept;
  /// Reads what the server has still to say about the last statement; its first error, else its last answer.
  TPostgreSQLResult Drain();

  /// Of a server cursor that is opened in the running transaction.
  std::int64_t NextCursorNumber();
  static std::string CursorName(std::int64_t Number);
  /// Closes one before the next statement, so that freeing it needs no answer. Nothing happens to one that is gone with
  /// what was rolled back.
  void CloseLater(std::int64_t Number);

  /// Raises what Result says, and what a lost connection means; EAbort when it says that the statement was stopped.
  /// Place: what is known beside.
  [[noreturn]] void Raise(std::string_view What, const TPostgreSQLResult& Result, std::string_view Statement = {},
                          const TErrorInfo& Place = {});
  /// How a message about the whole database begins.
  std::string About(std::string_view Failed) const;

 private:
  void Open();
  void SetUp();
  void Start(std::string_view Level, bool OnlyReads);
  bool IsLost() const;
  void Prepare(std::string_view What);
  bool MarksMayWait() const;
  void CatchUpWithMarks(std::string_view What);
  void CheckAlive(std::string_view What);
  TPostgreSQLResult Run(const std::string& Statement, std::initializer_list<const char*> Parameters, TFormat Format,
                        TAtWish AtWish = TAtWish::Stop, std::chrono::milliseconds Limit = {});
  TPostgreSQLResult RunAgain(const std::string& Name, const std::string& Statement,
                             std::initializer_list<const char*> Parameters, TFormat Format);
  pg_result* NextResult() { return FWait.NextResult(Handle()); }
  TPostgreSQLResult Answer();
  static void TakeNotice(void* Session, const pg_result* Notice) noexcept;
  void Send(std::string_view What, const std::string& Statement, std::span<const TKvVariant> Parameters,
            TFormat Format);
  TPostgreSQLResult LastAnswer(std::string_view What, const std::string& Statement);
  void DropData() noexcept;
  void NoteTransaction();
  void ForgetCursors(std::int64_t Last);

  TPostgreSQLAddress FAddress;
  const TConnectOptions FOptions;
  const std::string FLockTimeout;  // milliseconds
  TPostgreSQLWait FWait;
  TPostgreSQLHandle FConnection;
  std::string FServerVersion;
  TPostgreSQLDialect FDialect;
  bool FReadOnly = false;
  bool FChecksReferences = true;
  bool FSettingsInDoubt = false;
  bool FTransactionOpen = false;  // as the server last said; stays when the connection is lost
  bool FOnlyReads = false;
  std::int64_t FTransactionNumber = 0;
  std::unique_ptr<TPostgreSQLMoment> FMoment;  // null: nothing is known
  TPostgreSQLRepeated FRepeated;
  std::int64_t FCursorNumber = 0;
  TPostgreSQLStream* FStream = nullptr;  // who holds the connection; borrowed
  std::set<std::int64_t> FCursors;       // those of the server in the running transaction
  std::vector<std::int64_t> FToClose;    // some of them
  TPostgreSQLMarks FMarks;
};

}  // namespace velkrund
