#include "standalone/windows/terminal/AnswerLine.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace velkrund {

namespace {

constexpr int PollMilliseconds = 50;
constexpr std::size_t LongestAnswer = 4096;

}  // namespace

bool ReadAnswerLine(int Input, std::string& Line, const std::function<bool()>& Canceled,
                    const std::function<void()>& Idle) {
  while (!Canceled || !Canceled()) {
    if (Idle) Idle();
    struct pollfd Poll = {Input, POLLIN, 0};
    if (poll(&Poll, 1, PollMilliseconds) <= 0) continue;
    char Byte;
    const ssize_t Got = read(Input, &Byte, 1);
    if (Got < 0 && (errno == EAGAIN || errno == EINTR)) continue;
    if (Got <= 0) return false;
    if (Byte == '\n') return true;
    if (Line.size() < LongestAnswer) Line += Byte;
  }
  return false;
}

}  // namespace velkrund
