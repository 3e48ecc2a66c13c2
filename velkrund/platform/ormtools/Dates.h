#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velkrund {

/// A moment on the calendar without a zone: microseconds since 1970-01-01 00:00:00 in the proleptic Gregorian
/// calendar. Covers 0001-01-01 00:00:00 .. 9999-12-31 23:59:59.999999.
struct TDateTime {
  std::int64_t Microseconds = 0;
  friend constexpr auto operator<=>(const TDateTime&, const TDateTime&) = default;
};

inline constexpr std::int64_t MicrosecondsPerDay = 86'400'000'000;
inline constexpr TDateTime MinDateTime{-62'135'596'800'000'000};
inline constexpr TDateTime MaxDateTime{253'402'300'799'999'999};

// System texts, the same in every locale: a date is YYYY-MM-DD; a time HH:MM:SS with ".zzz" or ".zzzzzz" only when that
// part is not zero; a date-time is both, joined by one blank. Times are microseconds since midnight, 0 .. one day - 1.

void AppendSysDate(std::string& Out, TDateTime Value);
void AppendSysTime(std::string& Out, std::int64_t TimeOfDay);
void AppendSysDateTime(std::string& Out, TDateTime Value);
std::string DateTimeToSysStr(TDateTime Value);

/// Readers of exactly these texts; nothing on any other, on impossible days and outside the years 1 to 9999. A fraction
/// may have one to six digits.
std::optional<TDateTime> StrToSysDate(std::string_view Text);
std::optional<std::int64_t> StrToSysTime(std::string_view Text);
std::optional<TDateTime> SysStrToDateTime(std::string_view Text);

/// Day numbers count days from 1899-12-30; the time is the fraction, which before that day still counts forward from
/// midnight (-1.25 is 1899-12-29 06:00): the OLE Automation rule. Rounded to the microsecond; nothing outside the
/// range. A double tells microseconds apart within 65535 days; a moment beyond them is off by one step of the double
/// (at most 40 microseconds) and stays on its day.
double DateTimeToDayNumber(TDateTime Value);
std::optional<TDateTime> DayNumberToDateTime(double DayNumber);

}  // namespace velkrund
