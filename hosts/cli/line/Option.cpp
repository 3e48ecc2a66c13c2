#include "hosts/cli/line/Option.h"

#include "hosts/cli/line/Command.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

std::string TOption::Name() const {
  const std::size_t Long = Names.find("--");
  return Long == std::string::npos ? Names : Names.substr(Long, Names.find(',', Long) - Long);
}

TOption Switch(std::string Names, std::string Help, bool& Target) {
  return {std::move(Names), {}, std::move(Help), [&Target](const std::vector<std::string>&) { Target = true; }};
}

TOption Text(std::string Names, std::string Value, std::string Help, std::string& Target) {
  return {std::move(Names), std::move(Value), std::move(Help),
          [&Target](const std::vector<std::string>& Values) { Target = Values.back(); }};
}

TOption Number(std::string Names, std::string Value, std::string Help, std::int32_t& Target) {
  TOption Result{std::move(Names), std::move(Value), std::move(Help),
                 [&Target](const std::vector<std::string>& Values) { Target = StrToInt32(Values.back()).value_or(0); }};
  Result.IsNumber = true;
  return Result;
}

TOption List(std::string Names, std::string Value, std::string Help, std::vector<std::string>& Target) {
  TOption Result{std::move(Names), std::move(Value), std::move(Help),
                 [&Target](const std::vector<std::string>& Values) { Target = Values; }};
  Result.Repeatable = true;
  return Result;
}

TOption CommaList(std::string Names, std::string Value, std::string Help, std::vector<std::string>& Target) {
  TOption Result = List(std::move(Names), std::move(Value), std::move(Help), Target);
  Result.Set = [&Target](const std::vector<std::string>& Values) {
    for (const std::string& Text : Values)
      for (std::string& Name : CommaSeparated(Text)) Target.push_back(std::move(Name));
  };
  return Result;
}

TOption Pairs(std::string Names, std::string Value, std::string Help,
              std::vector<std::pair<std::string, std::string>>& Target) {
  TOption Result{std::move(Names), std::move(Value), std::move(Help), {}};
  Result.Repeatable = true;
  Result.Set = [&Target, Name = Result.Name(), Value = Result.Value](const std::vector<std::string>& Values) {
    for (const std::string& Text : Values) {
      const std::size_t Sign = Text.find('=');
      if (Sign == Text.npos || Sign == 0 || Sign + 1 == Text.size())
        throw EUsage(Format("%s takes %s, not '%s'", Name, Value, Text));
      Target.emplace_back(Text.substr(0, Sign), Text.substr(Sign + 1));
    }
  };
  return Result;
}

TOption MayBeEmpty(TOption Option) {
  Option.MayBeEmpty = true;
  return Option;
}

TOption Required(TOption Option) {
  Option.Required = true;
  return Option;
}

TOption NotWith(TOption Option, std::vector<std::string> Names) {
  Option.NotWith = std::move(Names);
  return Option;
}

std::vector<std::string> CommaSeparated(const std::string& Text) {
  std::vector<std::string> Result;
  for (std::size_t At = 0; At <= Text.size();) {
    const std::size_t End = std::min(Text.find(',', At), Text.size());
    if (const std::string_view Name = Trim(std::string_view(Text).substr(At, End - At)); !Name.empty())
      Result.emplace_back(Name);
    At = End + 1;
  }
  return Result;
}

}  // namespace velkrund
