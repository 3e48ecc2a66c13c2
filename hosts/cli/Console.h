#pragma once

#include <string_view>

namespace velkrund {

/// The program's standard output and standard error. Results go out, everything said to people goes to standard error,
/// where control characters of foreign texts are made visible.
class TConsole {
 public:
  TConsole();

  /// Raises EWriteError: a reader that is gone, a full disk.
  void Result(std::string_view Text);

  /// Whole lines; a line end is added when it is missing. Never raises: there is nowhere left to tell.
  void Message(std::string_view Text) noexcept;
  /// A line that the next message or status takes the place of. Only where MessagesAreSeen.
  void Status(std::string_view Line) noexcept;
  void ClearStatus() noexcept;
  /// Text in front of an answer that is being typed.
  void Prompt(std::string_view Text) noexcept;

  /// Whether standard error is a terminal that can take a line back.
  bool MessagesAreSeen() const { return FTerminal; }
  /// Of that terminal, in characters.
  int Width() const;

 private:
  void Write(std::string_view Text) noexcept;

  bool FTerminal;
  bool FStatusShown = false;
};

}  // namespace velkrund
