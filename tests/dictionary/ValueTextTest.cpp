#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/dictionary/TableFixture.h"

namespace velkrund::tests {
namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t MinInt64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t MaxInt64 = std::numeric_limits<std::int64_t>::max();

class ValueText : public testing::Test {
 protected:
  static std::string Write(TEICommonTableData& Section, const TKvVariant& Value, TKvKind Column = TKvKind::Null) {
    TMemoryTable Table("T", {{"F", Column}});
    AppendRow(Table, {Value});
    Table.First();
    std::string Out;
    Section.FieldToString(Table.Record().Fields(0), Out);
    return Out;
  }
  static TKvVariant Read(TEICommonTableData& Section, std::string Input, TKvKind Column = TKvKind::Null) {
    TMemoryTable Table("T", {{"F", Column}});
    Section.StringToField({Input.data(), Input.size()}, Table.Record().Fields(0));
    return Table.Record().Fields(0).BufferedValue();
  }

  TTestPlatform Platform;
  TEITableData Current;
  TEIOldTableData Old;
};

TEST_F(ValueText, CurrentEncodingWritesAndReadsBack) {
  using namespace std::string_literals;
  const struct {
    TKvVariant Value;
    std::string Written;
    TKvVariant ReadBack;
  } Cases[] = {
      {{}, "NULL", {}},
      {Integer(255, TKvKind::Byte), "255", Integer(255)},
      {Integer(MinInt64), "-9223372036854775808", Integer(MinInt64)},
      {Integer(MaxInt64), "9223372036854775807", Integer(MaxInt64)},
      {Unsigned(5), "5", Integer(5)},
      {Unsigned(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615",
       Unsigned(std::numeric_limits<std::uint64_t>::max())},
      {Real(-0.0), "-0.0", Real(-0.0)},
      {Real(5), "5.0", Real(5)},
      {Real(1e23), "1e+23", Real(1e23)},
      {Real(5e-324), "5e-324", Real(5e-324)},
      {Real(18446744073709551616.0), "18446744073709551616.0", Real(18446744073709551616.0)},
      {Real(Infinity), "INF", Real(Infinity)},
      {Real(-Infinity), "-INF", Real(-Infinity)},
      {Boolean(true, TKvKind::WordBool), "TRUE", Boolean(true)},
      {Boolean(false), "FALSE", Boolean(false)},
      {Text(""), "''", Text("")},
      {Text(" a|b#c\t\r\n'<>@ "), "' a#007Cb#0023c#0009#000D#000A'<>@ '", Text(" a|b#c\t\r\n'<>@ ")},
      {Text("\0\x1F\x7F\xC2\x80\xC2\x9F\xC2\xA0"s), "'#0000#001F#007F#0080#009F\xC2\xA0'",
       Text("\0\x1F\x7F\xC2\x80\xC2\x9F\xC2\xA0"s)},
      {Text("Ж日😀"), "'Ж日😀'", Text("Ж日😀")},
      {Text("\xED\xA0\xBD"), "'#DCED#DCA0#DCBD'", Text("\xED\xA0\xBD")},
      {Text("a\xFF\xC3(\xF0\x9F\x98"), "'a#DCFF#DCC3(#DCF0#DC9F#DC98'", Text("a\xFF\xC3(\xF0\x9F\x98")},
      {Text("\xED\xA0\xBD\x80\xEF\xBF\xBD"), "'#DCED#DCA0#DCBD#DC80\xEF\xBF\xBD'",
       Text("\xED\xA0\xBD\x80\xEF\xBF\xBD")},
      {Text("NULL"), "'NULL'", Text("NULL")},
      {Text("\xCF", TKvKind::AnsiString), "'П'", Text("П")},
      {Text("\x0A\x0B\xFF", TKvKind::Bytes), "0x0A0BFF", Text("\x0A\x0B\xFF", TKvKind::Bytes)},
      {Text("", TKvKind::Bytes), "0x", Text("", TKvKind::Bytes)},
      {Currency(125000), "$12.5", Currency(125000)},
      {Currency(MinInt64), "$-922337203685477.5808", Currency(MinInt64)},
      {Currency(MaxInt64), "$922337203685477.5807", Currency(MaxInt64)},
      {Date("0001-01-01"), "0001-01-01", Date("0001-01-01")},
      {TimeOfDay("23:59:59.999999"), "23:59:59.999999", TimeOfDay("23:59:59.999999")},
      {Moment("1898-12-30 00:00:00.001"), "1898-12-30 00:00:00.001", Moment("1898-12-30 00:00:00.001")},
      {Moment("9999-12-31 23:59:59"), "9999-12-31 23:59:59", Moment("9999-12-31 23:59:59")},
  };
  for (const auto& Case : Cases) {
    EXPECT_EQ(Write(Current, Case.Value), Case.Written);
    EXPECT_EQ(Read(Current, Case.Written), Case.ReadBack) << Case.Written;
  }
  EXPECT_EQ(Write(Current, Real(std::nan(""))), "NAN");
  EXPECT_TRUE(std::isnan(Read(Current, "NAN").AsReal()));
}

TEST_F(ValueText, CurrentEncodingReadsWhatPeopleWrite) {
  const struct {
    const char* Input;
    TKvVariant Expected;
  } Cases[] = {
      {"nUlL", {}},
      {"true", Boolean(true)},
      {"'#D83D#DE00'", Text("😀")},
      {"'#DE00#D83D'", Text("\xED\xB8\x80\xED\xA0\xBD")},
      {"'#DC80#DCff'", Text("\x80\xFF")},
      {"'#DC7F#DD00'", Text("\xED\xB1\xBF\xED\xB4\x80")},
      {"'#D83D#DC80#DC80'", Text("\xF0\x9F\x92\x80\x80")},
      {"'#D83D#D83D#DE00'", Text("\xED\xA0\xBD😀")},
      {"'#D83Dx#DC80#DE00'", Text("\xED\xA0\xBDx\x80\xED\xB8\x80")},
      {"'\xED\xA0\xBD#DC80'", Text("\xED\xA0\xBD\x80")},
      {"'\xED\xA0\xBD#DE00'", Text("\xED\xA0\xBD\xED\xB8\x80")},
      {"'a#12'", Text("a")},
      {"'a#'", Text("a")},
      {"'#0041#12ж'", Text("A")},
      {"'it's'", Text("it's")},
      {"+7", Integer(7)},
      {"0x0aFf", Text("\x0A\xFF", TKvKind::Bytes)},
      {"1E400", Real(Infinity)},
      {".5", Real(0.5)},
      {"2024-02-29", Date("2024-02-29")},
      {"10:00:00", TimeOfDay("10:00:00")},
      {"2024-02-29 10:00:00.5", Moment("2024-02-29 10:00:00.5")},
  };
  for (const auto& Case : Cases) EXPECT_EQ(Read(Current, Case.Input), Case.Expected) << Case.Input;
}

TEST_F(ValueText, CurrentEncodingRefusesTheRest) {
  const std::string Incorrect =
      "EDicUtilError: Can not import table data. Invalid record data structure. Field value is incorrect (Field:'F'); "
      "Value: ";
  const struct {
    const char* Input;
    std::string Error;
    bool NullWhenLenient;
  } Cases[] = {
      {"abc", Incorrect + "abc", true},
      {"'", Incorrect + "'", true},
      {"'abc", Incorrect + "'abc", true},
      {"1 2", Incorrect + "1 2", true},
      {"2024-02-30", Incorrect + "2024-02-30", true},
      {"24:00:00", Incorrect + "24:00:00", true},
      {"0X0A", Incorrect + "0X0A", true},
      {"'#00G0'", "EDicUtilError: Error importing table data. Invalid character (#$00G0) in string constant.", false},
      {"'#00жж'", "EDicUtilError: Error importing table data. Invalid character (#$00жж) in string constant.", false},
      {"0x0", "EDicUtilError: Error importing table data. Incorrect binary value", false},
      {"0x0G", "EConvertError: '$0G' is not a valid integer value", false},
      {"$1,5", "EConvertError: '1,5' is not a valid currency value", false},
      {"$1.00001", "EConvertError: '1.00001' is not a valid currency value", false},
      {"$922337203685477.5808", "EConvertError: '922337203685477.5808' is not a valid currency value", false},
  };
  TEITableData Lenient;
  Lenient.StrictValues = false;
  for (const auto& Case : Cases) {
    EXPECT_EQ(ErrorOf([&] { Read(Current, Case.Input); }), Case.Error);
    if (Case.NullWhenLenient)
      EXPECT_TRUE(Read(Lenient, Case.Input).IsNull()) << Case.Input;
    else
      EXPECT_EQ(ErrorOf([&] { Read(Lenient, Case.Input); }), Case.Error);
  }
  EXPECT_EQ(Lenient.Report->NullsMade, 7);
}

TEST_F(ValueText, OldEncodingWritesAndReadsBack) {
  const struct {
    TKvVariant Value;
    TKvKind Column;
    std::string Written;
    TKvVariant ReadBack;
  } Cases[] = {
      {{}, TKvKind::Null, "NULL", {}},
      {Integer(-2147483648LL), TKvKind::Int64, "-2147483648", Integer(-2147483648LL, TKvKind::Integer)},
      {Unsigned(2147483647), TKvKind::Int64, "2147483647", Integer(2147483647, TKvKind::Integer)},
      {Real(-0.0), TKvKind::Double, "-0.0", Real(-0.0)},
      {Real(1.5), TKvKind::Null, "1.5", Real(1.5)},
      {Boolean(true), TKvKind::Boolean, "TRUE", Boolean(true)},
      {Text("a|b#\t\x7F'é"), TKvKind::String, "'a#7Cb#23#09\x7F'?'", Text("a|b#\t\x7F'?", TKvKind::AnsiString)},
      {Text("Ж"), TKvKind::String, "'Ж'", Text("\xC6", TKvKind::AnsiString)},
      {Text("\x01\x98\xFF", TKvKind::Bytes), TKvKind::Bytes, "'#01\xC2\x98я'",
       Text("\x01\x98\xFF", TKvKind::AnsiString)},
      {Moment("2024-01-31 12:00:00"), TKvKind::DateTime, "45322.5", Moment("2024-01-31 12:00:00")},
      {Moment("1899-12-29 06:00:00"), TKvKind::DateTime, "-1.25", Moment("1899-12-29 06:00:00")},
      {Moment("9999-12-31 23:59:59.999999"), TKvKind::DateTime, "2958465.9999999995",
       Moment("9999-12-31 23:59:59.99996")},
      {Moment("1600-01-01 23:59:59.999999"), TKvKind::DateTime, "-109571.99999999999",
       Moment("1600-01-01 23:59:59.999999")},
      {Date("2024-01-31"), TKvKind::SysDate, "45322.0", Date("2024-01-31")},
      {TimeOfDay("18:00:00"), TKvKind::SysTime, "0.75", TimeOfDay("18:00:00")},
      {Moment("2024-01-31 12:00:00"), TKvKind::Double, "45322.5", Real(45322.5)},
      {Integer(45322), TKvKind::DateTime, "45322", Moment("2024-01-31 00:00:00")},
      {Integer(45322), TKvKind::SysDate, "45322", Date("2024-01-31")},
      {Integer(0), TKvKind::SysTime, "0", TimeOfDay("00:00:00")},
      {Integer(1), TKvKind::SysTime, "1", Integer(1, TKvKind::Integer)},
      {Integer(1704067200), TKvKind::DateTime, "1704067200", Integer(1704067200, TKvKind::Integer)},
      {Currency(MaxInt64), TKvKind::Currency, "922337203685477.5807", Currency(MaxInt64)},
      {Currency(70000), TKvKind::Currency, "7", Currency(70000)},
  };
  for (const auto& Case : Cases) {
    EXPECT_EQ(Write(Old, Case.Value), Case.Written);
    EXPECT_EQ(Read(Old, Case.Written, Case.Column), Case.ReadBack) << Case.Written;
  }
  EXPECT_EQ(Read(Old, "4294967296"), Real(4294967296.0));
  EXPECT_EQ(Read(Old, "-1.2345E+0003", TKvKind::Currency), Currency(-12'345'000));
}

// The rest comes back: RandomOldVersionTest looks.
TEST_F(ValueText, OldEncodingNamesWhatWouldComeBackAsAnother) {
  Platform.WorkSettings.StrictText = true;
  TEIOldTableData Strict;
  const struct {
    TKvVariant Value;
    TKvKind Column;
    const char* Change;
  } Cases[] = {
      {Text("a"), TKvKind::Bytes, "the text would come back as bytes"},
      {Text("a", TKvKind::Bytes), TKvKind::String, "the bytes would come back as a text"},
      {Text("", TKvKind::Bytes), TKvKind::Null, "the bytes would come back as a text"},
      {Real(-0.0), TKvKind::Currency, "the negative zero would lose its sign"},
      {Real(2460340.5), TKvKind::DateTime, "the number would come back as a date or time"},
      {Integer(45000), TKvKind::SysDate, "the number would come back as a date or time"},
      {Unsigned(0), TKvKind::SysTime, "the number would come back as a date or time"},
      {Currency(1), TKvKind::Null, "the amount would come back as another number"},
      {Date("2024-01-31"), TKvKind::DateTime, "the date or time would come back as another value"},
      {Moment("2079-06-07 10:00:00.000001"), TKvKind::DateTime, "the microseconds would be rounded"},
  };
  for (const auto& Case : Cases)
    EXPECT_EQ(ErrorOf([&] { Write(Strict, Case.Value, Case.Column); }),
              std::string("EDicUtilError: In version 100 ") + Case.Change +
                  " (Field:'F';Record:1). Use version 200, or allow losses");
}

TEST_F(ValueText, OldEncodingRefusesTheRest) {
  const std::string Range = "EDicUtilError: Can not export table data. Field value ";
  for (const std::int64_t Number : {2147483648LL, -2147483649LL})
    EXPECT_EQ(ErrorOf([&] { Write(Old, Integer(Number)); }),
              Range + std::to_string(Number) + " is out of bounds -2147483648 and 2147483647.");
  EXPECT_EQ(ErrorOf([&] { Write(Old, Unsigned(18446744073709551615ULL)); }),
            Range + "18446744073709551615 is out of bounds -2147483648 and 2147483647.");
  const struct {
    const char* Input;
    const char* Error;
  } Cases[] = {
      {"abc", "Error at position: 1"},
      {"12x", "Error at position: 3"},
      {"1e", "Error at position: 3"},
      {"'abc", "String closing quote not founded"},
      {"'", "String closing quote not founded"},
      {"'ab\tc'", "Uncorrect string symbol №4 symbol code:9"},
      {"'ж|'", "Uncorrect string symbol №3 symbol code:124"},
      {"'😀\x01'", "Uncorrect string symbol №4 symbol code:1"},
      {"'a#'", "Uncorrect symbol code on position:3"},
      {"'a#1'", "Uncorrect symbol code on position:3"},
      {"'a#1G'", "Uncorrect symbol code on position:5"},
      {"'#41#жж'", "Uncorrect symbol code on position:7"},
  };
  TEIOldTableData Lenient;
  Lenient.StrictValues = false;
  for (const auto& Case : Cases) {
    EXPECT_EQ(ErrorOf([&] { Read(Old, Case.Input); }),
              std::string("EDicUtilError: Can not import table data. Invalid record data structure. Field value is "
                          "incorrect (Field:'F';Error:'") +
                  Case.Error + "')");
    EXPECT_TRUE(Read(Lenient, Case.Input).IsNull());
  }
}

TEST_F(ValueText, LostTextIsCountedOrRefused) {
  Platform.WorkSettings.StrictText = true;
  TEIOldTableData Strict;
  for (const char* Lost : {"日", "a\xFF", "\xED\xA0\xBD"})
    EXPECT_EQ(ErrorOf([&] { Write(Strict, Text(Lost)); }),
              "EDicUtilError: A text has characters that code page 1251 lacks (Field:'F';Record:1). Use version 200 in "
              "UTF-8, or allow losses");
  EXPECT_EQ(Write(Old, Text("a\xFF\xC3(")), "'a?\?('");
}

}  // namespace
}  // namespace velkrund::tests
