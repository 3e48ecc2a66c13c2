#include "standalone/drivers/postgresql/PostgreSQLWait.h"

#include <libpq-fe.h>
#include <poll.h>

#include <algorithm>

namespace velkrund {
namespace {

/// At first short: what an encryption layer holds already wakes nobody up.
constexpr int FirstSleep = 1;
constexpr int LongestSleep = 100;  // milliseconds

}  // namespace

void StopPostgreSQLStatement(pg_conn* Connection) noexcept {
  PGcancel* Cancel = PQgetCancel(Connection);
  if (!Cancel) return;
  char Message[256];
  PQcancel(Cancel, Message, sizeof Message);
  PQfreeCancel(Cancel);
}

/// Also ends at a signal, so that a wish that came with it is heeded at once.
void TPostgreSQLWait::Sleep(pg_conn* Connection, short Events, int& Milliseconds) {
  pollfd Socket{PQsocket(Connection), Events, 0};
  poll(&Socket, 1, Milliseconds);
  Milliseconds = std::min(2 * Milliseconds, LongestSleep);
  if (!FMayStop || FStopped || !FCanceled()) return;
  FStopped = true;
  StopPostgreSQLStatement(Connection);
}

void TPostgreSQLWait::ForAnswer(pg_conn* Connection) {
  for (int Milliseconds = FirstSleep; PQisBusy(Connection) != 0;) {
    Sleep(Connection, POLLIN, Milliseconds);
    if (PQconsumeInput(Connection) == 0) return;
  }
}

int TPostgreSQLWait::ForRow(pg_conn* Connection, char*& Row) {
  for (int Milliseconds = FirstSleep;;) {
    if (const int Size = PQgetCopyData(Connection, &Row, 1); Size != 0) return Size;
    Sleep(Connection, POLLIN, Milliseconds);
    if (PQconsumeInput(Connection) == 0) return PQgetCopyData(Connection, &Row, 0);
  }
}

void TPostgreSQLWait::ForRoom(pg_conn* Connection) {
  for (int Milliseconds = FirstSleep; PQflush(Connection) == 1;) {
    Sleep(Connection, POLLIN | POLLOUT, Milliseconds);
    if (PQconsumeInput(Connection) == 0) return;
  }
}

}  // namespace velkrund
