#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace velkrund {

/// One option of a command, as data: the parser, the help and whatever else shows options are made from it.
struct TOption {
  std::string Names;  // "-t,--table"; without dashes a plain argument
  std::string Value;  // what stands for the value in help texts; empty: a switch
  std::string Help;
  std::function<void(const std::vector<std::string>& Values)> Set;  // given in that order; none for a switch
  std::vector<std::string> Choices = {};                            // the only values; empty: any
  bool Repeatable = false;
  bool Required = false;
  bool IsNumber = false;  // only whole numbers of 32 bits
  bool MayBeEmpty = false;
  std::vector<std::string> NotWith = {};  // names of options that contradict this one

  /// The name to use in messages: the long one where there is one.
  std::string Name() const;
  bool IsSwitch() const { return Value.empty(); }
  bool IsArgument() const { return Names.front() != '-'; }
};

struct TOptionGroup {
  std::string Title;
  std::vector<TOption> Options;
  bool IsGeneral = false;  // what every command has; understood anywhere on the line
};

// Makers of options that store into a variable, which outlives the parser.

TOption Switch(std::string Names, std::string Help, bool& Target);
TOption Text(std::string Names, std::string Value, std::string Help, std::string& Target);
/// A whole number.
TOption Number(std::string Names, std::string Value, std::string Help, std::int32_t& Target);
/// May be given several times.
TOption List(std::string Names, std::string Value, std::string Help, std::vector<std::string>& Target);
/// May be given several times, and each time with several names between commas.
TOption CommaList(std::string Names, std::string Value, std::string Help, std::vector<std::string>& Target);

/// May be given several times, each time with two texts: "a=b". The first "=" parts them.
TOption Pairs(std::string Names, std::string Value, std::string Help,
              std::vector<std::pair<std::string, std::string>>& Target);

template <typename T>
TOption Choice(std::string Names, std::string Help, std::vector<std::pair<std::string, T>> Choices, T& Target) {
  TOption Result{std::move(Names), {}, std::move(Help), {}};
  for (const auto& [Word, Meaning] : Choices) {
    Result.Choices.push_back(Word);
    Result.Value += (Result.Value.empty() ? "" : "|") + Word;
  }
  Result.Set = [Choices = std::move(Choices), &Target](const std::vector<std::string>& Values) {
    for (const auto& [Word, Meaning] : Choices)
      if (Word == Values.back()) Target = Meaning;
  };
  return Result;
}

/// A switch that gives the variable a value.
template <typename T>
TOption Assigning(std::string Names, std::string Help, T& Target, T Value) {
  return {std::move(Names), {}, std::move(Help), [&Target, Value](const std::vector<std::string>&) { Target = Value; }};
}

TOption Required(TOption Option);
TOption MayBeEmpty(TOption Option);
TOption NotWith(TOption Option, std::vector<std::string> Names);

/// The names in Text between commas, without blanks around them and without empty ones.
std::vector<std::string> CommaSeparated(const std::string& Text);

}  // namespace velkrund
