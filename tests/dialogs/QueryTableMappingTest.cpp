#include "standalone/windows/messagebox/MessageBoxWindows.h"
#include "standalone/windows/scripted/ScriptedWindows.h"
#include "tests/dialogs/MappingFixture.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund::tests {
namespace {

const std::string Target = "TargetTableComboBox", Field = "FileFieldComboBox:";
const std::vector<std::string> Clear = {"ClearTargetCheckBox"};

/// The answer to a mapping that is preset; the message of the error when there is one.
std::string Answered(const TScriptedAnswer& Answer, const std::vector<std::string>& FileFields,
                     const TQueryTableMapping& Preset, const std::string& Query = "SELECT 1") {
  TScriptedWindows Windows;
  const TServiceGuard<TWindowSystem> Guard(&Windows);
  Windows.AnswerNext(Answer);
  try {
    return AskMapping(FileFields, Preset, Query);
  } catch (const Exception& Error) {
    return Error.what();
  }
}

class TQueryTableMappingTest : public testing::Test {
 protected:
  TQueryTableMappingTest() {
    Platform.Connection->Execute("CREATE TABLE BOOKS (ID INTEGER, Title TEXT, PRICE REAL)");
    Platform.Connection->Execute("CREATE TABLE NOTES (TITLE TEXT, TargetTableComboBox TEXT, \"#\" INTEGER)");
  }

  TMappingPlatform Platform;
};

TEST_F(TQueryTableMappingTest, WhatIsChosenComesBack) {
  const std::string Open = "TQueryTableMappingSelectForm stays open after 'OkButton': Rows of SELECT 1\n";
  const TQueryTableMapping Books{"books", {}, false};
  struct TCase {
    std::vector<std::string> FileFields;
    TQueryTableMapping Preset;
    TStringPairs Chosen;
    std::string Result;
  };
  const TCase Cases[] = {
      // Equal names are beside from the beginning, in whatever case, and a table can be chosen after another one.
      {{"#", "TITLE", "id"}, {}, {{Target, "BOOKS"}}, "1 BOOKS: ID<-id Title<-TITLE"},
      {{"#", "TITLE", "id"}, Books, {}, "1 BOOKS: ID<-id Title<-TITLE"},
      {{"#", "TITLE"}, Books, {{Target, "NOTES"}}, "1 NOTES: TITLE<-TITLE #<-#"},
      {{"TITLE"}, Books, {{Target, ""}, {Target, "BOOKS"}}, "1 BOOKS: Title<-TITLE"},
      {{"TITLE", "Title"}, Books, {}, "1 BOOKS: Title<-Title <-TITLE"},
      // What a person has put elsewhere is not beside its own name again; what goes nowhere is said to.
      {{"TITLE", "N"}, Books, {{Field + "Title", "N"}}, "1 BOOKS: Title<-N <-TITLE"},
      {{"TITLE", "ID"}, Books, {{Field + "ID", ""}}, "1 BOOKS: Title<-TITLE <-ID"},
      {{"A", "B"}, Books, {{Field + "ID", "B"}, {Field + "PRICE", "A"}}, "1 BOOKS: ID<-B PRICE<-A"},
      // What is chosen beforehand.
      {{"ID", "N"}, {"BOOKS", {{"ID", "PRICE"}, {"n", "title"}}, true}, {}, "1 BOOKS: Title<-N PRICE<-ID emptied"},
      {{"ID", "N"}, {"BOOKS", {{"ID", ""}, {"N", "PRICE"}}, false}, {}, "1 BOOKS: PRICE<-N <-ID"},
      {{"ID"}, {"GONE", {}, false}, {{Target, "BOOKS"}}, "1 BOOKS: ID<-ID"},
      {{"ID"}, {"BOOKS", {{"X", "PRICE"}, {"ID", "Y"}}, false}, {}, Open + "Nowhere: ID\nNo field"},
      // What cannot be meant does not close the form.
      {{"ID"}, {}, {}, Open + "No target"},
      {{"#", "N", "A\nB"}, Books, {}, Open + "Nowhere: N, A\\x0AB\nNo field"},
      {{"ID"}, Books, {{Field + "PRICE", "ID"}}, "1 BOOKS: ID<-ID PRICE<-ID"},
      {{"ID"},
       Books,
       {{Field + "PRICE", "SUM"}},
       "'" + Field + "PRICE' of TQueryTableMappingSelectForm does not offer 'SUM'"},
      {{"ID"},
       Books,
       {{Target, "NOTES"}, {Field + "PRICE", "ID"}},
       "TQueryTableMappingSelectForm has no '" + Field +
           "PRICE' to answer the question: Rows of SELECT 1\nNowhere: ID"},
  };
  for (const TCase& Case : Cases)
    EXPECT_EQ(Answered({"OkButton", {}, Case.Chosen}, Case.FileFields, Case.Preset), Case.Result);
  EXPECT_EQ(Answered({"OkButton", Clear}, {"ID"}, Books), "1 BOOKS: ID<-ID emptied");
  for (const char* Button : {"CancelButton", ""})
    EXPECT_EQ(Answered({Button, Clear, {{Target, "NOTES"}}}, {"ID"}, Books), "2 books:") << "the mapping changed";
}

TEST_F(TQueryTableMappingTest, TablesThatCannotBeTakenSayWhy) {
  Platform.Gone = {"OLD"};
  EXPECT_EQ(Answered({"OkButton", {}, {{Target, "BOOKS"}, {Target, "OLD"}}}, {"ID"}, {}),
            "TQueryTableMappingSelectForm stays open after 'OkButton': Rows of SELECT 1\nNo target");
  TQueryTableMappingSelectForm Form("SELECT 1", {"ID"}, "", {"OLD", {}, false});
  EXPECT_EQ(Form.Message(), "Rows of SELECT 1\nOLD is gone");
  EXPECT_EQ(Form.TargetTableComboBox.ItemIndex(), -1);
  Platform.Gone.clear();
  for (const char* Table : {"BOOKS", "NOTES"}) Platform.Connection->Execute(std::string("DROP TABLE ") + Table);
  EXPECT_EQ(TQueryTableMappingSelectForm("SELECT 1", {"ID"}, "", {}).Message(), "Rows of SELECT 1\nNo tables");
}

TEST_F(TQueryTableMappingTest, ControlsStandInOrderWhateverTableWasChosen) {
  TQueryTableMappingSelectForm Form("  SELECT\n\t*  FROM T\n", {"ID"}, "", {"NOTES", {}, false});
  Form.TargetTableComboBox.Choose(0);
  std::string Names;
  for (const TLControl* Control : Form.Controls()) Names += std::string(Control->Name()) + " ";
  EXPECT_EQ(
      Names,
      "QueryLabel TargetTableComboBox ClearTargetCheckBox FieldsLabel FileFieldComboBox:ID FileFieldComboBox:Title "
      "FileFieldComboBox:PRICE UnusedLabel ProblemLabel OkButton CancelButton ");
  EXPECT_EQ(Form.QueryLabel.Caption, "Rows of SELECT * FROM T");
  EXPECT_LT(TQueryTableMappingSelectForm(std::string(10'000, 'x'), {}, "", {}).QueryLabel.Caption.size(), 400U);
}

TEST_F(TQueryTableMappingTest, NobodyAnswersItBlindly) {
  const TQueryTableMapping Preset{"BOOKS", {}, true};
  const std::string Names =
      "name the target table, and which fields of the file fill its fields beforehand: Rows of SELECT 1";
  const auto Error = [&](TWindowSystem* Windows) -> std::string {
    const TServiceGuard<TWindowSystem> Guard(Windows);
    try {
      return AskMapping({"ID"}, Preset);
    } catch (const EQuestionUnanswered& Unanswered) {
      return Unanswered.what();
    }
  };
  TScriptedWindows Standing;
  Standing.AnswerAlways("TQueryTableMappingSelectForm", {"OkButton", {}});
  TMessageBoxWindows Box([](auto...) { return IDYES; });
  EXPECT_EQ(Error(nullptr), "Nobody can be asked, no window system is installed; " + Names);
  EXPECT_EQ(Error(&Standing), "Nobody can be asked, no window system is installed; " + Names);
  EXPECT_EQ(Error(&Box), "A message box cannot show the question; " + Names);
}

}  // namespace
}  // namespace velkrund::tests
