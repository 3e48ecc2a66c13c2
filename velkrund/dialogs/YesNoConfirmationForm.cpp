#include "velkrund/dialogs/YesNoConfirmationForm.h"

#include "velkrund/platform/database/ApplicationManager.h"

namespace velkrund {

TYesNoConfirmationForm::TYesNoConfirmationForm() {
  Caption = BaseMng().LString("ST_CONFIRMATION");
  YesForAllButton.ForAll = NoForAllButton.ForAll = true;
  CancelButton.Visible = false;
}

int YesNoConfirmation(std::string_view Message) {
  TYesNoConfirmationForm Form;
  Form.MainLabel.Caption = Message;
  return Form.ShowModal();
}

int YesNoCancelConfirmation(std::string_view Message) {
  TYesNoConfirmationForm Form;
  Form.MainLabel.Caption = Message;
  Form.CancelButton.Visible = true;
  return Form.ShowModal();
}

}  // namespace velkrund
