#include "standalone/drivers/postgresql/PostgreSQLNeutralWords.h"

#include <algorithm>
#include <chrono>

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/expressions/NeutralExpression.h"
#include "standalone/drivers/postgresql/PostgreSQLChecks.h"
#include "standalone/drivers/postgresql/PostgreSQLExpressionTypes.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

const TExpressionWords& EngineWords() {
  static const TExpressionWords Result = {
      .Quoted = [](std::string_view Name) { return QuoteStandardName(Name); },
      .Bytes = [](std::string_view Hexadecimal) { return "'\\x" + std::string(Hexadecimal) + "'::bytea"; },
      .Now = "CURRENT_TIMESTAMP",
      .Today = "CURRENT_DATE",
      .Time = "LOCALTIME",
      .Uuid = "gen_random_uuid()",
  };
  return Result;
}

bool IsDigit(char C) { return C >= '0' && C <= '9'; }

constexpr std::string_view Comparisons[] = {" = ", " <> ", " < ", " <= ", " > ", " >= ", " IN (", " NOT IN ("};
constexpr std::string_view Calculations[] = {" + ", " - ", " * "};

template <typename T>
bool TakeOne(std::string_view& Text, const T& Words) {
  for (const std::string_view Word : Words)
    if (Text.starts_with(Word)) {
      Text.remove_prefix(Word.size());
      return true;
    }
  return false;
}

/// A field that stands in an expression between what comes Before and After it.
class TPlace {
 public:
  TPlace(std::string_view Before, std::string_view After) : FBefore(Before), FAfter(After) {}

  bool IsCalculated() const {
    std::string_view After = FAfter;
    return TakeOne(After, Calculations) || std::any_of(std::begin(Calculations), std::end(Calculations),
                                                       [&](std::string_view Sign) { return FBefore.ends_with(Sign); });
  }

  bool MeetsNumber() const {
    std::string_view After = FAfter;
    if (TakeOne(After, Comparisons)) {
      if (After.starts_with('-')) After.remove_prefix(1);
      return !After.empty() && IsDigit(After.front());
    }
    for (const std::string_view Sign : Comparisons)
      if (FBefore.ends_with(Sign) && FBefore.size() > Sign.size() && IsDigit(FBefore[FBefore.size() - Sign.size() - 1]))
        return true;
    return false;
  }

 private:
  std::string_view FBefore, FAfter;
};

/// The field as the engine takes it there: truth as a number where it meets one.
std::string FieldWords(const TDicField& Field, const TPlace& Place) {
  const bool IsCounted = Field.Type == TDicFieldType::Boolean && (Place.MeetsNumber() || Place.IsCalculated());
  return QuoteStandardName(Field.Name) + (IsCounted ? "::integer" : "");
}

/// Without its quotes, inner ones doubled; nothing for another literal.
std::optional<std::string_view> TextLiteral(std::string_view Neutral) {
  if (Neutral.size() < 2 || Neutral.front() != '\'' || Neutral.back() != '\'') return std::nullopt;
  return Neutral.substr(1, Neutral.size() - 2);
}

/// Whether the calendar has the day that Text, in ISO form, begins with.
bool HasCalendarDay(std::string_view Text) {
  const std::size_t Mark = Text.find('-', 1);
  if (Mark == std::string_view::npos || Text.size() < Mark + 6) return Text.find("infinity") != std::string_view::npos;
  const auto Year = StrToInt32(Text.substr(0, Mark));
  const auto Month = StrToInt32(Text.substr(Mark + 1, 2));
  const auto Day = StrToInt32(Text.substr(Mark + 4, 2));
  // The calendar repeats itself after 400 years; there is no year 0.
  constexpr int Cycle = 400;
  return Year && Month && Day && *Year > 0 &&
         std::chrono::year_month_day(std::chrono::year(*Year % Cycle),
                                     std::chrono::month(static_cast<unsigned>(*Month)),
                                     std::chrono::day(static_cast<unsigned>(*Day)))
             .ok();
}

bool IsMoment(TDicFieldType Type, std::string_view Text) {
  const bool IsTime = Type == TDicFieldType::Time || Type == TDicFieldType::ZonedTime;
  if (!IsTime && !HasCalendarDay(Text)) return false;
  switch (Type) {
    case TDicFieldType::Date:
      return IsPostgreSQLDate(Text);
    case TDicFieldType::Time:
    case TDicFieldType::ZonedTime:
      return IsPostgreSQLTime(Text, Type == TDicFieldType::ZonedTime);
    default:
      return IsPostgreSQLDay(Text) || IsPostgreSQLTimestamp(Text, Type == TDicFieldType::ZonedDateTime);
  }
}

bool IsUuid(std::string_view Text) {
  const auto IsDigitOfIt = [](char C) { return IsDigit(C) || (C >= 'a' && C <= 'f') || (C >= 'A' && C <= 'F'); };
  const auto Digits = std::count_if(Text.begin(), Text.end(), IsDigitOfIt);
  return Digits == 32 && Digits + std::count(Text.begin(), Text.end(), '-') == std::ssize(Text);
}

}  // namespace

bool FitsPostgreSQLField(std::string_view Neutral, TDicFieldType Type) {
  const std::optional<std::string_view> Text = TextLiteral(Neutral);
  const bool IsBytes = Neutral.starts_with("x'");
  const bool IsNumber =
      !Neutral.empty() && (Neutral.front() == '-' || (Neutral.front() >= '0' && Neutral.front() <= '9'));
  const std::string_view Number = Text.value_or(Neutral);
  switch (Type) {
    case TDicFieldType::Int16:
    case TDicFieldType::Int32:
    case TDicFieldType::Int64:
    case TDicFieldType::UInt64:
      return IsPlainInteger(Number);
    case TDicFieldType::Real32:
    case TDicFieldType::Real64:
    case TDicFieldType::Decimal:
    case TDicFieldType::Money:
      return StrToReal(Number).has_value();
    case TDicFieldType::Boolean:
      return Neutral == "TRUE" || Neutral == "FALSE";
    case TDicFieldType::Bytes:
      return IsBytes;
    case TDicFieldType::Date:
    case TDicFieldType::Time:
    case TDicFieldType::ZonedTime:
    case TDicFieldType::DateTime:
    case TDicFieldType::ZonedDateTime:
      return Text && IsMoment(Type, *Text);
    case TDicFieldType::Uuid:
      return Text && IsUuid(*Text);
    case TDicFieldType::Interval:
    case TDicFieldType::Json:
      return Text && !Text->empty();
    default:
      return Text || IsNumber;
  }
}

std::optional<std::string> ConditionWords(const std::string& Neutral, const std::vector<TDicField>& Fields,
                                          std::optional<TDicFieldType> Wanted) {
  std::optional<std::string> Words = ExpressionIn(Neutral, EngineWords());
  if (!Words || !FitsPostgreSQL(Neutral, Fields, Wanted)) return std::nullopt;
  std::string Result;
  for (std::size_t At = 0; At < Words->size();) {
    const char Quote = (*Words)[At];
    if (Quote != '"' && Quote != '\'') {
      Result += (*Words)[At++];
      continue;
    }
    // Inner quotes are doubled: a piece ends where another one does not begin at once.
    std::size_t End = std::min(Words->find(Quote, At + 1), Words->size() - 1) + 1;
    while (End < Words->size() && (*Words)[End] == Quote)
      End = std::min(Words->find(Quote, End + 1), Words->size() - 1) + 1;
    const std::string_view All = *Words;
    const std::string_view Piece = All.substr(At, End - At);
    const auto Field = std::find_if(Fields.begin(), Fields.end(),
                                    [&](const TDicField& Known) { return QuoteStandardName(Known.Name) == Piece; });
    Result += Field == Fields.end() ? std::string(Piece) : FieldWords(*Field, {All.substr(0, At), All.substr(End)});
    At = End;
  }
  return Result;
}

std::optional<std::string> DefaultWords(const std::string& Neutral, TDicFieldType Type) {
  for (const std::string_view Word : {"NULL", "NOW", "TODAY", "TIME", "UUID"})
    if (Neutral == Word) return ExpressionIn(Neutral, EngineWords());
  const bool IsNumeric = Type >= TDicFieldType::Int16 && Type <= TDicFieldType::Money;
  std::string Value = Neutral;
  if (Type == TDicFieldType::Boolean && (Neutral == "0" || Neutral == "1")) Value = Neutral == "1" ? "TRUE" : "FALSE";
  if (IsNumeric && (Neutral == "TRUE" || Neutral == "FALSE")) Value = Neutral == "TRUE" ? "1" : "0";
  if (!FitsPostgreSQLField(Value, Type)) return std::nullopt;
  return ExpressionIn(Value, EngineWords());
}

}  // namespace velkrund
