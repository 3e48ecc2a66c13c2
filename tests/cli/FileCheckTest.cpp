#include "tests/cli/ShopTest.h"

namespace velkrund::tests {
namespace {

using TFileCheckTest = TShopTest;

constexpr const char* Header = "[SECTION]\r\nName = S\r\nType = TableData\r\n";
constexpr const char* Old = "Version = 100\r\nTableName = T\r\n[DATA]\r\n";                     // lines 4 to 6
constexpr const char* New = "Encoding = UTF8\r\nVersion = 200\r\nTableName = T\r\n[DATA]\r\n";  // lines 4 to 7
constexpr const char* Fields = " [FIELDS]\r\n  A\r\n  B\r\n [RECORDS]\r\n  <1|'kept'>\r\n";     // 5 lines, 47 bytes
constexpr const char* End = "[END]\r\n";

TEST_F(TFileCheckTest, EveryFaultIsToldAsAnImportTellsIt) {
  const std::string In = "section 0 'S' (TableData): ",
                    Record = "Can not import table data. Invalid record data structure. ",
                    Structure = "Invalid Export/Import source structure. ", NewRows = std::string(New) + Fields,
                    OldRows = std::string(Old) + Fields,
                    NewValue = Record + "Field value is incorrect (Field:'B'); Value: ",
                    OldValue = Record + "Field value is incorrect (Field:'B';Error:'";
  const struct {
    std::string Rest;  // of the file, behind Header
    std::string Where, Class, Message;
    int Line;
  } Cases[] = {
      {"Version = x\r\n", "", "EEIError", Structure + "Version is not numeric value (Position:52).", 4},
      {"version = 100\r\n[DATA]\r\n[END]\r\n", "", "EEIError",
       Structure + "Version number not found or incorrect (Position:62).", 5},
      {"Version = 300\r\n[DATA]\r\n[END]\r\n", "", "EEIError",
       Structure + "Section type is not registered (Type:'TableData';Position:62).", 5},
      {"Type = Other\r\nVersion = 1\r\n[DATA]\r\n", "", "EEIError",
       Structure + "Section type is not registered (Type:'Other';Position:74).", 6},
      {"Type =\r\nVersion = 1\r\n[DATA]\r\n", "", "EEIError", Structure + "Section type not found (Position:68).", 6},
      {"Name =\r\nVersion = 1\r\n[DATA]\r\n", "", "EEIError", Structure + "Section name not found (Position:68).", 6},
      {"Encoding = utf8\r\n", "", "EEIError", Structure + "Unknown encoding: utf8. (Position:56).", 4},
      {"A = 1\r\na = 2\r\n", "", "EEIError", "Parameter 'a' is already exist", 5},
      {"Encoding = UTF8\r\nName = \xC6\r\n", "", "EEIError",
       "The text is not valid UTF-8 (Position:66). Allow losses to read it with replacement characters", 5},
      {"Version = 100\r\n", "", "EEIError", Structure + "Data begin not found (Position:54).", 4},
      {OldRows, "", "EEIError", Structure + "Section end not found (Position:124).", 11},
      {std::string(Old) + End, In, "EDicUtilError", "Can not import table data. Fields section not found", 6},
      {std::string(Old) + " [FIELDS]\r\n  A\r\n" + End, In, "EDicUtilError",
       "Can not import table data. Records section not found", 8},
      {std::string(New) + " [FIELDS]\r\n  A\r\n  A\r\n [RECORDS]\r\n" + End, In, "EDicUtilError",
       "Can not import table data. The field 'A' stands twice", 11},
      {NewRows + "2|'x'>\r\n" + End, In, "EDicUtilError", Record + "'<' is missing (Position:55)", 13},
      {NewRows + "<2|'x'\r\n" + End, In, "EDicUtilError", Record + "'>' is missing (Position:55)", 13},
      {NewRows + "<2|'x@\r\n" + End, In, "EDicUtilError", Record + "Unexpected end of data section (Position:55)", 13},
      {NewRows + "<2|'x@\r\n'>\r\n" + End, In, "EDicUtilError", Record + "'@' is missing (Position:59)", 14},
      {NewRows + "<2>\r\n" + End, In, "EDicUtilError", Record + "Field value is missing (Position:52;Field:'B')", 13},
      {NewRows + "<2|x>\r\n" + End, In, "EDicUtilError", NewValue + "x", 13},
      {NewRows + "<2|1,5>\r\n" + End, In, "EDicUtilError", NewValue + "1,5", 13},
      {NewRows + "<2|'x>\r\n" + End, In, "EDicUtilError", NewValue + "'x", 13},
      {NewRows + "<2|2023-02-29>\r\n" + End, In, "EDicUtilError", NewValue + "2023-02-29", 13},
      {NewRows + "<2|'#00G0'>\r\n" + End, In, "EDicUtilError",
       "Error importing table data. Invalid character (#$00G0) in string constant.", 13},
      {NewRows + "<2|0x0>\r\n" + End, In, "EDicUtilError", "Error importing table data. Incorrect binary value", 13},
      {NewRows + "<2|0x0G>\r\n" + End, In, "EConvertError", "'$0G' is not a valid integer value", 13},
      {"Type = DSPStructure\r\nEncoding = UTF8\r\nVersion = 200\r\nObjectType = 12\r\nObjectName = A\r\nTableName =\r\n"
       "ParentObject =\r\nRootNode =\r\n[DATA]\r\n [REMARKS]\r\n  \r\n [TREE]\r\n  a:integer = 1\r\n   b\r\n" +
           std::string(End),
       "section 0 'S' (DSPStructure): ", "EDSPUtilError",
       "Can not import DSP structure. Invalid tree data structure. Invalid level structure (Position:222)", 17},
      {NewRows + "<2|$1.00005>\r\n" + End, In, "EConvertError", "'1.00005' is not a valid currency value", 13},
      {NewRows + "<2|'\xC6\xF3\xEA'>\r\n" + End, In, "EEIError",
       "The text is not valid UTF-8 (Position:58). Allow losses to read it with replacement characters", 13},
      {"Encoding = UTF8\r\n" + OldRows + "<2|'日'>\r\n" + End, In, "EDicUtilError",
       "A text has characters that code page 1251 lacks (Field:'B';Record:2). Use version 200 in UTF-8, or allow "
       "losses",
       13},
      {OldRows + "<2|1x>\r\n" + End, In, "EDicUtilError", OldValue + "Error at position: 2')", 12},
      {OldRows + "<2|2024-01-01>\r\n" + End, In, "EDicUtilError", OldValue + "Error at position: 5')", 12},
      {OldRows + "<2|'x>\r\n" + End, In, "EDicUtilError", OldValue + "String closing quote not founded')", 12},
      {OldRows + "<2|'#0G'>\r\n" + End, In, "EDicUtilError", OldValue + "Uncorrect symbol code on position:4')", 12},
      {OldRows + "<2|'a\tb'>\r\n" + End, In, "EDicUtilError", OldValue + "Uncorrect string symbol №3 symbol code:9')",
       12},
  };
  for (const auto& Case : Cases) {
    Write("F", Header + Case.Rest);
    const TOutcome Outcome = Run({"file", "check", "F"});
    EXPECT_EQ(Outcome.ExitCode, 1) << Case.Message;
    const std::string Expected = "velkrund: F:" + std::to_string(Case.Line) + ": " + Case.Message;
    EXPECT_EQ(Outcome.Errors.substr(0, Expected.size()), Expected);
  }
}

TEST_F(TFileCheckTest, ItGoesOnBehindAFaultAndNotesWhatNoReaderSees) {
  const std::string Good = std::string(Header) + Old + Fields + End;
  Write("F", "\xEF\xBB\xBF[SECTION]\r\n" + Good + Header + Old + End + " [SECTON]\r\n[x]\r\n" + Header +
                 "Version = 100\r\n[DATA]\r\n" + End + Good + "[SECTION]\r\n");
  Write("G", Good);
  const std::string Before = Read("F");
  const TOutcome Text = Run({"file", "check", "F", "none", "G"});
  EXPECT_EQ(Text.ExitCode, 1);
  EXPECT_EQ(Text.Output,
            "F: section 0 'S' (TableData): ok, 1 row, 47 bytes\n"
            "F: section 1 'S' (TableData): faulty, after 0 rows\n"
            "F: section 2 'S' (TableData): faulty\n"
            "F: section 3 'S' (TableData): ok, 1 row, 47 bytes\n"
            "F: a section that is not read\n"
            "F: faulty behind 4 sections\n"
            "none: cannot be opened\n"
            "G: section 0 'S' (TableData): ok, 1 row, 47 bytes\n");
  EXPECT_NE(Text.Errors.find("; 5 faults\n"), std::string::npos) << Text.Errors;

  const auto Json = nlohmann::json::parse(Run({"file", "check", "F", "G", "--json"}).Output, nullptr, false);
  EXPECT_EQ(Json["exitCode"], 1);
  EXPECT_EQ(Json["rows"], 3);
  const auto& File = Json["files"][0];
  EXPECT_EQ(File["sections"][1]["state"], "faulty");
  EXPECT_EQ(File["sections"][2]["error"]["message"], "Parameter '%s' not found");
  EXPECT_EQ(File["sections"][3]["rows"], 1);
  EXPECT_NE(File["error"]["message"].get<std::string>().find("Data begin not found"), std::string::npos);
  ASSERT_EQ(File["notes"].size(), 4U) << File["notes"];
  EXPECT_EQ(File["notes"][2], "section 3 'S' (TableData) has the type and the name of section 0");
  EXPECT_NE(File["notes"][3].get<std::string>().find("(Position:229): [SECTON]."), std::string::npos) << File["notes"];
  ASSERT_EQ(File["hidden"].size(), 1U) << File["hidden"];
  EXPECT_EQ(Json["files"][1]["notes"].size(), 0U);
  EXPECT_EQ(Read("F"), Before);
  EXPECT_EQ(Files(), (TArguments{"F", "G", "empty.db", "shop.db"}));
}

TEST_F(TFileCheckTest, QueriesAndGeneratorsAreReadWithoutATableOrAChange) {
  const std::string Begin = "[SECTION]\r\nEncoding = UTF8\r\nName = S\r\nVersion = 200\r\n";
  const std::string Query = Begin + "Type = QueryData\r\nQuery = SELECT 1#000D\r\n[DATA]\r\n";
  const std::string Generator = Begin + "Type = GeneratorData\r\nGeneratorName = G\r\nStartValue = ";
  Write("F", Query +
                 " [PARAMETRS]\r\n  <Name|Type|Value>\r\n  <P|integer|5>\r\n [FIELDS]\r\n  #\r\n  A\r\n [RECORDS]\r\n" +
                 "  <1|'a'>\r\n" + End + Generator + "7\r\n[DATA]\r\n" + End);
  const TOutcome Good = Run({"file", "check", "F"});
  EXPECT_EQ(Good.ExitCode, 0) << Good.Errors;
  EXPECT_EQ(Good.Output,
            "F: section 0 'S' (QueryData): ok, 1 row, 96 bytes\n"
            "F: section 1 'S' (GeneratorData): ok, 0 bytes\n");
  const struct {
    std::string Section, Message;
    int Line;
  } Cases[] = {
      {Query + " [FIELDS]\r\n  #\r\n [RECORDS]\r\n  <1|\r\n",
       "Can not import query data. Invalid record data structure. '>' is missing (Position:35)", 11},
      {Query + " [PARAMETRS]\r\n  <Name|Type|Value>\r\n  <P|int|5>\r\n",
       "Can not import query data. Invalid parameter: 'int' is no type (Position:48;Line:'<P|int|5>')", 10},
      {Begin + "Type = QueryData\r\nQuery = #00G0\r\n[DATA]\r\n",
       "Error importing query data. Invalid character (#$00G0) in string constant.", 7},
      {Generator + "x\r\n[DATA]\r\n", "'x' is not a valid integer value (StartValue)", 8},
  };
  for (const auto& Case : Cases) {
    Write("F", Case.Section + End);
    const TOutcome Faulty = Run({"file", "check", "F"});
    EXPECT_EQ(Faulty.ExitCode, 1) << Case.Message;
    EXPECT_TRUE(Faulty.Errors.starts_with("velkrund: F:" + std::to_string(Case.Line) + ": " + Case.Message))
        << Faulty.Errors;
  }
}

TEST_F(TFileCheckTest, SectionsThatNobodySeesAreFaults) {
  const std::string Good = Section("B", {"ID"}, {"1"}), Mark = "\xEF\xBB\xBF";
  const auto LineFeeds = [](std::string Text) { return std::erase(Text, '\r'), Text; };
  const auto Damaged = [&](const std::string& Line) { return Line + Good.substr(std::string("[SECTION]").size()); };
  const std::string OfLineFeeds = "[SECTION]. Its lines end with a line feed alone",
                    NotAlone = "[SECTION]. \"[SECTION]\" has to be alone",
                    OfMarker = ". Its \"[SECTION]\" line is damaged or missing";
  const struct {
    std::string Bytes;
    int Rows;            // that are loaded
    std::string Reason;  // empty: no fault
  } Cases[] = {
      {LineFeeds(Good), 0, "(Position:0): " + OfLineFeeds},
      {LineFeeds(Mark + "\r\n" + Good), 0, "(Position:0): a byte-order mark, " + OfLineFeeds},
      {LineFeeds("; note\r\n" + Good) + std::string(100'000, 'x'), 0, "(Position:0): ; note. Its lines end with a"},
      {Good + LineFeeds(Good), 0, "(Position:137): " + OfLineFeeds},
      {Mark + Good + Good, 0, "(Position:0): a byte-order mark, " + NotAlone},
      {Good + " " + Good, 0, "(Position:137): " + NotAlone},
      {Damaged("[SECTIOM]"), 0, "(Position:0): [SECTIOM]" + OfMarker},
      {Damaged("{SECTION]") + Good, 0, "(Position:86): [DATA]" + OfMarker},
      {Good + "[remark]\r\n" + Section("B", {"ID"}, {"2"}) + "[END", 2, ""},
  };
  for (const auto& Case : Cases) {
    Write("F", Case.Bytes);
    const TOutcome Check = Run({"file", "check", "F"});
    EXPECT_EQ(Check.ExitCode, Case.Reason.empty() ? 0 : 1) << Case.Bytes.substr(0, 300);
    EXPECT_NE(Check.Errors.find(Case.Reason), std::string::npos) << Case.Reason << "\n" << Check.Errors;
    // An import loads nothing of a file in which it does not see everything, and a list says it too.
    Query("empty.db", "DELETE FROM B");
    EXPECT_EQ(Run({"file", "list", "F"}).ExitCode, Case.Reason.empty() ? 0 : 1) << Case.Reason;
    for (const char* Object : {"table", "file"}) {
      const TOutcome Import = Run(ImportInto(Object, {"-i", "F", "--append"}));
      EXPECT_EQ(Import.ExitCode, Case.Reason.empty() ? 0 : 1) << Import.Errors;
      EXPECT_NE(Import.Errors.find(Case.Reason.empty() ? "F: a line outside" : Case.Reason), std::string::npos)
          << Case.Reason << "\n"
          << Import.Errors;
      EXPECT_EQ(Counts("empty.db"), "0|" + std::to_string(Case.Rows)) << Case.Reason;
      Query("empty.db", "DELETE FROM B");
    }
  }
}

// Whatever the writers make of real tables is sound, in both versions and encodings, and through a pipe.
TEST_F(TFileCheckTest, WhatWasExportedIsSound) {
  for (const TArguments& Options : {TArguments{}, {"--encoding", "ansi"}, {"--release", "rv17"}}) {
    TArguments Export = {"export", "table", "-d", "sqlite:shop.db", "--all", "-o", "F"};
    Export.insert(Export.end(), Options.begin(), Options.end());
    ASSERT_EQ(Run(Export).ExitCode, 0) << Joined(Options);
    const auto Json = RunJson({"file", "check", "F"})["files"][0];
    EXPECT_EQ(Json["sections"][0]["rows"], 3) << Joined(Options);
    EXPECT_EQ(Json["sections"][1]["rows"], 2) << Joined(Options);
    EXPECT_EQ(Shell("$V file check - < F | wc -l").Output, "2\n") << Joined(Options);
    Shell("rm F");
  }
  Write("empty", "");
  EXPECT_EQ(Run({"file", "check", "empty"}).Output, "empty: no section\n");
  EXPECT_EQ(Run({"file", "check", "-", "-"}).ExitCode, 2);
}

TEST_F(TFileCheckTest, LossesAreCountedWhereTheyAreAllowed) {
  Write("F", std::string(Header) + New + Fields + "<2|'\xC6'>\r\n<3|'\xC6\xC6'>\r\n" + End);
  EXPECT_EQ(Run({"file", "check", "F", "--allow-loss"}).Output,
            "F: section 0 'S' (TableData): ok, 3 rows, 66 bytes, 3 malformed characters\n");
  // What the configuration lets pass as NULL is a fault all the same.
  Write("velkrund.toml", "strict_values = false\n");
  Write("G", std::string(Header) + New + Fields + "<2|x>\r\n" + End);
  EXPECT_EQ(Run({"file", "check", "G"}).ExitCode, 1);
}

}  // namespace
}  // namespace velkrund::tests
