#include "standalone/drivers/postgresql/PostgreSQLDates.h"

#include <limits>

#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

constexpr std::int64_t DaysTo2000 = 10'957;  // from 1970-01-01
constexpr std::int64_t MinDay = MinDateTime.Microseconds / MicrosecondsPerDay - DaysTo2000;
constexpr std::int64_t MaxDay = MaxDateTime.Microseconds / MicrosecondsPerDay - DaysTo2000;

void AppendPadded(std::string& Out, std::int64_t Number, int Width) {
  std::string Digits;
  AppendInteger(Digits, Number);
  Out.append(static_cast<std::size_t>(std::max<std::int64_t>(0, Width - std::ssize(Digits))), '0');
  Out += Digits;
}

struct TDay {
  std::int64_t Year;  // 0 is the year before 1
  int Month;
  int Day;
};

/// Counts in years that begin with March, so that the leap day comes last, and in eras of 400 years.
TDay DayOf(std::int64_t DaysSince2000) {
  constexpr std::int64_t DaysPerEra = 146'097;
  constexpr std::int64_t DaysFromYear0To2000 = 730'425;  // from 0000-03-01
  const std::int64_t Days = DaysSince2000 + DaysFromYear0To2000;
  const std::int64_t Era = (Days >= 0 ? Days : Days - (DaysPerEra - 1)) / DaysPerEra;
  const std::int64_t DayOfEra = Days - Era * DaysPerEra;
  const std::int64_t YearOfEra = (DayOfEra - DayOfEra / 1460 + DayOfEra / 36'524 - DayOfEra / 146'096) / 365;
  const std::int64_t DayOfYear = DayOfEra - (365 * YearOfEra + YearOfEra / 4 - YearOfEra / 100);
  const std::int64_t FromMarch = (5 * DayOfYear + 2) / 153;
  const std::int64_t Month = FromMarch < 10 ? FromMarch + 3 : FromMarch - 9;
  return {YearOfEra + Era * 400 + (Month <= 2 ? 1 : 0), static_cast<int>(Month),
          static_cast<int>(DayOfYear - (153 * FromMarch + 2) / 5 + 1)};
}

/// Appends the date and tells whether " BC" has to follow.
bool AppendDay(std::string& Out, std::int64_t DaysSince2000) {
  const TDay Day = DayOf(DaysSince2000);
  const bool BeforeChrist = Day.Year <= 0;
  AppendPadded(Out, BeforeChrist ? 1 - Day.Year : Day.Year, 4);
  Out += '-';
  AppendPadded(Out, Day.Month, 2);
  Out += '-';
  AppendPadded(Out, Day.Day, 2);
  return BeforeChrist;
}

void AppendTime(std::string& Out, std::int64_t TimeOfDay) {
  constexpr std::int64_t PerSecond = 1'000'000;
  AppendPadded(Out, TimeOfDay / (3600 * PerSecond), 2);
  Out += ':';
  AppendPadded(Out, TimeOfDay / (60 * PerSecond) % 60, 2);
  Out += ':';
  AppendPadded(Out, TimeOfDay / PerSecond % 60, 2);
  if (TimeOfDay % PerSecond == 0) return;
  Out += '.';
  AppendPadded(Out, TimeOfDay % PerSecond, 6);
  while (Out.back() == '0') Out.pop_back();
}

/// True when Count stands for no moment.
template <typename T>
bool SetInfinite(T Count, TKvVariant& Value) {
  if (Count == std::numeric_limits<T>::max()) return Value.BorrowText("infinity"), true;
  if (Count == std::numeric_limits<T>::min()) return Value.BorrowText("-infinity"), true;
  return false;
}

}  // namespace

void SetPostgreSQLDate(std::int32_t Days, TKvVariant& Value) {
  if (Days >= MinDay && Days <= MaxDay) return Value.SetSysDate({(Days + DaysTo2000) * MicrosecondsPerDay});
  if (SetInfinite(Days, Value)) return;
  std::string& Text = Value.StartText();
  if (AppendDay(Text, Days)) Text += " BC";
  Value.FinishText();
}

void SetPostgreSQLTime(std::int64_t Microseconds, TKvVariant& Value) {
  if (Microseconds < MicrosecondsPerDay) return Value.SetSysTime(Microseconds);
  Value.BorrowText("24:00:00");
}

void SetPostgreSQLTimestamp(std::int64_t Microseconds, bool Zoned, TKvVariant& Value) {
  constexpr std::int64_t First = MinDay * MicrosecondsPerDay;
  constexpr std::int64_t Last = (MaxDay + 1) * MicrosecondsPerDay - 1;
  if (Microseconds >= First && Microseconds <= Last)
    return Value.SetDateTime({Microseconds + DaysTo2000 * MicrosecondsPerDay});
  if (SetInfinite(Microseconds, Value)) return;
  std::int64_t Day = Microseconds / MicrosecondsPerDay;
  std::int64_t TimeOfDay = Microseconds % MicrosecondsPerDay;
  if (TimeOfDay < 0) {
    --Day;
    TimeOfDay += MicrosecondsPerDay;
  }
  std::string& Text = Value.StartText();
  const bool BeforeChrist = AppendDay(Text, Day);
  Text += ' ';
  AppendTime(Text, TimeOfDay);
  if (Zoned) Text += "+00";
  if (BeforeChrist) Text += " BC";
  Value.FinishText();
}

}  // namespace velkrund
