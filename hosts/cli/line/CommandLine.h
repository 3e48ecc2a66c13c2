#pragma once

#include <string>
#include <utility>

#include "hosts/cli/line/Commands.h"

namespace velkrund {

/// What a command line asks for: a command, its options stored into it, or a text such as help.
struct TParsedLine {
  TCommand* Command = nullptr;  // one of the commands given; null: Text is to be printed
  std::string Text;
};

/// A line that cannot be parsed.
class EWrongLine final : public EUsage {
 public:
  EWrongLine(const std::string& Message, std::string Reached) : EUsage(Message), FReached(std::move(Reached)) {}
  /// The words that lead to a command, as far as they do: "export table", "export", or none.
  const std::string& Reached() const { return FReached; }

 private:
  std::string FReached;
};

/// Parses the program's arguments: a verb and an object, then options and arguments of their command. General options
/// may stand anywhere; behind "--" there are arguments alone. Raises EWrongLine.
TParsedLine ParseCommandLine(const TCommands& Commands, int Count, const char* const* Arguments);

/// What a line asks for that programs read, also one that cannot be parsed.
struct TWanted {
  bool Document = false;  // on standard output, which carries nothing else
  bool Events = false;    // on standard error
};
TWanted WantedOf(int Count, const char* const* Arguments);

}  // namespace velkrund
