#include "standalone/windows/messagebox/MessageBoxWindows.h"

#include <algorithm>
#include <initializer_list>

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/lctrls/MessageBox.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr const char* YesKey = "ST_YES";
constexpr const char* NoKey = "ST_NO";

TLButton* FirstOf(const TForm& Form, std::initializer_list<std::string_view> Names) {
  for (TLButton* Button : Form.VisibleControls<TLButton>())
    if (std::find(Names.begin(), Names.end(), Button->Name()) != Names.end()) return Button;
  return nullptr;
}

std::string WithoutMark(std::string Caption) {
  std::erase(Caption, '&');
  return Caption;
}

/// What a button of the message box stands for, where the form calls it something else.
std::string Legend(const char* Key, const TLButton& Button) {
  if (Button.CaptionKey() == Key) return {};
  return "\r\n" + WithoutMark(BaseMng().LString(Key)) + ": " + WithoutMark(Button.Caption());
}

}  // namespace

int TMessageBoxWindows::ShowModal(TForm& Form) {
  if (!Form.IsQuestion()) {
    const int Answer = FShow(Form.Message(), Form.Caption, MB_OK);
    return Answer ? mrOk : NobodyAtTheScreen().ShowModal(Form);
  }
  if (!Form.VisibleControls<TLComboBox>().empty())
    throw EQuestionUnanswered(
        Format("A message box cannot show the question; name %s beforehand: %s", Form.NamedInstead(), Form.Message()));
  TLButton* const Yes = FirstOf(Form, {"YesButton", "RewriteButton", "OverwriteButton"});
  TLButton* const Cancel = FirstOf(Form, {"CancelButton"});
  TLButton* No = FirstOf(Form, {"NoButton", "SkipButton"});
  if (!No) No = Cancel;
  if (!Yes || !No) return NobodyAtTheScreen().ShowModal(Form);
  const std::string Text = Form.Message() + Legend(YesKey, *Yes) + (No == Cancel ? "" : Legend(NoKey, *No));
  switch (const int Answer = FShow(Text, Form.Caption, MB_YESNOCANCEL)) {
    case 0:
      return NobodyAtTheScreen().ShowModal(Form);
    case IDYES:
      Form.Click(*Yes);
      break;
    case IDNO:
      Form.Click(*No);
      break;
    case IDCANCEL:
      if (Cancel)
        Form.Click(*Cancel);
      else
        throw EAbort("Cancelled at a question");
      break;
    default:
      throw EQuestionUnanswered(
          Format("The message box returned %d, which is neither yes (6), no (7) nor cancel (2), to the question: %s",
                 Answer, Text));
  }
  return Form.ModalResult();
}

}  // namespace velkrund
