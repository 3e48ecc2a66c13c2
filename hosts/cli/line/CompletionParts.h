#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hosts/cli/line/Command.h"

namespace velkrund {

// What the scripts of all shells are made from.

using TDeclaredCommands = std::vector<TDeclaredCommand>;

inline constexpr std::string_view FileValue = "FILE";

/// Its own options; those that all commands have stand once in a script.
std::vector<TOption> OptionsOf(const TDeclaredCommand& Declared);
/// The general options that stand alone, or those behind which a value stands, in every spelling.
std::vector<std::string> GeneralSpellings(const TDeclaredCommands& Commands, bool Switches);
std::vector<std::string> Verbs(const TDeclaredCommands& Commands);
std::vector<TDeclaredCommand> OfVerb(const TDeclaredCommands& Commands, const std::string& Verb);

std::string Between(const std::vector<std::string>& Words, std::string_view Separator);
std::string Spaced(const std::vector<std::string>& Words);
/// The part of a help text that says what, without when and why.
std::string Gist(std::string_view Help);
/// Text with Before in front of each of the special characters.
std::string Replaced(std::string_view Text, std::string_view Special, std::string_view Before);

std::string BashCompletion(const TDeclaredCommands& Commands);
std::string ZshCompletion(const TDeclaredCommands& Commands);
std::string FishCompletion(const TDeclaredCommands& Commands);

}  // namespace velkrund
