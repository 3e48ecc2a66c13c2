#include "hosts/cli/line/OptionParser.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "standalone/drivers/AddressSecrets.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

namespace {

struct TParsedOption {
  TOption Option;
  CLI::Option* Parser;  // owned by its application
};

class TParser {
 public:
  explicit TParser(const TDeclaredCommand& Declared) {
    FParser.set_help_flag();
    FParser.allow_extras();
    for (const TOptionGroup& Group : Declared.Groups)
      for (const TOption& Option : Group.Options) FOptions.push_back({Option, Add(Option)});
  }

  void Parse(std::vector<std::string> Arguments) {
    std::reverse(Arguments.begin(), Arguments.end());  // as the parser takes them
    try {
      FParser.parse(std::move(Arguments));
    } catch (const CLI::ArgumentMismatch& Error) {
      RefuseExtras();
      // The parser's own words for a value that is missing, or given twice, are none for people.
      const std::string Message = Error.what();
      const std::size_t OfSwitch = Message.find(" was given a");
      if (OfSwitch != std::string::npos)  // the parser drops the dashes
        throw EUsage((OfSwitch == 1 ? "-" : "--") + Message.substr(0, OfSwitch) + " takes no value");
      throw EUsage(Message.substr(0, Message.find(':')) + " takes exactly one value");
    } catch (const CLI::ParseError& Error) {
      RefuseExtras();
      throw EUsage(Error.what());
    }
    RefuseExtras();
    for (const TParsedOption& Option : FOptions)
      if (Option.Parser->count() > 0) Check(Option);
  }

 private:
  CLI::Option* Add(const TOption& Option) {
    CLI::Option* Result;
    if (Option.IsSwitch()) {
      Result = FParser.add_flag_callback(Option.Names, [Set = Option.Set] { Set({}); })->disable_flag_override();
    } else {
      Result = FParser.add_option(Option.Names, [Set = Option.Set](const CLI::results_t& Values) {
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

  /// What the parser could not place, with what was most likely meant.
  void RefuseExtras() const {
    std::vector<std::string> Extras = FParser.remaining();
    // The mark behind which there are arguments alone is one of them.
    const auto Mark = std::find(Extras.begin(), Extras.end(), "--");
    const auto ArgumentsBegin = Mark == Extras.end() ? Mark : Extras.erase(Mark);
    if (Extras.empty()) return;
    const auto IsOption = [](const std::string& Text) { return Text.starts_with('-') && Text != "-"; };
    const auto Option = std::find_if(Extras.begin(), ArgumentsBegin, IsOption);
    const bool HasOption = Option != ArgumentsBegin;
    const std::string Unknown = HasOption ? Option->substr(0, Option->find('=')) : Extras.front();
    std::vector<TOption> Known;
    for (const TParsedOption& Candidate : FOptions) Known.push_back(Candidate.Option);
    const bool TakesArguments =
        std::any_of(Known.begin(), Known.end(), [](const auto& One) { return One.IsArgument(); });
    const std::string Hint = TakesArguments ? "" : ": every value stands behind the name of its option";
    throw EUsage(Format("'%s' is not understood here%s", WithoutSecrets(Unknown),
                        HasOption ? OptionHint(Unknown, Known) : Hint));
  }

  bool IsGiven(const std::string& Name) const {
    return std::any_of(FOptions.begin(), FOptions.end(), [&](const TParsedOption& Candidate) {
      return Candidate.Option.Name() == Name && Candidate.Parser->count() > 0;
    });
  }

  void Check(const TParsedOption& Given) const {
    const TOption& Option = Given.Option;
    for (const std::string& Other : Option.NotWith)
      if (IsGiven(Other))
        throw EUsage(Format("%s and %s contradict each other: give one of them", Option.Name(), Other));
    if (Option.IsSwitch()) return;
    const std::string Value = Given.Parser->results().back();
    if (Value.empty() && !Option.MayBeEmpty) throw EUsage(Format("%s needs a value that is not empty", Option.Name()));
    if (!Option.Choices.empty() &&
        std::find(Option.Choices.begin(), Option.Choices.end(), Value) == Option.Choices.end())
      throw EUsage(
          Format("%s takes %s, not '%s'%s", Option.Name(), Option.Value, Value, NearestHint(Value, Option.Choices)));
    if (Option.IsNumber && !StrToInt32(Value))
      throw EUsage(Format("%s takes a whole number, not '%s'", Option.Name(), Value));
  }

  CLI::App FParser;
  std::vector<TParsedOption> FOptions;
};

}  // namespace

std::string OptionHint(const std::string& Unknown, const std::vector<TOption>& Known) {
  // The dashes are no letters of a name.
  std::vector<std::string> Names = {"help"};
  for (const TOption& Option : Known)
    for (const std::string& Spelling : CommaSeparated(Option.Names))
      if (!Option.IsArgument()) Names.push_back(Spelling.substr(Spelling.find_first_not_of('-')));
  const std::size_t Begin = std::min(Unknown.find_first_not_of('-'), Unknown.size());
  const std::string Guess = Nearest(Unknown.substr(Begin), Names);
  if (Guess.empty()) return {};
  if (Unknown == "--" + Guess) return ": it takes no value";
  return Format("; did you mean '%s%s'?", Guess.size() == 1 ? "-" : "--", Guess);
}

void ParseOptions(const TDeclaredCommand& Declared, TCommand& Command, const std::vector<std::string>& Arguments) {
  TParser(Declared).Parse(Arguments);
  try {
    Command.CheckOptions();
  } catch (const ESettingsError& Error) {
    throw EUsage(Error.Worded([&](std::string_view Property) { return Command.OptionOf(Property); }));
  }
}

}  // namespace velkrund
