#pragma once

#include <string>

#include "hosts/cli/line/Commands.h"

namespace velkrund {

/// What a command line asks for: a command, its options stored into it, or a text such as help.
struct TParsedLine {
  TCommand* Command = nullptr;  // one of the commands given; null: Text is to be printed
  std::string Text;
};

/// Parses the program's arguments. Raises EUsage; its message ends with where to find help.
TParsedLine ParseCommandLine(const TCommands& Commands, int Count, const char* const* Arguments);

/// The candidate that Text most likely meant; empty when none is near.
std::string Nearest(const std::string& Text, const std::vector<std::string>& Candidates);

}  // namespace velkrund
