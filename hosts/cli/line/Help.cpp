#include "hosts/cli/line/Help.h"

#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr int Width = 100;
constexpr int NamesWidth = 30;

std::string Padded(std::string Text, int Columns) {
  Text.append(static_cast<std::size_t>(std::max(Columns - DisplayWidth(Text), 0)), ' ');
  return Text;
}

/// "  -d, --database DB          the database ..."; names that need more room stand on a line of their own.
std::string OptionHelp(const TOption& Option) {
  std::string Names = "  ";
  if (Option.Names.starts_with("--")) Names += "    ";
  for (const char C : Option.Names) Names += C == ',' ? ", " : std::string(1, C);
  if (!Option.IsSwitch() && !Option.IsArgument()) Names += " " + Option.Value;
  std::string Result = Padded(Names, NamesWidth);
  if (DisplayWidth(Names) >= NamesWidth) Result += "\n" + std::string(NamesWidth, ' ');
  Result += Wrapped(Option.Help, NamesWidth, Width);
  if (Option.Repeatable && !Option.IsArgument()) Result += " (can be repeated)";
  return Result + "\n";
}

std::string GroupHelp(const TOptionGroup& Group) {
  std::string Result = "\n" + Group.Title + ":\n";
  for (const TOption& Option : Group.Options) Result += OptionHelp(Option);
  return Result;
}

}  // namespace

std::string ProgramHelp(const TCommands& Commands, const TOptionGroup& General, std::string_view Verb) {
  std::string Result = Format("velkrund %s.\n\nUsage: velkrund ", ProgramSummary) +
                       (Verb.empty() ? std::string("VERB") : std::string(Verb)) + " OBJECT [options]\n\nCommands:\n";
  for (const auto& Command : Commands) {
    const TCommandTexts& Texts = Command->Texts();
    if (!Verb.empty() && Texts.Verb != Verb) continue;
    Result += "  " + Padded(Format("%s %s", Texts.Verb, Texts.Object), 24) + std::string(Texts.Summary) + "\n";
  }
  Result += GroupHelp(General);
  Result +=
      "\nvelkrund VERB OBJECT --help tells all about a command; velkrund --version the version.\n"
      "velkrund --manual prints the manual page, velkrund --completion bash|zsh|fish what makes a shell complete\n"
      "command lines.\n";
  return Result;
}

std::string CommandHelp(const TCommand& Command, const std::vector<TOptionGroup>& Options) {
  const TCommandTexts& Texts = Command.Texts();
  const std::string Name = Format("velkrund %s %s", Texts.Verb, Texts.Object);
  std::string Result = Format("%s: %s\n\nUsage: ", Name, Texts.Summary);
  Result += Wrapped(Format("%s %s [options]", Name, Texts.Usage), 7, Width) + "\n";
  if (!Texts.Details.empty()) Result += "\n" + Wrapped(Texts.Details, 0, Width) + "\n";
  for (const TOptionGroup& Group : Options) Result += GroupHelp(Group);
  Result += "\nExamples:\n";
  for (const TExample& Example : Texts.Examples)
    Result += Format("  velkrund %s\n      %s\n", Example.Line, Wrapped(Example.Meaning, 6, Width));
  return Result;
}

}  // namespace velkrund
