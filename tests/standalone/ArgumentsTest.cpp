#include "standalone/dictionary/Arguments.h"

#include <gmock/gmock.h>

#include "tests/standalone/Support.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

TEST(Arguments, TextsBecomeValuesOfTheParametersType) {
  using T = TDicFieldType;
  const struct {
    T Type;
    const char* Text;
    std::string Value;  // kind and text; empty: refused
  } Cases[] = {
      {T::Int16, "-32768", "18 -32768"},
      {T::Int16, "32768", ""},
      {T::Int32, "2147483648", ""},
      {T::Int64, " 1", ""},
      {T::UInt64, "18446744073709551615", "19 18446744073709551615"},
      {T::UInt64, "-1", ""},
      {T::Real64, "1e3", "7 1000.0"},
      {T::Real64, "1,5", ""},
      {T::Decimal, "12.50", "7 12.5"},
      {T::Decimal, "7", "18 7"},
      {T::Decimal, "1234567890123456.5", "10 1234567890123456.5"},
      {T::Decimal, "12.5x", ""},
      {T::Boolean, "True", "11 TRUE"},
      {T::Boolean, "0", "11 FALSE"},
      {T::Boolean, "yes", ""},
      {T::Bytes, "0aFF", std::string("23 \x0A\xFF")},
      {T::Bytes, "", "23 "},
      {T::Bytes, "0a0", ""},
      {T::Bytes, "0x", ""},
      {T::Date, "2024-02-29", "14 2024-02-29"},
      {T::Date, "2023-02-29", ""},
      {T::Time, "13:45:00", "15 13:45:00"},
      {T::Time, "25:00:00", ""},
      {T::DateTime, "2024-02-29 13:45:00", "16 2024-02-29 13:45:00"},
      {T::DateTime, "2024-02-29", ""},
      {T::String, "", "10 "},
      {T::Any, "7", "10 7"},
      {T::Uuid, "x", "10 x"},  // for the engine to read
  };
  for (const auto& [Type, Text, Value] : Cases) {
    TDicProcedureDescription Procedure;
    Procedure.Name = "P";
    Procedure.Parameters = {{.Name = "A", .Type = Type}};
    std::string Found;
    const std::string Error = ErrorOf([&, &Given = Text] {
      Found = Shown(*ArgumentsOf(Procedure, {{{"a", Given}}, {}}).at(0));
    });
    EXPECT_EQ(Found, Value) << Text << ": " << Error;
    EXPECT_THAT(Error, HasSubstr(Value.empty() ? "is no value for its parameter 'A', which takes " : "no error"));
  }
}

TEST(Arguments, ParametersAreFoundByNameOrPlace) {
  TDicProcedureDescription Procedure;
  Procedure.Name = "P";
  Procedure.Parameters = {{.Name = "a", .Type = TDicFieldType::String},
                          {.Name = "A", .Type = TDicFieldType::String},
                          {.Name = "OUT", .Mode = TDicParameterMode::Out},
                          {.Name = "", .Type = TDicFieldType::String},
                          {.Name = "D", .Default = "1"}};
  const TProcedureArguments Found = ArgumentsOf(Procedure, {{{"A", "upper"}, {"a", "lower"}}, {"4"}});
  EXPECT_EQ(Shown(*Found.at(0)), "10 lower");
  EXPECT_EQ(Shown(*Found.at(1)), "10 upper");
  EXPECT_FALSE(Found.at(2) || Found.at(4));
  EXPECT_TRUE(Found.at(3)->IsNull());
  EXPECT_THAT(ErrorOf([&] {
                ArgumentsOf(Procedure, {{{"a", ""}}, {}});
              }),
              HasSubstr("no value is given for 'A', '4'; it takes a, A, 4, D"));
}

}  // namespace
}  // namespace velkrund::tests
