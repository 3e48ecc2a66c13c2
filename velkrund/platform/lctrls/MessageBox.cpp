#include "velkrund/platform/lctrls/MessageBox.h"

#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

namespace {

constexpr std::uint32_t ButtonsMask = 0xF;
constexpr std::uint32_t IconMask = 0xF0;

TLIcon IconOf(std::uint32_t Flags) {
  switch (Flags & IconMask) {
    case MB_ICONWARNING:
      return TLIcon::Warning;
    case MB_ICONINFORMATION:
      return TLIcon::Information;
    default:
      return TLIcon::Question;
  }
}

}  // namespace

TMessageBoxForm::TMessageBoxForm(std::string_view Text, std::string_view WindowCaption, std::uint32_t Flags)
    : FImage(*this, "Image", IconOf(Flags)), FYesUndoes((Flags & MB_DEFBUTTON2) != 0) {
  Caption = WindowCaption;
  FTextLabel.Caption = Text;
  const std::uint32_t Buttons = Flags & ButtonsMask;
  FMayClose = Buttons != MB_YESNO;
  if (Buttons == MB_YESNO || Buttons == MB_YESNOCANCEL) {
    AddButton("YesButton", "ST_YES", mrYes);
    AddButton("NoButton", "ST_NO", mrNo);
    if (Buttons == MB_YESNOCANCEL) AddButton("CancelButton", "ST_CANCEL", mrCancel);
  } else {
    AddButton("OkButton", "ST_OK", mrOk);
  }
}

void TMessageBoxForm::AddButton(const char* Name, const char* CaptionKey, int ModalResult) {
  FButtons.push_back(std::make_unique<TLButton>(*this, Name, CaptionKey, ModalResult));
}

int ShowMessageBox(std::string_view Text, std::string_view Caption, std::uint32_t Flags) {
  int Result = mrNone;
  Synchronize([&] { Result = TMessageBoxForm(Text, Caption, Flags).ShowModal(); });
  return Result;
}

}  // namespace velkrund
