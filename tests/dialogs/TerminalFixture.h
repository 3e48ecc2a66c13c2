#pragma once

#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <string>

#include "standalone/windows/terminal/TerminalWindows.h"
#include "tests/dialogs/DialogFixture.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund::tests {

inline constexpr int PatienceMilliseconds = 10'000;

/// A pseudo-terminal with a person who types ahead.
class TTerminalDialogs : public testing::Test {
 protected:
  TTerminalDialogs() {
    EXPECT_EQ(openpty(&FPerson, &FProgram, nullptr, nullptr, nullptr), 0);
    // The kernel shows what is typed whenever it finds the time, between any two words of ours.
    struct termios Mode;
    tcgetattr(FProgram, &Mode);
    Mode.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(FProgram, TCSANOW, &Mode);
    setenv("TERM", "xterm", 1);
  }
  ~TTerminalDialogs() override {
    close(FPerson);
    close(FProgram);
  }

  /// What asking gives while the person types Keys; the error's class name when it ends in one.
  std::string Answer(const std::function<std::string()>& Ask, const std::string& Keys) {
    TTerminal Terminal(FProgram);
    TTerminalWindows Windows(Terminal, FProgram, [this] { return Canceled; });
    const TServiceGuard<TWindowSystem> Guard(&Windows);
    EXPECT_EQ(write(FPerson, Keys.data(), Keys.size()), static_cast<ssize_t>(Keys.size()));
    try {
      return Ask();
    } catch (const Exception& Error) {
      return Error.ClassName();
    }
  }

  /// What was shown since it was last looked at, which takes the kernel a moment: at least what is Expected.
  std::string Seen(std::string_view Expected) {
    std::string Result;
    char Block[4096];
    struct pollfd Poll = {FPerson, POLLIN, 0};
    while (Result.find(Expected) == std::string::npos && poll(&Poll, 1, PatienceMilliseconds) > 0)
      if (const ssize_t Got = read(FPerson, Block, sizeof Block); Got > 0)
        Result.append(Block, static_cast<std::size_t>(Got));
    return Result;
  }

  TDialogPlatform Platform;
  bool Canceled = false;
  int FPerson = -1, FProgram = -1;
};

}  // namespace velkrund::tests
