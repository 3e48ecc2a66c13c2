#include "velkrund/platform/ormtools/Numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <limits>
#include <locale>

#include "velkrund/platform/ormtools/Currency.h"
#include "velkrund/platform/ormtools/HexDigits.h"

namespace velkrund::tests {
namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

std::uint64_t Bits(double Value) { return std::bit_cast<std::uint64_t>(Value); }

TEST(Numbers, WritesReals) {
  const double Values[] = {0.0, -0.0, 1.0, 0.1, -123456.0, 1e22, 5e-324, 1.7976931348623157e308};
  std::string Text;
  for (const double Value : Values) AppendReal(Text += ' ', Value);
  EXPECT_EQ(Text, " 0.0 -0.0 1.0 0.1 -123456.0 1e+22 5e-324 1.7976931348623157e+308");
  EXPECT_EQ(Str(Infinity) + Str(-Infinity) + Str(std::nan("")) + Str(-std::nan("")), "INF-INFNANNAN");
}

TEST(Numbers, ReadsReals) {
  const std::string Zeros(400, '0');
  const std::pair<std::string, double> Rows[] = {{"0", 0},
                                                 {"+1.5", 1.5},
                                                 {"-.5e1", -5},
                                                 {"5.", 5},
                                                 {"1E+2", 100},
                                                 {"-0.0", -0.0},
                                                 {"1e-320", 1e-320},
                                                 {"INF", Infinity},
                                                 {"+inf", Infinity},
                                                 {"-Inf", -Infinity},
                                                 // beyond the range; zeros outweigh exponents
                                                 {"1e309", Infinity},
                                                 {"-1e400", -Infinity},
                                                 {"1e-400", 0},
                                                 {"-1e-99999999999999999999", -0.0},
                                                 {"1e99999999999999999999", Infinity},
                                                 {"0e99999999999999999999", 0},
                                                 {"0." + Zeros + "1e+50", 0},
                                                 {"1" + Zeros + "e-50", Infinity},
                                                 {"1" + Zeros + "e-400", 1}};
  for (const auto& [Text, Expected] : Rows) {
    std::size_t Position = 99;
    const std::optional<double> Value = StrToReal(Text, Position);
    ASSERT_TRUE(Value) << Text;
    EXPECT_EQ(Bits(*Value), Bits(Expected)) << Text;
    EXPECT_EQ(Position, 0u) << Text;
  }
  for (const char* Text : {"nAn", "+NAN", "-NAN"})
    EXPECT_EQ(Bits(StrToReal(Text).value_or(0)), Bits(std::numeric_limits<double>::quiet_NaN())) << Text;
  EXPECT_FALSE(StrToReal(std::string_view("1\0", 2)));
}

TEST(Numbers, SaysWhereAFaultyRealBreaks) {
  // The bar stands before the first character that does not fit.
  for (std::string Text :
       {"|",     "-|",     "+|",   ".|",   "-.|",   "|abc",      "| 1", "1| ",     "1|,5", "1.5|.", "1e|",    "1e+|",
        "1e+|x", "1e5|.0", "+|-1", "-|-1", "0|x10", "inf|inity", "IN|", "NAN|(1)", "na|m", ".|e5",  "1e400|x"}) {
    const std::size_t Break = Text.find('|');
    Text.erase(Break, 1);
    std::size_t Position = 0;
    EXPECT_FALSE(StrToReal(Text, Position)) << Text;
    EXPECT_EQ(Position, Break + 1) << Text;
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
  };
  for (const TRow& Row : Rows) {
    EXPECT_EQ(StrToInt32(Row.Text), Row.Small) << Row.Text;
    EXPECT_EQ(StrToInt64(Row.Text), Row.Large) << Row.Text;
    EXPECT_EQ(StrToUInt64(Row.Text), Row.Unsigned) << Row.Text;
  }
  for (const char* Bad : {"18446744073709551616", "", "+", "-", "+-1", "--1", " 1", "1 ", "1.0", "0x1"}) {
    EXPECT_FALSE(StrToInt32(Bad)) << Bad;
    EXPECT_FALSE(StrToInt64(Bad)) << Bad;
    EXPECT_FALSE(StrToUInt64(Bad)) << Bad;
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

TEST(Numbers, DecodesHexadecimalWhereItStands) {
  for (std::size_t Bytes = 0; Bytes < 100; ++Bytes) {
    std::string Expected, Upper, Lower;
    for (std::size_t At = 0; At < Bytes; ++At) Expected += static_cast<char>(At * 89 + Bytes);
    AppendHex(Upper, Expected);
    for (const char Digit : Upper) Lower += static_cast<char>(Digit >= 'A' ? Digit + 0x20 : Digit);
    for (std::string Text : {Upper, Lower}) {
      ASSERT_EQ(DecodeHex(Text, Text.data()), 2 * Bytes);
      ASSERT_EQ(Text.substr(0, Bytes), Expected);
    }
    for (std::size_t At = 0; At < Upper.size(); ++At) {
      std::string Text = Upper;
      Text[At] = "/:@G`g\xE1\0"[At % 8];
      ASSERT_EQ(DecodeHex(Text, Text.data()), At / 2 * 2) << "damaged at " << At << " of " << Text.size();
      ASSERT_EQ(Text.substr(0, At / 2), Expected.substr(0, At / 2));
    }
  }
}

TEST(Currency, ReadsAmounts) {
  constexpr std::int64_t Lowest = std::numeric_limits<std::int64_t>::min();
  struct TRow {
    const char* Text;
    std::int64_t TenThousandths;
    const char* Written;
  };
  const TRow Rows[] = {
      {"-0.0000", 0, "0"},
      {"+12.5", 125'000, "12.5"},
      {"-0.0001", -1, "-0.0001"},
      {"7.010", 70'100, "7.01"},
      {"1.23450000000", 12'345, "1.2345"},
      {"922337203685477.5807", -(Lowest + 1), "922337203685477.5807"},
      {"-922337203685477.5808", Lowest, "-922337203685477.5808"},
  };
  for (const TRow& Row : Rows) {
    EXPECT_EQ(StrToCurrency(Row.Text), TCurrency{Row.TenThousandths}) << Row.Text;
    EXPECT_EQ(CurrencyToStr({Row.TenThousandths}), Row.Written);
  }
  for (const char* Bad : {"922337203685477.5808", "-922337203685477.5809", "92233720368547758070", "1.23456", "", "-",
                          ".5", "5.", "1,5", "1.5x", "1.50000x", "1e2", " 1"})
    EXPECT_FALSE(StrToCurrency(Bad)) << Bad;
}

TEST(Currency, RefusesWhatIsNoExactAmount) {
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
