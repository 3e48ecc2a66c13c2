#include "hosts/cli/line/Completion.h"

#include <algorithm>

#include "hosts/cli/line/CompletionParts.h"

namespace velkrund {

std::vector<TOption> OptionsOf(const TDeclaredCommand& Declared) {
  std::vector<TOption> Result;
  for (const TOptionGroup& Group : Declared.Groups)
    if (!Group.IsGeneral) Result.insert(Result.end(), Group.Options.begin(), Group.Options.end());
  return Result;
}

std::vector<std::string> Verbs(const TDeclaredCommands& Commands) {
  std::vector<std::string> Result;
  for (const TDeclaredCommand& Declared : Commands)
    if (const std::string Verb(Declared.Command->Texts().Verb);
        std::find(Result.begin(), Result.end(), Verb) == Result.end())
      Result.push_back(Verb);
  return Result;
}

std::vector<TDeclaredCommand> OfVerb(const TDeclaredCommands& Commands, const std::string& Verb) {
  std::vector<TDeclaredCommand> Result;
  for (const TDeclaredCommand& Declared : Commands)
    if (Declared.Command->Texts().Verb == Verb) Result.push_back(Declared);
  return Result;
}

std::string Between(const std::vector<std::string>& Words, std::string_view Separator) {
  std::string Result;
  for (const std::string& Word : Words) Result.append(Result.empty() ? "" : Separator).append(Word);
  return Result;
}

std::string Spaced(const std::vector<std::string>& Words) { return Between(Words, " "); }

std::string Gist(std::string_view Help) {
  for (const std::string_view End : {": ", "; ", ". ", " (", ", "}) Help = Help.substr(0, Help.find(End));
  return std::string(Help);
}

std::string Replaced(std::string_view Text, std::string_view Special, std::string_view Before) {
  std::string Result;
  for (const char C : Text) {
    if (Special.find(C) != std::string_view::npos) Result += Before;
    Result += C;
  }
  return Result;
}

std::vector<std::string> GeneralSpellings(const TDeclaredCommands& Commands, bool Switches) {
  std::vector<std::string> Result;
  for (const TOption& Option : GeneralOptions(Commands).Options)
    for (std::string& Spelling : CommaSeparated(Option.Names))
      if (Option.IsSwitch() == Switches) Result.push_back(std::move(Spelling));
  return Result;
}

bool IsCompletedShell(std::string_view Shell) { return Shell == "bash" || Shell == "zsh" || Shell == "fish"; }

std::string Completion(const std::vector<TDeclaredCommand>& Commands, std::string_view Shell) {
  if (Shell == "bash") return BashCompletion(Commands);
  return Shell == "zsh" ? ZshCompletion(Commands) : FishCompletion(Commands);
}

}  // namespace velkrund
