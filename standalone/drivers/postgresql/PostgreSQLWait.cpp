#include "standalone/drivers/postgresql/PostgreSQLWait.h"
#include "standalone/drivers/postgresql/Libpq.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace velkrund {
namespace {

using namespace std::chrono_literals;

/// At first short: what an encryption layer holds already wakes nobody up.
constexpr int FirstSleep = 1;
constexpr int LongestSleep = 100;  // milliseconds

/// How long an answer is waited for when the wish to stop is there. With the time until the wish is seen and that for
/// the end of the process, it stays within two seconds.
constexpr auto PatienceWithStatement = 1s;
/// A server undoes quickly, and goes on by itself when nobody waits.
constexpr auto PatienceWithRollback = 10s;
constexpr auto PatienceWithCommit = 30s;
/// For the request to stop to arrive, where the statement has ended before it.
constexpr auto PatienceWithRequest = 10s;

std::chrono::seconds PatienceWith(TAtWish AtWish) {
  switch (AtWish) {
    case TAtWish::Stop:
      return PatienceWithStatement;
    case TAtWish::Commit:
      return PatienceWithCommit;
    case TAtWish::Finish:
      break;
  }
  return PatienceWithRollback;
}

}  // namespace

/// A request to stop that is on its way, on a thread of its own: the client library makes a connection for it and waits
/// for its end, as long as that takes. The thread has all that it needs, and may outlive whoever asked.
class TPostgreSQLWait::TRequest {
 public:
  static std::shared_ptr<TRequest> Send(pg_conn* Connection) {
    auto Result = std::make_shared<TRequest>();
    Result->FCancel.reset(PQgetCancel(Connection));
    if (!Result->FCancel) return nullptr;
    std::thread([Result] { Result->Run(); }).detach();
    return Result;
  }

  bool ArrivesUntil(TClock::time_point Time) {
    std::unique_lock Lock(FMutex);
    return FArrival.wait_until(Lock, Time, [this] { return FArrived; });
  }

 private:
  struct TFree {
    void operator()(PGcancel* Cancel) const { PQfreeCancel(Cancel); }
  };

  void Run() {
    char Message[256];
    PQcancel(FCancel.get(), Message, sizeof Message);
    const std::lock_guard Lock(FMutex);
    FArrived = true;
    FArrival.notify_all();
  }

  std::unique_ptr<PGcancel, TFree> FCancel;
  std::mutex FMutex;
  std::condition_variable FArrival;
  bool FArrived = false;
};

void TPostgreSQLWait::Begin(pg_conn* Connection, TAtWish AtWish, std::chrono::milliseconds Limit) {
  WaitForRequest(Connection);
  FAtWish = AtWish;
  FWished = FStopped = false;
  FLimit = Limit.count() > 0 ? TClock::now() + Limit : TClock::time_point();
}

/// One that came late would stop what begins now.
void TPostgreSQLWait::WaitForRequest(pg_conn* Connection) {
  const std::shared_ptr<TRequest> Request = std::exchange(FRequest, nullptr);
  if (!Request || FLetGo) return;
  if (!FWished) FPatienceEnds = TClock::now() + PatienceWithRequest;
  while (!Request->ArrivesUntil(std::min(FPatienceEnds, TClock::now() + 100ms))) {
    if (TClock::now() >= FPatienceEnds) {
      FTookTooLong = !FWished;
      return Close(Connection);
    }
    if (FWished || !FCanceled || !FCanceled()) continue;
    FWished = true;
    FPatienceEnds = std::min(FPatienceEnds, TClock::now() + PatienceWithStatement);
  }
}

void TPostgreSQLWait::Renew() {
  FRequest = nullptr;
  FLetGo = FTookTooLong = false;
}

void TPostgreSQLWait::Stop(pg_conn* Connection) {
  if (std::exchange(FStopped, true)) return;
  FRequest = TRequest::Send(Connection);
}

/// The client library then finds the end of the connection, without any more waiting.
void TPostgreSQLWait::Close(pg_conn* Connection) {
  FLetGo = true;
  shutdown(PQsocket(Connection), SHUT_RDWR);
}

void TPostgreSQLWait::Look(pg_conn* Connection) {
  if (FLetGo) return;
  const auto Now = TClock::now();
  if (FLimit != TClock::time_point() && Now >= FLimit) {
    FTookTooLong = true;
    return Close(Connection);
  }
  if (FWished) {
    if (Now >= FPatienceEnds) Close(Connection);
    return;
  }
  if (!FCanceled || !FCanceled()) return;
  FWished = true;
  FPatienceEnds = Now + PatienceWith(FAtWish);
  if (FAtWish != TAtWish::Finish) Stop(Connection);
  if (FAtWish == TAtWish::Commit && FNotice) FNotice();
}

/// Also ends at a signal, so that a wish that came with it is heeded at once.
void TPostgreSQLWait::Sleep(pg_conn* Connection, short Events, int& Milliseconds) {
  pollfd Socket{PQsocket(Connection), Events, 0};
  poll(&Socket, 1, Milliseconds);
  Milliseconds = std::min(2 * Milliseconds, LongestSleep);
  Look(Connection);
}

pg_result* TPostgreSQLWait::NextResult(pg_conn* Connection) {
  for (int Milliseconds = FirstSleep; PQisBusy(Connection) != 0;) {
    Sleep(Connection, POLLIN, Milliseconds);
    if (PQconsumeInput(Connection) == 0) break;
  }
  return PQgetResult(Connection);
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
