#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hosts/cli/line/Command.h"

namespace velkrund {

inline constexpr std::string_view CompletedShells = "bash|zsh|fish";
bool IsCompletedShell(std::string_view Shell);

/// The script that makes a shell complete command lines of the program with these commands: verbs, objects, options,
/// their choices, and names of files. Shell: one for which IsCompletedShell holds.
std::string Completion(const std::vector<TDeclaredCommand>& Commands, std::string_view Shell);

}  // namespace velkrund
