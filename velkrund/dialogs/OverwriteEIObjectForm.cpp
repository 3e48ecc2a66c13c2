#include "velkrund/dialogs/OverwriteEIObjectForm.h"

namespace velkrund {

TOverwriteEIObjectForm::TOverwriteEIObjectForm() { OverwriteButton.Default = true; }

int ShowOverwriteEIObjectWindow(std::string_view Message, std::string_view WindowCaption) {
  TOverwriteEIObjectForm Form;
  Form.Caption = WindowCaption;
  Form.Label1.Caption = Message;
  return Form.ShowModal();
}

}  // namespace velkrund
