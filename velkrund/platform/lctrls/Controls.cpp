#include "velkrund/platform/lctrls/Controls.h"

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/lctrls/Form.h"

namespace velkrund {

TLControl::TLControl(TForm& Form, const char* Name) : FName(Name) { Form.FControls.push_back(this); }

TLCaptioned::TLCaptioned(TForm& Form, const char* Name, std::string CaptionKey, std::string HintKey)
    : TLControl(Form, Name), FCaptionKey(std::move(CaptionKey)), FHintKey(std::move(HintKey)) {}

std::string TLCaptioned::Caption() const { return BaseMng().LString(FCaptionKey); }

std::string TLCaptioned::Hint() const { return FHintKey.empty() ? std::string() : BaseMng().LString(FHintKey); }

TLButton::TLButton(TForm& Form, const char* Name, std::string CaptionKey, int ResultCode, std::string HintKey)
    : TLCaptioned(Form, Name, std::move(CaptionKey), std::move(HintKey)), ModalResult(ResultCode) {}

}  // namespace velkrund
