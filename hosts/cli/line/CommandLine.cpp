#include "hosts/cli/line/CommandLine.h"

#include <algorithm>

#include "hosts/cli/line/Completion.h"
#include "hosts/cli/line/Help.h"
#include "hosts/cli/line/ManualPage.h"
#include "hosts/cli/line/OptionParser.h"
#include "standalone/drivers/AddressSecrets.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

using TArguments = std::vector<std::string>;

bool IsOption(const std::string& Argument) { return Argument.size() > 1 && Argument.starts_with('-'); }

bool HasName(const TOption& Option, const std::string& Name) {
  const std::vector<std::string> Names = CommaSeparated(Option.Names);
  return std::find(Names.begin(), Names.end(), Name) != Names.end();
}

/// The arguments that may be options.
TArguments BeforeTheEnd(const TArguments& Arguments) {
  return {Arguments.begin(), std::find(Arguments.begin(), Arguments.end(), "--")};
}

TArguments ArgumentsOf(int Count, const char* const* Arguments) {
  return Count > 1 ? TArguments(Arguments + 1, Arguments + Count) : TArguments();
}

class TLine {
 public:
  TLine(const TCommands& Commands, TArguments Arguments) : FCommands(Commands), FArguments(std::move(Arguments)) {
    for (const auto& Command : Commands) FDeclared.push_back({Command.get(), Command->Options()});
    const TArguments Options = BeforeTheEnd(FArguments);
    FAsksHelp = std::any_of(Options.begin(), Options.end(),
                            [](const std::string& Argument) { return Argument == "-h" || Argument == "--help"; });
  }

  TParsedLine Parse() {
    TakeApart();
    if (!FText.empty()) return {nullptr, FText};
    TCommand* const Command = Find(Word(0), Word(1));
    if (FAsksHelp) return {nullptr, Help(Command)};
    if (!Command) RefuseWords();
    ParseOptions(Declared(*Command), *Command, FRest);
    return {Command, {}};
  }

  /// The words that lead to a command, as far as they do.
  std::string Reached() const {
    if (!IsVerb(Word(0))) return {};
    const TCommand* const Command = Find(Word(0), Word(1));
    return Command ? Command->Name() : Word(0);
  }

 private:
  /// Up to the second word there are general options alone, and those of the program. The former are moved behind it.
  void TakeApart() {
    auto At = FArguments.begin();
    for (; At != FArguments.end() && *At != "--" && FWords.size() < 2 && FText.empty(); ++At) {
      const std::string Name = At->substr(0, At->find('='));
      if (!IsOption(*At)) {
        FWords.push_back(*At);
      } else if (const TOption* const Option = FindGeneral(Name)) {
        FRest.push_back(*At);
        if (Option->IsSwitch() || Name.size() < At->size()) continue;
        if (At + 1 == FArguments.end()) throw EUsage(Name + " takes exactly one value");
        FRest.push_back(*++At);
      } else if (IsGeneralCluster(*At)) {
        FRest.push_back(*At);
      } else if (!FAsksHelp && !TakeProgramOption(Name, At)) {
        RefuseOption(Name);
      }
    }
    FRest.insert(FRest.end(), At, FArguments.end());
  }

  /// Options that stand for a command.
  bool TakeProgramOption(const std::string& Name, TArguments::const_iterator At) {
    if (!FWords.empty()) return false;
    if (Name == "--version") FText = Format("velkrund %s\n", VelkrundVersion());
    if (Name == "--manual") FText = ManualPage(FDeclared);
    if (Name == "--completion") {
      if (Name == *At && At + 1 == FArguments.end()) throw EUsage("--completion takes exactly one value");
      const std::string Shell = Name == *At ? *(At + 1) : At->substr(Name.size() + 1);
      if (!IsCompletedShell(Shell))
        throw EUsage(Format("--completion takes %s, not '%s'%s", CompletedShells, Shell,
                            NearestHint(Shell, {"bash", "zsh", "fish"})));
      FText = Completion(FDeclared, Shell);
    }
    return !FText.empty();
  }

  [[noreturn]] void RefuseOption(const std::string& Name) const {
    if (!FWords.empty() && !IsVerb(Word(0))) RefuseWords();
    std::vector<TOption> Known = General().Options;
    if (FWords.empty())
      for (const char* const Option : {"--version", "--manual", "--completion"}) Known.push_back({Option, {}, {}, {}});
    const auto Has = [&Name](const TOption& Option) { return HasName(Option, Name); };
    for (const TDeclaredCommand& Command : FDeclared)
      for (const TOptionGroup& Group : Command.Groups)
        if (std::any_of(Group.Options.begin(), Group.Options.end(), Has))
          throw EUsage(Format("'%s' has to stand behind the verb and the object", Name));
    throw EUsage(Format("'%s' is not understood here%s", Name, OptionHint(Name, Known)));
  }

  /// The words are not those of a command: says which one, and what was most likely meant.
  [[noreturn]] void RefuseWords() const {
    const bool KnowsVerb = IsVerb(Word(0));
    const TArguments Known = KnowsVerb ? Objects(Word(0)) : Verbs();
    const std::string& Wrong = Word(KnowsVerb ? 1 : 0);
    if (Wrong.empty()) throw EUsage("say what to do: " + Joined(Known));
    throw EUsage(Format("'%s' is not %s: there are %s%s", WithoutSecrets(Wrong),
                        KnowsVerb ? "an object of " + Word(0) : "a verb", Joined(Known), WordsHint(Wrong, Known)));
  }

  std::string WordsHint(const std::string& Wrong, const TArguments& Known) const {
    const auto Hint = [](const TArguments& Names) {
      std::string Result;
      for (const std::string& Name : Names) Result += (Result.empty() ? "; did you mean '" : "' or '") + Name;
      return Result + "'?";
    };
    if (const std::string Option = "--" + Wrong; Option == "--help" || Option == "--version") return Hint({Option});
    if (Find(Word(1), Word(0))) return Hint({Word(1) + " " + Word(0)});
    TArguments All, OfObject;
    for (const auto& Command : FCommands) {
      All.push_back(Command->Name());
      if (Command->Texts().Object == Wrong) OfObject.push_back(Command->Name());
    }
    if (!OfObject.empty()) return Hint(OfObject);
    const std::string Guess = NearestHint(Wrong, Known);
    return Guess.empty() ? NearestHint(Word(1) + " " + Word(0), All) : Guess;
  }

  std::string Help(const TCommand* Command) const {
    if (Command) return CommandHelp(*Command, Declared(*Command).Groups);
    return ProgramHelp(FCommands, General(), IsVerb(Word(0)) ? Word(0) : "");
  }

  const TOptionGroup& General() const { return GeneralOptions(FDeclared); }
  const TOption* FindGeneral(const std::string& Name) const {
    for (const TOption& Option : General().Options)
      if (HasName(Option, Name)) return &Option;
    return nullptr;
  }

  /// "-vy".
  bool IsGeneralCluster(const std::string& Argument) const {
    return std::all_of(Argument.begin() + 1, Argument.end(), [this](char Letter) {
      return FindGeneral({'-', Letter}) != nullptr;
    });
  }

  /// Empty where there is none.
  const std::string& Word(std::size_t Index) const {
    static const std::string None;
    return Index < FWords.size() ? FWords[Index] : None;
  }
  TCommand* Find(const std::string& Verb, const std::string& Object) const {
    for (const auto& Command : FCommands)
      if (const TCommandTexts& Texts = Command->Texts();
          Texts.Verb == Verb && (Texts.Object == Object || (!Object.empty() && Texts.Plural == Object)))
        return Command.get();
    return nullptr;
  }
  const TDeclaredCommand& Declared(const TCommand& Command) const {
    return *std::find_if(FDeclared.begin(), FDeclared.end(),
                         [&](const TDeclaredCommand& Candidate) { return Candidate.Command == &Command; });
  }
  bool IsVerb(const std::string& Word) const { return !Objects(Word).empty(); }
  TArguments Objects(const std::string& Verb) const {
    TArguments Result;
    for (const auto& Command : FCommands)
      if (Command->Texts().Verb == Verb) Result.emplace_back(Command->Texts().Object);
    return Result;
  }
  TArguments Verbs() const {
    TArguments Result;
    for (const auto& Command : FCommands)
      if (std::find(Result.begin(), Result.end(), Command->Texts().Verb) == Result.end())
        Result.emplace_back(Command->Texts().Verb);
    return Result;
  }

  const TCommands& FCommands;
  const TArguments FArguments;
  std::vector<TDeclaredCommand> FDeclared;
  bool FAsksHelp = false;
  TArguments FWords, FRest;
  std::string FText;  // what is to be printed in place of a run
};

}  // namespace

TParsedLine ParseCommandLine(const TCommands& Commands, int Count, const char* const* Arguments) {
  TLine Line(Commands, ArgumentsOf(Count, Arguments));
  try {
    return Line.Parse();
  } catch (const EUsage& Error) {
    throw EWrongLine(Error.what(), Line.Reached());
  }
}

TWanted WantedOf(int Count, const char* const* Arguments) {
  const TArguments Options = BeforeTheEnd(ArgumentsOf(Count, Arguments));
  const auto Has = [&Options](const char* Name, const std::string& Value) {
    for (std::size_t At = 0; At < Options.size(); ++At)
      if (Options[At] == Name + Value || Options[At] == Name + ("=" + Value) ||
          (Options[At] == Name && At + 1 < Options.size() && Options[At + 1] == Value))
        return true;
    return false;
  };
  return {Has("--json", "") && !Has("-o", "-") && !Has("--output", "-"), Has("--progress", "json")};
}

}  // namespace velkrund
