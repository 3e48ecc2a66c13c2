#include "standalone/dictionary/ParameterLines.h"

#include "standalone/drivers/TextLines.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

namespace {

constexpr std::string_view Nothing = "-";

std::string Single(const std::string& Text) {
  if (Text.find('\n') != std::string::npos)
    throw EDatabaseError(Format("The parameter '%s' of a procedure has a line feed, which is not kept here", Text));
  return Text;
}

std::string TextOf(std::optional<int> Number) { return Number ? std::to_string(*Number) : std::string(Nothing); }

[[noreturn]] void Refuse(std::string_view Line) {
  throw EDatabaseError(Format("The table velkrund_procedures has a parameter that is none: '%s'", Line));
}

/// Takes what stands in front of the next blank off the front of Rest.
std::optional<int> TakeNumber(std::string_view& Rest, std::string_view Line) {
  const std::size_t Blank = Rest.find(' ');
  if (Blank == std::string_view::npos) Refuse(Line);
  const std::string_view Word = Rest.substr(0, Blank);
  Rest.remove_prefix(Blank + 1);
  if (Word == Nothing) return std::nullopt;
  const std::optional<std::int32_t> Number = StrToInt32(Word);
  if (!Number) Refuse(Line);
  return Number;
}

template <typename TEnum>
TEnum TakeWord(std::string_view& Rest, std::string_view Line, TEnum Last) {
  const int Number = TakeNumber(Rest, Line).value_or(-1);
  if (Number < 0 || Number > static_cast<int>(Last)) Refuse(Line);
  return static_cast<TEnum>(Number);
}

TDicParameter ParameterOf(std::string_view Line) {
  std::string_view Rest = Line;
  TDicParameter Result;
  Result.Mode = TakeWord(Rest, Line, TDicParameterMode::InOut);
  Result.Type = TakeWord(Rest, Line, TDicFieldType::Other);
  Result.Size = TakeNumber(Rest, Line);
  Result.Scale = TakeNumber(Rest, Line);
  Result.Name = Rest;
  return Result;
}

}  // namespace

std::string LinesOfParameters(const std::vector<TDicParameter>& Parameters) {
  std::string Result;
  for (const TDicParameter& Parameter : Parameters) {
    Result += Format("%d %d %s %s %s\n", static_cast<int>(Parameter.Mode), static_cast<int>(Parameter.Type),
                     TextOf(Parameter.Size), TextOf(Parameter.Scale), Single(Parameter.Name));
    if (Parameter.Default) Result += "=" + Single(*Parameter.Default) + "\n";
  }
  return Result;
}

std::vector<TDicParameter> ParametersOf(std::string_view Lines) {
  std::vector<TDicParameter> Result;
  if (Lines.empty()) return Result;
  if (Lines.ends_with('\n')) Lines.remove_suffix(1);
  for (const std::string& Line : SplitLines(Lines)) {
    if (Line.empty() || (Line.front() == '=' && Result.empty())) Refuse(Line);
    if (Line.front() == '=')
      Result.back().Default = Line.substr(1);
    else
      Result.push_back(ParameterOf(Line));
  }
  return Result;
}

}  // namespace velkrund
