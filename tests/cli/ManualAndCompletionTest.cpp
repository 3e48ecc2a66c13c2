#include <gmock/gmock.h>

#include <regex>
#include <set>

#include "tests/cli/CommandTest.h"

namespace velkrund::tests {
namespace {

using TManualTest = TCommandTest;
using TCompletionTest = TCommandTest;
using testing::HasSubstr;

/// The commands that the program's help lists, as their two words.
std::vector<TArguments> CommandsOf(const std::string& Help) {
  static const std::regex Line("\n  ([a-z]+) ([a-z-]+)  +[a-z]");
  std::vector<TArguments> Result;
  for (std::sregex_iterator Found(Help.begin(), Help.end(), Line), End; Found != End; ++Found)
    Result.push_back({(*Found)[1], (*Found)[2]});
  return Result;
}

std::set<std::string> LongOptionsOf(const std::string& Help) {
  static const std::regex Option("\n  (?:-[a-zA-Z], |    )(--[a-z-]+)");
  std::set<std::string> Result;
  for (std::sregex_iterator Found(Help.begin(), Help.end(), Option), End; Found != End; ++Found)
    Result.insert((*Found)[1]);
  return Result;
}

TEST_F(TManualTest, HasEveryCommandAndEveryOptionThatHelpShows) {
  std::string Page = Run({"--manual"}).Output;
  const std::size_t General = Page.find(".SH GENERAL OPTIONS");
  ASSERT_NE(General, std::string::npos);
  const std::vector<TArguments> Commands = CommandsOf(Run({"--help"}).Output);
  ASSERT_GE(Commands.size(), 13U);
  for (const TArguments& Command : Commands) {
    const std::string Title = ".SS " + Command[0] + " " + std::regex_replace(Command[1], std::regex("-"), "\\-") + "\n";
    const std::size_t Begin = Page.find(Title);
    ASSERT_NE(Begin, std::string::npos) << Title;
    const std::string Text = Page.substr(Begin, Page.find("\n.S", Begin) - Begin) + Page.substr(General);
    const std::set<std::string> Options = LongOptionsOf(Run({Command[0], Command[1], "--help"}).Output);
    EXPECT_GE(Options.size(), 5U) << Title;
    for (const std::string& Option : Options)
      EXPECT_THAT(Text, HasSubstr("\\fB" + std::regex_replace(Option, std::regex("-"), "\\-") + "\\fR")) << Title;
  }
}

TEST_F(TManualTest, IsWhatTheFormatterUnderstands) {
  EXPECT_EQ(Shell("$V --manual > page").ExitCode, 0);
  const TOutcome Checked = Shell("groff -man -ww -z page");
  EXPECT_EQ(Checked.ExitCode, 0);
  EXPECT_EQ(Checked.Errors, "");
  const std::string Shown = Shell("groff -man -Tascii -P-cbou -rLL=200n page").Output;
  for (const char* const Text : {"velkrund - moves database objects", "-d, --database DB",
                                 "velkrund file remove orders.eif 0 3", "url = \"sqlite:shop.db\"", "EXIT STATUS",
                                 "VELKRUND_CONFIG", "LC_ALL, LC_MESSAGES, LANG", "~/.config", "The section's name"})
    EXPECT_THAT(Shown, HasSubstr(Text));
}

struct TCompletionCase {
  TArguments Words;  // behind the program's name; the last one is being typed
  std::string Offered;
};

TEST_F(TCompletionTest, BashOffersWhatMayStandThere) {
  Write("a b.eif", "");
  Write("orders.eif", "");
  EXPECT_EQ(Shell("$V --completion bash > script").ExitCode, 0);
  const TCompletionCase Cases[] = {
      {{"im"}, "import"},
      {{"--ma"}, "--manual"},
      {{"--completion", ""}, "bash|zsh|fish"},
      {{"export", ""}, "table|structure|query|generator|resource|single-resources|language|xml|--help"},
      {{"file", "re"}, "remove|repair"},
      {{"nothing", ""}, ""},
      {{"--json", "-v", "exp"}, "export"},
      {{"--js"}, "--json"},
      {{"--progress", ""}, "auto|bar|plain|none|json"},
      {{"--config", "=", "a.toml", "file", "--progress", "bar", "che"}, "check"},
      {{"file", "-y", "list", "o"}, "orders.eif"},
      {{"file", "list", "--", "-"}, ""},
      {{"export", "table", "--over"}, "--overwrite"},
      {{"export", "table", "--all", "--re"}, "--release"},
      {{"export", "table", "--overwrite", ""}, "ask|yes|no"},
      {{"export", "table", "--overwrite", "=", "y"}, "yes"},
      {{"export", "table", "--overwrite", "="}, "ask|yes|no"},
      {{"import", "table", "--missing-fields", "e"}, "error"},
      {{"import", "structure", "--merge", ""}, "skip|replace|difference"},
      {{"export", "table", "-o", "or"}, "orders.eif"},
      {{"import", "table", "--input", "a"}, "a b.eif"},
      {{"export", "table", "-t", "or"}, ""},
      {{"export", "table", "-d", "sqlite", ":", "or"}, "orders.eif"},
      {{"file", "list", "o"}, "orders.eif"},
      {{"file", "list", "--j"}, "--json"},
      {{"database", "info", "--a"}, ""},
  };
  for (const auto& [Words, Offered] : Cases) {
    std::string Line = "bash -c 'source ./script; COMP_WORDS=(velkrund";
    for (const std::string& Word : Words) Line += " \"" + Word + "\"";
    Line += "); COMP_CWORD=" + std::to_string(Words.size()) + "; _velkrund; IFS=\"|\"; echo \"${COMPREPLY[*]}\"'";
    const TOutcome Outcome = Shell(Line);
    EXPECT_EQ(Outcome.Output, Offered + "\n") << Joined(Words);
    EXPECT_EQ(Outcome.Errors, "") << Joined(Words);
  }
  EXPECT_EQ(Shell("bash -c 'source ./script; complete -p velkrund'").Output, "complete -F _velkrund velkrund\n");
}

TEST_F(TCompletionTest, EveryShellGetsEveryCommandOthersAreRefused) {
  const std::vector<TArguments> Commands = CommandsOf(Run({"--help"}).Output);
  for (const auto& [Shell, Begin] : {std::pair("zsh", "#compdef velkrund\n"), std::pair("fish", "# Completes")}) {
    const TOutcome Outcome = Run({"--completion", Shell});
    EXPECT_EQ(Outcome.ExitCode, 0);
    EXPECT_EQ(Outcome.Output.find(Begin), 0U) << Shell;
    for (const TArguments& Command : Commands)
      EXPECT_THAT(Outcome.Output, HasSubstr(Command[0] + " " + Command[1] + "'")) << Shell;
  }
  for (const auto& [Arguments, Says] :
       {std::pair(TArguments{"--completion", "tcsh"}, "--completion takes bash|zsh|fish, not 'tcsh'"),
        std::pair(TArguments{"--completion"}, "--completion takes exactly one value")}) {
    const TOutcome Outcome = Run(Arguments);
    EXPECT_EQ(Outcome.ExitCode, 2) << Says;
    EXPECT_THAT(Outcome.Errors, HasSubstr(Says));
    EXPECT_EQ(Outcome.Output, "");
  }
}

}  // namespace
}  // namespace velkrund::tests
