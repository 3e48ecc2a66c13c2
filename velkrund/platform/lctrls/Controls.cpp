#include "velkrund/platform/lctrls/Controls.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/lctrls/Form.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TLControl::TLControl(TForm& Form, std::string Name) : FForm(Form), FName(std::move(Name)) {
  FForm.FControls.push_back(this);
}

TLControl::~TLControl() { FForm.Forget(*this); }

TLCaptioned::TLCaptioned(TForm& Form, std::string Name, std::string CaptionKey, std::string HintKey)
    : TLControl(Form, std::move(Name)), FCaptionKey(std::move(CaptionKey)), FHintKey(std::move(HintKey)) {}

TLCaptioned::TLCaptioned(TForm& Form, std::string Name, TLPlainText Caption)
    : TLControl(Form, std::move(Name)), FPlainText(std::move(Caption.Text)) {}

std::string TLCaptioned::Caption() const { return FCaptionKey.empty() ? FPlainText : BaseMng().LString(FCaptionKey); }

std::string TLCaptioned::Hint() const { return FHintKey.empty() ? std::string() : BaseMng().LString(FHintKey); }

TLButton::TLButton(TForm& Form, std::string Name, std::string CaptionKey, int ResultCode, std::string HintKey)
    : TLCaptioned(Form, std::move(Name), std::move(CaptionKey), std::move(HintKey)), ModalResult(ResultCode) {}

void TLComboBox::SetItems(std::shared_ptr<const TItems> Items) {
  FItems = std::move(Items);
  FItemIndex = -1;
}

const std::string& TLComboBox::Chosen() const {
  static const std::string None;
  return FItemIndex < 0 ? None : Items()[static_cast<std::size_t>(FItemIndex)];
}

void TLComboBox::Choose(int Index) {
  if (Index < -1 || Index >= static_cast<int>(Items().size()))
    throw EListError(Format("%s has no item %d", Name(), Index));
  if (std::exchange(FItemIndex, Index) != Index && OnChange) OnChange();
}

}  // namespace velkrund
