#pragma once

#include <chrono>
#include <functional>
#include <memory>

struct pg_conn;
struct pg_result;

namespace velkrund {

/// What becomes of a wish to stop while the server works.
enum class TAtWish {
  Stop,    // the statement is told to end
  Commit,  // the same, and its answer is waited for longer: what became of the transaction depends on it
  Finish   // it is left to end: a roll back
};

/// Waits for a server, and stops what it does when Canceled, asked again and again meanwhile, says so. A server that
/// does not answer soon after that is let go: the connection is closed, and the server undoes what was begun as soon as
/// it notices.
class TPostgreSQLWait {
 public:
  /// Notice: told once that a commit is waited for although a wish to stop is there; may be empty.
  TPostgreSQLWait(std::function<bool()> Canceled, std::function<void()> Notice)
      : FCanceled(std::move(Canceled)), FNotice(std::move(Notice)) {}

  /// A statement begins. Limit: how long it may take at all; 0: as long as it takes.
  void Begin(pg_conn* Connection, TAtWish AtWish, std::chrono::milliseconds Limit = {});
  /// Asks the server to end the statement that runs, without waiting for it. It answers with an error, or had ended it
  /// anyway.
  void Stop(pg_conn* Connection);
  /// Whether the statement was told to stop; it may have ended before.
  bool Stopped() const { return FStopped; }
  /// Whether the connection was closed here, since the server did not answer.
  bool LetGo() const { return FLetGo; }
  /// Whether that was without any wish to stop.
  bool TookTooLong() const { return FTookTooLong; }
  /// A new connection takes the place of the one before.
  void Renew();

  /// The server's next answer, once it is there; null at the end of a statement's, and where the connection is lost.
  pg_result* NextResult(pg_conn* Connection);
  /// Until the next message of the data of a COPY; what PQgetCopyData returns.
  int ForRow(pg_conn* Connection, char*& Row);
  /// Until what was handed over is on its way to the server.
  void ForRoom(pg_conn* Connection);

 private:
  using TClock = std::chrono::steady_clock;
  class TRequest;

  void Sleep(pg_conn* Connection, short Events, int& Milliseconds);
  void Look(pg_conn* Connection);
  void Close(pg_conn* Connection);
  void WaitForRequest(pg_conn* Connection);

  std::function<bool()> FCanceled;
  std::function<void()> FNotice;
  TAtWish FAtWish = TAtWish::Stop;
  bool FWished = false;   // the wish to stop is there
  bool FStopped = false;  // the server was asked to end the statement
  bool FLetGo = false;
  bool FTookTooLong = false;
  TClock::time_point FPatienceEnds;    // once the wish is there
  TClock::time_point FLimit;           // the epoch: none
  std::shared_ptr<TRequest> FRequest;  // the last that was sent; null: none is on its way
};

}  // namespace velkrund
