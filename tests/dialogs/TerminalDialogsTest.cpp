#include <map>
#include <set>
#include <thread>

#include "standalone/windows/terminal/TerminalText.h"
#include "tests/dialogs/TerminalFixture.h"

namespace velkrund::tests {
namespace {

TEST_F(TTerminalDialogs, KeysPressEveryButton) {
  for (const TDialogCase& Case : DialogCases()) {
    EXPECT_EQ(Answer(Case.Ask, Case.Keys), Case.Answer) << Case.Name << " " << Case.Keys;
    EXPECT_NE(Seen("Объект 東京?").find("Объект 東京?"), std::string::npos);
  }
}

TEST_F(TTerminalDialogs, CancelAndTheEndOfInputGiveTheJobUp) {
  const std::set<std::string> HaveCancel = {"yes/no/cancel", "series", "box/cancel"};
  for (const TDialogCase& Case : DialogCases()) {
    EXPECT_EQ(Answer(Case.Ask, "\x04"), "EAbort") << Case.Name;
    EXPECT_EQ(Answer(Case.Ask, "c\n"), HaveCancel.contains(Case.Name) ? "2" : "EAbort") << Case.Name;
    Canceled = true;
    EXPECT_EQ(Answer(Case.Ask, ""), "EAbort") << Case.Name;
    Canceled = false;
  }
}

TEST_F(TTerminalDialogs, QuestionsLookLikeThis) {
  struct TCase {
    std::function<std::string()> Ask;
    std::string Keys;
    std::string Shown;
  };
  const std::string Unknown = "what\n", Hints = "?\n";
  bool ForAll = false;
  const auto YesNo = [] { return std::to_string(YesNoConfirmation("Replace\x1B[2J 'Имя'?")); };
  const auto Structure = [&] { return std::to_string(static_cast<int>(DSPConfirmation("There is X.", ForAll))); };
  const auto Object = [] { return std::to_string(ShowOverwriteEIObjectWindow("There is X.", "Export of X")); };
  const TCase Cases[] = {
      {YesNo, "y\n", "Replace\\x1B[2J 'Имя'?\r\n  [y]es [n]o [A]ll n[O]ne [c]ancel ? "},
      {YesNo, Unknown + "y\n",
       "Replace\\x1B[2J 'Имя'?\r\n  [y]es [n]o [A]ll n[O]ne [c]ancel ?   [y]es [n]o [A]ll n[O]ne [c]ancel ? "},
      {YesNo, Hints + "y\n",
       "Replace\\x1B[2J 'Имя'?\r\n  [y]es [n]o [A]ll n[O]ne [c]ancel ?   all: Overwrite the others too\r\n"
       "  none: C_Catalox_YesNoConfirmationForm_NoForAllButton_H\r\n  [y]es [n]o [A]ll n[O]ne [c]ancel ? "},
      {Structure, "f\nu\n",
       "There is X.\r\n  [s]kip [r]eplace [u]pdate ( ) [f]or all structures [c]ancel ? "
       "  [s]kip [r]eplace [u]pdate (x) [f]or all structures [c]ancel ? "},
      {Object, "s\n", "Export of X\r\nThere is X.\r\n  [o]verwrite [a]ppend [s]kip [c]ancel ? "},
  };
  for (const TCase& Case : Cases) {
    Answer(Case.Ask, Case.Keys);
    EXPECT_EQ(Seen(Case.Shown), Case.Shown);
  }
}

TEST_F(TTerminalDialogs, LettersStayApartInEveryLanguage) {
  Platform.Texts["ST_YES"] = "&Да";
  Platform.Texts["ST_NO"] = "&Нет";
  Platform.Texts["ST_YESTOALL"] = "&Для всех";  // taken by yes
  Platform.Texts["ST_NOTOALL"] = "Ни для одного";
  Platform.Texts["ST_CANCEL"] = "東京";
  const auto YesNo = [] { return std::to_string(YesNoConfirmation("?")); };
  for (const auto& [Keys, Expected] : std::map<std::string, std::string>{{"Д\n", "6"},
                                                                         {"нет\n", "7"},
                                                                         {"л\n", "14"},
                                                                         {"ни для одного\n", "13"},
                                                                         {"東\n", "EAbort"},
                                                                         {"y\n", "6"},
                                                                         {"no\n", "7"},
                                                                         {"c\n", "EAbort"}})
    EXPECT_EQ(Answer(YesNo, Keys), Expected) << Keys;
  const std::string Line = "[д]а [н]ет д[Л]я всех н[И] для одного [東]京 ? ";
  EXPECT_NE(Seen(Line).find(Line), std::string::npos);
}

TEST_F(TTerminalDialogs, StatusLineComesBack) {
  TTerminal Terminal(FProgram);
  const std::string Status = "\r50 %\x1b[K", Away = "\r\x1b[K";
  Terminal.Status("50 %");
  EXPECT_EQ(Seen(Status), Status);
  Terminal.Message("a message");
  EXPECT_EQ(Seen(Status), Away + "a message\r\n" + Status);
  TTerminalWindows Windows(Terminal, FProgram, {});
  const TServiceGuard<TWindowSystem> Guard(&Windows);
  EXPECT_EQ(write(FPerson, "y\n", 2), 2);
  YesNoConfirmation("?");
  const std::string Shown = Seen(Status);
  EXPECT_TRUE(Shown.starts_with(Away + "?\r\n")) << Shown;
  EXPECT_TRUE(Shown.ends_with(Status)) << Shown;
  Terminal.ClearStatus();
  Terminal.Message("end");
  EXPECT_EQ(Seen("end\r\n"), Away + "end\r\n");
}

TEST_F(TTerminalDialogs, AQuestionOfAWorkerIsAskedWhileAnotherOneWaits) {
  std::thread Worker;
  const auto Ask = [&] {
    Worker = std::thread([&] {
      std::string Inner;
      Synchronize([&] { Inner = std::to_string(YesNoConfirmation("inner?")); });
      EXPECT_EQ(Inner, "7");
      EXPECT_EQ(write(FPerson, "a\n", 2), 2);
    });
    return std::to_string(YesNoConfirmation("outer?"));
  };
  std::thread Person([&] {
    EXPECT_NE(Seen("inner?").find("inner?"), std::string::npos);
    EXPECT_EQ(write(FPerson, "n\n", 2), 2);
  });
  EXPECT_EQ(Answer(Ask, ""), "14");
  Worker.join();
  Person.join();
}

TEST(TerminalText, WidthsCountColumns) {
  struct TCase {
    std::string Text;
    int Width;
    std::string InThree;  // what fits into three columns
  };
  const TCase Cases[] = {
      {"abcd", 4, "abc"}, {"Имя", 3, "Имя"},
      {"東京", 4, "東"},  {"e\u0301e\u0301e\u0301e\u0301", 4, "e\u0301e\u0301e\u0301"},
      {"a東b", 4, "a東"}, {"", 0, ""},
  };
  for (const TCase& Case : Cases) {
    EXPECT_EQ(DisplayWidth(Case.Text), Case.Width) << Case.Text;
    EXPECT_EQ(CutToWidth(Case.Text, 3), Case.InThree) << Case.Text;
  }
}

TEST(TerminalText, LongLinesLoseTheirMiddle) {
  const auto Repeated = [](std::string_view Text, int Count) {
    std::string Result;
    while (Count-- > 0) Result += Text;
    return Result;
  };
  const struct {
    std::string Text, Shown;
  } Cases[] = {
      {"", ""},
      {Repeated("line\n", 3000), Repeated("line\n", 3000)},
      {Repeated("x", 4000), Repeated("x", 4000)},
      {"a\n" + Repeated("x", 1'000'000) + "\nb",
       "a\n" + Repeated("x", 3000) + "... (996500 characters left out) ..." + Repeated("x", 500) + "\nb"},
      {"y" + Repeated("Ж", 10'000) + "z",
       "y" + Repeated("Ж", 1500) + "... (8250 characters left out) ..." + Repeated("Ж", 250) + "z"},
      {Repeated("\x80", 5000), Repeated("\x80", 5000)},
  };
  for (const auto& Case : Cases) EXPECT_TRUE(WithShortLines(Case.Text) == Case.Shown) << Case.Text.substr(0, 9);
}

}  // namespace
}  // namespace velkrund::tests
