#include "hosts/cli/UnattendedWindows.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

TLText UnansweredText(const TLText& Stakes, const TLText& Options) {
  return LText("M_Velkrund_Cli_Unanswered", Stakes, Options);
}

EQuestionUnanswered UnshownError(const TForm& Form) {
  std::string Stakes;
  for (const char C : Form.Message()) Stakes += C == '\n' ? ". " : std::string(1, C);
  return EQuestionUnanswered(UnansweredText(Stakes + ".", LText("M_Velkrund_Cli_GiveTargetAndMap")).Local());
}

int TUnattendedWindows::ShowModal(TForm& Form) {
  if (!Form.VisibleControls<TLComboBox>().empty()) throw UnshownError(Form);
  const bool IsBox = Form.ClassName() == std::string_view("TMessageBoxForm");
  if (Form.YesUndoes()) throw EQuestionUnanswered(LText("M_Velkrund_Cli_UnansweredAlone", Form.Message()).Local());
  if (Form.IsQuestion())
    throw EQuestionUnanswered(
        UnansweredText(Form.Message(), IsBox ? TLText("--yes") : LText("M_Velkrund_Cli_GiveOverwrite")).Local());
  FTell(Form.Message());
  return mrOk;
}

}  // namespace velkrund
