#include "velkrund/dialogs/OverwriteAskExForm.h"

namespace velkrund {

TOverwriteAskExForm::TOverwriteAskExForm() { YesToAllButton.ForAll = NoToAllButton.ForAll = true; }

void ShowOverwriteAskExForm(std::string_view Message, std::string_view WindowCaption, TApplyForAll& Answer) {
  Answer = {};
  TOverwriteAskExForm Form;
  Form.Caption = WindowCaption;
  Form.Label1.Caption = Message;
  Answer.YesCancel = Form.ShowModal();
  Answer.Apply = Form.ForAllOperationsCheckBox.Checked;
}

}  // namespace velkrund
