#include "tests/cli/ShopTest.h"

namespace velkrund::tests {
namespace {

/// Sections that can be loaded (A with 1 row, B with 2) and sections that fail at a record, in several files.
class TImportFileTest : public TShopTest {
 protected:
  TImportFileTest() {
    const std::string A = Section("A", {"ID"}, {"1"}), B = Section("B", {"ID"}, {"1", "2"});
    const std::string FaultyA = Section("A", {"ID"}, {"5", "5"});
    Write("good.eif", A + B);
    Write("faulty.eif", FaultyA + B + Section("A", {"ID"}, {"2"}));
    Write("more.eif", Section("A", {"ID"}, {"3"}));
    Write("head.eif", A + "[SECTION]\r\nName = X\r\nType = Strange\r\nVersion = 1\r\n[DATA]\r\n[END]\r\n");
    Write("lost.eif", Section("NONE", {"ID"}, {"1"}) + B);
    Write("extra.eif", Section("A", {"EXTRA", "ID"}, {"'x'|1"}) + B);
    Write("alien.eif", Section("A", {"EXTRA"}, {"'x'"}) + B);
    Write("bytes.eif", Section("A", {"ID", "NAME"}, {"1|'x\xFFy'"}) + B);
  }

  TArguments Import(const TArguments& More) const { return ImportInto("file", More); }
};

TEST_F(TImportFileTest, OptionsDecideWhatArrives) {
  const std::string OneRowEach = "INSERT INTO A(ID) VALUES (100); INSERT INTO B(ID) VALUES (100);";
  const std::string Unanswered = "There is no terminal to ask whether to go on: give --on-error continue or";
  CheckImports(
      "file",
      {
          {"", {"-i", "good.eif"}, 0, "1|2", "in all 2 sections: 3 rows"},
          {"", {"-i", "good.eif", "-i", "more.eif"}, 0, "2|2", "imported table A, section 'A' of 'more.eif': 1 row"},
          {"", {"-i", "good.eif", "-i", "good.eif"}, 2, "0|0", "--input names 'good.eif' twice"},
          {OneRowEach, {"-i", "good.eif"}, 1, "1|1", "Table 'A' has 1 row, table 'B' has 1 row. Give --replace"},
          {OneRowEach, {"-i", "good.eif", "--replace"}, 0, "1|2", "imported table B"},
          {OneRowEach, {"-i", "good.eif", "--append"}, 0, "2|3", "imported table B"},
          // After a failure nothing of its section stays, and an earlier table keeps what it had.
          {"", {"-i", "faulty.eif"}, 1, "0|0", Unanswered},
          {"", {"-i", "faulty.eif", "-i", "more.eif"}, 1, "0|0", Unanswered},
          {"", {"-i", "faulty.eif", "--yes"}, 1, "0|0", Unanswered},
          {OneRowEach, {"-i", "faulty.eif", "--replace", "--repeated-tables", "join"}, 1, "1|1", "not reached table B"},
          {OneRowEach,
           {"-i", "faulty.eif", "--replace", "--repeated-tables", "join", "--on-error", "continue"},
           1,
           "1|2",
           "failed table A"},
          // Two sections for one table: the second could be meant in place of the first.
          {OneRowEach,
           {"-i", "good.eif", "-i", "more.eif", "--replace"},
           1,
           "1|1",
           "The table 'A' is to be replaced, and there are 2 sections for it: section 0 'A' (TableData) of 'good.eif', "
           "section 0 'A' (TableData) of 'more.eif'; --repeated-tables join loads the rows of all"},
          {OneRowEach,
           {"-i", "good.eif", "-i", "more.eif", "--replace", "--repeated-tables", "join"},
           0,
           "2|2",
           "in all 3"},
          {OneRowEach, {"-i", "good.eif", "-i", "more.eif", "--append"}, 0, "3|3", "in all 3"},
          {"",
           {"-i", "faulty.eif", "-i", "more.eif", "--on-error", "continue"},
           1,
           "0|2",
           "of 4 sections 1 imported, 2 not reached, 1 failed"},
          {"", {"-i", "faulty.eif", "-i", "head.eif", "--commit", "each"}, 1, "0|0", Unanswered},
          {"", {"-i", "good.eif", "-i", "none.eif", "--on-error", "stop"}, 1, "0|0", "No such file"},
          {"", {"-i", "head.eif"}, 1, "0|0", "Section type is not registered (Type:'Strange'"},
          {"", {"-i", "head.eif", "-i", "more.eif"}, 1, "0|0", Unanswered},
          {"", {"-i", "head.eif", "-i", "more.eif", "--on-error", "continue"}, 1, "1|0", "failed file 'head.eif'"},
          {"", {"-i", "none.eif", "-i", "more.eif", "--on-error", "stop"}, 1, "0|0", "No such file"},
          {"", {"-i", "lost.eif", "--on-error", "continue"}, 1, "0|2", "Error opening table (TableName:'NONE')"},
          // Fields that do not fit are found before anything is changed; whoever goes on loses their sections alone.
          {OneRowEach, {"-i", "extra.eif", "--replace"}, 1, "1|1", "lacks the field 'EXTRA' of section 0 'A'"},
          {OneRowEach, {"-i", "extra.eif", "--replace", "--on-error", "continue"}, 1, "1|2", "failed table A"},
          {OneRowEach, {"-i", "extra.eif", "--append", "--missing-fields", "skip"}, 0, "2|3", "were left out: EXTRA"},
          {OneRowEach, {"-i", "alien.eif", "--append", "--missing-fields", "skip"}, 1, "1|1", "has none of the fields"},
          {"", {"-i", "bytes.eif", "--on-error", "continue"}, 1, "0|2", "failed table A"},
          {"", {"-i", "bytes.eif", "--allow-loss"}, 0, "1|2", "1 malformed character replaced"},
      });
}

TEST_F(TImportFileTest, TheReportCountsWhatBecameOfEverySection) {
  const auto Report = nlohmann::json::parse(
      Run(Import({"-i", "faulty.eif", "-i", "none.eif", "-i", "more.eif", "--on-error", "continue", "--json"})).Output,
      nullptr, false);
  std::string States;
  for (const auto& Item : Report["sections"])
    States += Item["file"].get<std::string>() + " " + Item.value("name", "") + " " + Item["state"].get<std::string>() +
              " " + (Item.contains("rows") ? Item["rows"].dump() : "-") + "\n";
  EXPECT_EQ(States,
            "faulty.eif A failed -\nfaulty.eif B done 2\nfaulty.eif A not-reached -\n"
            "more.eif A not-reached -\nnone.eif  failed -\n");
  EXPECT_EQ(Report["exitCode"], 1);
  EXPECT_EQ(Report["rows"], 2);
  EXPECT_NE(Report["sections"][0]["error"]["message"].get<std::string>().find("UNIQUE constraint failed: A.ID"),
            std::string::npos);
  EXPECT_EQ(Report["error"]["message"], Report["sections"][4]["error"]["message"]) << "the first that failed";
  EXPECT_TRUE(Report["error"]["within"][0].get<std::string>().starts_with("EJobFailed: 2 of 5 sections failed. "));
}

TEST_F(TImportFileTest, ThroughPipes) {
  EXPECT_EQ(Shell("cat good.eif | $V import file -d sqlite:empty.db -i more.eif -i -").ExitCode, 0);
  EXPECT_EQ(Counts("empty.db"), "2|2");
}

TEST_F(TImportFileTest, KeysAnswerWhetherToGoOn) {
  struct TCase {
    TArguments Files;
    std::string Keys;
    int ExitCode;
    std::string Counts;
  };
  const TCase Cases[] = {
      {{"-i", "faulty.eif"}, "y\n", 1, "0|2"},
      {{"-i", "faulty.eif"}, "A\n", 1, "0|2"},
      {{"-i", "faulty.eif"}, "n\n", 1, "0|0"},
      {{"-i", "faulty.eif"}, "c\n", 3, "0|0"},
      {{"-i", "faulty.eif"}, "\x03", 3, "0|0"},
      {{"-i", "head.eif", "-i", "faulty.eif", "-i", "more.eif"}, "y\nall\n", 1, "0|2"},
      {{"-i", "head.eif", "-i", "faulty.eif"}, "n\n", 1, "0|0"},
      {{"-i", "head.eif", "-i", "faulty.eif"}, "y\nn\n", 1, "0|0"},
      {{"-i", "head.eif", "-i", "faulty.eif"}, "y\n\x04", 3, "0|0"},
  };
  for (const auto& [Files, Keys, ExitCode, Expected] : Cases) {
    Query("empty.db", "DELETE FROM A; DELETE FROM B");
    const TOutcome Outcome = RunOnTerminal(Import(Files), "[y]es [n]o [A]ll [c]ancel ? ", Keys);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Keys << Outcome.Output;
    EXPECT_EQ(Counts("empty.db"), Expected) << Keys << Outcome.Output;
    EXPECT_NE(Outcome.Output.find("Go on with the import?"), std::string::npos) << Outcome.Output;
  }
}

TEST_F(TImportFileTest, KeysDecideAboutRowsThatAreThere) {
  for (const auto& [Keys, Expected] :
       std::map<std::string, std::string>{{"n\np\n", "1|3"}, {"p\ny\n", "2|2"}, {"A\n", "1|2"}, {"y\nc\n", "1|1"}}) {
    Query("empty.db", "DELETE FROM A; DELETE FROM B; INSERT INTO A(ID) VALUES (100); INSERT INTO B(ID) VALUES (100);");
    const TOutcome Outcome = RunOnTerminal(Import({"-i", "good.eif"}), "Table 'A' has 1 row.", Keys);
    EXPECT_EQ(Counts("empty.db"), Expected) << Keys << Outcome.Output;
  }
}

}  // namespace
}  // namespace velkrund::tests
