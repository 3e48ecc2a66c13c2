#pragma once

#include <functional>
#include <optional>
#include <string>

#include "velkrund/platform/lctrls/Form.h"

namespace velkrund {

/// Whoever shows forms: a terminal, a desktop, a list of prepared answers, or nobody. Thin: it draws what a form holds
/// and feeds presses and ticks to it.
class TWindowSystem {
 public:
  virtual ~TWindowSystem() = default;
  /// Shows the form until it is closed; returns its ModalResult. Called on the main thread. Raises EQuestionUnanswered
  /// when nobody can answer, and EAbort when the person wants the whole job to end.
  virtual int ShowModal(TForm& Form) = 0;
  /// Whether there is somebody who can answer, so that it is worth asking. What ShowModal raises is still to be minded.
  virtual bool CanAsk() const { return true; }
  /// Asks for a line that nobody else may see, such as a password. Called on the main thread. Nothing: nobody can be
  /// asked. Raises EAbort when the person does not want to go on.
  virtual std::optional<std::string> AskSecret(const std::string& /*Text*/) { return std::nullopt; }
  /// Runs Action on the main thread and returns when it is done; its errors come back. Systems with a loop of their own
  /// hand it over to that loop; this one runs it in place, one at a time.
  virtual void Synchronize(const std::function<void()>& Action);
};

/// What is there while no window system is installed: a question raises EQuestionUnanswered, a mere message goes to the
/// trace.
TWindowSystem& NobodyAtTheScreen();

/// The installed window system; without one NobodyAtTheScreen.
TWindowSystem& Windows();
/// Installs one for the process, borrowed, or none when null; returns the one before. TServiceGuard undoes it.
TWindowSystem* InstallService(TWindowSystem* Service);

/// Runs Action on the main thread and waits for it: at once when called there. To be used by worker threads for
/// whatever asks the user. Errors of Action come back to the caller.
void Synchronize(const std::function<void()>& Action);

}  // namespace velkrund
