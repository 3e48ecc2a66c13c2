#include "velkrund/platform/ormtools/Dates.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace velkrund {
namespace {

constexpr std::int64_t MicrosecondsPerSecond = 1'000'000;
constexpr std::int64_t DayNumberEpoch = -25'569;  // 1899-12-30, in days since 1970-01-01

// In 32 bits, which divide in a fraction of the time: there are some hundred million days in what 64 bits can count.

struct TCivil {
  std::int32_t Year;
  std::int32_t Month;
  std::int32_t Day;
};

template <typename TNumber>
constexpr TNumber FloorDiv(TNumber A, TNumber B) {
  return A / B - (A % B < 0 ? 1 : 0);
}
constexpr std::int32_t DayOf(std::int64_t Microseconds) {
  return static_cast<std::int32_t>(FloorDiv(Microseconds, MicrosecondsPerDay));
}
constexpr std::int64_t TimeOf(std::int64_t Microseconds) {
  const std::int64_t Rest = Microseconds % MicrosecondsPerDay;
  return Rest < 0 ? Rest + MicrosecondsPerDay : Rest;
}

// Days since 1970 to the calendar and back, by years that begin in March and eras of 400 years (146097 days).

constexpr TCivil CivilFromDays(std::int32_t Days) {
  const std::int32_t Shifted = Days + 719'468;
  const std::int32_t Era = FloorDiv(Shifted, 146'097);
  const std::int32_t DayOfEra = Shifted - Era * 146'097;
  const std::int32_t YearOfEra = (DayOfEra - DayOfEra / 1460 + DayOfEra / 36'524 - DayOfEra / 146'096) / 365;
  const std::int32_t DayOfYear = DayOfEra - (365 * YearOfEra + YearOfEra / 4 - YearOfEra / 100);
  const std::int32_t MarchMonth = (5 * DayOfYear + 2) / 153;
  const std::int32_t Month = MarchMonth < 10 ? MarchMonth + 3 : MarchMonth - 9;
  return {YearOfEra + Era * 400 + (Month <= 2 ? 1 : 0), Month, DayOfYear - (153 * MarchMonth + 2) / 5 + 1};
}

constexpr std::int32_t DaysFromCivil(const TCivil& Date) {
  const std::int32_t Year = Date.Year - (Date.Month <= 2 ? 1 : 0);
  const std::int32_t Era = FloorDiv(Year, 400);
  const std::int32_t YearOfEra = Year - Era * 400;
  const std::int32_t MarchMonth = Date.Month > 2 ? Date.Month - 3 : Date.Month + 9;
  const std::int32_t DayOfYear = (153 * MarchMonth + 2) / 5 + Date.Day - 1;
  return Era * 146'097 + YearOfEra * 365 + YearOfEra / 4 - YearOfEra / 100 + DayOfYear - 719'468;
}

constexpr bool IsLeap(std::int32_t Year) { return Year % 4 == 0 && (Year % 100 != 0 || Year % 400 == 0); }

constexpr std::int32_t DaysInMonth(std::int32_t Year, std::int32_t Month) {
  if (Month == 2) return IsLeap(Year) ? 29 : 28;
  return Month == 4 || Month == 6 || Month == 9 || Month == 11 ? 30 : 31;
}

/// Writes Value with exactly Count digits at To; returns the place behind them.
template <int Count>
char* PutDigits(char* To, std::int32_t Value) {
  auto Rest = static_cast<std::uint32_t>(Value);
  for (int Index = Count - 1; Index >= 0; --Index, Rest /= 10) To[Index] = static_cast<char>('0' + Rest % 10);
  return To + Count;
}

constexpr std::size_t DateSize = 24;  // a year beyond the range included
constexpr std::size_t TimeSize = 15;

char* PutDate(char* To, std::int32_t Days) {
  const TCivil Date = CivilFromDays(Days);
  // Other years lie beyond what the type covers; their text is readable all the same, and no reader takes it.
  if (Date.Year >= 0 && Date.Year <= 9999)
    To = PutDigits<4>(To, Date.Year);
  else
    To = std::to_chars(To, To + DateSize, Date.Year).ptr;
  *To++ = '-';
  To = PutDigits<2>(To, Date.Month);
  *To++ = '-';
  return PutDigits<2>(To, Date.Day);
}

char* PutTime(char* To, std::int64_t TimeOfDay) {
  const auto Seconds = static_cast<std::int32_t>(TimeOfDay / MicrosecondsPerSecond);
  const auto Fraction = static_cast<std::int32_t>(TimeOfDay % MicrosecondsPerSecond);
  To = PutDigits<2>(To, Seconds / 3600);
  *To++ = ':';
  To = PutDigits<2>(To, Seconds / 60 % 60);
  *To++ = ':';
  To = PutDigits<2>(To, Seconds % 60);
  if (Fraction == 0) return To;
  *To++ = '.';
  return Fraction % 1000 == 0 ? PutDigits<3>(To, Fraction / 1000) : PutDigits<6>(To, Fraction);
}

/// The number that Count digits form; negative when one of them is none.
template <std::size_t Count>
std::int32_t TakeDigits(const char* Digits) {
  std::int32_t Value = 0;
  std::uint32_t Wrong = 0;
  for (std::size_t Index = 0; Index < Count; ++Index) {
    const std::uint32_t Digit = static_cast<unsigned char>(Digits[Index]) - std::uint32_t{'0'};
    Wrong |= Digit > 9 ? 1 : 0;
    Value = Value * 10 + static_cast<std::int32_t>(Digit & 15U);
  }
  return Wrong == 0 ? Value : -1;
}

/// The microseconds of one to six digits behind the point; negative as above.
std::int32_t TakeFraction(std::string_view Digits) {
  constexpr std::size_t Places = 6;
  char Padded[Places] = {'0', '0', '0', '0', '0', '0'};
  std::copy(Digits.begin(), Digits.end(), Padded);
  return TakeDigits<Places>(Padded);
}

}  // namespace

void AppendSysDate(std::string& Out, TDateTime Value) {
  char Buffer[DateSize];
  Out.append(Buffer, PutDate(Buffer, DayOf(Value.Microseconds)));
}

void AppendSysTime(std::string& Out, std::int64_t TimeOfDay) {
  char Buffer[TimeSize];
  Out.append(Buffer, PutTime(Buffer, TimeOf(TimeOfDay)));
}

void AppendSysDateTime(std::string& Out, TDateTime Value) {
  char Buffer[DateSize + 1 + TimeSize];
  char* To = PutDate(Buffer, DayOf(Value.Microseconds));
  *To++ = ' ';
  Out.append(Buffer, PutTime(To, TimeOf(Value.Microseconds)));
}

std::string DateTimeToSysStr(TDateTime Value) {
  std::string Out;
  AppendSysDateTime(Out, Value);
  return Out;
}

std::optional<TDateTime> StrToSysDate(std::string_view Text) {
  if (Text.size() != 10 || Text[4] != '-' || Text[7] != '-') return std::nullopt;
  const TCivil Date{TakeDigits<4>(Text.data()), TakeDigits<2>(Text.data() + 5), TakeDigits<2>(Text.data() + 8)};
  if (Date.Year < 1 || Date.Month < 1 || Date.Month > 12) return std::nullopt;
  if (Date.Day < 1 || Date.Day > DaysInMonth(Date.Year, Date.Month)) return std::nullopt;
  return TDateTime{DaysFromCivil(Date) * MicrosecondsPerDay};
}

std::optional<std::int64_t> StrToSysTime(std::string_view Text) {
  if (Text.size() < 8 || Text[2] != ':' || Text[5] != ':') return std::nullopt;
  const std::int32_t Hour = TakeDigits<2>(Text.data());
  const std::int32_t Minute = TakeDigits<2>(Text.data() + 3);
  const std::int32_t Second = TakeDigits<2>(Text.data() + 6);
  if (Hour < 0 || Hour > 23 || Minute < 0 || Minute > 59 || Second < 0 || Second > 59) return std::nullopt;
  std::int32_t Fraction = 0;
  if (Text.size() > 8) {
    const std::size_t Digits = Text.size() - 9;
    if (Text[8] != '.' || Digits < 1 || Digits > 6) return std::nullopt;
    Fraction = TakeFraction(Text.substr(9));
    if (Fraction < 0) return std::nullopt;
  }
  return ((Hour * 60 + Minute) * 60 + Second) * MicrosecondsPerSecond + Fraction;
}

std::optional<TDateTime> SysStrToDateTime(std::string_view Text) {
  if (Text.size() < 19 || Text[10] != ' ') return std::nullopt;
  const std::optional<TDateTime> Date = StrToSysDate(Text.substr(0, 10));
  const std::optional<std::int64_t> Time = StrToSysTime(Text.substr(11));
  if (!Date || !Time) return std::nullopt;
  return TDateTime{Date->Microseconds + *Time};
}

double DateTimeToDayNumber(TDateTime Value) {
  const auto Day = static_cast<double>(DayOf(Value.Microseconds) - DayNumberEpoch);
  const double Fraction = static_cast<double>(TimeOf(Value.Microseconds)) / MicrosecondsPerDay;
  const double Number = Day < 0 ? Day - Fraction : Day + Fraction;
  // Far from the epoch the last microseconds of a day round to the next whole number: the day behind it, or below zero
  // even the one before it.
  return std::trunc(Number) == Day ? Number : std::nextafter(Number, 0.0);
}

std::optional<TDateTime> DayNumberToDateTime(double DayNumber) {
  if (!(std::abs(DayNumber) < 1e7)) return std::nullopt;
  const double Whole = std::trunc(DayNumber);
  const std::int64_t Days = static_cast<std::int64_t>(Whole) + DayNumberEpoch;
  const std::int64_t Time = std::llround(std::abs(DayNumber - Whole) * MicrosecondsPerDay);
  const std::int64_t Result = Days * MicrosecondsPerDay + Time;
  if (Result < MinDateTime.Microseconds || Result > MaxDateTime.Microseconds) return std::nullopt;
  return TDateTime{Result};
}

}  // namespace velkrund
