#include "velkrund/platform/ormtools/Numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale>
#include <random>

#include "velkrund/platform/ormtools/Currency.h"

namespace velkrund::tests {
namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

std::uint64_t Bits(double Value) { return std::bit_cast<std::uint64_t>(Value); }

TEST(Numbers, WritesReals) {
  struct TRow {
    double Value;
    const char* Text;
  };
  const TRow Rows[] = {{0.0, "0.0"},
                       {-0.0, "-0.0"},
                       {1.0, "1.0"},
                       {0.1, "0.1"},
                       {-123456.0, "-123456.0"},
                       {1e22, "1e+22"},
                       {5e-324, "5e-324"},
                       {1.7976931348623157e308, "1.7976931348623157e+308"},
                       {Infinity, "INF"},
                       {-Infinity, "-INF"},
                       {std::nan(""), "NAN"},
                       {-std::nan(""), "NAN"}};
  for (const TRow& Row : Rows) EXPECT_EQ(Str(Row.Value), Row.Text);
}

TEST(Numbers, ReadsRealsAndSaysWhereAFaultyOneBreaks) {
  struct TRow {
    const char* Text;
    double Value;
    std::size_t ErrorPosition;
  };
  const TRow Rows[] = {
      {"0", 0, 0},
      {"+1.5", 1.5, 0},
      {"-.5e1", -5, 0},
      {"5.", 5, 0},
      {"1E+2", 100, 0},
      {"-0.0", -0.0, 0},
      {"INF", Infinity, 0},
      {"+inf", Infinity, 0},
      {"-Inf", -Infinity, 0},
      {"1e309", Infinity, 0},
      {"-1e400", -Infinity, 0},
      {"1e-400", 0, 0},
      {"-1e-99999999999999999999", -0.0, 0},
      {"1e99999999999999999999", Infinity, 0},
      {"0e99999999999999999999", 0, 0},
      {"0.000000000000000000000000000001e-310", 0, 0},
      {"10000000000000000000000000000000000e300", Infinity, 0},
      {"1e-320", 1e-320, 0},
      // faults
      {"", 0, 1},
      {"-", 0, 2},
      {"+", 0, 2},
      {".", 0, 2},
      {"-.", 0, 3},
      {"abc", 0, 1},
      {" 1", 0, 1},
      {"1 ", 0, 2},
      {"1,5", 0, 2},
      {"1.5.", 0, 4},
      {"1e", 0, 3},
      {"1e+", 0, 4},
      {"1e+x", 0, 4},
      {"1e5.0", 0, 4},
      {"+-1", 0, 2},
      {"--1", 0, 2},
      {"0x10", 0, 2},
      {"infinity", 0, 4},
      {"IN", 0, 3},
      {"NAN(1)", 0, 4},
      {"nam", 0, 3},
      {".e5", 0, 2},
      {"1e400x", 0, 6},
  };
  for (const TRow& Row : Rows) {
    std::size_t Position = 99;
    const std::optional<double> Value = StrToReal(Row.Text, Position);
    EXPECT_EQ(Position, Row.ErrorPosition) << Row.Text;
    EXPECT_EQ(Value.has_value(), Row.ErrorPosition == 0) << Row.Text;
    EXPECT_EQ(Bits(Value.value_or(Row.Value)), Bits(Row.Value)) << Row.Text;
  }
  // Zeros outweigh an exponent.
  EXPECT_EQ(StrToReal("0." + std::string(400, '0') + "1e+50"), 0.0);
  EXPECT_EQ(StrToReal("1" + std::string(400, '0') + "e-50"), Infinity);
  EXPECT_EQ(StrToReal("1" + std::string(400, '0') + "e-400"), 1.0);
  EXPECT_TRUE(std::isnan(StrToReal("nAn").value_or(0)));
  EXPECT_FALSE(StrToReal(std::string_view("1\0", 2)));
}

TEST(Numbers, CarriesRealsOfAllSizesToTheLastBit) {
  std::mt19937_64 Random(11);
  std::string Text;
  for (int Round = 0; Round < 100'000; ++Round) {
    const double Value = std::bit_cast<double>(Random());
    if (!std::isfinite(Value)) continue;
    Text.clear();
    AppendReal(Text, Value);
    ASSERT_EQ(Bits(StrToReal(Text).value()), Bits(Value)) << Text;
    ASSERT_EQ(Bits(std::strtod(Text.c_str(), nullptr)), Bits(Value)) << Text;
  }
}

TEST(Numbers, ReadsIntegersInRangeAndNothingElse) {
  struct TRow {
    const char* Text;
    std::optional<std::int32_t> Small;
    std::optional<std::int64_t> Large;
    std::optional<std::uint64_t> Unsigned;
  };
  constexpr std::nullopt_t No = std::nullopt;
  const TRow Rows[] = {
      {"0", 0, 0, 0},
      {"-0", 0, 0, 0},
      {"+7", 7, 7, 7},
      {"007", 7, 7, 7},
      {"-1", -1, -1, No},
      {"2147483647", 2147483647, 2147483647, 2147483647},
      {"2147483648", No, 2147483648, 2147483648},
      {"-2147483648", std::numeric_limits<std::int32_t>::min(), -2147483648LL, No},
      {"9223372036854775807", No, std::numeric_limits<std::int64_t>::max(), 9223372036854775807u},
      {"-9223372036854775808", No, std::numeric_limits<std::int64_t>::min(), No},
      {"9223372036854775808", No, No, 9223372036854775808u},
      {"18446744073709551615", No, No, std::numeric_limits<std::uint64_t>::max()},
      {"18446744073709551616", No, No, No},
      {"", No, No, No},
      {"+", No, No, No},
      {"-", No, No, No},
      {"+-1", No, No, No},
      {"--1", No, No, No},
      {" 1", No, No, No},
      {"1 ", No, No, No},
      {"1.0", No, No, No},
      {"0x1", No, No, No},
  };
  for (const TRow& Row : Rows) {
    EXPECT_EQ(StrToInt32(Row.Text), Row.Small) << Row.Text;
    EXPECT_EQ(StrToInt64(Row.Text), Row.Large) << Row.Text;
    EXPECT_EQ(StrToUInt64(Row.Text), Row.Unsigned) << Row.Text;
  }
  std::string Text;
  AppendInteger(Text, std::numeric_limits<std::int64_t>::min());
  AppendUnsigned(Text, std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(Text, "-922337203685477580818446744073709551615");
}

TEST(Numbers, ReadsAndWritesHexadecimal) {
  std::string Text = "x";
  AppendHex(Text, std::string_view("\x00\x01\x9A\xFF", 4));
  AppendHex(Text, {});
  EXPECT_EQ(Text, "x00019AFF");
  EXPECT_EQ(HexToUnsigned("fFfFfFfFfFfFfFfF"), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(HexToUnsigned("0000000000000010"), 16u);
  for (const char* Bad : {"", "00000000000000010", "g", "-1", "+1", "0x1", " 1", "1 "})
    EXPECT_FALSE(HexToUnsigned(Bad)) << Bad;
}

TEST(Currency, ReadsAmounts) {
  constexpr std::int64_t Lowest = std::numeric_limits<std::int64_t>::min();
  struct TRow {
    const char* Text;
    std::optional<std::int64_t> TenThousandths;
    const char* Written;
  };
  const TRow Rows[] = {
      {"0", 0, "0"},
      {"-0.0000", 0, "0"},
      {"+12.5", 125'000, "12.5"},
      {"-0.0001", -1, "-0.0001"},
      {"7.010", 70'100, "7.01"},
      {"1.23450000000", 12'345, "1.2345"},
      {"922337203685477.5807", -(Lowest + 1), "922337203685477.5807"},
      {"-922337203685477.5808", Lowest, "-922337203685477.5808"},
      {"922337203685477.5808", std::nullopt, ""},
      {"-922337203685477.5809", std::nullopt, ""},
      {"92233720368547758070", std::nullopt, ""},
      {"1.23456", std::nullopt, ""},
      {"", std::nullopt, ""},
      {"-", std::nullopt, ""},
      {".5", std::nullopt, ""},
      {"5.", std::nullopt, ""},
      {"1,5", std::nullopt, ""},
      {"1.5x", std::nullopt, ""},
      {"1.50000x", std::nullopt, ""},
      {"1e2", std::nullopt, ""},
      {" 1", std::nullopt, ""},
  };
  for (const TRow& Row : Rows) {
    const std::optional<TCurrency> Value = StrToCurrency(Row.Text);
    ASSERT_EQ(Value.has_value(), Row.TenThousandths.has_value()) << Row.Text;
    if (!Value) continue;
    EXPECT_EQ(Value->TenThousandths, *Row.TenThousandths) << Row.Text;
    EXPECT_EQ(CurrencyToStr(*Value), Row.Written);
  }
}

TEST(Currency, CarriesAmountsThroughTextsAndExactDoubles) {
  std::mt19937_64 Random(13);
  for (int Round = 0; Round < 100'000; ++Round) {
    const TCurrency Value{static_cast<std::int64_t>(Random()) >> Random() % 64};
    ASSERT_EQ(StrToCurrency(CurrencyToStr(Value)), Value);
    const double Real = CurrencyToReal(Value);
    ASSERT_EQ(Bits(Real), Bits(std::strtod(CurrencyToStr(Value).c_str(), nullptr))) << CurrencyToStr(Value);
    const std::optional<TCurrency> Back = RealToCurrency(Real);
    // At both ends the nearest double lies outside the range.
    if (std::abs(Real) < 922337203685477.5) {
      ASSERT_TRUE(Back) << CurrencyToStr(Value);
      ASSERT_EQ(Bits(CurrencyToReal(*Back)), Bits(Real));
    }
  }
  for (const double Bad : {0.00001, 1.23456, -0.0, 1e15, -1e15, 922337203685477.75, Infinity, -Infinity, std::nan("")})
    EXPECT_FALSE(RealToCurrency(Bad)) << Bad;
}

TEST(Numbers, IgnoreTheLocale) {
  struct TCommas : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale Before = std::locale::global(std::locale(std::locale::classic(), new TCommas));
  for (const char* Name : {"de_DE.UTF-8", "ru_RU.UTF-8", "fr_FR.UTF-8"})
    if (std::setlocale(LC_ALL, Name)) break;
  std::string Text;
  AppendInteger(Text, 1234567);
  EXPECT_EQ(Text + " " + Str(1234567.5) + " " + CurrencyToStr({12'345'678}), "1234567 1234567.5 1234.5678");
  EXPECT_EQ(StrToReal("1.5"), 1.5);
  EXPECT_FALSE(StrToReal("1,5"));
  EXPECT_EQ(CurrencyToReal({std::numeric_limits<std::int64_t>::max()}), 922337203685477.5807);
  std::locale::global(Before);
  std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace velkrund::tests
