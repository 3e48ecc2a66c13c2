#include "tests/support/Proxy.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <string_view>

namespace velkrund::tests {
namespace {

using namespace std::chrono_literals;

constexpr int BetweenLooks = 10;  // milliseconds

sockaddr_in Loopback(int Port) {
  sockaddr_in Result = {};
  Result.sin_family = AF_INET;
  Result.sin_port = htons(static_cast<std::uint16_t>(Port));
  Result.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return Result;
}

}  // namespace

TProxy::TProxy(int ServerPort, TPlan Plan) : FServerPort(ServerPort), FPlan(std::move(Plan)) {
  FListener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in Address = Loopback(0);
  socklen_t Size = sizeof Address;
  auto* const Plain = reinterpret_cast<sockaddr*>(&Address);
  if (bind(FListener, Plain, Size) != 0 || listen(FListener, 16) != 0 || getsockname(FListener, Plain, &Size) != 0)
    throw std::runtime_error("the proxy has no port");
  FPort = ntohs(Address.sin_port);
  FAccepting = std::thread([this] { Accept(); });
}

TProxy::~TProxy() {
  FEnds = true;
  FAccepting.join();
  for (std::thread& Serving : FServing) Serving.join();
  close(FListener);
}

void TProxy::Accept() {
  while (!FEnds) {
    pollfd Poll = {FListener, POLLIN, 0};
    if (poll(&Poll, 1, BetweenLooks) <= 0) continue;
    const int Client = accept4(FListener, nullptr, nullptr, SOCK_CLOEXEC);
    if (Client >= 0) FServing.emplace_back([this, Client] { Serve(Client); });
  }
}

void TProxy::Serve(int Client) {
  const int Server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in Address = Loopback(FServerPort);
  bool Open = connect(Server, reinterpret_cast<const sockaddr*>(&Address), sizeof Address) == 0;
  while (Open && !FEnds) {
    if (FHappened && FPlan.Fault == TFault::Stall) {
      std::this_thread::sleep_for(std::chrono::milliseconds(BetweenLooks));
      continue;
    }
    pollfd Polls[] = {{Client, POLLIN, 0}, {Server, POLLIN, 0}};
    if (poll(Polls, 2, BetweenLooks) <= 0) continue;
    if (Polls[0].revents != 0) Open = Pass(Client, Server, true);
    if (Open && Polls[1].revents != 0) Open = Pass(Server, Client, false);
  }
  close(Client);
  close(Server);
}

/// One piece; false: the connection is at its end.
bool TProxy::Pass(int From, int To, bool FromClient) {
  char Piece[16384];
  const ssize_t Size = recv(From, Piece, sizeof Piece, MSG_DONTWAIT);
  if (Size < 0) return errno == EAGAIN || errno == EINTR;
  if (Size == 0) return false;
  const std::string_view Text(Piece, static_cast<std::size_t>(Size));
  if (FPlan.Fault == TFault::Delay) {
    FHappened = true;
    std::this_thread::sleep_for(20ms);
  } else if (FPlan.At.empty() ? (FPassed += Size) > FPlan.After
                              : FromClient && Text.find(FPlan.At) != std::string_view::npos) {
    FHappened = true;
    return FPlan.Fault == TFault::Stall;
  }
  for (ssize_t Sent = 0, More; Sent < Size && !FEnds; Sent += More)
    if ((More = send(To, Piece + Sent, static_cast<std::size_t>(Size - Sent), MSG_NOSIGNAL)) < 0) return false;
  return true;
}

}  // namespace velkrund::tests
