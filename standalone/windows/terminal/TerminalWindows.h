#pragma once

#include <functional>
#include <string>

#include "standalone/windows/terminal/Terminal.h"
#include "velkrund/platform/lctrls/MainThreadQueue.h"
#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

/// Forms as plain questions for a person at a terminal:
///
///     The section 'ORDERS' is already in 'orders.eif'. Replace it?
///       [y]es [n]o [A]ll n[O]ne [c]ancel ?
///
/// A button is pressed by its letter or its whole caption, in any case; a capital letter marks an answer that holds for
/// all that is still to come. Check boxes are shown with their state and change when their letter is typed; several
/// letters may stand in one line, with blanks between them, one button among them. A line with anything else in it does
/// nothing and is asked again. So does Enter alone, whatever the default button is: it is typed too easily, and ahead
/// of the question, to overwrite anything. "?" tells the hints. Cancel is offered with every question.
/// What combo boxes hold is chosen by their numbers, as TComboLines says; the form is then shown again, of a long one
/// what has changed. Enter alone shows all of it.
/// A form without a choice is a message. Used by the main thread, except for Synchronize.
class TTerminalWindows final : public TWindowSystem {
 public:
  using TCanceled = std::function<bool()>;

  /// Terminal: borrowed. Input: a descriptor of the terminal to read answers from, needed during the call only.
  /// Canceled: asked while waiting for an answer; true gives the question up.
  TTerminalWindows(TTerminal& Terminal, int Input, TCanceled Canceled);
  TTerminalWindows(const TTerminalWindows&) = delete;
  TTerminalWindows& operator=(const TTerminalWindows&) = delete;
  ~TTerminalWindows() override;

  /// Cancel where the form has no button for it, the end of input and Canceled raise EAbort.
  int ShowModal(TForm& Form) override;
  /// What is typed is not shown.
  std::optional<std::string> AskSecret(const std::string& Text) override;
  void Synchronize(const std::function<void()>& Action) override { FQueue.Run(Action); }

 private:
  void Ask(TForm& Form);

  TTerminal& FTerminal;
  int FInput;  // our own
  TCanceled FCanceled;
  TMainThreadQueue FQueue;
};

}  // namespace velkrund
