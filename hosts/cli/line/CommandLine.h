#pragma once

#include <string>

#include "hosts/cli/line/Commands.h"

namespace velkrund {

/// What a command line asks for: a command, its options stored into it, or a text such as help.
struct TParsedLine {
  TCommand* Command = nullptr;  // one of the commands given; null: Text is to be printed
  std::string Text;
};

/// Parses the program's arguments: a verb and an object, then options and arguments of their command. General options
/// may stand anywhere; behind "--" there are arguments alone. Raises EUsage; its message ends with where to find help.
TParsedLine ParseCommandLine(const TCommands& Commands, int Count, const char* const* Arguments);

/// Whether the line asks for a document on standard output, which carries nothing else: also of a line that cannot be
/// parsed.
bool AsksForDocument(int Count, const char* const* Arguments);

}  // namespace velkrund
