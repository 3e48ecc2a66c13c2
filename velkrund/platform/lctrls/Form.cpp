#include "velkrund/platform/lctrls/Form.h"

#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

int TForm::ShowModal() {
  FModalResult = mrNone;
  return Windows().ShowModal(*this);
}

void TForm::Click(TLButton& Button) {
  if (Button.OnClick) Button.OnClick();
  if (Button.ModalResult != mrNone) FModalResult = Button.ModalResult;
}

void TForm::MoveToEnd(TLControl& Control) {
  Forget(Control);
  FControls.push_back(&Control);
}

void TForm::Forget(const TLControl& Control) { std::erase(FControls, &Control); }

void TForm::RequestClose() {
  if (CloseQuery()) FModalResult = mrCancel;
}

std::string TForm::Message() const {
  std::string Result;
  for (const TLLabel* Label : VisibleControls<TLLabel>()) {
    if (Label->Caption.empty()) continue;
    if (!Result.empty()) Result += '\n';
    Result += Label->Caption;
  }
  return Result;
}

}  // namespace velkrund
