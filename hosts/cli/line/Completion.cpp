#include "hosts/cli/line/Completion.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::string_view FileValue = "FILE";
constexpr std::string_view ProgramOptions = "--help --version --manual --completion";

using TDeclaredCommands = std::vector<TDeclaredCommand>;

std::string Name(const TDeclaredCommand& Declared) {
  return Format("%s %s", Declared.Command->Texts().Verb, Declared.Command->Texts().Object);
}

std::vector<TOption> OptionsOf(const TDeclaredCommand& Declared) {
  std::vector<TOption> Result;
  for (const TOptionGroup& Group : Declared.Groups)
    Result.insert(Result.end(), Group.Options.begin(), Group.Options.end());
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

std::string Spaced(const std::vector<std::string>& Words) {
  std::string Result;
  for (const std::string& Word : Words) Result += (Result.empty() ? "" : " ") + Word;
  return Result;
}

/// The part of a help text that says what, without when and why.
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

/// What may stand behind the program's name.
std::string FirstWords(const TDeclaredCommands& Commands) {
  return Format("%s %s", Spaced(Verbs(Commands)), ProgramOptions);
}

// bash

constexpr std::string_view BashScript = R"(# Completes command lines of velkrund in bash.

_velkrund_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$Current")
}

_velkrund_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -f -- "$Current")
}

_velkrund() {
  local Current=${COMP_WORDS[COMP_CWORD]} Previous=${COMP_WORDS[COMP_CWORD - 1]} Options= Files=
  COMPREPLY=()
  # The shell cuts words at "=" and at ":", behind which addresses of databases have a file.
  if [[ $Current == [=:] ]]; then
    [[ $Current == = ]] || Previous=$Current
    Current=
  elif [[ $Previous == = ]]; then
    Previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  case $Previous in
    :) _velkrund_files; return ;;
    --completion) _velkrund_words 'bash zsh fish'; return ;;
  esac
  if ((COMP_CWORD == 1)); then
    _velkrund_words '%s'
    return
  fi
  if ((COMP_CWORD == 2)); then
    case ${COMP_WORDS[1]} in
%s    esac
    return
  fi
  case "${COMP_WORDS[1]} ${COMP_WORDS[2]} $Previous" in
%s  esac
  case "${COMP_WORDS[1]} ${COMP_WORDS[2]}" in
%s  esac
  if [[ $Files && $Current != -* ]]; then
    _velkrund_files
  else
    _velkrund_words "$Options"
  fi
}

complete -F _velkrund velkrund
)";

/// What completes the value of an option, in the branch of a case; empty when the option has none.
std::string BashValue(const TDeclaredCommand& Declared, const TOption& Option) {
  if (Option.IsSwitch() || Option.IsArgument()) return {};
  std::string Pattern, Action;
  for (const std::string& Spelling : CommaSeparated(Option.Names))
    Pattern += Format("%s'%s %s'", Pattern.empty() ? "" : " | ", Name(Declared), Spelling);
  if (!Option.Choices.empty()) Action = Format("_velkrund_words '%s'; ", Spaced(Option.Choices));
  if (Option.Value == FileValue) Action = "_velkrund_files; ";
  return Format("    %s) %sreturn ;;\n", Pattern, Action);
}

std::string BashOptions(const TDeclaredCommand& Declared) {
  std::vector<std::string> Words = {"--help"};
  bool TakesFiles = false;
  for (const TOption& Option : OptionsOf(Declared)) {
    if (!Option.IsArgument()) Words.push_back(Option.Name());
    TakesFiles = TakesFiles || (Option.IsArgument() && Option.Value == FileValue);
  }
  return Format("    '%s') Options='%s'%s ;;\n", Name(Declared), Spaced(Words), TakesFiles ? " Files=yes" : "");
}

std::string BashCompletion(const TDeclaredCommands& Commands) {
  std::string Objects, Values, Options;
  for (const std::string& Verb : Verbs(Commands)) {
    Objects += Format("      %s) _velkrund_words '", Verb);
    for (const TDeclaredCommand& Declared : OfVerb(Commands, Verb))
      Objects += std::string(Declared.Command->Texts().Object) + " ";
    Objects += "--help' ;;\n";
  }
  for (const TDeclaredCommand& Declared : Commands) {
    for (const TOption& Option : OptionsOf(Declared)) Values += BashValue(Declared, Option);
    Options += BashOptions(Declared);
  }
  return Format(BashScript, FirstWords(Commands), Objects, Values, Options);
}

// zsh

constexpr std::string_view ZshScript = R"(#compdef velkrund
# Completes command lines of velkrund in zsh.

_velkrund() {
  local -a Words
  local Command="$words[2] $words[3]"
  if (( CURRENT == 2 )); then
    compadd -- %s
  elif (( CURRENT == 3 )); then
    case $words[2] in
%s      --completion) Words=(bash zsh fish) ;;
    esac
    _describe word Words
  else
    shift 2 words
    (( CURRENT -= 2 ))
    case $Command in
%s    esac
  fi
}

# Read by the completion system, or by a start file.
if [[ $funcstack[1] == _velkrund ]]; then
  _velkrund "$@"
else
  compdef _velkrund velkrund
fi
)";

std::string ZshText(std::string_view Text) {
  std::string Result;
  for (const char C : Replaced(Text, "[]:\\", "\\")) Result += C == '\'' ? std::string("'\\''") : std::string(1, C);
  return Result;
}

std::string ZshValue(const TOption& Option) {
  std::string Action;
  if (!Option.Choices.empty()) Action = "(" + Spaced(Option.Choices) + ")";
  if (Option.Value == FileValue) Action = "_files";
  return Format(":%s:%s", ZshText(Option.Value), Action.empty() ? " " : Action);
}

std::string ZshOption(const TOption& Option) {
  if (Option.IsArgument()) return Format("'%s%s'", Option.Repeatable ? "*" : "", ZshValue(Option));
  const std::vector<std::string> Names = CommaSeparated(Option.Names);
  std::string Result;
  for (const std::string& Spelling : Names) {
    const bool IsLong = Spelling.starts_with("--");
    const std::string Excluded = Option.Repeatable ? "*" : Format("(%s)", Spaced(Names));
    const char* const Joint = Option.IsSwitch() ? "" : IsLong ? "=" : "+";
    Result += Format("%s'%s%s%s[%s]%s'", Result.empty() ? "" : " \\\n          ", Excluded, Spelling, Joint,
                     ZshText(Gist(Option.Help)), Option.IsSwitch() ? "" : ZshValue(Option));
  }
  return Result;
}

std::string ZshCompletion(const TDeclaredCommands& Commands) {
  std::string Objects, Arguments;
  for (const std::string& Verb : Verbs(Commands)) {
    Objects += Format("      %s) Words=(", Verb);
    for (const TDeclaredCommand& Declared : OfVerb(Commands, Verb))
      Objects += Format("'%s:%s' ", Declared.Command->Texts().Object, ZshText(Declared.Command->Texts().Summary));
    Objects += "'--help:tells about the commands') ;;\n";
  }
  for (const TDeclaredCommand& Declared : Commands) {
    Arguments +=
        Format("      '%s')\n        _arguments -s -S '(- *)'{-h,--help}'[tells about the command]'", Name(Declared));
    for (const TOption& Option : OptionsOf(Declared)) Arguments += " \\\n          " + ZshOption(Option);
    Arguments += "\n        ;;\n";
  }
  return Format(ZshScript, FirstWords(Commands), Objects, Arguments);
}

// fish

constexpr std::string_view FishScript = R"(# Completes command lines of velkrund in fish.

function __velkrund_after --description 'Whether the line is these words so far, or with -m begins with them'
  argparse m/more -- $argv; or return
  set -l Words (commandline -opc)
  set -e Words[1]
  set -q _flag_more; or test (count $Words) -eq (count $argv); or return
  test (count $argv) -eq 0; and return
  set -l Begin $Words[1..(count $argv)]
  test "$Begin" = "$argv"
end

complete -c velkrund -f
complete -c velkrund -s h -l help -d 'tells about the program or the command'
complete -c velkrund -n __velkrund_after -l version -d 'the version'
complete -c velkrund -n __velkrund_after -l manual -d 'the manual page'
complete -c velkrund -n '__velkrund_after; or __velkrund_after -- --completion' -l completion -x -a 'bash zsh fish'
)";

std::string FishText(std::string_view Text) { return "'" + Replaced(Text, "'\\", "\\") + "'"; }

std::string FishOption(const std::string& Condition, const TOption& Option) {
  std::string Result = Format("complete -c velkrund -n '%s'", Condition);
  if (Option.IsArgument()) return Option.Value == FileValue ? Result + " -F\n" : "";
  for (const std::string& Spelling : CommaSeparated(Option.Names))
    Result += Spelling.starts_with("--") ? " -l " + Spelling.substr(2) : " -s " + Spelling.substr(1);
  if (Option.Value == FileValue)
    Result += " -r -F";
  else if (!Option.IsSwitch())
    Result += " -x";
  if (!Option.Choices.empty()) Result += Format(" -a '%s'", Spaced(Option.Choices));
  return Result + " -d " + FishText(Gist(Option.Help)) + "\n";
}

std::string FishCompletion(const TDeclaredCommands& Commands) {
  std::string Result(FishScript);
  for (const std::string& Verb : Verbs(Commands)) {
    Result += Format("complete -c velkrund -n __velkrund_after -a %s\n", Verb);
    for (const TDeclaredCommand& Declared : OfVerb(Commands, Verb))
      Result += Format("complete -c velkrund -n '__velkrund_after %s' -a %s -d %s\n", Verb,
                       Declared.Command->Texts().Object, FishText(Declared.Command->Texts().Summary));
  }
  for (const TDeclaredCommand& Declared : Commands) {
    Result += "\n";
    for (const TOption& Option : OptionsOf(Declared))
      Result += FishOption("__velkrund_after -m " + Name(Declared), Option);
  }
  return Result;
}

}  // namespace

bool IsCompletedShell(std::string_view Shell) { return Shell == "bash" || Shell == "zsh" || Shell == "fish"; }

std::string Completion(const std::vector<TDeclaredCommand>& Commands, std::string_view Shell) {
  if (Shell == "bash") return BashCompletion(Commands);
  return Shell == "zsh" ? ZshCompletion(Commands) : FishCompletion(Commands);
}

}  // namespace velkrund
