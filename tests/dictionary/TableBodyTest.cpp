#include <gtest/gtest.h>

#include "tests/dictionary/TableFixture.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

class TableBody : public testing::Test {
 protected:
  TTestPlatform Platform;
};

TEST_F(TableBody, LayoutAndOrderOfFields) {
  TMemoryTable Table("T",
                     {{"name", TKvKind::String}, {"ID", TKvKind::Int64}, {"Ж", TKvKind::Int64}, {"я", TKvKind::Int64}});
  AppendRow(Table, {Text("Smith|Sons"), Integer(17), {}, Integer(1)});
  TEITableData Section;
  EXPECT_EQ(Export(Section, Table),
            " [FIELDS]\r\n  ID\r\n  name\r\n  Ж\r\n  я\r\n [RECORDS]\r\n  <17|'Smith#007CSons'|NULL|1>\r\n");
  EXPECT_EQ(Section.Report->RowCount, 1);
  const TStringList Chosen{"я", "NAME"};
  Section.Fields = &Chosen;
  EXPECT_EQ(Export(Section, Table), " [FIELDS]\r\n  NAME\r\n  я\r\n [RECORDS]\r\n  <'Smith#007CSons'|1>\r\n");
  const TStringList Unknown{"ID", "x"};
  Section.Fields = &Unknown;
  EXPECT_TRUE(ErrorOf([&] { Export(Section, Table); }).starts_with("EDatabaseError: "));
}

TEST_F(TableBody, NamesThatAFieldLineCannotCarryAreRefused) {
  for (const char* Name : {"", " a", "a ", "\ta", "a\nb", "[RECORDS]", "[a"}) {
    TMemoryTable Table("T", {{Name, TKvKind::Null}});
    TEITableData Section;
    EXPECT_TRUE(ErrorOf([&] { Export(Section, Table); }).starts_with("EDicUtilError: ")) << Name;
  }
  TMemoryTable Twins("T", {{"ж", TKvKind::Null}, {"Ж", TKvKind::Null}});
  TEITableData Section;
  EXPECT_EQ(ErrorOf([&] { Export(Section, Twins); }),
            "EDicUtilError: Can not export table data. The field names 'Ж' and 'ж' differ in case only");
}

TEST_F(TableBody, LongRecordsAreCutByUnitsAndComeBack) {
  struct {
    const char* Unit;  // one character
    std::size_t Units, Count;
  } Cases[] = {{"x", 1, 99'985}, {"x", 1, 99'986}, {"x", 1, 99'987},     {"x", 1, 250'000}, {"Ж", 1, 99'986},
               {"Ж", 1, 99'987}, {"😀", 2, 49'994}, {"@", 1, 99'990 * 2}, {" ", 1, 200'000}};
  for (const auto& Case : Cases) {
    std::string Value;
    for (std::size_t Index = 0; Index < Case.Count; ++Index) Value += Case.Unit;
    TMemoryTable Table("T", {{"F", TKvKind::String}});
    AppendRow(Table, {Text(Value)});
    TEITableData Section;
    const std::string Body = Export(Section, Table);
    const std::size_t RecordUnits = Case.Units * Case.Count + 4;
    std::size_t Lines = 0;
    for (std::size_t At = Body.find(" [RECORDS]\r\n") + 12, Next; (Next = Body.find("\r\n", At)) != std::string::npos;
         At = Next + 2) {
      const std::string_view Line(Body.data() + At, Next - At);
      EXPECT_LE(Utf16Length(Line), 2u + 1 + 99'990 + 1);
      EXPECT_EQ(Line.substr(0, 3), Lines ? "  @" : "  <");
      ++Lines;
    }
    EXPECT_EQ(Lines > 1, RecordUnits > 99'990) << Case.Unit << Case.Count;
    TMemoryTable Copy("T", {{"F", TKvKind::String}});
    Import(Section, Copy, Body);
    EXPECT_EQ(Rows(Copy), Rows(Table));
    EXPECT_EQ(Export(Section, Copy), Body);
  }
}

TEST_F(TableBody, ImportForgivesWhatPeopleChange) {
  TMemoryTable Table("T", {{"A", TKvKind::Int64}, {"B", TKvKind::String}});
  TEITableData Section;
  const TStringList Chosen{"a"};
  struct {
    const char* Body;
    const TStringList* Fields;
    std::vector<TKvVariant> Row;
    std::vector<std::string> Skipped;
  } Cases[] = {
      {"noise\r[FIELDS]\rB\r a \rX\r[RECORDS]\r< 'b' | 1 |2|surplus>\r", nullptr, {Integer(1), Text("b")}, {"X"}},
      {" [FIELDS]\r\n  A\r\n  B\r\n [RECORDS]\r\n  <1|'b'>", &Chosen, {Integer(1), {}}, {}},
      {"[FIELDS]\rA\r[RECORDS]\r<1@\r@2@\r@3>\r", nullptr, {Integer(123), {}}, {}},
  };
  for (auto& Case : Cases) {
    TMemoryTable Target("T", {{"A", TKvKind::Int64}, {"B", TKvKind::String}});
    Section.Fields = Case.Fields;
    Import(Section, Target, Case.Body);
    EXPECT_EQ(Rows(Target), std::vector<std::vector<TKvVariant>>{Case.Row}) << Case.Body;
    EXPECT_EQ(Section.Report->SkippedFields, Case.Skipped);
  }
  EXPECT_EQ(Platform.Log, (std::vector<std::string>{"start", "commit", "start", "commit", "start", "commit"}))
      << "a table that is no SQL table is not emptied";
}

TEST_F(TableBody, MissingFieldsAreAnErrorWhereAsked) {
  const char* Body = "[FIELDS]\rA\rX\rY\r[RECORDS]\r<1|2|3>\r";
  const struct {
    TStringList Fields;  // empty: all
    std::string Error;
  } Cases[] = {
      {{}, "EDicUtilError: Can not import table data. Import field 'X' is missing"},
      {{"a", "y"}, "EDicUtilError: Can not import table data. Import field 'Y' is missing"},
      {{"a"}, "no error"},
  };
  for (const auto& Case : Cases) {
    TMemoryTable Table("T", {{"A", TKvKind::Int64}});
    TEITableData Section;
    Section.SkipMissingFields = false;
    if (Case.Fields.Count()) Section.Fields = &Case.Fields;
    EXPECT_EQ(ErrorOf([&] { Import(Section, Table, Body); }), Case.Error);
  }
}

TEST_F(TableBody, WhatIsDamagedOrCutOffMeanwhileIsAnError) {
  std::string Damaged = "[FIELDS]\rA\r[RECORDZ]\r";
  for (int Row = 0; Row < 600'000; ++Row) Damaged += "<" + std::to_string(Row) + ">\r";
  const std::string Invalid = "Invalid record data structure. ";
  const struct {
    std::string Body;
    std::size_t CutOff;
    std::string Error;
  } Cases[] = {
      {"", 1, "Fields section not found"},
      {"[FIELDS]\rA\r", 1, "Records section not found"},
      {"[FIELDS]\rA\r[RECORDS]\r<1>\r", 1, Invalid + "'<' is missing (Position:25)"},
      {"[FIELDS]\rA\r[RECORDS]\r<1@\r", 1, Invalid + "'@' is missing (Position:25)"},
      {"[FIELDS]\rA\ra\r[RECORDS]\r", 0, "The field 'a' stands twice"},
      {"[FIELDS]\rB\r[RECORDS]\r<1>\r", 0, "The table 'T' has none of the fields that are to be loaded"},
      {"[FIELDS]\r[RECORDS]\r<>\r", 0, "The table 'T' has none of the fields that are to be loaded"},
      {Damaged + "[RECORDS]\r", 0, "Records section not found"},
  };
  for (const auto& Case : Cases) {
    TMemoryTable Table("T", {{"A", TKvKind::Int64}});
    TEITableData Section;
    EXPECT_EQ(ErrorOf([&] { Import(Section, Table, Case.Body, TKvEncoding::Utf8, Case.CutOff); }),
              "EDicUtilError: Can not import table data. " + Case.Error);
    EXPECT_TRUE(Rows(Table).empty());
  }
}

TEST_F(TableBody, TablesThatCannotBeOpenedAreNamed) {
  TEITableData Section;
  Section.TableName = "GONE";
  TMemoryStream Memory;
  Memory.Write("[FIELDS]\r[RECORDS]\r");
  Memory.SetPosition(0);
  TEIStream In(Memory, 19);
  EXPECT_EQ(ErrorOf([&] { Section.ImportData(In); }),
            "EDicUtilError: Can not import table data. Error opening table (TableName:'GONE')");
  TEIStream Out(Memory);
  EXPECT_EQ(ErrorOf([&] { Section.ExportData(Out); }),
            "EDicUtilError: Can not export table data. Error opening table (TableName:'GONE')");
}

TEST_F(TableBody, CancellingUndoesAndReportsPerRow) {
  TMemoryTable Table("T", {{"A", TKvKind::Int64}});
  for (int Row = 0; Row < 5; ++Row) AppendRow(Table, {Integer(Row)});
  TEITableData Section;
  Section.TableName = "T";
  std::vector<std::int32_t> Seen;
  Section.OnProgress = [&](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    EXPECT_EQ(Total, 5);
    EXPECT_EQ(Name, "T");
    Seen.push_back(Current);
  };
  const std::string Body = Export(Section, Table);
  EXPECT_EQ(Seen, (std::vector<std::int32_t>{0, 1, 2, 3, 4}));
  Section.OnProgress = {};
  int Polls = 0;
  Section.OnCancel = [&] { return ++Polls == 3; };
  EXPECT_THROW(Export(Section, Table), EAbort);
  Polls = 0;
  const auto Before = Rows(Table);
  Platform.Log.clear();
  Import(Section, Table, Body);
  EXPECT_TRUE(Section.Stopped());
  EXPECT_EQ(Rows(Table), Before);
  EXPECT_EQ(Platform.Log, (std::vector<std::string>{"start", "rollback"}));
}

TEST_F(TableBody, OldBodiesInTheCodePage) {
  TMemoryTable Table("T", {{"Имя", TKvKind::String}, {"B", TKvKind::Bytes}});
  AppendRow(Table, {Text("Жук"), Text("\x01\xFE|", TKvKind::Bytes)});
  TEIOldTableData Section;
  const std::string Body = Export(Section, Table, TKvEncoding::Ansi);
  EXPECT_EQ(Body, " [FIELDS]\r\n  B\r\n  \xC8\xEC\xFF\r\n [RECORDS]\r\n  <'#01\xFE#7C'|'\xC6\xF3\xEA'>\r\n");
  TMemoryTable Copy("T", {{"Имя", TKvKind::String}, {"B", TKvKind::Bytes}});
  Import(Section, Copy, Body, TKvEncoding::Ansi);
  EXPECT_EQ(Export(Section, Copy, TKvEncoding::Ansi), Body);
}

}  // namespace
}  // namespace velkrund::tests
