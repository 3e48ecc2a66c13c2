#include "hosts/cli/line/CompletionParts.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::string_view ZshScript = R"(#compdef velkrund
# Completes command lines of velkrund in zsh.

_velkrund() {
  local -a Words General
  local Verb Object
  integer At
  General=('(- *)'{-h,--help}'[tells about the program or the command]' \
          %s)
  # General options may stand before the verb and the object.
  for (( At = 2; At < CURRENT; ++At )); do
    case $words[At] in
      %s) (( ++At )) ;;
      -*) ;;
      *) if [[ -z $Verb ]]; then Verb=$words[At]; else Object=$words[At]; break; fi ;;
    esac
  done
  if [[ -z $Object && ( $words[CURRENT] == -* || $words[CURRENT-1] == (%s|--completion) ) ]]; then
    [[ -n $Verb ]] || General+=('(- *)--version[the version]' '(- *)--manual[the manual page]' \
          '(- *)--completion=[completion of a shell]:SHELL:(bash zsh fish)')
    _arguments -s -S $General
  elif [[ -z $Verb ]]; then
    compadd -- %s
  elif [[ -z $Object ]]; then
    case $Verb in
%s    esac
    _describe word Words
  else
    shift $(( At - 1 )) words
    (( CURRENT -= At - 1 ))
    case "$Verb $Object" in
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

}  // namespace

std::string ZshCompletion(const TDeclaredCommands& Commands) {
  std::string Objects, Arguments;
  std::vector<std::string> General;
  for (const TOption& Option : GeneralOptions(Commands).Options) General.push_back(ZshOption(Option));
  for (const std::string& Verb : Verbs(Commands)) {
    Objects += Format("      %s) Words=(", Verb);
    for (const TDeclaredCommand& Declared : OfVerb(Commands, Verb))
      Objects += Format("'%s:%s' ", Declared.Command->Texts().Object, ZshText(Declared.Command->Texts().Summary));
    Objects += "'--help:tells about the commands') ;;\n";
  }
  for (const TDeclaredCommand& Declared : Commands) {
    Arguments += Format("      '%s')\n        _arguments -s -S $General", Declared.Command->Name());
    for (const TOption& Option : OptionsOf(Declared)) Arguments += " \\\n          " + ZshOption(Option);
    Arguments += "\n        ;;\n";
  }
  const std::string Valued = Between(GeneralSpellings(Commands, false), "|");
  return Format(ZshScript, Between(General, " \\\n          "), Valued, Valued, Spaced(Verbs(Commands)), Objects,
                Arguments);
}

}  // namespace velkrund
