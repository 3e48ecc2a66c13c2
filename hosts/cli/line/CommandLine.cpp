#include "hosts/cli/line/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <numeric>

#include "hosts/cli/line/Completion.h"
#include "hosts/cli/line/Help.h"
#include "hosts/cli/line/ManualPage.h"
#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

namespace {

struct TParsedOption {
  TOption Option;
  CLI::Option* Parser;  // owned by its application
};

struct TParsedCommand {
  TCommand* Command;
  CLI::App* Parser;  // owned by the application
  TDeclaredCommand Declared;
  std::vector<TParsedOption> Options;
};

/// The commands as the parser sees them: the program, its verbs, their objects.
class TParser {
 public:
  explicit TParser(const TCommands& Commands) : FCommands(Commands), FApplication("", "velkrund") {
    FApplication.require_subcommand(1)->allow_extras();
    FApplication.set_version_flag("--version", Format("velkrund %s\n", VelkrundVersion()));
    FApplication.add_flag_callback("--manual", [this] { Print(ManualPage(Declared())); });
    FApplication.add_option("--completion", [this](const CLI::results_t& Values) {
      if (!IsCompletedShell(Values.back()))
        Refuse(Format("--completion takes %s, not '%s'", CompletedShells, Values.back()));
      Print(Completion(Declared(), Values.back()));
      return true;
    });
    for (const auto& Command : Commands) Add(*Command);
  }

  TParsedLine Parse(int Count, const char* const* Arguments) {
    try {
      FApplication.parse(Count, Arguments);
    } catch (const CLI::CallForHelp&) {
      return {nullptr, Help()};
    } catch (const CLI::CallForVersion& Version) {
      return {nullptr, Version.what()};
    } catch (const CLI::Success&) {
      return {nullptr, FText};
    } catch (const CLI::ParseError& Error) {
      RefuseExtras();
      const std::string Message = Error.what();
      // The parser's own words for a value that is missing, or given twice, are none for people.
      if (dynamic_cast<const CLI::ArgumentMismatch*>(&Error))
        Refuse(Message.substr(0, Message.find(':')) + " takes exactly one value");
      if (!ReachedCommand()) Refuse("say what to do: " + Joined(Words()));
      Refuse(Message);
    }
    RefuseExtras();
    return {Finish().Command, {}};
  }

 private:
  void Add(TCommand& Command) {
    const TCommandTexts& Texts = Command.Texts();
    CLI::App*& Verb = FVerbs[std::string(Texts.Verb)];
    if (!Verb) Verb = FApplication.add_subcommand(std::string(Texts.Verb))->require_subcommand(1)->allow_extras();
    CLI::App* Parser = Verb->add_subcommand(std::string(Texts.Object))->allow_extras();
    TParsedCommand Parsed{&Command, Parser, {&Command, Command.Options()}, {}};
    for (const TOptionGroup& Group : Parsed.Declared.Groups)
      for (const TOption& Option : Group.Options) Parsed.Options.push_back({Option, AddOption(*Parser, Option)});
    FParsed.push_back(std::move(Parsed));
  }

  static CLI::Option* AddOption(CLI::App& Parser, const TOption& Option) {
    CLI::Option* Result;
    if (Option.IsSwitch()) {
      Result = Parser.add_flag_callback(Option.Names, [Set = Option.Set] { Set({}); });
    } else {
      Result = Parser.add_option(Option.Names, [Set = Option.Set](const CLI::results_t& Values) {
        Set(Values);
        return true;
      });
      if (Option.Repeatable && Option.IsArgument()) Result->expected(1, -1)->allow_extra_args();
      // One value behind each: what follows is something else.
      if (Option.Repeatable && !Option.IsArgument()) Result->take_all()->allow_extra_args(false);
    }
    if (Option.Required) Result->required();
    return Result;
  }

  /// Ends the parsing: the text is what was asked for.
  [[noreturn]] void Print(std::string Text) {
    FText = std::move(Text);
    throw CLI::Success();
  }

  std::vector<TDeclaredCommand> Declared() const {
    std::vector<TDeclaredCommand> Result;
    for (const TParsedCommand& Parsed : FParsed) Result.push_back(Parsed.Declared);
    return Result;
  }

  /// The deepest of the program, its verbs and their objects that the line got to.
  const CLI::App& Reached() const {
    const CLI::App* Result = &FApplication;
    while (!Result->get_subcommands().empty()) Result = Result->get_subcommands().front();
    return *Result;
  }

  const TParsedCommand* ReachedCommand() const {
    for (const TParsedCommand& Parsed : FParsed)
      if (Parsed.Parser == &Reached()) return &Parsed;
    return nullptr;
  }

  std::string Help() const {
    if (const TParsedCommand* Parsed = ReachedCommand()) return CommandHelp(*Parsed->Command, Parsed->Declared.Groups);
    return ProgramHelp(FCommands, &Reached() == &FApplication ? "" : Reached().get_name());
  }

  [[noreturn]] void Refuse(const std::string& Message) const {
    std::string Name = "velkrund";
    for (const CLI::App* App = &FApplication; !App->get_subcommands().empty();) {
      App = App->get_subcommands().front();
      Name += " " + App->get_name();
    }
    throw EUsage(Format("%s\n(%s --help tells more)", Message, Name));
  }

  /// What the parser could not place, with what was most likely meant.
  void RefuseExtras() const {
    const std::vector<std::string> Extras = FApplication.remaining(true);
    if (Extras.empty()) return;
    const auto IsOption = [](const std::string& Text) { return Text.starts_with('-') && Text != "-"; };
    const auto Option = std::find_if(Extras.begin(), Extras.end(), IsOption);
    const std::string& Unknown = Option != Extras.end() ? *Option : Extras.front();
    const std::string Bare = Unknown.substr(0, Unknown.find('='));
    const std::string Guess = Nearest(Bare, Option != Extras.end() ? OptionNames() : Words());
    Refuse(Format("'%s' is not understood here%s", Bare, Guess.empty() ? "" : Format("; did you mean '%s'?", Guess)));
  }

  std::vector<std::string> OptionNames() const {
    std::vector<std::string> Result = {"--help"};
    if (const TParsedCommand* Parsed = ReachedCommand())
      for (const TParsedOption& Option : Parsed->Options) Result.push_back(Option.Option.Name());
    return Result;
  }

  std::vector<std::string> Words() const {
    std::vector<std::string> Result;
    for (const CLI::App* App : Reached().get_subcommands([](const CLI::App*) { return true; }))
      Result.push_back(App->get_name());
    return Result;
  }

  const TParsedCommand& Finish() const {
    const TParsedCommand& Parsed = *ReachedCommand();
    const auto Given = [&](const std::string& Name) {
      return std::any_of(Parsed.Options.begin(), Parsed.Options.end(), [&](const TParsedOption& Candidate) {
        return Candidate.Option.Name() == Name && Candidate.Parser->count() > 0;
      });
    };
    for (const auto& [Option, Parser] : Parsed.Options) {
      if (Parser->count() == 0) continue;
      for (const std::string& Other : Option.NotWith)
        if (Given(Other)) Refuse(Format("%s and %s contradict each other: give one of them", Option.Name(), Other));
      const std::string Value = Option.IsSwitch() ? "" : Parser->results().back();
      if (!Option.Choices.empty() &&
          std::find(Option.Choices.begin(), Option.Choices.end(), Value) == Option.Choices.end())
        Refuse(Format("%s takes %s, not '%s'", Option.Name(), Option.Value, Value));
      if (Option.IsNumber && !StrToInt32(Value))
        Refuse(Format("%s takes a whole number, not '%s'", Option.Name(), Value));
      if (!Option.IsSwitch() && Value.empty()) Refuse(Format("%s needs a value that is not empty", Option.Name()));
    }
    try {
      Parsed.Command->CheckOptions();
    } catch (const EUsage& Error) {
      Refuse(Error.what());
    } catch (const ESettingsError& Error) {
      Refuse(Error.Worded(&OptionOf));
    }
    return Parsed;
  }

  const TCommands& FCommands;
  CLI::App FApplication;
  std::map<std::string, CLI::App*> FVerbs;
  std::vector<TParsedCommand> FParsed;
  std::string FText;
};

/// How many letters have to be changed, added, dropped or swapped with their neighbour.
std::size_t Distance(const std::string& A, const std::string& B) {
  std::vector<std::vector<std::size_t>> Cost(A.size() + 1, std::vector<std::size_t>(B.size() + 1));
  for (std::size_t I = 0; I <= A.size(); ++I) Cost[I][0] = I;
  std::iota(Cost[0].begin(), Cost[0].end(), 0U);
  for (std::size_t I = 1; I <= A.size(); ++I) {
    for (std::size_t J = 1; J <= B.size(); ++J) {
      Cost[I][J] = std::min({Cost[I - 1][J] + 1, Cost[I][J - 1] + 1, Cost[I - 1][J - 1] + (A[I - 1] != B[J - 1])});
      if (I > 1 && J > 1 && A[I - 1] == B[J - 2] && A[I - 2] == B[J - 1])
        Cost[I][J] = std::min(Cost[I][J], Cost[I - 2][J - 2] + 1);
    }
  }
  return Cost[A.size()][B.size()];
}

}  // namespace

TParsedLine ParseCommandLine(const TCommands& Commands, int Count, const char* const* Arguments) {
  return TParser(Commands).Parse(Count, Arguments);
}

std::string Nearest(const std::string& Text, const std::vector<std::string>& Candidates) {
  std::string Result;
  std::size_t Best = Text.size() / 3 + 1;  // a distance beyond that is no slip
  for (const std::string& Candidate : Candidates) {
    if (const std::size_t Found = Distance(Text, Candidate); Found < Best + (Result.empty() ? 1 : 0)) {
      Best = Found;
      Result = Candidate;
    }
  }
  return Result;
}

}  // namespace velkrund
