#pragma once

#include <string_view>

#include "velkrund/platform/lctrls/Form.h"

namespace velkrund {

/// A file or section is there already: overwrite it, append to it, or skip it.
class TOverwriteEIObjectForm final : public TForm {
 public:
  TOverwriteEIObjectForm();
  const char* ClassName() const override { return "TOverwriteEIObjectForm"; }

  TLLabel Label1{*this, "Label1"};
  TLButton OverwriteButton{*this, "OverwriteButton", "C_Velkrund_OverwriteEIObjectForm_OverwriteButton_L", mrYes};
  TLButton AppendButton{*this, "AppendButton", "C_Velkrund_OverwriteEIObjectForm_AppendButton_L", mrRetry};
  TLButton SkipButton{*this, "SkipButton", "C_Velkrund_OverwriteEIObjectForm_SkipButton_L", mrCancel};
};

/// To be called on the main thread. mrYes: overwrite, mrRetry: append, mrCancel: skip, also when the window is closed.
int ShowOverwriteEIObjectWindow(std::string_view Message, std::string_view WindowCaption);

}  // namespace velkrund
