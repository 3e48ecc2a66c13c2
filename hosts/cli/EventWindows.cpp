#include "hosts/cli/EventWindows.h"

#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#include "hosts/cli/UnattendedWindows.h"
#include "standalone/windows/terminal/AnswerLine.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// "yes-to-all" of "YesToAllButton": the same in every language.
std::string WordOf(const TLControl& Control, std::string_view Kind) {
  std::string_view Name = Control.Name();
  if (Name.ends_with(Kind)) Name.remove_suffix(Kind.size());
  std::string Result;
  for (const char C : Name) {
    const bool IsUpper = C >= 'A' && C <= 'Z';
    if (IsUpper && !Result.empty()) Result += '-';
    Result += IsUpper ? static_cast<char>(C - 'A' + 'a') : C;
  }
  return Result;
}

std::string WordOf(const TLButton& Button) { return WordOf(Button, "Button"); }
std::string WordOf(const TLCheckBox& Box) { return WordOf(Box, "CheckBox"); }

template <typename TControl>
TDocument WordsOf(const TForm& Form) {
  TDocument Result = TDocument::List();
  for (const TControl* Control : Form.VisibleControls<TControl>()) {
    std::string Caption = Control->Caption();
    std::erase(Caption, '&');
    TDocument Entry;
    Entry.Set("word", WordOf(*Control)).Set("caption", Caption);
    Result.Add(std::move(Entry));
  }
  return Result;
}

template <typename TControl>
TControl* Named(const TForm& Form, std::string_view Word) {
  for (TControl* Control : Form.VisibleControls<TControl>())
    if (WordOf(*Control) == Word) return Control;
  return nullptr;
}

}  // namespace

TEventWindows::TEventWindows(TConsole& Console, int Input, std::function<bool()> Canceled)
    : FConsole(Console), FInput(Input), FCanceled(std::move(Canceled)) {}

bool TEventWindows::CanAsk() const {
  struct stat Status;
  if (fstat(FInput, &Status) != 0) return false;
  return !S_ISCHR(Status.st_mode) || isatty(FInput) != 0;
}

int TEventWindows::ShowModal(TForm& Form) {
  if (!Form.IsQuestion()) {
    FConsole.Message(Form.Message());
    return mrOk;
  }
  if (!Form.VisibleControls<TLComboBox>().empty()) throw UnshownError(Form);
  while (Form.ModalResult() == mrNone) {
    Tell(Form);
    std::string Line;
    const bool IsWhole = ReadAnswerLine(FInput, Line, FCanceled);
    if (FCanceled && FCanceled()) throw EAbort("Cancelled at a question");
    // Programs may well leave out the end of their last line; it says all the same.
    if (!IsWhole && Line.empty()) return NobodyAtTheScreen().ShowModal(Form);
    Press(Form, Line);
  }
  return Form.ModalResult();
}

void TEventWindows::Tell(const TForm& Form) const {
  TDocument Told = TConsole::NewEvent("question");
  Told.Set("text", Form.Message()).Set("answers", WordsOf<TLButton>(Form)).Set("marks", WordsOf<TLCheckBox>(Form));
  FConsole.Event(Told);
}

/// The words of a line: any marks, then the answer. False: it is not understood, and nothing is pressed.
bool TEventWindows::Press(TForm& Form, std::string_view Line) const {
  std::vector<TLCheckBox*> Marks;
  for (Line = Trim(Line); !Line.empty(); Line = Trim(Line)) {
    const std::string_view Word = Line.substr(0, Line.find(' '));
    Line.remove_prefix(Word.size());
    if (TLCheckBox* const Mark = Named<TLCheckBox>(Form, Word)) {
      Marks.push_back(Mark);
      continue;
    }
    TLButton* const Button = Named<TLButton>(Form, Word);
    if (!Button || !Trim(Line).empty()) return false;
    for (TLCheckBox* Mark : Marks) Mark->Checked = true;
    Form.Click(*Button);
    return true;
  }
  return false;
}

}  // namespace velkrund
