#include "standalone/drivers/postgresql/PostgreSQLChecks.h"

#include <algorithm>
#include <limits>

#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

bool IsDigit(char C) { return C >= '0' && C <= '9'; }

std::string_view TakeDigits(std::string_view& Text) {
  std::size_t End = 0;
  while (End < Text.size() && IsDigit(Text[End])) ++End;
  const std::string_view Digits = Text.substr(0, End);
  Text.remove_prefix(End);
  return Digits;
}

bool Take(std::string_view& Text, char C) {
  if (!Text.starts_with(C)) return false;
  Text.remove_prefix(1);
  return true;
}

/// Two digits up to Max.
bool TakePair(std::string_view& Text, int Max) {
  if (Text.size() < 2 || !IsDigit(Text[0]) || !IsDigit(Text[1])) return false;
  const int Number = (Text[0] - '0') * 10 + (Text[1] - '0');
  Text.remove_prefix(2);
  return Number <= Max;
}

bool IsPlainWhole(std::string_view Digits) { return !Digits.empty() && (Digits.size() == 1 || Digits[0] != '0'); }

bool IsZero(std::string_view Digits) { return Digits.find_first_not_of('0') == std::string_view::npos; }

bool TakeDate(std::string_view& Text) {
  return TakeDigits(Text).size() >= 4 && Take(Text, '-') && TakePair(Text, 12) && Take(Text, '-') && TakePair(Text, 31);
}

bool TakeTime(std::string_view& Text) {
  if (!TakePair(Text, 23) || !Take(Text, ':') || !TakePair(Text, 59)) return false;
  if (!Take(Text, ':')) return true;
  return TakePair(Text, 59) && (!Take(Text, '.') || !TakeDigits(Text).empty());
}

bool TakeMidnight(std::string_view& Text) {
  const std::string_view Before = Text;
  return TakeTime(Text) && Before.substr(0, Before.size() - Text.size()).find_first_of("123456789") == Before.npos;
}

/// False only for a zone that is not in ISO form or, where the type has no zone, not that of UTC.
bool TakeZone(std::string_view& Text, bool Zoned) {
  if (Take(Text, 'Z')) return true;
  if (!Take(Text, '+') && !Take(Text, '-')) return true;
  if (!TakePair(Text, Zoned ? 15 : 0)) return false;
  for (int Part = 0; Part < 2 && (Take(Text, ':') || (!Text.empty() && IsDigit(Text[0]))); ++Part)
    if (!TakePair(Text, Zoned ? 59 : 0)) return false;
  return true;
}

bool TakeBetween(std::string_view& Text) { return Take(Text, ' ') || Take(Text, 'T'); }

bool IsInfinite(std::string_view Text) { return Text == "infinity" || Text == "-infinity"; }

bool EndsDate(std::string_view Text) { return Text.empty() || Text == " BC"; }

}  // namespace

std::size_t CharacterCount(std::string_view Text) {
  const auto Begins = [](char C) { return (static_cast<unsigned char>(C) & 0xC0U) != 0x80U; };
  return static_cast<std::size_t>(std::count_if(Text.begin(), Text.end(), Begins));
}

bool IsPlainInteger(std::string_view Text) {
  const bool Negative = Take(Text, '-');
  const std::string_view Digits = TakeDigits(Text);
  return Text.empty() && IsPlainWhole(Digits) && !(Negative && Digits == "0");
}

bool IsPlainDecimal(std::string_view Text) {
  const bool Negative = Take(Text, '-');
  const std::string_view Whole = TakeDigits(Text);
  if (!IsPlainWhole(Whole)) return false;
  std::string_view Decimals;
  if (Take(Text, '.')) {
    Decimals = TakeDigits(Text);
    if (Decimals.empty()) return false;
  }
  return Text.empty() && !(Negative && IsZero(Whole) && IsZero(Decimals));
}

int LastPlace(std::string_view Decimal) {
  const std::size_t Mark = Decimal.find_first_of("eE");
  int Exponent = 0;
  if (Mark != std::string_view::npos) Exponent = StrToInt32(Decimal.substr(Mark + 1)).value_or(0);
  const std::string_view Digits = Decimal.substr(0, Mark);
  const std::size_t Last = Digits.find_last_of("123456789");
  if (Last == std::string_view::npos) return std::numeric_limits<int>::min();
  const std::size_t Point = std::min(Digits.find('.'), Digits.size());
  const auto Place = static_cast<int>(Last) - static_cast<int>(Point);
  // Before the point the units have the place 0.
  return (Place < 0 ? Place + 1 : Place) - Exponent;
}

int LongestFraction(std::string_view Text) {
  std::size_t Longest = 0;
  for (std::size_t At; (At = Text.find('.')) != std::string_view::npos;) {
    Text.remove_prefix(At + 1);
    const std::string_view Digits = TakeDigits(Text);
    Longest = std::max(Longest, Digits.find_last_not_of('0') + 1);
  }
  return static_cast<int>(Longest);
}

bool IsPostgreSQLDay(std::string_view Text) { return TakeDate(Text) && EndsDate(Text); }

bool IsPostgreSQLDate(std::string_view Text) {
  if (IsInfinite(Text) || IsPostgreSQLDay(Text)) return true;
  return TakeDate(Text) && TakeBetween(Text) && TakeMidnight(Text) && TakeZone(Text, false) && EndsDate(Text);
}

bool IsPostgreSQLTime(std::string_view Text, bool Zoned) {
  constexpr std::string_view EndOfDay = "24:00:00";
  if (Text.starts_with(EndOfDay))
    Text.remove_prefix(EndOfDay.size());
  else if (!TakeTime(Text))
    return false;
  return TakeZone(Text, Zoned) && Text.empty();
}

bool IsPostgreSQLTimestamp(std::string_view Text, bool Zoned) {
  if (IsInfinite(Text)) return true;
  return TakeDate(Text) && TakeBetween(Text) && TakeTime(Text) && TakeZone(Text, Zoned) && EndsDate(Text);
}

}  // namespace velkrund
