#pragma once

#include <string>

#include "hosts/cli/line/Commands.h"

namespace velkrund {

inline constexpr std::string_view ProgramSummary = "moves database objects between databases and export/import files";

/// The program's help: all commands, and the options that all have. Verb: only commands of that verb; empty: all.
std::string ProgramHelp(const TCommands& Commands, const TOptionGroup& General, std::string_view Verb);
/// One command's help: purpose, usage, options by group, examples.
std::string CommandHelp(const TCommand& Command, const std::vector<TOptionGroup>& Options);

}  // namespace velkrund
