#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace velkrund {

/// What is said to people, on standard error or where a test looks: whole messages, and on a terminal one status line
/// below them that is drawn again after whatever interrupted it. Control characters of foreign texts are made visible.
/// Used by one thread at a time. Nothing here raises: there is nowhere left to tell.
class TTerminal {
 public:
  /// Output: a descriptor, borrowed.
  explicit TTerminal(int Output);

  /// Asked while nobody takes what is said: true leaves it unsaid.
  void SetCanceled(std::function<bool()> Canceled) { FCanceled = std::move(Canceled); }

  /// Whole lines; a line end is added when it is missing. Of very long ones the middle is left out.
  void Message(std::string_view Text) noexcept;
  /// A line that stays below the messages. Only where MessagesAreSeen.
  void Status(std::string_view Line) noexcept;
  void ClearStatus() noexcept;
  /// Text in front of an answer that is being typed; the status line is away until ResumeStatus.
  void Prompt(std::string_view Text) noexcept;
  void ResumeStatus() noexcept;

  /// Whether the output is a terminal that can take a line back.
  bool MessagesAreSeen() const { return FTerminal; }
  /// Of that terminal, in columns.
  int Width() const;
  /// In lines.
  int Height() const;

 protected:
  /// Whether the descriptor takes nothing, and nobody wants to wait for it any more.
  bool IsStuck(int Descriptor) const;

 private:
  void Write(std::string_view Text) noexcept;
  void HideStatus() noexcept;

  int FOutput;
  std::function<bool()> FCanceled;
  bool FTerminal;
  bool FStatusShown = false;
  std::string FStatus;  // empty: none
};

}  // namespace velkrund
