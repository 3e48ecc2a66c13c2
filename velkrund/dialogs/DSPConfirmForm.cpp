#include "velkrund/dialogs/DSPConfirmForm.h"

#include "velkrund/platform/database/ApplicationManager.h"

namespace velkrund {

TDSPConfirmForm::TDSPConfirmForm() {
  Caption = BaseMng().LString("ST_CONFIRMATION");
  AnswerWith(SkipButton, TDSPImportOverwriteOptions::ioSkip);
  AnswerWith(RewriteButton, TDSPImportOverwriteOptions::ioReplace);
  AnswerWith(UpdateButton, TDSPImportOverwriteOptions::ioDifference);
}

void TDSPConfirmForm::AnswerWith(TLButton& Button, TDSPImportOverwriteOptions Answer) {
  Button.OnClick = [this, Answer] {
    ForAll = ForAllLCheckBox.Checked;
    Res = Answer;
    CloseWith(mrOk);
  };
}

TDSPImportOverwriteOptions DSPConfirmation(std::string_view Message, bool& ForAll) {
  TDSPConfirmForm Form;
  Form.AskLabel.Caption = Message;
  Form.ShowModal();
  ForAll = Form.ForAll;
  return Form.Res;
}

}  // namespace velkrund
