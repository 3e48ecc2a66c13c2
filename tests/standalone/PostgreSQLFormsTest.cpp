// Rows go to the engine in binary where all columns have that form, and as texts elsewhere. What the engine stores must
// not depend on it.

#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <random>

#include "tests/standalone/PostgreSQLFixture.h"
#include "tests/support/postgresql/TypeCases.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

using TSet = std::function<void(TKvVariant&)>;
using TRandom = std::mt19937_64;

const TSet Null = [](TKvVariant& V) { V.SetNull(); };
const auto Amount = [](std::int64_t N) { return [N](TKvVariant& V) { V.SetCurrency({N}); }; };
const auto Real = [](double R) { return [R](TKvVariant& V) { V.SetReal(R); }; };

class PostgreSQLFormsTest : public PostgreSQLFixture {
 protected:
  /// One column of the type, in a table where each row says how it came, and in one that has no binary form.
  void Create(const std::string& Type) {
    const std::string Columns = " (v " + Type +
                                ", form text DEFAULT CASE WHEN current_query() LIKE '%binary)' THEN "
                                "'binary' ELSE 'text' END, n serial";
    Raw.Run("DROP TABLE IF EXISTS b, t; CREATE TABLE b" + Columns + "); CREATE TABLE t" + Columns +
            ", without_binary interval)");
  }
  /// The error, if any. Outside of transactions all goes as texts.
  std::string Load(const std::string& Name, const std::vector<TSet>& Values) {
    Connection->Begin(TIsolationLevel::RepeatableRead);
    const std::string Error = ErrorOf([&] {
      TDriverTable Table = Open(Name);
      Table.BeginAppend();
      for (const TSet& Set : Values) {
        Set(Table.Record().Fields(0).Buffer());
        if (Name == "t") Table.Record().Fields(3).Buffer().SetNull();
        Table.AppendRecord();
      }
      Table.EndAppend();
      Connection->Commit();
    });
    Connection->Rollback();
    return Error;
  }
  std::string Stored(const std::string& Name) {
    return Raw.Rows("SELECT v::text, encode(record_send(ROW(v)), 'hex') FROM " + Name + " ORDER BY n");
  }
  std::string FormsOf(const std::string& Name) {
    return Raw.Rows("SELECT form || ' ' || count(*) FROM " + Name + " GROUP BY form ORDER BY 1");
  }
};

std::uint64_t Bits(TRandom& Random) { return Random() >> (Random() % 64); }

std::string Digits(TRandom& Random, std::size_t Most) {
  std::string Result(Random() % Most, '0');
  // Long runs of zeros, and of nines.
  for (char& Digit : Result) Digit = "000999123"[Random() % 9];
  return Result;
}

/// The plain form, without zeros in front.
std::string DecimalText(TRandom& Random) {
  std::string Whole = Digits(Random, 60);
  Whole.erase(0, std::min(Whole.find_first_not_of('0'), Whole.size()));
  const std::string Decimals = Digits(Random, 60);
  const std::string Text = (Whole.empty() ? "0" : Whole) + (Decimals.empty() ? "" : "." + Decimals);
  return (Random() % 2 && Text.find_first_of("123456789") != std::string::npos ? "-" : "") + Text;
}

void SetNumber(TRandom& Random, TKvVariant& Value) {
  switch (Random() % 4) {
    case 0:
      return Value.SetCurrency({static_cast<std::int64_t>(Bits(Random))});
    case 1:
      return Value.SetInteger(static_cast<std::int64_t>(Bits(Random)));
    case 2:
      return Value.SetUnsigned(Bits(Random));
    default:
      return Value.SetText(DecimalText(Random));
  }
}

std::int64_t Microseconds(TRandom& Random) {
  const auto Range = static_cast<std::uint64_t>(MaxDateTime.Microseconds - MinDateTime.Microseconds) + 1;
  return MinDateTime.Microseconds + static_cast<std::int64_t>(Random() % Range);
}

std::string Characters(TRandom& Random) {
  constexpr std::string_view Some[] = {"\t", "\n", "\\", "\\N",  "\r",       " ", "a",
                                       "Ж",  "東", "🚚",  "\x7F", "\xC2\x80", "|"};
  std::string Result;
  for (auto Left = Random() % 40; Left > 0; --Left) Result += Some[Random() % std::size(Some)];
  return Result;
}

std::string Uuid(TRandom& Random) {
  std::string Result;
  for (const int Size : {4, 2, 2, 2, 6}) {
    std::string Part;
    for (int I = 0; I < Size; ++I) Part += static_cast<char>(Random());
    Result += Result.empty() ? "" : "-";
    AppendHex(Result, Part);
  }
  return Result;
}

TEST_F(PostgreSQLFormsTest, BothStoreTheSameOfRandomValues) {
  const struct {
    const char* Type;
    std::function<void(TRandom&, TKvVariant&)> Set;
  } Cases[] = {
      {"smallint", [](TRandom& R, TKvVariant& V) { V.SetInteger(static_cast<std::int16_t>(Bits(R))); }},
      {"integer", [](TRandom& R, TKvVariant& V) { V.SetInteger(static_cast<std::int32_t>(Bits(R))); }},
      {"bigint", [](TRandom& R, TKvVariant& V) { V.SetInteger(static_cast<std::int64_t>(Bits(R))); }},
      {"oid", [](TRandom& R, TKvVariant& V) { V.SetInteger(static_cast<std::uint32_t>(Bits(R))); }},
      {"real",
       [](TRandom& R, TKvVariant& V) {
         V.SetReal(static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(R()))));
       }},
      {"double precision", [](TRandom& R, TKvVariant& V) { V.SetReal(std::bit_cast<double>(R())); }},
      {"numeric", SetNumber},
      {"numeric(30,6)",
       [](TRandom& R, TKvVariant& V) { V.SetCurrency({static_cast<std::int64_t>(R() >> (R() % 64))}); }},
      {"money", [](TRandom& R, TKvVariant& V) { V.SetCurrency({static_cast<std::int64_t>(Bits(R)) / 100 * 100}); }},
      {"boolean", [](TRandom& R, TKvVariant& V) { V.SetBoolean(R() % 2 == 0); }},
      {"text", [](TRandom& R, TKvVariant& V) { V.SetText(Characters(R)); }},
      {"char(50)", [](TRandom& R, TKvVariant& V) { V.SetText("x" + Characters(R) + "x"); }},
      {"bytea", [](TRandom& R, TKvVariant& V) { V.SetBytes(Characters(R) + std::string(R() % 9, '\0') + "\xFF"); }},
      {"date",
       [](TRandom& R, TKvVariant& V) { V.SetSysDate({Microseconds(R) / MicrosecondsPerDay * MicrosecondsPerDay}); }},
      {"time", [](TRandom& R, TKvVariant& V) { V.SetSysTime(static_cast<std::int64_t>(R() % 86'400'000'000)); }},
      {"timestamp", [](TRandom& R, TKvVariant& V) { V.SetDateTime({Microseconds(R)}); }},
      {"timestamptz", [](TRandom& R, TKvVariant& V) { V.SetDateTime({Microseconds(R)}); }},
      {"uuid", [](TRandom& R, TKvVariant& V) { V.SetText(Uuid(R)); }},
      {"json", [](TRandom& R, TKvVariant& V) { V.SetText("[ " + std::to_string(R()) + ", {\"Ж\":\"🚚\"} ]"); }},
      {"jsonb", [](TRandom& R, TKvVariant& V) { V.SetText("[ " + std::to_string(R()) + ", {\"Ж\":\"🚚\"} ]"); }},
  };
  for (const auto& [Type, Set] : Cases) {
    SCOPED_TRACE(Type);
    Create(Type);
    TRandom Random(7);
    std::vector<TSet> Values{Null};
    for (int I = 0; I < 2000; ++I) {
      TKvVariant Value;
      Set(Random, Value);
      Values.push_back([Value](TKvVariant& V) { V = Value; });
    }
    ASSERT_EQ(Load("b", Values), "no error");
    ASSERT_EQ(Load("t", Values), "no error");
    EXPECT_EQ(FormsOf("b"), "binary 2001\n");
    EXPECT_EQ(FormsOf("t"), "text 2001\n");
    EXPECT_EQ(Stored("b"), Stored("t"));
  }
}

TEST_F(PostgreSQLFormsTest, WhatLacksTheBinaryFormGoesAsATextWithWhatFollows) {
  const std::string Small = "0." + std::string(900, '0') + "1", Large(1200, '9');
  const struct {
    std::string Type;
    std::vector<TSet> Values;
    const char* Forms;  // of the rows of these values
  } Cases[] = {
      {"date",
       {SetText("infinity"), SetText("-infinity"), SetText("2024-02-29"), SetText("0001-01-01"), Null},
       "binary 5\n"},
      {"date", {SetText("2024-02-29 00:00:00"), SetText("2024-02-29")}, "text 2\n"},
      {"date",
       {SetText("2024-02-29"), SetText("0044-03-15 BC"), SetText("2024-02-29"), SetText("5874897-12-31")},
       "binary 1\ntext 3\n"},
      {"time", {SetText("24:00:00"), SetText("23:59:59.999999"), SetText("12:30")}, "binary 2\ntext 1\n"},
      {"timestamp", {SetText("infinity"), SetText("-infinity"), SetText("2024-02-29 12:00:00.5")}, "binary 3\n"},
      {"timestamp", {SetText("294276-12-31 23:59:59.999999"), SetText("4714-11-24 00:00:00 BC")}, "text 2\n"},
      {"timestamptz", {SetText("2024-02-29 12:00:00"), SetText("2024-02-29 12:00:00-05:30")}, "binary 1\ntext 1\n"},
      {"numeric", {SetText("NaN"), Real(-1.5), Real(2), Amount(-1), Amount(INT64_MIN), SetInteger(0)}, "binary 6\n"},
      {"numeric", {SetText("-Infinity"), SetText("Infinity")}, "text 2\n"},
      {"numeric", {SetText("0.00"), Real(1e-300), Real(1.5e300), SetText("1.500")}, "binary 1\ntext 3\n"},
      {"numeric", {SetText(Small), SetText(Large)}, "binary 1\ntext 1\n"},
      {"numeric(8,-2)", {Amount(123'000'000), SetInteger(-100)}, "binary 2\n"},
      {"double precision", {Real(-0.0), Real(std::bit_cast<double>(0xFFF8'0000'0000'0001ULL))}, "binary 2\n"},
      {"real", {Real(-0.0), Real(std::bit_cast<double>(0x7FF0'0000'0000'0001ULL)), Real(INFINITY)}, "binary 3\n"},
      {"money",
       {SetText("92233720368547758.07"), SetText("-0.01"), SetText("-92233720368547758.08")},
       "binary 2\ntext 1\n"},
      {"uuid",
       {SetText("A0EEBC99-9c0b-4ef8-bb6d-6bb9bd380a11"), SetText("{a0eebc999c0b4ef8bb6d6bb9bd380a11}")},
       "binary 1\ntext 1\n"},
      {"mood", {SetText("so so"), SetText("it's \"fine\"")}, "binary 2\n"},
      {"\"Felt now\"", {SetText("it's \"fine\""), Null}, "binary 2\n"},
      {"sale", {Amount(125'000)}, "binary 1\n"},
      {"word", {SetText("слово")}, "binary 1\n"},
      {"name", {SetText("a \"b\"")}, "binary 1\n"},
      {"interval", {SetText("1 day")}, "text 1\n"},
      {"inet", {SetText("10.1.2.3/8")}, "text 1\n"},
      {"timetz", {SetText("12:00:00+05:30")}, "text 1\n"},
      {"xml", {SetText("<a/>")}, "text 1\n"},
      {"integer[]", {SetText("{1,NULL}")}, "text 1\n"},
      {"\"char\"", {SetText("x")}, "text 1\n"},
  };
  Raw.Run(TypeDefinitions);
  for (const auto& [Type, Values, Forms] : Cases) {
    SCOPED_TRACE(Type);
    Create(Type);
    EXPECT_EQ(Load("b", Values), "no error");
    EXPECT_EQ(Load("t", Values), "no error");
    EXPECT_EQ(FormsOf("b"), Forms);
    EXPECT_EQ(Stored("b"), Stored("t"));
  }
}

TEST_F(PostgreSQLFormsTest, ErrorsNameTheSamePlaceInTheSameWords) {
  const struct {
    std::string Type;
    std::vector<TSet> Values;  // the third is refused by the engine
    const char* Words;
  } Cases[] = {
      {"json",
       {SetText("1"), SetText("2"), SetText("{"), SetText("3")},
       "record 3 to table 'b', column 'v': invalid input syntax"},
      {"jsonb",
       {SetText("1"), SetText("2"), SetText("{"), SetText("3")},
       "record 3 to table 'b', column 'v': invalid input syntax"},
      {"mood", {Null, Null, SetText("sad")}, "record 3 to table 'b', column 'v': invalid input value"},
      {"numeric(3,1)",
       {Null, Null, SetInteger(100), Null},
       "record 3 to table 'b', column 'v': numeric field overflow"},
      {"numeric(3,1)", {Null, Null, SetText("Infinity")}, "record 3 to table 'b', column 'v': numeric field overflow"},
      {"uuid", {Null, Null, SetText("no")}, "record 3 to table 'b', column 'v': invalid input syntax"},
      {"date", {Null, Null, SetText("2024-02-30")}, "record 3 to table 'b', column 'v': date/time"},
      {"money", {Null, Null, SetText("92233720368547758.08")}, "record 3 to table 'b', column 'v': value"},
      {"price", {Amount(10'000), Null, Amount(-100)}, "record 3 to table 'b', column 'v'"},
      {"feeling", {Null, Null, SetText("so so")}, "record 3 to table 'b', column 'v'"},
      {"integer CHECK (v < 5)", {SetInteger(1), Null, SetInteger(5), SetInteger(2)}, "record 3 to table 'b': "},
      {"integer NOT NULL", {SetInteger(1), SetInteger(2), Null}, "record 3 to table 'b', column 'v': null value"},
      {"integer UNIQUE", {SetInteger(1), SetInteger(2), SetInteger(1)}, "record 3 to table 'b': duplicate key"},
  };
  Raw.Run(TypeDefinitions);
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Type);
    Create(Case.Type);
    // The row itself has a cell more in the other table.
    const auto Load = [&](const char* Name) {
      const std::string Text = this->Load(Name, Case.Values);
      return Text.substr(0, Text.find("; Failing row"));
    };
    const std::string Error = Load("b");
    EXPECT_THAT(Error, HasSubstr(Case.Words));
    std::string Other = Load("t");
    for (const auto& [Found, Put] : {std::pair("'t'", "'b'"), {"\"t\"", "\"b\""}, {"\"t_v_", "\"b_v_"}})
      for (std::size_t At; (At = Other.find(Found)) != std::string::npos;) Other.replace(At, std::strlen(Found), Put);
    EXPECT_EQ(Error, Other);
    EXPECT_EQ(FormsOf("b") + FormsOf("t"), "");
  }
}

TEST_F(PostgreSQLFormsTest, ARowThatATriggerDropsIsFoundInEitherForm) {
  Raw.Run(
      "CREATE TABLE b (v bytea, d date); CREATE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NULL; "
      "END'; CREATE TRIGGER g BEFORE INSERT ON b FOR EACH ROW WHEN (NEW.v = 'gone') EXECUTE FUNCTION f()");
  for (const char* Day : {"2024-02-29", "0044-03-15 BC"}) {
    SCOPED_TRACE(Day);
    Connection->Begin(TIsolationLevel::RepeatableRead);
    EXPECT_THAT(ErrorOf([&] {
                  TDriverTable Table = Open("b");
                  Table.BeginAppend();
                  for (const std::string_view Bytes :
                       {std::string_view("a\n\0", 3), std::string_view(), std::string_view("gone")}) {
                    Table.Record().Fields(0).Buffer().SetBytes(Bytes);
                    if (Bytes.empty()) Table.Record().Fields(0).Buffer().SetNull();
                    Table.Record().Fields(1).Buffer().SetText(Day);
                    Table.AppendRecord();
                  }
                  Table.EndAppend();
                }),
                HasSubstr("Cannot append record 3 to table 'b': a trigger has ignored it (g)"));
    Connection->Rollback();
  }
}

TEST_F(PostgreSQLFormsTest, LossesCountOnceWhereTheFormChanges) {
  Raw.Run("CREATE TABLE t (s text, d date)");
  const TTableDescription Table = Connection->Schema().Describe(Connection->Schema().FindTable("t").value());
  const int Columns[] = {0, 1};
  Connection->Begin(TIsolationLevel::RepeatableRead);
  const auto Appender = Connection->Rows().OpenAppender(Table, Columns, {.AllowLoss = true});
  for (const char* Day : {"2024-02-29", "0044-03-15 BC", "2024-02-29"}) {
    TKvVariant Bad, Date;
    Bad.SetText("\xFF"), Date.SetText(Day);
    const TKvVariant* const Row[] = {&Bad, &Date};
    Appender->Append(Row);
  }
  Appender->Finish();
  Connection->Commit();
  EXPECT_EQ(Appender->ChangedValues(), 3);
  EXPECT_EQ(Raw.Rows("SELECT s, d FROM t"), "\uFFFD\t2024-02-29\n\uFFFD\t0044-03-15 BC\n\uFFFD\t2024-02-29\n");
}

}  // namespace
}  // namespace velkrund::tests
