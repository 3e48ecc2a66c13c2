#pragma once

#include <functional>

struct pg_conn;

namespace velkrund {

/// Asks the server to end the statement that runs. It answers with an error, or had ended it anyway.
void StopPostgreSQLStatement(pg_conn* Connection) noexcept;

/// Waits for a server, and stops what it does when Canceled, asked again and again meanwhile, says so.
class TPostgreSQLWait {
 public:
  explicit TPostgreSQLWait(std::function<bool()> Canceled) : FCanceled(std::move(Canceled)) {}

  /// A statement begins. MayStop: whether it can be stopped at all.
  void Begin(bool MayStop) {
    FMayStop = MayStop && FCanceled;
    FStopped = false;
  }
  /// Whether the statement was told to stop; it may have ended before.
  bool Stopped() const { return FStopped; }

  /// Until the client library can tell an answer. Also returns when the connection is lost, which the library then
  /// tells.
  void ForAnswer(pg_conn* Connection);
  /// Until the next message of the data of a COPY; what PQgetCopyData returns.
  int ForRow(pg_conn* Connection, char*& Row);
  /// Until what was handed over is on its way to the server. Not for a connection that blocks.
  void ForRoom(pg_conn* Connection);

 private:
  void Sleep(pg_conn* Connection, short Events, int& Milliseconds);

  std::function<bool()> FCanceled;
  bool FMayStop = false;
  bool FStopped = false;
};

}  // namespace velkrund
