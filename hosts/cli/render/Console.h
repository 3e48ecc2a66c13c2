#pragma once

#include <string_view>

#include "standalone/windows/terminal/Terminal.h"

namespace velkrund {

/// The program's standard output for results, and standard error for everything said to people.
class TConsole final : public TTerminal {
 public:
  TConsole();
  /// Raises EWriteError: a reader that is gone, a full disk.
  void Result(std::string_view Text);
};

}  // namespace velkrund
