#pragma once

#include <memory>
#include <string>

#include "hosts/cli/Console.h"
#include "hosts/common/Answers.h"

namespace velkrund {

/// A person at a terminal: types a letter or a word. The end of input and the wish to stop are Cancel.
class TTerminalAnswers final : public TAnswers {
 public:
  /// Console: borrowed. Descriptor: of the terminal to read from, borrowed.
  TTerminalAnswers(TConsole& Console, int Descriptor) : FConsole(Console), FDescriptor(Descriptor) {}
  bool CanAsk() const override { return true; }
  TAnswer Ask(const TQuestion& Question) override;

 private:
  bool ReadLine(std::string& Line);

  TConsole& FConsole;
  int FDescriptor;
};

/// Whoever can be asked: the person at the terminal where questions are seen there and answers come from there, else
/// nobody. InputIsData: standard input is not for answers; the controlling terminal is asked instead, if there is one.
std::unique_ptr<TAnswers> FindAnswers(TConsole& Console, bool InputIsData);

}  // namespace velkrund
