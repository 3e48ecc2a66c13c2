#include "standalone/windows/terminal/TerminalWindows.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "standalone/windows/terminal/AnswerLine.h"
#include "standalone/windows/terminal/Choices.h"
#include "standalone/windows/terminal/ComboLines.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

[[noreturn]] void GiveUp() { throw EAbort("Cancelled at a question"); }

/// The same terminal under a descriptor of our own that never blocks: Ctrl-C throws away what was typed, also between
/// hearing of it and reading it, and whoever shares the original expects it to block.
int OpenAgain(int Input) {
  const int Own = open(("/dev/fd/" + std::to_string(Input)).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  // Somebody else's terminal can be used, but not opened.
  return Own >= 0 ? Own : fcntl(Input, F_DUPFD_CLOEXEC, 0);
}

enum class TTyped { Shown, Hidden };

/// Tells the terminal that characters have several bytes, so that its erase key takes away whole ones, and whether to
/// show them.
class TWholeCharacters {
 public:
  explicit TWholeCharacters(int Input, TTyped Typed = TTyped::Shown)
      : FInput(Input), FKnown(tcgetattr(Input, &FBefore) == 0) {
    if (!FKnown) return;
    struct termios Changed = FBefore;
    Changed.c_iflag |= IUTF8;
    if (Typed == TTyped::Hidden) {
      Changed.c_lflag &= ~static_cast<tcflag_t>(ECHO);
      Changed.c_lflag |= ECHONL;
    }
    tcsetattr(FInput, TCSANOW, &Changed);
  }
  TWholeCharacters(const TWholeCharacters&) = delete;
  TWholeCharacters& operator=(const TWholeCharacters&) = delete;
  ~TWholeCharacters() {
    if (FKnown) tcsetattr(FInput, TCSANOW, &FBefore);
  }

 private:
  int FInput;
  struct termios FBefore;
  bool FKnown;
};

std::string_view NextWord(std::string_view& Line) {
  Line = Trim(Line);
  const std::size_t Length = std::min(Line.find(' '), Line.size());
  const std::string_view Word = Line.substr(0, Length);
  Line.remove_prefix(Length);
  return Word;
}

/// The choices that were typed, in order; none when a word is not understood, or when more than one would end the form:
/// half of what somebody meant must not be done.
std::vector<const TChoices::TChoice*> Understood(const TChoices& Choices, std::string_view Typed) {
  std::vector<const TChoices::TChoice*> Result;
  int Ends = 0;
  for (Typed = Trim(Typed); !Typed.empty(); Typed = Trim(Typed)) {
    const TChoices::TChoice* Choice = Choices.Find(Typed);  // whole: a caption may have blanks
    if (Choice)
      Typed = {};
    else
      Choice = Choices.Find(NextWord(Typed));
    if (!Choice) return {};
    Ends += !Choice->CheckBox;
    Result.push_back(Choice);
  }
  if (Ends > 1) Result.clear();
  return Result;
}

/// Changes the check boxes that were typed, then presses the button. False: it is not understood.
bool Press(TForm& Form, const TChoices& Choices, std::string_view Typed) {
  const TChoices::TChoice* End = nullptr;
  const std::vector<const TChoices::TChoice*> Pressed = Understood(Choices, Typed);
  for (const TChoices::TChoice* Choice : Pressed)
    if (Choice->CheckBox)
      Choice->CheckBox->Checked = !Choice->CheckBox->Checked;
    else
      End = Choice;
  if (!End) return !Pressed.empty();
  if (!End->Button) GiveUp();
  Form.Click(*End->Button);
  return true;
}

/// Does what was typed. Returns what is to be shown of a form with combo boxes when that is no choice.
std::string Obey(TForm& Form, const TChoices& Choices, const TComboLines& Boxes, std::string_view Typed, int Width) {
  if (!Boxes.Empty() && !Choices.HasLetter(Typed))
    if (const std::optional<std::string> Shown = Boxes.Obey(Typed, Width)) return *Shown;
  return Press(Form, Choices, Typed) || Boxes.Empty() ? std::string() : Boxes.Unknown(Typed);
}

}  // namespace

TTerminalWindows::TTerminalWindows(TTerminal& Terminal, int Input, TCanceled Canceled)
    : FTerminal(Terminal), FInput(OpenAgain(Input)), FCanceled(std::move(Canceled)) {}

TTerminalWindows::~TTerminalWindows() { close(FInput); }

int TTerminalWindows::ShowModal(TForm& Form) {
  if (Form.IsQuestion()) {
    const TMainThreadQueue::TLoop Loop(FQueue);
    Ask(Form);
    FTerminal.ResumeStatus();
    return Form.ModalResult();
  }
  FTerminal.Message(Form.Message());
  for (TLButton* Button : Form.VisibleControls<TLButton>()) Form.Click(*Button);
  if (Form.ModalResult() == mrNone) Form.RequestClose();
  return Form.ModalResult();
}

std::optional<std::string> TTerminalWindows::AskSecret(const std::string& Text) {
  const TWholeCharacters Hidden(FInput, TTyped::Hidden);
  FTerminal.Prompt(Text + ": ");
  std::string Line;
  if (!ReadAnswerLine(FInput, Line, FCanceled, [this] { FQueue.Pump(); })) {
    FTerminal.Prompt("\n");
    GiveUp();
  }
  FTerminal.ResumeStatus();
  return Line;
}

void TTerminalWindows::Ask(TForm& Form) {
  const TWholeCharacters WholeCharacters(FInput);
  std::string Heading = Form.Caption == BaseMng().LString("ST_CONFIRMATION") ? std::string() : Form.Caption;
  if (!Heading.empty()) Heading += "\n";
  TFormText Text;
  FTerminal.Prompt(Heading + Text.Whole(Form));
  while (Form.ModalResult() == mrNone) {
    const TComboLines Boxes(Form);
    const TChoices Choices(Form, [&Boxes](std::string_view Typed) { return Boxes.HasName(Typed); });
    FTerminal.Prompt(" " + Choices.Line() + " ? ");
    std::string Line;
    if (!ReadAnswerLine(FInput, Line, FCanceled, [this] { FQueue.Pump(); })) {
      FTerminal.Prompt("\n");
      GiveUp();
    }
    const std::string_view Typed = Trim(Line);
    std::string Shown;
    if (Typed == "?")
      Shown = Choices.Hints();
    else if (!Typed.empty())
      Shown = Obey(Form, Choices, Boxes, Typed, FTerminal.Width());
    if (!Boxes.Empty() && (Typed.empty() || Typed == "?"))
      Shown += Text.Whole(Form);
    else if (Shown.empty() && Form.ModalResult() == mrNone)
      Shown = Text.Again(Form, FTerminal.Height());
    FTerminal.Prompt(Shown);
  }
}

}  // namespace velkrund
