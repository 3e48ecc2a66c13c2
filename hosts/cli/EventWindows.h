#pragma once

#include <functional>
#include <string>

#include "hosts/cli/render/Console.h"
#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

/// Asks the program that runs this one: a question is an event with the words that answer it, the answer a line that
/// the program writes. A line that is not understood is answered by the question once more, the end of the input means
/// that nobody answers. Lists to choose from are no words: such a form is an EQuestionUnanswered.
class TEventWindows final : public TWindowSystem {
 public:
  /// Console: borrowed. Input: a descriptor, borrowed. Canceled: polled while an answer is waited for.
  TEventWindows(TConsole& Console, int Input, std::function<bool()> Canceled);
  int ShowModal(TForm& Form) override;
  /// False for an input that never has a line, such as that of jobs that run by night.
  bool CanAsk() const override;

 private:
  void Tell(const TForm& Form) const;
  bool Press(TForm& Form, std::string_view Line) const;

  TConsole& FConsole;
  const int FInput;
  const std::function<bool()> FCanceled;
};

}  // namespace velkrund
