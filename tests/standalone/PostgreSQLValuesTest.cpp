#include <gmock/gmock.h>

#include "tests/standalone/PostgreSQLFixture.h"
#include "tests/support/postgresql/TypeCases.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

class PostgreSQLValuesTest : public PostgreSQLFixture {};

TEST_F(PostgreSQLValuesTest, EveryTypeIsReadAsItsKindInsideAndOutsideOfTransactions) {
  Raw.Run(TypeDefinitions);
  int Number = 0;
  for (const TTypeCase& Case : TypeCases()) {
    SCOPED_TRACE(Case.Type);
    const std::string Name = "t" + std::to_string(++Number);
    std::string Values;
    std::vector<std::string> Expected;
    for (const auto& [Literal, Shown] : Case.Values) {
      Values += "(" + Literal + "),";
      Expected.push_back(Shown);
    }
    Expected.push_back("0 ");
    Raw.Run("CREATE TABLE " + Name + " (v " + Case.Type + "); INSERT INTO " + Name + " VALUES " + Values + "(NULL)");
    EXPECT_EQ(Rows(*Connection, Name), Expected);
    Connection->Begin(TIsolationLevel::RepeatableRead);
    EXPECT_EQ(Rows(*Connection, Name), Expected);
    Connection->Rollback();
  }
}

TEST_F(PostgreSQLValuesTest, WhatWouldChangeIsRefusedWhatFitsIsStoredExactly) {
  const auto Bytes = [](std::string_view B) { return [B](TKvVariant& V) { V.SetBytes(B); }; };
  const auto Ansi = [](TKvVariant& V) { V.SetText("\xC0\xE1", TKvKind::AnsiString); };
  const auto Unsigned = [](std::uint64_t N) { return [N](TKvVariant& V) { V.SetUnsigned(N); }; };
  const auto Real = [](double R) { return [R](TKvVariant& V) { V.SetReal(R); }; };
  const auto Amount = [](std::int64_t N) { return [N](TKvVariant& V) { V.SetCurrency({N}); }; };
  const auto Boolean = [](TKvVariant& V) { V.SetBoolean(true); };
  const auto Date = [](const char* D) { return [D](TKvVariant& V) { V.SetSysDate(*StrToSysDate(D)); }; };
  const auto Time = [](const char* T) { return [T](TKvVariant& V) { V.SetSysTime(*StrToSysTime(T)); }; };
  const auto Moment = [](const char* M) { return [M](TKvVariant& V) { V.SetDateTime(*SysStrToDateTime(M)); }; };
  using TSet = std::function<void(TKvVariant&)>;
  struct TCase {
    std::string Type;
    TSet Set;
    const char* Stored;  // null: refused
  };
  const TCase Cases[] = {
      {"smallint", SetInteger(32'768), nullptr},
      {"integer", SetInteger(std::int64_t{1} << 31), nullptr},
      {"integer", SetText("007"), nullptr},
      {"integer", SetText(" 7"), nullptr},
      {"integer", SetText("7"), "7"},
      {"integer", Real(1.5), nullptr},
      {"integer", Amount(15'000), nullptr},
      {"integer", Boolean, nullptr},
      {"bigint", Unsigned(1ULL << 63), nullptr},
      {"numeric", Unsigned(UINT64_MAX), "18446744073709551615"},
      {"real", Real(0.1), nullptr},
      {"real", Real(1e300), nullptr},
      {"real", Real(0.5), "0.5"},
      {"real", SetInteger((1 << 24) + 1), nullptr},
      {"double precision", SetInteger((std::int64_t{1} << 53) + 1), nullptr},
      {"double precision", SetText("0.10"), nullptr},
      {"numeric(10,2)", Amount(12'345), nullptr},
      {"numeric(10,2)", Amount(12'300), "1.23"},
      {"numeric(10,2)", SetText("1.005"), nullptr},
      {"numeric(3,1)", SetInteger(100), nullptr},
      {"numeric", SetText("1.500"), "1.500"},
      {"numeric", SetText("1e2"), nullptr},
      {"numeric", SetText("+1"), nullptr},
      {"price", Amount(-10'000), nullptr},
      {"money", Amount(12'345), nullptr},
      {"money", Amount(-12'300), "-$1.23"},
      {"boolean", SetInteger(1), "t"},
      {"boolean", SetInteger(2), nullptr},
      {"boolean", SetText("yes"), nullptr},
      {"text", SetText(std::string_view("a\0b", 3)), nullptr},
      {"text", SetText("\xED\xA0\x80"), nullptr},
      {"text", SetText("\xC3("), nullptr},
      {"text", Bytes("b"), nullptr},
      {"text", Ansi, "Аб"},
      {"text", Real(0.30000000000000004), "0.30000000000000004"},
      {"text", Amount(15'000), "1.5"},
      {"text", Boolean, "TRUE"},
      {"text", Moment("2024-02-29 12:00:00.5"), "2024-02-29 12:00:00.500"},
      {"varchar(3)", SetText("абвг"), nullptr},
      {"varchar(3)", SetText("абв "), nullptr},
      {"varchar(3)", SetText("абв"), "абв"},
      {"char(3)", SetText("абв "), nullptr},
      {"word", SetText("слово "), nullptr},
      {"name", SetText(std::string_view("xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx")), nullptr},
      {"mood", SetText("so-so"), nullptr},
      {"bytea", SetText("\\x00"), nullptr},
      {"bytea", Bytes(std::string_view("\0\\", 2)), "\\\\x005c"},
      {"bytea", Ansi, "\\\\xc0e1"},
      {"date", SetText("now"), nullptr},
      {"date", SetText("tomorrow"), nullptr},
      {"date", SetText("02/03/2024"), nullptr},
      {"date", SetText("2024-02-30"), nullptr},
      {"date", SetText("2024-02-29 00:00:00"), "2024-02-29"},
      {"date", SetText("2024-02-29T00:00Z"), "2024-02-29"},
      {"date", SetText("0044-03-15 00:00:00.000 BC"), "0044-03-15 BC"},
      {"date", SetText("2024-02-29T00:00+02"), nullptr},
      {"date", SetText("2024-02-29T00:00:00.5"), nullptr},
      {"date", SetText("2024-02-29T12:00Z"), nullptr},
      {"time", SetText("12:30"), "12:30:00"},
      {"time", SetText("12:30Z"), "12:30:00"},
      {"time", SetText("12:30+02:00"), nullptr},
      {"time", SetText("2024-02-29T12:30"), nullptr},
      {"timetz", SetText("12:30+0230"), "12:30:00+02:30"},
      {"timetz", SetText("12:30:00Z"), "12:30:00+00"},
      {"timestamp", SetText("2024-02-29T12:00"), "2024-02-29 12:00:00"},
      {"timestamp", SetText("2024-02-29T12:00:00.5Z"), "2024-02-29 12:00:00.5"},
      {"timestamp", SetText("2024-02-29 12:00:00-00:00"), "2024-02-29 12:00:00"},
      {"timestamp", SetText("2024-02-29T12:00:00+02:00"), nullptr},
      {"timestamp", SetText("2024-02-29T12:00:00 Z"), nullptr},
      {"timestamp", SetText("2024-02-29"), nullptr},
      {"timestamptz", SetText("2024-02-29"), nullptr},
      {"timestamptz", SetText("2024-02-29T12:00Z"), "2024-02-29 12:00:00+00"},
      {"timestamptz", SetText("2024-02-29T12:00:00+0200"), "2024-02-29 10:00:00+00"},
      {"timestamptz", SetText("2024-02-29 12:00:00-05:30"), "2024-02-29 17:30:00+00"},
      {"date", SetText("infinity"), "infinity"},
      {"date", SetText("0044-03-15 BC"), "0044-03-15 BC"},
      {"date", Moment("2024-02-29 00:00:00.001"), nullptr},
      {"date", Moment("2024-02-29 00:00:00"), "2024-02-29"},
      {"time", SetText("allballs"), nullptr},
      {"time(0)", Time("12:00:00.5"), nullptr},
      {"timestamp", Date("2024-02-29"), "2024-02-29 00:00:00"},
      {"timestamp", SetText("today"), nullptr},
      {"timestamp", SetText("10000-01-01 00:00:00.1234567"), nullptr},
      {"timestamp(3)", Moment("2024-02-29 00:00:00.000100"), nullptr},
      {"timestamptz", Moment("2024-02-29 12:00:00"), "2024-02-29 12:00:00+00"},
      {"interval", SetText("1 day 00:00:00.1234567"), nullptr},
      {"interval(0)", SetText("00:00:00.5"), nullptr},
      {"bit(3)", SetText("1010"), nullptr},
      {"json", SetText("{"), nullptr},
  };
  Raw.Run(TypeDefinitions);
  Raw.Run("SET timezone = 'UTC'");
  const auto AppendBehindNull = [&](const TSet& Set, bool InTransaction) {
    if (InTransaction) Connection->Begin(TIsolationLevel::RepeatableRead);
    std::string Error = Append("s", {[](TKvVariant& V) { V.SetNull(); }, Set});
    if (InTransaction) Error == "no error" ? Connection->Commit() : Connection->Rollback();
    return Error;
  };
  for (std::size_t I = 0; I < 2 * std::size(Cases); ++I) {
    const TCase& Case = Cases[I / 2];
    TKvVariant Value;
    Case.Set(Value);
    SCOPED_TRACE(Case.Type + " <- " + Shown(Value));
    Raw.Run("DROP TABLE IF EXISTS s; CREATE TABLE s (v " + Case.Type + ")");
    // Inside a transaction in binary.
    const std::string Error = AppendBehindNull(Case.Set, I % 2 != 0);
    if (Case.Stored) {
      EXPECT_EQ(Error, "no error");
      EXPECT_EQ(Raw.Rows("SELECT v FROM s WHERE v IS NOT NULL"), std::string(Case.Stored) + "\n");
    } else {
      EXPECT_THAT(Error, HasSubstr("Cannot append record 2 to table 's'"));
      EXPECT_THAT(Error, HasSubstr(Case.Type == "price" ? "price" : "'v'"));
      EXPECT_EQ(Raw.Rows("SELECT v FROM s"), "");
    }
  }
}

}  // namespace
}  // namespace velkrund::tests
