// Walks through some of the rows, and appends that update the rows with the same key.

#include <gmock/gmock.h>

#include <algorithm>

#include "standalone/tables/DriverBaseManager.h"
#include "tests/standalone/DriverFixture.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using TStrings = std::vector<std::string>;

class DriverUpdateTest : public DriverFixture {
 protected:
  bool IsSQLite() const { return GetParam().Name == "sqlite"; }
  /// Texts of the values of the columns, NULL for what is null, by which they are sorted.
  TStrings Stored(const std::string& Columns, const std::string& Table) {
    TStrings Result;
    const auto Cursor = Connection->Query("SELECT " + Columns + " FROM " + Table + " ORDER BY " + Columns);
    TKvVariant Value;
    while (Cursor->Next()) {
      std::string& Row = Result.emplace_back();
      for (std::size_t I = 0; I <= static_cast<std::size_t>(std::count(Columns.begin(), Columns.end(), ',')); ++I) {
        Cursor->Read(static_cast<int>(I), Value);
        if (I > 0) Row += "|";
        if (Value.IsNull()) Row += "NULL";
        Value.AppendAsText(Row);
      }
    }
    return Result;
  }
  /// Records as texts, NULL for a null, an empty one for a field that is left out.
  static void Append(TDriverTable& Table, const std::vector<TStrings>& Records) {
    Table.SetUpdateByKey(true);
    Table.BeginAppend();
    for (const TStrings& Record : Records) {
      Table.ClearData();
      for (std::size_t I = 0; I < Record.size(); ++I) {
        TField& Field = Table.Record().Fields(static_cast<int>(I));
        if (Record[I] == "NULL")
          Field.Buffer().SetNull();
        else if (!Record[I].empty() && Field.Kind() == TKvKind::Int64)
          Field.Buffer().SetInteger(std::stoll(Record[I]));
        else if (!Record[I].empty())
          Field.Buffer().SetText(Record[I]);
      }
      Table.AppendRecord();
    }
    Table.EndAppend();
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, DriverUpdateTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(DriverUpdateTest, RecordsTakeThePlaceOfRowsWithTheirKey) {
  const std::string Text = IsSQLite() ? "TEXT" : "VARCHAR(20)";
  const struct {
    std::string Columns, More;  // More: behind the bracket
    TStrings Before;
    std::vector<TStrings> Records;
    TStrings After;
    std::int64_t Updated;
  } Cases[] = {
      {"A BIGINT PRIMARY KEY, B " + Text + ", C BIGINT DEFAULT 7",
       "",
       {"1, 'one', 10", "2, 'two', 20"},
       {{"1", "eins", ""}, {"3", "drei", ""}, {"3", "", "30"}, {"2", "NULL", "20"}, {"3", "a\\N\t\n\\\"'", ""}},
       {"1|eins|10", "2|NULL|20", "3|a\\N\t\n\\\"'|30"},
       4},
      {"A BIGINT, B " + Text + ", C BIGINT, PRIMARY KEY (B, A)",
       "",
       {"1, 'x', 1", "1, 'y', 1", "2, 'x', 1"},
       {{"1", "y", "5"}, {"2", "y", "6"}},
       {"1|x|1", "1|y|5", "2|x|1", "2|y|6"},
       1},
      // Nothing but a key: what is there stays.
      {"A BIGINT, B " + Text + ", PRIMARY KEY (A, B)", "", {"1, 'x'"}, {{"1", "x"}, {"1", "y"}}, {"1|x", "1|y"}, 1},
      {"A BIGINT PRIMARY KEY, B " + Text, "", {}, {}, {}, 0},
      IsSQLite() ? decltype(Cases[0]){"A BIGINT, B TEXT COLLATE NOCASE PRIMARY KEY, C BIGINT",
                                      " WITHOUT ROWID",
                                      {"1, 'x', 1"},
                                      {{"2", "X", "2"}, {"3", "y", "3"}},
                                      {"2|X|2", "3|y|3"},
                                      1}
                 : decltype(Cases[0]){"A BIGINT GENERATED ALWAYS AS IDENTITY PRIMARY KEY, B VARCHAR(9)",
                                      "",
                                      {"DEFAULT, 'x'"},
                                      {{"1", "X"}, {"5", "y"}},
                                      {"1|X", "5|y"},
                                      1},
      IsSQLite() ? decltype(Cases[0]){"A TEXT, B TEXT, PRIMARY KEY (A COLLATE NOCASE)",
                                      "",
                                      {"'x', 'one'"},
                                      {{"X", "two"}, {"NULL", "n"}, {"NULL", "n"}},
                                      {"NULL|n", "NULL|n", "X|two"},
                                      1}
                 : decltype(Cases[0]){"A BIGINT, B VARCHAR(9), C DATE, PRIMARY KEY (A, B)",
                                      " PARTITION BY LIST (A)",
                                      {},
                                      {{"1", "x", "2024-02-29"}, {"1", "x", "2024-03-01"}},
                                      {"1|x|8826"},
                                      1},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Columns);
    Run("CREATE TABLE T (" + Case.Columns + ")" + Case.More);
    if (Case.More.starts_with(" PARTITION")) Run("CREATE TABLE P PARTITION OF T FOR VALUES IN (1)");
    for (const std::string& Row : Case.Before) Run("INSERT INTO T VALUES (" + Row + ")");
    TDriverTable Table = Open("T");
    Append(Table, Case.Records);
    const bool HasC = Case.Columns.find(" C ") != std::string::npos;
    const std::string Columns = !HasC                                              ? "A, B"
                                : Case.Columns.find("C DATE") == std::string::npos ? "A, B, C"
                                                                                   : "A, B, C - '2000-01-01'";
    EXPECT_EQ(Stored(Columns, "T"), Case.After);
    EXPECT_EQ(Table.UpdatedRecords(), Case.Updated);
    Run("DROP TABLE T");
  }
}

TEST_P(DriverUpdateTest, ManyRecordsSeeWhatThoseBeforeThemDid) {
  Run("CREATE TABLE T (A BIGINT PRIMARY KEY, B BIGINT)");
  Run("CREATE TABLE U (A BIGINT)");
  for (const bool InTransaction : {false, true}) {
    if (InTransaction) Connection->Begin(TIsolationLevel::RepeatableRead);
    TDriverTable Table = Open("T"), Other = Open("U");
    Table.SetUpdateByKey(true);
    Table.BeginAppend();
    Other.BeginAppend();
    for (int I = 0; I < 3000; ++I) {
      Table.FieldByName("A").Buffer().SetInteger(I % 1000);
      Table.FieldByName("B").Buffer().SetInteger(I);
      Table.AppendRecord();
      if (I % 1000 != 5) continue;
      Other.FieldByName("A").Buffer().SetInteger(I);
      Other.AppendRecord();
    }
    Table.EndAppend();
    Other.EndAppend();
    if (InTransaction) Connection->Commit();
    EXPECT_EQ(Table.UpdatedRecords(), InTransaction ? 3000 : 2000);
    EXPECT_THAT(Stored("count(*), min(B), sum(A)", "T"), ElementsAre("1000|2000|499500"));
  }
}

TEST_P(DriverUpdateTest, WhatCannotBeUpdatedIsNamed) {
  Run(R"(CREATE TABLE "T" ("A" BIGINT PRIMARY KEY, "B" BIGINT NOT NULL CHECK ("B" < 100)))");
  Run(R"(CREATE TABLE "N" ("A" BIGINT, "B" BIGINT))");
  Run(R"(INSERT INTO "T" VALUES (1, 1))");
  const struct {
    std::string Table;
    std::vector<TStrings> Records;
    std::string Error;
  } Cases[] = {
      {"N", {}, "table 'N': it has no primary key"},
      {"T", {{"1", "2"}, {"", "3"}}, "record 2 in table 'T': the record has no value for field 'A'"},
      {"T", {{"1", "2"}, {"1", "NULL"}, {"1", "3"}}, "Cannot append record 2 to table 'T'"},
      {"T", {{"1", "2"}, {"2", "4"}, {"3", "100"}, {"4", "4"}}, "Cannot append record 3 to table 'T'"},
  };
  for (const auto& [Name, Records, Text] : Cases) {
    SCOPED_TRACE(Text);
    Connection->Begin(TIsolationLevel::RepeatableRead);
    TDriverTable Table = Open(Name);
    EXPECT_THAT(ErrorOf([&, &Records = Records] { Append(Table, Records); }), HasSubstr(Text));
    Connection->Rollback();
    EXPECT_THAT(Stored("\"A\", \"B\"", "\"T\""), ElementsAre("1|1"));
  }
}

TEST_P(DriverUpdateTest, AConditionSelectsRowsAndDoesNothingElse) {
  Run(R"(CREATE TABLE "T" ("A" BIGINT PRIMARY KEY, "B" VARCHAR(9)))");
  Run(R"(INSERT INTO "T" VALUES (3, 'c'), (1, 'a'), (2, ')--'))");
  const struct {
    std::string Condition;
    TStrings Rows;
  } Cases[] = {{"", {"1", "2", "3"}},
               {"\"A\" > 1", {"2", "3"}},
               {"\"A\" > 1 -- more; (", {"2", "3"}},
               {"\"A\" = 3 OR T.\"B\" = 'a' /* ) */", {"1", "3"}},
               {"\"B\" = ')--'", {"2"}},
               {"(SELECT max(\"A\") FROM \"T\") = \"A\"", {"3"}},
               {"1 = 0", {}}};
  for (const bool InTransaction : {false, true}) {
    if (InTransaction) Connection->Begin(TIsolationLevel::RepeatableRead);
    for (const auto& [Condition, Expected] : Cases) {
      SCOPED_TRACE(Condition);
      TDriverTable Table = Open("T");
      Table.OrderByKey();
      Table.SetSelection(Condition);
      TStrings Rows;
      for (bool Row = Table.First(); Row; Row = Table.Next())
        Table.FieldByName("A").Value().AppendAsText(Rows.emplace_back());
      EXPECT_EQ(Rows, Expected);
      EXPECT_EQ(Table.RecordCount(), static_cast<std::int64_t>(Expected.size()));
      EXPECT_EQ(Table.HasRecords(), !Expected.empty());
    }
    if (InTransaction) Connection->Rollback();
  }
  for (const std::string Condition :
       {"1=0) OR (1=1", "1=1); DELETE FROM \"T\"; --", "1=1; DELETE FROM \"T\"", "1=1 /*", "1=1 ORDER BY 1", "'",
        "1=1 THEN 1 END, CASE WHEN 1=1", "1=1 THEN 1 END FROM \"T\" /*", "\"NO\" = 1", "SELECT 1=1", " ",
        GetParam().Name == "sqlite" ? "?" : "$1"}) {
    SCOPED_TRACE(Condition);
    TDriverTable Table = Open("T");
    Table.SetSelection(Condition);
    EXPECT_THAT(ErrorOf([&] { Table.First(); }), HasSubstr("EDatabaseError: Cannot read table 'T', selection '"));
    EXPECT_THAT(ErrorOf([&] { Table.RecordCount(); }), HasSubstr("Cannot count the rows of table 'T', selection '"));
    EXPECT_THAT(Stored("count(*)", "\"T\""), ElementsAre("3"));
  }
}

TEST_P(DriverUpdateTest, NumbersGoOnBehindCopiedKeys) {
  Run("CREATE TABLE S (A BIGINT NOT NULL)");
  Run("INSERT INTO S VALUES (7), (41)");
  for (const bool Moves : {true, false}) {
    Run(IsSQLite() ? "CREATE TABLE T (A INTEGER PRIMARY KEY AUTOINCREMENT, B BIGINT)"
                   : "CREATE TABLE T (A BIGINT GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY, B BIGINT)");
    Connection->Begin(TIsolationLevel::RepeatableRead);
    EXPECT_EQ(TDriverBaseManager(*Connection).CopyFields("", "S", "T", {{"A", "A"}}, Moves), 2);
    Connection->Commit();
    Run("INSERT INTO T (B) VALUES (1)");
    EXPECT_THAT(Stored("A", "T WHERE B = 1"), ElementsAre(Moves || IsSQLite() ? "42" : "1"));
    Run("DROP TABLE T");
  }
}

}  // namespace
}  // namespace velkrund::tests
