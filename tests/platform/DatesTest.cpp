#include "velkrund/platform/ormtools/Dates.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <random>

namespace velkrund::tests {
namespace {

TEST(Dates, ReadsAndWritesSystemTexts) {
  const std::pair<const char*, const char*> Rows[] = {
      {"0001-01-01 00:00:00", "0001-01-01 00:00:00"},
      {"9999-12-31 23:59:59.999999", "9999-12-31 23:59:59.999999"},
      {"1969-12-31 23:59:59.5", "1969-12-31 23:59:59.500"},
      {"2000-02-29 12:34:56.000001", "2000-02-29 12:34:56.000001"},
      {"2024-02-29 01:02:03.000000", "2024-02-29 01:02:03"},
  };
  for (const auto& [Text, Written] : Rows) {
    const std::optional<TDateTime> Value = SysStrToDateTime(Text);
    ASSERT_TRUE(Value) << Text;
    EXPECT_EQ(DateTimeToSysStr(*Value), Written);
  }
  for (const char* Bad :
       {"1900-02-29 00:00:00",         "2023-02-29 00:00:00",     "2023-04-31 00:00:00",  "2023-13-01 00:00:00",
        "2023-00-01 00:00:00",         "2023-01-00 00:00:00",     "0000-01-01 00:00:00",  "2023-01-01 24:00:00",
        "2023-01-01 00:60:00",         "2023-01-01 00:00:60",     "2023-01-01 00:00:00.", "2023-01-01",
        "2023-01-01 00:00:00.1234567", "2023-01-01 00:00:00.12x", "2023-01-01 00:00:00 ", "",
        "2023-01-01T00:00:00",         "2023-01-01  00:00:00",    "2023-1-01 00:00:00",   "-023-01-01 00:00:00",
        "2023-01-01 -1:00:00"})
    EXPECT_FALSE(SysStrToDateTime(Bad)) << Bad;
  EXPECT_EQ(SysStrToDateTime("0001-01-01 00:00:00"), MinDateTime);
  EXPECT_EQ(SysStrToDateTime("9999-12-31 23:59:59.999999"), MaxDateTime);
  // What is no date gives a text that is none.
  for (const std::int64_t Beyond : {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max(),
                                    MaxDateTime.Microseconds + 1})
    EXPECT_FALSE(SysStrToDateTime(DateTimeToSysStr({Beyond}))) << Beyond;
  EXPECT_FALSE(StrToSysDate("2023-01-01 "));
  EXPECT_FALSE(StrToSysTime("1:00:00"));
}

TEST(Dates, AgreeWithTheLibrarysCalendarOverAllYears) {
  using namespace std::chrono;
  std::string Text;
  std::int64_t Days = MinDateTime.Microseconds / MicrosecondsPerDay;
  for (; Days * MicrosecondsPerDay <= MaxDateTime.Microseconds; Days += 11) {
    const year_month_day Date{sys_days{days{Days}}};
    const TDateTime Value{Days * MicrosecondsPerDay};
    Text.clear();
    AppendSysDate(Text, {Value.Microseconds + (Days % 2 == 0 ? 0 : MicrosecondsPerDay - 1)});
    ASSERT_EQ(std::stoi(Text.substr(0, 4)), static_cast<int>(Date.year()));
    ASSERT_EQ(std::stoul(Text.substr(5, 2)), static_cast<unsigned>(Date.month()));
    ASSERT_EQ(std::stoul(Text.substr(8, 2)), static_cast<unsigned>(Date.day()));
    ASSERT_EQ(StrToSysDate(Text), Value) << Text;
  }
}

TEST(Dates, CountsDayNumbersForwardFromMidnight) {
  const std::pair<double, const char*> Rows[] = {
      {0, "1899-12-30 00:00:00"},         {-1.25, "1899-12-29 06:00:00"},   {1.25, "1899-12-31 06:00:00"},
      {0.75, "1899-12-30 18:00:00"},      {-1, "1899-12-29 00:00:00"},      {25569, "1970-01-01 00:00:00"},
      {36526.5, "2000-01-01 12:00:00"},   {-693593, "0001-01-01 00:00:00"}, {-693593.5, "0001-01-01 12:00:00"},
      {2958465.5, "9999-12-31 12:00:00"},
  };
  for (const auto& [DayNumber, Text] : Rows) {
    const std::optional<TDateTime> Value = DayNumberToDateTime(DayNumber);
    ASSERT_TRUE(Value) << Text;
    EXPECT_EQ(DateTimeToSysStr(*Value), Text);
    EXPECT_EQ(DateTimeToDayNumber(*Value), DayNumber) << Text;
  }
  // A fraction below zero that has no whole day, and fractions that round up into the next day.
  EXPECT_EQ(DateTimeToSysStr(*DayNumberToDateTime(-0.25)), "1899-12-30 06:00:00");
  EXPECT_EQ(DateTimeToSysStr(*DayNumberToDateTime(std::nextafter(25570.0, 0))), "1970-01-02 00:00:00");
  EXPECT_EQ(DateTimeToSysStr(*DayNumberToDateTime(-std::nextafter(3.0, 0))), "1899-12-29 00:00:00");
  for (const double Bad : {-693594.0, 2958466.0, 1e300, -1e300, std::nan(""), std::numeric_limits<double>::infinity()})
    EXPECT_FALSE(DayNumberToDateTime(Bad)) << Bad;
}

TEST(Dates, CarriesMicrosecondsThroughTextsAndDayNumbersNearTheEpoch) {
  std::mt19937_64 Random(19);
  std::uniform_int_distribution<std::int64_t> All(MinDateTime.Microseconds, MaxDateTime.Microseconds);
  for (int Round = 0; Round < 100'000; ++Round) {
    const TDateTime Value{All(Random)};
    ASSERT_EQ(SysStrToDateTime(DateTimeToSysStr(Value)), Value);
    // Within 65535 days a double tells microseconds apart.
    const TDateTime Near{Value.Microseconds % (65'535 * MicrosecondsPerDay) - 25'569 * MicrosecondsPerDay};
    ASSERT_EQ(DayNumberToDateTime(DateTimeToDayNumber(Near)), Near) << DateTimeToSysStr(Near);
  }
}

}  // namespace
}  // namespace velkrund::tests
