#include <set>

#include "standalone/windows/messagebox/MessageBoxWindows.h"
#include "standalone/windows/scripted/ScriptedWindows.h"
#include "tests/dialogs/DialogFixture.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund::tests {
namespace {

TEST(Dialogs, EveryButtonHasItsCode) {
  TDialogPlatform Platform;
  for (const TDialogCase& Case : DialogCases()) {
    TScriptedWindows Windows;
    const TServiceGuard<TWindowSystem> Guard(&Windows);
    Windows.AnswerNext({Case.Button, Case.Ticked()});
    EXPECT_EQ(Case.Ask(), Case.Answer) << Case.Name << " " << Case.Button;
    EXPECT_EQ(Windows.Answered(), std::vector<std::string>{"Объект 東京?"});
  }
}

TEST(Dialogs, ClosedWithoutAButton) {
  TDialogPlatform Platform;
  const std::map<std::string, std::string> Answers = {{"yes/no", "2"},    {"yes/no/cancel", "2"}, {"structure", "0"},
                                                      {"object", "2"},    {"series", "2"},        {"box", ""},
                                                      {"box/cancel", "2"}};
  for (const TDialogCase& Case : DialogCases()) {
    TScriptedWindows Windows;
    const TServiceGuard<TWindowSystem> Guard(&Windows);
    Windows.AnswerNext({"", Case.Ticked()});
    std::string Answer = Answers.at(Case.Name);
    // What the box says counts without a button too, except where the buttons collect the answer.
    if (Case.CheckBox == "ForAllOperationsCheckBox") Answer += " for all";
    try {
      EXPECT_EQ(Case.Ask(), Answer) << Case.Name;
    } catch (const Exception& Error) {
      EXPECT_TRUE(Answer.empty()) << Case.Name;
      EXPECT_STREQ(Error.what(), "TMessageBoxForm stays open until a button is pressed: Объект 東京?");
    }
  }
}

TEST(Dialogs, NobodyToAskIsAnErrorThatNamesTheQuestion) {
  TDialogPlatform Platform;
  for (const TDialogCase& Case : DialogCases()) {
    try {
      Case.Ask();
      ADD_FAILURE() << Case.Name << " was answered by nobody";
    } catch (const EQuestionUnanswered& Error) {
      EXPECT_STREQ(Error.what(), "Nobody can be asked, no window system is installed: Объект 東京?");
    }
  }
  EXPECT_EQ(ShowMessageBox("done", "", MB_OK | MB_ICONINFORMATION), IDOK);
  EXPECT_EQ(Platform.Log, std::vector<std::string>{"done"});
}

TEST(Dialogs, MessageBoxesAnswerWithYesNoAndCancel) {
  TDialogPlatform Platform;
  const std::map<std::string, int> Codes = {{"YesButton", 6}, {"RewriteButton", 6}, {"OverwriteButton", 6},
                                            {"NoButton", 7},  {"SkipButton", 7},    {"CancelButton", 2}};
  const std::set<std::string> HaveCancel = {"yes/no/cancel", "series", "box/cancel"};
  for (const TDialogCase& Case : DialogCases()) {
    int Answer = 0;
    std::string Asked;
    TMessageBoxWindows Windows([&](const std::string& Text, const std::string&, std::uint32_t Flags) {
      EXPECT_EQ(Flags, MB_YESNOCANCEL);
      Asked = Text;
      return Answer;
    });
    const TServiceGuard<TWindowSystem> Guard(&Windows);
    for (const int NoAnswer : {0, IDOK}) {
      Answer = NoAnswer;
      EXPECT_THROW(Case.Ask(), EQuestionUnanswered) << Case.Name;
    }
    Answer = IDCANCEL;
    if (!HaveCancel.contains(Case.Name)) {
      EXPECT_THROW(Case.Ask(), EAbort) << Case.Name;
    }
    const auto Code = Codes.find(Case.Button);
    if (Code == Codes.end() || !Case.CheckBox.empty()) continue;
    Answer = Code->second;
    EXPECT_EQ(Case.Ask(), Case.Answer) << Case.Name << " " << Case.Button;
    const std::string Meaning = Case.Button == "RewriteButton" ? "\r\nYes: Replace\r\nNo: Skip" : "";
    if (!Meaning.empty() || Case.Button == "NoButton") {
      EXPECT_EQ(Asked, "Объект 東京?" + Meaning);
    }
  }
  int Told = 0;
  TMessageBoxWindows Windows([&](const std::string&, const std::string&, std::uint32_t Flags) {
    EXPECT_EQ(Flags, MB_OK);
    return Told++ == 0 ? IDOK : 0;
  });
  const TServiceGuard<TWindowSystem> Guard(&Windows);
  EXPECT_EQ(ShowMessageBox("told", "", MB_OK), IDOK);
  EXPECT_EQ(ShowMessageBox("traced", "", MB_OK), IDOK);
  EXPECT_EQ(Platform.Log, std::vector<std::string>{"traced"});
}

TEST(Dialogs, ScriptsAnswerInOrderAndOnlyWhatIsOffered) {
  TDialogPlatform Platform;
  TScriptedWindows Last, Windows(&Last);
  const TServiceGuard<TWindowSystem> Guard(&Windows);
  Windows.AnswerAlways("TMessageBoxForm", {"YesButton", {}});
  Windows.AnswerNext({"YesButton", {}});
  Windows.AnswerNext({"NoButton", {}});
  Last.AnswerNext({"YesForAllButton", {}});
  EXPECT_EQ(YesNoConfirmation("first"), 6);
  EXPECT_EQ(ShowMessageBox("box", "", MB_YESNO), 6);
  EXPECT_EQ(YesNoConfirmation("second"), 7);
  EXPECT_EQ(YesNoConfirmation("third"), 14) << "the next window system is asked";
  Last.AnswerNext({"NoButton", {}});
  EXPECT_EQ(ShowMessageBox("cancel?", "", MB_YESNO | MB_DEFBUTTON2), 7) << "a Yes to everything is none to that";
  EXPECT_THROW(YesNoConfirmation("fourth"), EQuestionUnanswered);
  Windows.AnswerNext({"CancelButton", {}});
  try {
    YesNoConfirmation("fifth");
    FAIL() << "an invisible button was pressed";
  } catch (const Exception& Error) {
    EXPECT_STREQ(Error.what(), "TYesNoConfirmationForm has no 'CancelButton' to answer the question: fifth");
  }
}

}  // namespace
}  // namespace velkrund::tests
