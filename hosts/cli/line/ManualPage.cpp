#include "hosts/cli/line/ManualPage.h"

#include <algorithm>
#include <cstdio>

#include "hosts/cli/line/Help.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

struct TMeaning {
  std::string_view What, Meaning;
};

constexpr TMeaning ExitStatus[] = {
    {"0", "Everything was done. What an option said to leave alone is no failure; the report names it."},
    {"1", "Something failed; the message says what and where."},
    {"2", "The command line says something wrong; the message names the option. Nothing was done."},
    {"3", "The run was cancelled, by Ctrl-C or at a question. What was finished before stays."},
};

constexpr TMeaning Files[] = {
    {"velkrund.toml",
     "The configuration. It is looked for in the file that --config names, in $VELKRUND_CONFIG, in the current folder, "
     "and in the folder velkrund of the user's configuration folder ($XDG_CONFIG_HOME, else ~/.config). It gives names "
     "to databases, says which one is meant when none is named, and sets code page, language and trace."},
};

constexpr std::string_view ConfigurationExample =
    "default_database = \"shop\"\n"
    "code_page = 1251\n"
    "language = \"en\"\n"
    "busy_seconds = 10\n"
    "\n"
    "[database.shop]\n"
    "url = \"sqlite:shop.db\"\n"
    "\n"
    "[database.office]\n"
    "url = \"postgresql://clerk@db.example/office?sslmode=verify-full\"\n"
    "\n"
    "[trace]\n"
    "level = \"info\"\n"
    "file = \"velkrund.log\"\n";

constexpr TMeaning Environment[] = {
    {"VELKRUND_CONFIG", "The configuration file to use when --config names none."},
    {"XDG_CONFIG_HOME, HOME", "Where the user's configuration folder is."},
    {"TMPDIR", "The folder of temporary files, which stand in for pipes; /tmp when it is not set."},
    {"LC_ALL, LC_MESSAGES, LANG",
     "The language of questions, unless the configuration sets it: the first of them that is not empty counts. Russian "
     "when it begins with \"ru\", English otherwise."},
    {"PGHOST, PGPORT, PGUSER, PGPASSFILE, PGSERVICE ...",
     "What the address of a PostgreSQL database leaves open, as for that engine's own tools."},
    {"TERM", "Whether the terminal can show a progress bar."},
};

/// Text that troff shows as it stands. Dashes are those that can be searched for and copied.
std::string Escaped(std::string_view Text) {
  std::string Result;
  for (std::size_t At = 0; At < Text.size();) {
    const bool LineBegins = Result.empty() || Result.back() == '\n';
    const char32_t Code = NextCodePoint(Text, At);
    switch (Code) {
      case U'\\':
        Result += "\\[rs]";
        break;
      case U'-':
        Result += "\\-";
        break;
      case U'\'':
        Result += "\\[aq]";
        break;
      case U'"':
        Result += "\\[dq]";
        break;
      case U'`':
        Result += "\\[ga]";
        break;
      case U'^':
        Result += "\\[ha]";
        break;
      case U'~':
        Result += "\\[ti]";
        break;
      case U'.':
        Result += LineBegins ? "\\&." : ".";
        break;
      default:
        if (Code < 0x80) {
          Result += static_cast<char>(Code);
        } else {
          char Name[16];
          std::snprintf(Name, sizeof Name, "\\[u%04X]", static_cast<unsigned>(Code));
          Result += Name;
        }
    }
  }
  return Result;
}

std::string Bold(std::string_view Text) { return "\\fB" + Escaped(Text) + "\\fR"; }
std::string Italic(std::string_view Text) { return "\\fI" + Escaped(Text) + "\\fR"; }

/// A sentence of its own, whatever the text looked like in a list.
std::string Sentence(std::string_view Text) {
  std::string Result(Text);
  if (!Result.empty() && Result.front() >= 'a' && Result.front() <= 'z')
    Result.front() = static_cast<char>(Result.front() - 'a' + 'A');
  if (!Result.ends_with('.')) Result += '.';
  return Result;
}

std::string Paragraphs(std::string_view Text) {
  std::string Result;
  for (std::size_t At = 0; At < Text.size();) {
    const std::size_t End = std::min(Text.find("\n\n", At), Text.size());
    Result += ".PP\n" + Escaped(Text.substr(At, End - At)) + "\n";
    At = End + 2;
  }
  return Result;
}

std::string AsItStands(std::string_view Lines) { return ".EX\n" + Escaped(Lines) + ".EE\n"; }

template <std::size_t Count>
std::string Meanings(const TMeaning (&List)[Count]) {
  std::string Result;
  for (const auto& [What, Meaning] : List) Result += ".TP\n" + Bold(What) + "\n" + Escaped(Meaning) + "\n";
  return Result;
}

std::string OptionText(const TOption& Option) {
  std::string Result = ".TP\n";
  if (Option.IsArgument()) {
    Result += Italic(Option.Names);
  } else {
    const std::vector<std::string> Names = CommaSeparated(Option.Names);
    for (const std::string& Name : Names) Result += (&Name == &Names.front() ? "" : ", ") + Bold(Name);
    if (!Option.IsSwitch()) Result += " " + Italic(Option.Value);
  }
  Result += "\n" + Escaped(Sentence(Option.Help)) + "\n";
  if (Option.Repeatable && !Option.IsArgument()) Result += "Can be repeated.\n";
  return Result;
}

std::string CommandText(const TDeclaredCommand& Declared) {
  const TCommandTexts& Texts = Declared.Command->Texts();
  const std::string Name = Format("%s %s", Texts.Verb, Texts.Object);
  std::string Result = Format(".SS %s\n%s\n", Escaped(Name), Escaped(Sentence(Texts.Summary)));
  Result += Format(".PP\n%s %s\n", Bold("velkrund " + Name), Escaped(Format("%s [options]", Texts.Usage)));
  Result += Paragraphs(Texts.Details);
  for (const TOptionGroup& Group : Declared.Groups) {
    if (Group.IsGeneral) continue;
    Result += ".PP\n" + Escaped(Group.Title) + ":\n";
    for (const TOption& Option : Group.Options) Result += OptionText(Option);
  }
  Result += ".PP\nExamples:\n";
  for (const TExample& Example : Texts.Examples)
    Result += ".PP\n" + Escaped(Sentence(Example.Meaning)) + "\n" + AsItStands(Format("  velkrund %s\n", Example.Line));
  return Result;
}

std::string GeneralText(const std::vector<TDeclaredCommand>& Commands) {
  std::string Result =
      ".SH GENERAL OPTIONS\nEvery command has these. They may stand anywhere on the line, "
      "before the verb too.\n";
  for (const TOption& Option : GeneralOptions(Commands).Options) Result += OptionText(Option);
  constexpr TMeaning Others[] = {
      {"-h, --help", "Tells about the program, or about the command that the line names."},
      {"--", "Ends the options: what follows are arguments, even if they begin with a dash."},
      {"--version", "Prints the program's version. Without a command, as the following two."},
      {"--manual", "Prints this page, for troff."},
      {"--completion bash|zsh|fish",
       "Prints what makes the shell complete command lines; to be read by its start file."},
  };
  return Result + Meanings(Others);
}

}  // namespace

std::string ManualPage(const std::vector<TDeclaredCommand>& Commands) {
  std::string Result = Format(".TH VELKRUND 1 \"\" \"Velkrund %s\" \"User Commands\"\n", VelkrundVersion());
  Result += ".nh\n.ad l\n";
  Result += Format(".SH NAME\nvelkrund \\- %s\n", Escaped(ProgramSummary));
  Result += Format(".SH SYNOPSIS\n%s %s [%s]\n", Bold("velkrund"), Italic("VERB OBJECT"), Italic("options"));
  Result += Format(".SH DESCRIPTION\n%s %s.\n", Bold("velkrund"), Escaped(ProgramSummary));
  Result += Paragraphs(
      "A file holds any number of sections, each the written form of one object, such as the rows of a table. Files "
      "are "
      "text, and the same object always gives the same text.\n\n"
      "Nothing is lost or guessed: where rows, sections or files are there already, an option says what to do; without "
      "it a person at a terminal is asked, and elsewhere it is an error that names the option. What is imported is "
      "committed section by section, so that after a failure the database is as it was before the section.\n\n"
      "Results go to standard output, everything else to standard error.");
  Result += ".SH COMMANDS\n";
  for (const TDeclaredCommand& Declared : Commands) Result += CommandText(Declared);
  Result += GeneralText(Commands);
  Result += ".SH EXIT STATUS\n" + Meanings(ExitStatus);
  Result += ".SH FILES\n" + Meanings(Files) + ".PP\n" + AsItStands(ConfigurationExample);
  Result += Paragraphs(
      "Relative file names in it are relative to its own folder. In an address ${NAME} stands for an environment "
      "variable, so that secrets stay out of the file.");
  return Result + ".SH ENVIRONMENT\n" + Meanings(Environment);
}

}  // namespace velkrund
