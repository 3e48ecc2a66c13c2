#include "hosts/cli/line/CompletionParts.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::string_view ProgramOptions = "--version --manual --completion";

constexpr std::string_view BashScript = R"(# Completes command lines of velkrund in bash.

_velkrund_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$Current")
}

_velkrund_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -f -- "$Current")
}

_velkrund() {
  local Current=${COMP_WORDS[COMP_CWORD]} Previous=${COMP_WORDS[COMP_CWORD - 1]}
  local Verb= Object= Words= Options='--help %s' Files= Ended= At
  COMPREPLY=()
  # The shell cuts words at "=" and at ":", behind which addresses of databases have a file.
  if [[ $Current == [=:] ]]; then
    [[ $Current == = ]] || Previous=$Current
    Current=
  elif [[ $Previous == = ]]; then
    Previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  # General options may stand before the verb and the object.
  for ((At = 1; At < COMP_CWORD; ++At)); do
    case ${COMP_WORDS[At]} in
      --) Ended=yes; Previous=; break ;;
      %s) [[ ${COMP_WORDS[At + 1]} != = ]] || ((++At)); ((++At)) ;;
      -* | [=:]) ;;
      *) if [[ ! $Verb ]]; then Verb=${COMP_WORDS[At]}; elif [[ ! $Object ]]; then Object=${COMP_WORDS[At]}; fi ;;
    esac
  done
  case $Previous in
    :) _velkrund_files; return ;;
    --completion) _velkrund_words 'bash zsh fish'; return ;;
%s  esac
  if [[ ! $Verb ]]; then
    Words='%s' Options+=' %s'
  elif [[ ! $Object ]]; then
    case $Verb in
%s      *) Options= ;;
    esac
  else
    case "$Verb $Object $Previous" in
%s    esac
    case "$Verb $Object" in
%s      *) Options= ;;
    esac
  fi
  if [[ $Ended || $Current != -* ]] && [[ $Files ]]; then
    _velkrund_files
  elif [[ ! $Ended ]]; then
    [[ $Words && $Current != -* ]] || Words=$Options
    _velkrund_words "$Words"
  fi
}

complete -F _velkrund velkrund
)";

/// What completes the value of an option, in the branch of a case; empty when the option has none. Before: what stands
/// before the option's name in the pattern.
std::string BashValue(std::string_view Indent, std::string_view Before, const TOption& Option) {
  if (Option.IsSwitch() || Option.IsArgument()) return {};
  std::string Pattern, Action;
  for (const std::string& Spelling : CommaSeparated(Option.Names))
    Pattern += Format("%s'%s%s'", Pattern.empty() ? "" : " | ", Before, Spelling);
  if (!Option.Choices.empty()) Action = Format("_velkrund_words '%s'; ", Spaced(Option.Choices));
  if (Option.Value == FileValue) Action = "_velkrund_files; ";
  return Format("%s%s) %sreturn ;;\n", Indent, Pattern, Action);
}

std::string BashOptions(const TDeclaredCommand& Declared) {
  std::vector<std::string> Words;
  bool TakesFiles = false;
  for (const TOption& Option : OptionsOf(Declared)) {
    if (!Option.IsArgument()) Words.push_back(Option.Name());
    TakesFiles = TakesFiles || (Option.IsArgument() && Option.Value == FileValue);
  }
  return Format("      '%s') Options+=' %s'%s ;;\n", Declared.Command->Name(), Spaced(Words),
                TakesFiles ? " Files=yes" : "");
}

}  // namespace

std::string BashCompletion(const TDeclaredCommands& Commands) {
  std::string General, Objects, Values, Options;
  std::vector<std::string> GeneralNames;
  for (const TOption& Option : GeneralOptions(Commands).Options) {
    GeneralNames.push_back(Option.Name());
    General += BashValue("    ", "", Option);
  }
  for (const std::string& Verb : Verbs(Commands)) {
    std::vector<std::string> Words;
    for (const TDeclaredCommand& Declared : OfVerb(Commands, Verb))
      Words.emplace_back(Declared.Command->Texts().Object);
    Objects += Format("      %s) Words='%s --help' ;;\n", Verb, Spaced(Words));
  }
  for (const TDeclaredCommand& Declared : Commands) {
    for (const TOption& Option : OptionsOf(Declared))
      Values += BashValue("      ", Declared.Command->Name() + " ", Option);
    Options += BashOptions(Declared);
  }
  return Format(BashScript, Spaced(GeneralNames), Between(GeneralSpellings(Commands, false), " | "), General,
                Spaced(Verbs(Commands)), ProgramOptions, Objects, Values, Options);
}

}  // namespace velkrund
