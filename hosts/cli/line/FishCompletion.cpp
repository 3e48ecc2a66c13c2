#include "hosts/cli/line/CompletionParts.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::string_view FishScript = R"(# Completes command lines of velkrund in fish.

function __velkrund_after --description 'Whether the line is these words so far, or with -m begins with them'
  argparse m/more -- $argv; or return
  # General options may stand anywhere.
  set -l All (commandline -opc)
  set -e All[1]
  set -l Words
  set -l IsValue no
  for Word in $All
    if test $IsValue = yes
      set IsValue no
      continue
    end
    switch $Word
      case %s
        set IsValue yes
      case %s
      case '*'
        set -a Words $Word
    end
  end
  test $IsValue = no; or return
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
  std::string Result = "complete -c velkrund" + (Condition.empty() ? "" : Format(" -n '%s'", Condition));
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

}  // namespace

std::string FishCompletion(const TDeclaredCommands& Commands) {
  std::vector<std::string> Switches = GeneralSpellings(Commands, true);
  const std::vector<std::string> Valued = GeneralSpellings(Commands, false);
  for (const std::string& Spelling : Valued) Switches.push_back(FishText(Spelling + "=*"));
  std::string Result = Format(FishScript, Spaced(Valued), Spaced(Switches));
  for (const TOption& Option : GeneralOptions(Commands).Options) Result += FishOption({}, Option);
  for (const std::string& Verb : Verbs(Commands)) {
    Result += Format("complete -c velkrund -n __velkrund_after -a %s\n", Verb);
    for (const TDeclaredCommand& Declared : OfVerb(Commands, Verb))
      Result += Format("complete -c velkrund -n '__velkrund_after %s' -a %s -d %s\n", Verb,
                       Declared.Command->Texts().Object, FishText(Declared.Command->Texts().Summary));
  }
  for (const TDeclaredCommand& Declared : Commands) {
    Result += "\n";
    for (const TOption& Option : OptionsOf(Declared))
      Result += FishOption("__velkrund_after -m " + Declared.Command->Name(), Option);
  }
  return Result;
}

}  // namespace velkrund
