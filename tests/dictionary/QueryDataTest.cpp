#include <gtest/gtest.h>

#include "tests/dictionary/QueryFixture.h"
#include "velkrund/eif/Eifiles.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

using TRowList = std::vector<std::vector<TKvVariant>>;

class QueryData : public testing::Test {
 protected:
  QueryData() : Result("R", {{"name", TKvKind::String}, {"ID", TKvKind::Int64}}), Query(Result, "SELECT 1") {
    AppendRow(Result, {Text("a|b"), Integer(7)});
    AppendRow(Result, {{}, Integer(8)});
    Section.Query = Old.Query = &Query;
  }

  static std::string Export(TEICommonQueryData& Data, TKvEncoding Encoding = TKvEncoding::Utf8) {
    TMemoryStream Memory;
    TEIStream Stream(Memory);
    Stream.SetEncoding(Encoding);
    const std::string Error = ErrorOf([&] { Data.ExportData(Stream); });
    return Error == "no error" ? std::string(Memory.Memory()) : Error + (Memory.Size() ? " behind a beginning" : "");
  }

  TTestPlatform Platform;
  TMemoryTable Result;
  TTableQuery Query;
  TEIQueryData Section;
  TEIOldQueryData Old;
};

TEST_F(QueryData, BodiesOfBothVersions) {
  EXPECT_EQ(Export(Section),
            " [FIELDS]\r\n  #\r\n  name\r\n  ID\r\n [RECORDS]\r\n  <1|'a#007Cb'|7>\r\n  <2|NULL|8>\r\n");
  EXPECT_FALSE(Query.IsOpen);
  Section.SortFields = Section.WithoutRowNumbers = true;
  EXPECT_EQ(Export(Section), " [FIELDS]\r\n  ID\r\n  name\r\n [RECORDS]\r\n  <7|'a#007Cb'>\r\n  <8|NULL>\r\n");
  Query.Parameters() = {{"FROM", TKvKind::SysDate, Date("2024-01-31")},
                        {"п", TKvKind::AnsiString, Text("\xCF > 1", TKvKind::AnsiString)},
                        {"B", TKvKind::Bytes, Text("\x0A\xFF", TKvKind::Bytes)},
                        {"N", TKvKind::Int64}};
  Old.SortFields = true;
  EXPECT_EQ(Export(Old, TKvEncoding::Ansi),
            " [PARAMETRS]\r\n  <Name|Type|Value>\r\n  <FROM|SysDate|2024-01-31>\r\n  <\xEF|ANSIString|\xCF > 1>\r\n"
            "  <B|binary|0x0AFF>\r\n  <N|Int64|>\r\n"
            " [FIELDS]\r\n  #\r\n  ID\r\n  name\r\n [RECORDS]\r\n  <1|7|'a#7Cb'>\r\n  <2|8|NULL>\r\n");
  std::string Names;
  Section.OnProgress = [&](std::int32_t Current, std::int32_t, std::string_view Name) {
    Names += std::string(Name) + std::to_string(Current) + " ";
  };
  const std::string Body = Export(Section);
  EXPECT_EQ(Names, "Query data0 Query data1 ");
  TMemoryTable Copy("T", {{"ID", TKvKind::Int64}, {"NAME", TKvKind::String}});
  TEIQueryData Import;
  tests::Import(Import, Copy, Body);
  EXPECT_EQ(Rows(Copy), (TRowList{{Integer(7), Text("a|b")}, {Integer(8), {}}}));
  EXPECT_EQ(Import.FieldNames, (std::vector<std::string>{"ID", "name"}));
}

TEST_F(QueryData, WhatCouldNotBeReadBackIsRefusedBeforeTheFirstByte) {
  const std::string Begin = "EDicUtilError: Can not export query data. ";
  const struct {
    TMemoryTable::TColumns Columns;
    bool WithoutRowNumbers;
    std::string Error;  // its beginning
  } Cases[] = {
      {{{"a", TKvKind::Null}, {"a", TKvKind::Null}}, false, "There are two fields of the name 'a'"},
      {{{"a", TKvKind::Null}, {"A", TKvKind::Null}}, false, "The field names 'A' and 'a' differ in case only"},
      {{{"", TKvKind::Null}}, false, "A field line cannot hold the name ''"},
      {{{"#", TKvKind::Null}}, false, "The query has a field '#'"},
      {{{"#", TKvKind::Null}}, true, ""},
  };
  for (const auto& Case : Cases) {
    TMemoryTable Table("R", Case.Columns);
    TTableQuery Of(Table, "");
    TEIQueryData Data;
    Data.Query = &Of;
    Data.WithoutRowNumbers = Case.WithoutRowNumbers;
    EXPECT_TRUE(Export(Data).starts_with(Case.Error.empty() ? " [FIELDS]\r\n  #\r\n [" : Begin + Case.Error))
        << Export(Data);
    EXPECT_FALSE(Export(Data).ends_with(" behind a beginning"));
    EXPECT_FALSE(Of.IsOpen);
  }
  for (const auto& [Name, Value, Fault] :
       {std::tuple{"a|b", "", "its name has a '|' or a line end"}, {"a", "x\ny", "its value has a line end"}}) {
    Query.Parameters() = {{Name, TKvKind::String, Text(Value)}};
    EXPECT_EQ(Export(Section), Format("EDicUtilError: The parameter '%s' cannot be written: %s inside", Name, Fault));
  }
  // The value is the rest of its line.
  Query.Parameters() = {{"a", TKvKind::String, Text("x|y>")}};
  EXPECT_TRUE(Export(Section).starts_with(" [PARAMETRS]\r\n  <Name|Type|Value>\r\n  <a|string|x|y>>\r\n"));
  TEIQueryData Nothing;
  EXPECT_EQ(Export(Nothing), "EDicUtilError: Can not export Query data. Query not assigned");
}

TEST_F(QueryData, TextOfTheQueryInTheHeader) {
  const struct {
    std::string Text, Current, Old;
  } Cases[] = {
      {"SELECT *\r\nFROM t", "SELECT *#000D#000AFROM t", "SELECT *#0D#0AFROM t"},
      {" a '#|ж\x7F' ", "#0020a '#0023#007Cж#007F'#0020", "#20a '#23#7Cж\x7F'#20"},
      {"", "", ""},
  };
  for (const auto& Case : Cases)
    for (TEICommonQueryData* const Data :
         {static_cast<TEICommonQueryData*>(&Section), static_cast<TEICommonQueryData*>(&Old)}) {
      Query.SetSQL(Case.Text);
      TEISection Header;
      Data->FillParameters(Header.FParameters);
      EXPECT_EQ(Header.ParamValue("Query"), Data == &Old ? Case.Old : Case.Current);
      Query.SetSQL("");
      Data->Initialize(Header);
      EXPECT_EQ(Query.SQL(), Case.Text);
      EXPECT_EQ(Data->QueryText, Case.Text);
    }
  EXPECT_EQ(Section.ChangeSpecialSimbols(" ok "), " ok ");
  EXPECT_EQ(Section.UnChangeSpecialSimbols("a#12"), "a");
  EXPECT_EQ(Old.UnChangeSpecialSimbols("a#CFb#1"), "aПb");
  const std::string Invalid = "EDicUtilError: Error importing query data. Invalid character (#$";
  EXPECT_EQ(ErrorOf([&] { Section.UnChangeSpecialSimbols("#00G0"); }), Invalid + "00G0) in string constant.");
  EXPECT_EQ(ErrorOf([&] { Old.UnChangeSpecialSimbols("#жa"); }), Invalid + "жa) in string constant.");
  Query.SetSQL("SELECT '日'");
  for (const bool Strict : {true, false}) {
    Platform.WorkSettings.StrictText = Strict;
    TEISectionParameters Parameters;
    Old.FillParameters(Parameters);
    EXPECT_EQ(Parameters.Values("Query"), "SELECT '?'");
    EXPECT_EQ(Export(Old, TKvEncoding::Ansi).starts_with("EDicUtilError: A text has characters that code page 1251"),
              Strict);
  }
}

TEST_F(QueryData, ErrorsOfBodiesSpeakOfQueryData) {
  const std::string Invalid = "Invalid record data structure. ";
  const std::string Begin = "[FIELDS]\r#\rA\r[RECORDS]\r";
  const std::string Block = "[PARAMETRS]\r<Name|Type|Value>\r";
  const struct {
    std::string Body, Error;
  } Cases[] = {
      {"", "Fields section not found"},
      {"[FIELDS]\rA\r", "Records section not found"},
      {Begin + "1|2>\r", Invalid + "'<' is missing (Position:28)"},
      {Begin + "<1|2@\r", Invalid + "Unexpected end of data section (Position:29)"},
      {Begin + "<1|2@\r3>\r", Invalid + "'@' is missing (Position:32)"},
      {Begin + "<1|2\r", Invalid + "'>' is missing (Position:28)"},
      {Begin + "<1|>\r", Invalid + "Field value is missing (Position:28;Field:'A')"},
      {Begin + "<1|abc>\r", Invalid + "Field value is incorrect (Field:'A'); Value: abc"},
      {Block + "<a|integer|5>\r<b|STRING|>\r", "Fields section not found"},
      {"[PARAMETRS]\r" + Begin, ""},
      {"[PARAMETRS]\r<a|integer|5>\r" + Begin,
       "Invalid parameter: it is not '<Name|Type|Value>' (Position:26;Line:'<a|integer|5>')"},
      {Block + "a|integer|5\r" + Begin,
       "Invalid parameter: it does not stand between '<' and '>' (Position:42;Line:'a|integer|5')"},
      {Block + "<a|5>\r" + Begin, "Invalid parameter: it has not three parts (Position:36;Line:'<a|5>')"},
      {Block + "<a|int|5>\r" + Begin, "Invalid parameter: 'int' is no type (Position:40;Line:'<a|int|5>')"},
      {Block + "<a|byte|256>\r" + Begin,
       "Invalid parameter: '256' is no value of the type byte (Position:43;Line:'<a|byte|256>')"},
  };
  for (const auto& Case : Cases) {
    TMemoryTable Table("T", {{"A", TKvKind::Int64}});
    TEIQueryData Data;
    EXPECT_EQ(ErrorOf([&] { Import(Data, Table, Case.Body); }),
              Case.Error.empty() ? "no error" : "EDicUtilError: Can not import query data. " + Case.Error);
  }
  TMemoryTable Table("T", {{"A", TKvKind::Int64}});
  for (const auto& [Value, Error] :
       TStringPairs{{"'#00G0'", "Invalid character (#$00G0) in string constant."}, {"0xF", "Incorrect binary value"}})
    EXPECT_EQ(ErrorOf([&, &Value = Value] { Import(Section, Table, Begin + "<1|" + Value + ">\r"); }),
              "EDicUtilError: Error importing query data. " + Error);
  for (TEICommonQueryData* const Data :
       {static_cast<TEICommonQueryData*>(&Section), static_cast<TEICommonQueryData*>(&Old)}) {
    TMemoryTable Odd("T", {{"A", TKvKind::Null}});
    TKvVariant Value;
    Value.SetInteger(0, static_cast<TKvKind>(13));
    AppendRow(Odd, {Value});
    Odd.First();
    std::string Text;
    EXPECT_EQ(ErrorOf([&] { Data->FieldToString(Odd.Record().Fields(0), Text); }),
              "EDicUtilError: Can not exporttable data. Field value is of unknown type (VarType:13)");
  }
}

TEST_F(QueryData, TargetsThatCannotBeOpenedOrChosen) {
  TEIQueryData Data;
  TMemoryStream Memory;
  Memory.Write("[FIELDS]\rA\r[RECORDS]\r<1>\r");
  const auto ErrorOfImport = [&] {
    Memory.SetPosition(0);
    TEIStream In(Memory, Memory.Size());
    return ErrorOf([&] { Data.ImportData(In); });
  };
  EXPECT_TRUE(ErrorOfImport().starts_with("EQuestionUnanswered: "));
  Data.TableName = "GONE";
  EXPECT_EQ(ErrorOfImport(), "EDicUtilError: Can not import query data. Error opening table (TableName:'GONE')");
}

TEST_F(QueryData, FieldsGoWhereTheMappingSays) {
  const struct {
    TStringPairs Mapping;
    bool SkipMissingFields;
    std::vector<TKvVariant> Row;  // A, B, C
    std::string Error;
    std::vector<std::string> Skipped;
  } Cases[] = {
      {{}, true, {Integer(10), Integer(20), {}}, "no error", {"#", "X"}},
      {{{"x", "c"}}, true, {Integer(10), Integer(20), Integer(30)}, "no error", {"#"}},
      {{{"#", "C"}}, true, {Integer(10), Integer(20), Integer(1)}, "no error", {"X"}},
      // A pair takes the place of the own name, at both of its ends.
      {{{"A", "B"}}, true, {{}, Integer(10), {}}, "no error", {"#", "B", "X"}},
      {{{"A", "B"}, {"B", "A"}}, true, {Integer(20), Integer(10), {}}, "no error", {"#", "X"}},
      {{{"A", "A"}, {"A", "C"}}, true, {Integer(10), Integer(20), Integer(10)}, "no error", {"#", "X"}},
      {{{"A", "nowhere"}}, true, {{}, Integer(20), {}}, "no error", {"#", "A", "X"}},
      {{{"A", ""}, {"x", ""}}, false, {{}, Integer(20), {}}, "no error", {"#", "A", "X"}},
      {{{"A", "C"}, {"B", "C"}}, true, {}, "The fields 'A' and 'B' would both fill the field 'C' of the table", {}},
      {{{"Y", "C"}}, true, {}, "The mapping names the field 'Y', which the section lacks", {}},
      {{}, false, {}, "Import field 'X' is missing", {}},
      {{{"X", "C"}}, false, {Integer(10), Integer(20), Integer(30)}, "no error", {"#"}},
  };
  for (const auto& Case : Cases) {
    TMemoryTable Table("T", {{"A", TKvKind::Int64}, {"B", TKvKind::Int64}, {"C", TKvKind::Int64}});
    TEIQueryData Data;
    Data.FieldMapping = Case.Mapping;
    Data.SkipMissingFields = Case.SkipMissingFields;
    const bool Fails = Case.Error != "no error";
    EXPECT_EQ(ErrorOf([&] { Import(Data, Table, "[FIELDS]\r#\rA\rB\rX\r[RECORDS]\r<1|10|20|30>\r"); }),
              (Fails ? "EDicUtilError: Can not import query data. " : "") + Case.Error);
    EXPECT_EQ(Rows(Table), Fails ? TRowList() : TRowList{Case.Row}) << Case.Mapping.size();
    if (Fails) continue;
    EXPECT_EQ(Data.Report->SkippedFields, Case.Skipped);
  }
  // A text that fills two fields is decoded for each.
  TMemoryTable Table("T", {{"A", TKvKind::String}, {"B", TKvKind::String}});
  TEITableData Data;
  Data.FieldMapping = {{"X", "A"}, {"X", "B"}};
  Import(Data, Table, "[FIELDS]\rX\r[RECORDS]\r<'#007C#0023'>\r<'b'>\r");
  EXPECT_EQ(Rows(Table), (TRowList{{Text("|#"), Text("|#")}, {Text("b"), Text("b")}}));
}

TEST_F(QueryData, ParametersFromTexts) {
  const struct {
    const char* Text;
    TKvKind Kind;
    TKvVariant Value;
  } Cases[] = {
      {"string:", TKvKind::String, Text("")},
      {"String:a:b ", TKvKind::String, Text("a:b ")},
      {"string", TKvKind::String, {}},
      {"integer:-5", TKvKind::Integer, Integer(-5, TKvKind::Integer)},
      {"UInt64:18446744073709551615", TKvKind::UInt64, Unsigned(18446744073709551615U)},
      {"double:1e3", TKvKind::Double, Real(1000)},
      {"boolean:true", TKvKind::Boolean, Boolean(true)},
      {"currency:1.5", TKvKind::Currency, Currency(15'000)},
      {"sysdate:2024-02-29", TKvKind::SysDate, Date("2024-02-29")},
      {"systime:10:00:00", TKvKind::SysTime, TimeOfDay("10:00:00")},
      {"datetime:2024-02-29 10:00:00", TKvKind::DateTime, Moment("2024-02-29 10:00:00")},
      {"ansistring:П", TKvKind::AnsiString, Text("\xCF", TKvKind::AnsiString)},
      {"binary:0x0aFF", TKvKind::Bytes, Text("\x0A\xFF", TKvKind::Bytes)},
  };
  for (const auto& Case : Cases) {
    const TQueryParameter Parameter = ParameterOf("P", Case.Text);
    EXPECT_EQ(Parameter.DataType, Case.Kind) << Case.Text;
    EXPECT_EQ(Parameter.Value, Case.Value) << Case.Text;
    EXPECT_EQ(FaultOfParameterLine(ParameterLine(Parameter)), "") << Case.Text;
  }
  for (const char* Wrong : {"", "int:5", ":5", "integer:", "integer:5 ", "byte:-1", "boolean:1", "sysdate:2023-02-29",
                            "char:ab", "ansichar:日", "binary:0x0", "binary:0x0G", "binary:00", "currency:1.23456"})
    EXPECT_TRUE(ErrorOf([&] { ParameterOf("P", Wrong); }).starts_with("EDicUtilError: The parameter 'P' ")) << Wrong;
  Query.Parameters() = {{"A"}, {"B"}};
  SetParameters(Query, {{"b", "integer:5"}});
  EXPECT_EQ(Query.Parameters()[1].Value, Integer(5, TKvKind::Integer));
  EXPECT_EQ(ErrorOf([&] {
              SetParameters(Query, {{"C", "integer:5"}});
            }),
            "EDicUtilError: The parameter 'C' is none of the query: it has A, B");
  EXPECT_EQ(ErrorOf([&] {
              SetParameters(Query, {{"A", "integer:5"}, {"a", "integer:5"}});
            }),
            "EDicUtilError: The parameter 'a' is given twice");
}

}  // namespace
}  // namespace velkrund::tests
