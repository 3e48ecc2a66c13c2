#include <gmock/gmock.h>

#include <limits>
#include <random>

#include "standalone/drivers/sqlite/SQLiteTypes.h"
#include "tests/standalone/SQLiteFixture.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class SQLiteValuesTest : public SQLiteFixture {};

TEST_F(SQLiteValuesTest, EveryCellOfEveryDeclaredTypeIsCopiedByTypeAndBytes) {
  const char* const Types[] = {
      "",          "INTEGER",       "BIGINT",  "REAL",    "DOUBLE PRECISION", "TEXT",  "CHAR(9)",
      "BLOB",      "BOOLEAN",       "DATE",    "TIME",    "DATETIME",         "MONEY", "CURRENCY",
      "TIMESTAMP", "DECIMAL(12,2)", "NUMERIC", "UNKNOWN", "MONEY TEXT"};
  const char* const Literals[] = {"NULL",
                                  "0",
                                  "1",
                                  "2",
                                  "-9223372036854775808",
                                  "9223372036854775807",
                                  "0.5",
                                  "12.34",
                                  "0.30000000000000004",
                                  "1e300",
                                  "9e999",
                                  "-9e999",
                                  "922337203685477.5",
                                  "123.45678",
                                  "x''",
                                  "x'00FF0D0A'",
                                  "''",
                                  "'text'",
                                  "'2024-02-29'",
                                  "'2023-02-29'",
                                  "'12:00:00'",
                                  "'12:00:00.5'",
                                  "'12:00:00.500'",
                                  "'2024-02-29 12:00:00'",
                                  "'2024-02-29T12:00:00'",
                                  "'2024-02-29 12:00:00.123456'",
                                  "'2024-02-29 12:00:00.000'",
                                  "'TRUE'",
                                  "'#1|<>'",
                                  "'имя 🌸'",
                                  "'a' || char(0) || 'b'",
                                  "CAST(x'FFC328' AS TEXT)"};
  std::string Columns;
  std::string Values;
  std::string Compared;
  int Number = 0;
  for (const std::string Type : Types) {
    const std::string Name = "C" + std::to_string(++Number);
    Columns += ", " + Name + " " + Type;
    Values += ", X";
    Compared += ", typeof(" + Name + "), CASE typeof(" + Name + ") WHEN 'text' THEN hex(" + Name + ") ELSE quote(" +
                Name + ") END";
  }
  Run("CREATE TABLE A (" + Columns.substr(2) + ")");
  Run("CREATE TABLE B (" + Columns.substr(2) + ")");
  for (const std::string Literal : Literals)
    Run("INSERT INTO A SELECT " + Values.substr(2) + " FROM (SELECT " + Literal + " AS X)");

  TDriverTable Source = Open("A");
  TDriverTable Target = Open("B");
  Target.BeginAppend();
  for (bool Found = Source.First(); Found; Found = Source.Next()) {
    Target.ClearData();
    for (int I = 0; I < Source.Record().FieldCount(); ++I)
      Target.Record().Fields(I).SetValue(Source.Record().Fields(I).Value());
    Target.AppendRecord();
  }
  Target.EndAppend();
  Run("CREATE VIEW VA AS SELECT " + Compared.substr(2) + " FROM A");
  Run("CREATE VIEW VB AS SELECT " + Compared.substr(2) + " FROM B");
  EXPECT_EQ(Rows(*Connection, "VA"), Rows(*Connection, "VB"));
  EXPECT_EQ(Target.RecordCount(), static_cast<std::int64_t>(std::size(Literals)));
}

TEST_F(SQLiteValuesTest, TheDeclaredTypeLeadsWhereTheCellFits) {
  struct TCase {
    const char* Type;
    const char* Literal;
    const char* Read;  // as Shown
    int FieldKind;
  };
  const TCase Cases[] = {
      {"BOOL", "1", "11 TRUE", 11},
      {"boolean", "2", "18 2", 11},
      {"DATE", "'2024-02-29'", "14 2024-02-29", 14},
      {"DATE", "'2024-02-30'", "10 2024-02-30", 14},
      {"DATE", "20240229", "18 20240229", 14},
      {"TIME", "'23:59:59.250'", "15 23:59:59.250", 15},
      {"TIME", "'23:59:59.25'", "10 23:59:59.25", 15},
      {"DATETIME", "'2024-02-29 01:02:03'", "16 2024-02-29 01:02:03", 16},
      {"TIMESTAMP(6)", "'2024-02-29'", "10 2024-02-29", 16},
      {"DECIMAL (10, 2)", "12.5", "20 12.5", 20},
      {"MONEY", "0.00001", "7 1e-05", 20},
      {"NUMERIC", "x'01'", "23 \x01", 20},
      {"MONEY TEXT", "'-922337203685477.5808'", "20 -922337203685477.5808", 20},
      {"MONEY TEXT", "'12.50'", "10 12.50", 20},
      {"VARCHAR(3)", "5", "10 5", 10},
      {"INTEGER", "'x'", "10 x", 18},
      {"POINT", "1", "18 1", 18},
      {"FLOAT", "1", "7 1.0", 7},
      {"BLOB", "1", "18 1", 23},
      {"", "1.5", "7 1.5", 0},
      {"JSON", "'[1]'", "10 [1]", 0},
  };
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(std::string(Case.Type) + " " + Case.Literal);
    Run("DROP TABLE IF EXISTS T");
    Run(std::string("CREATE TABLE T (C ") + Case.Type + ")");
    Run(std::string("INSERT INTO T VALUES (") + Case.Literal + ")");
    EXPECT_THAT(Rows(*Connection, "T"), ElementsAre(Case.Read));
    EXPECT_EQ(static_cast<int>(Open("T").Record().Fields(0).Kind()), Case.FieldKind);
  }
}

TEST_F(SQLiteValuesTest, WhatWouldChangeIsRefusedWhatFitsIsStoredExactly) {
  const auto Text = [](std::string_view T) { return [T](TKvVariant& V) { V.SetText(T); }; };
  const auto Ansi = [](TKvVariant& V) { V.SetText("\xC0\xE1", TKvKind::AnsiString); };
  const auto Integer = [](std::int64_t N) { return [N](TKvVariant& V) { V.SetInteger(N); }; };
  const auto Unsigned = [](std::uint64_t N) { return [N](TKvVariant& V) { V.SetUnsigned(N); }; };
  const auto Real = [](double R) { return [R](TKvVariant& V) { V.SetReal(R); }; };
  const auto Currency = [](std::int64_t N) { return [N](TKvVariant& V) { V.SetCurrency({N}); }; };
  const std::string Refused = "EDatabaseError: Cannot append record 1 to table 'S', column 'C': ";
  struct TCase {
    std::string Definition;
    std::function<void(TKvVariant&)> Set;
    std::string Result;
  };
  const TCase Cases[] = {
      {"(C INTEGER)", Text("007"), Refused + "the text would be changed into a number"},
      {"(C INTEGER)", Text(" 7"), Refused + "the text would be changed into a number"},
      {"(C INTEGER)", Text("7"), "integer 7"},
      {"(C INTEGER)", Text("7a"), "text '7a'"},
      {"(C NUMERIC)", Text("12.50"), Refused + "the text would be changed into a number"},
      {"(C NUMERIC)", Text("12.0"), Refused + "the text would be changed into a number"},
      {"(C NUMERIC)", Text("1e+18"), Refused + "the text would be changed into a number"},
      {"(C NUMERIC)", Text("12.5"), "real 12.5"},
      {"(C NUMERIC)", Text("9223372036854775808"), Refused + "the text would be changed into a number"},
      {"(C REAL)", Text("7"), "real 7.0"},
      {"(C REAL)", Text("9007199254740993"), Refused + "the text would be changed into a number"},
      {"(C REAL)", Text("0.30000000000000004"), "real 3.00000000000000044408e-01"},
      {"(C INTEGER) STRICT", Text("007"), Refused + "the text would be changed into a number"},
      {"(C ANY) STRICT", Text("007"), "text '007'"},
      {"(C ANY)", Text("007"), Refused + "the text would be changed into a number"},
      {"(C)", Text("007"), "text '007'"},
      {"(C REAL)", Integer((std::int64_t{1} << 53) + 1), Refused + "the integer would be rounded"},
      {"(C REAL)", Integer(INT64_MAX), Refused + "the integer would be rounded"},
      {"(C REAL)", Integer(INT64_MIN), "real -9.2233720368547758078e+18"},
      {"(C BIGINT)", Unsigned(1ULL << 63), Refused + "the integer is above 9223372036854775807"},
      {"(C BIGINT)", Unsigned((1ULL << 63) - 1), "integer 9223372036854775807"},
      {"(C TEXT)", Unsigned(UINT64_MAX), "text '18446744073709551615'"},
      {"(C TEXT)", Real(0.30000000000000004), "text '0.30000000000000004'"},
      {"(C REAL)", Real(std::numeric_limits<double>::quiet_NaN()), Refused + "the engine has no NaN"},
      {"(C DECIMAL)", Currency(9'223'372'036'854'775'807), Refused + "the amount would be rounded"},
      {"(C TEXT)", Currency(9'223'372'036'854'775'807), "text '922337203685477.5807'"},
      {"(C INTEGER)", Currency(15'000), "real 1.5"},
      {"(C BLOB)", Ansi, "blob X'C0E1'"},
      {"(C TEXT)", Ansi, "text 'Аб'"},
      {"(C INTEGER PRIMARY KEY)", [](TKvVariant& V) { V.SetNull(); }, Refused + "it cannot hold NULL"},
      {"(C INT PRIMARY KEY)", [](TKvVariant& V) { V.SetNull(); }, "null NULL"},
      {"(C INTEGER PRIMARY KEY DESC)", [](TKvVariant& V) { V.SetNull(); }, "null NULL"},
      {"(C TEXT PRIMARY KEY, D) WITHOUT ROWID", Text("k"), "text 'k'"},
      {"(C INTEGER) STRICT", Text("x"),
       "EDatabaseError: Cannot append record 1 to table 'S': cannot store TEXT value in INTEGER column S.C (SQLite "
       "error 3091)"},
  };
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(Case.Definition + " <- " + Case.Result);
    EXPECT_EQ(Store(Case.Definition, Case.Set), Case.Result);
  }
}

TEST_F(SQLiteValuesTest, TheFateOfTextsIsTheEnginesOwn) {
  Run("CREATE TABLE N (T TEXT, I INTEGER, N NUMERIC, R REAL)");
  std::mt19937 Random(7);
  const std::string_view Alphabet = "0123459..+-eE \t\v\rx";
  std::vector<std::string> Texts = {"1e5", ".5", "5.", "0x10", "1e", "+", "1 2", "Inf", "1_0", "-0", "-0.0", "1.5e3"};
  for (int I = 0; I < 20'000; ++I) {
    std::string& Text = Texts.emplace_back(Random() % 7, ' ');
    for (char& C : Text) C = Alphabet[Random() % Alphabet.size()];
  }
  TDriverTable Table = Open("N");
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Table.BeginAppend();
  for (const std::string& Text : Texts) {
    Table.ClearData();
    Table.FieldByName("T").Buffer().BorrowText(Text);
    Table.AppendRecord();
  }
  Table.EndAppend();
  Run("UPDATE N SET I = T, N = T, R = T");
  Connection->Commit();
  int Kept = 0;
  for (bool Found = Table.First(); Found; Found = Table.Next()) {
    const std::string Text(Table.FieldByName("T").Value().AsText());
    for (const auto& [Column, Affinity] :
         {std::pair("I", TAffinity::Integer), std::pair("N", TAffinity::Numeric), std::pair("R", TAffinity::Real)}) {
      SCOPED_TRACE(std::string(Column) + " '" + Text + "'");
      const TKvVariant& Stored = Table.FieldByName(Column).Value();
      TKvVariant Instead;
      const TTextFate Fate = FateOfText(Text, Affinity, Instead);
      ASSERT_EQ(Fate == TTextFate::StaysText, Stored.Kind() == TKvKind::String);
      if (Fate == TTextFate::StaysText || Fate == TTextFate::Changed) continue;
      ++Kept;
      // NUMERIC reads as an amount where that is exact.
      if (Stored.Kind() == TKvKind::Currency)
        ASSERT_EQ(CurrencyToReal(Stored.AsCurrency()), Instead.AsReal());
      else
        ASSERT_TRUE(Stored == Instead) << Shown(Stored);
    }
  }
  EXPECT_GT(Kept, 1000);
}

TEST_F(SQLiteValuesTest, WideDatabasesHoldTheSameTexts) {
  auto Wide = Connect(Folder / "wide.db");
  Wide->Execute("PRAGMA encoding = 'UTF-16le'");
  Wide->Execute("CREATE TABLE T (C TEXT, D DATE)");
  Wide = Connect(Folder / "wide.db");
  Wide->Execute("INSERT INTO T VALUES ('имя 🌸' || char(0) || 'b', '2024-02-29')");
  TDriverTable Table(*Wide, *Wide->Schema().FindTable("T"), true);
  Table.BeginAppend();
  Table.FieldByName("C").Buffer().SetText(std::string_view("東\0京", 7));
  Table.AppendRecord();
  Table.FieldByName("C").Buffer().SetText("\xED\xA0\x80");
  EXPECT_THAT(ErrorOf([&] { Table.AppendRecord(), Table.EndAppend(); }),
              HasSubstr("record 2 to table 'T', column 'C': the text has characters that UTF-16 cannot hold"));
  const std::string Nul(1, '\0');
  EXPECT_THAT(Rows(*Wide, "T"), ElementsAre("10 имя 🌸" + Nul + "b|14 2024-02-29", "10 東" + Nul + "京|0 "));

  Wide->Execute("DELETE FROM T");
  Table.SetAllowLoss(true);
  Table.BeginAppend();
  for (const std::string_view Text : {"a\xFF\xED\xA0\x80z", "b"}) {
    Table.FieldByName("C").Buffer().SetText(Text);
    Table.AppendRecord();
  }
  Table.EndAppend();
  EXPECT_EQ(Table.ChangedValues(), 1);
  EXPECT_THAT(Rows(*Wide, "T"), ElementsAre("10 a\uFFFD\uFFFDz|0 ", "10 b|0 "));
}

}  // namespace
}  // namespace velkrund::tests
