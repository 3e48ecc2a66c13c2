#pragma once

#include <string_view>

#include "velkrund/platform/lctrls/Form.h"
#include "velkrund/platform/structures/DSPImportOverwriteOptions.h"

namespace velkrund {

/// A structure exists already: skip it, replace it, or update it, which merges the new tree into it.
class TDSPConfirmForm final : public TForm {
 public:
  TDSPConfirmForm();
  const char* ClassName() const override { return "TDSPConfirmForm"; }

  TLLabel AskLabel{*this, "AskLabel"};
  TLButton SkipButton{*this, "SkipButton", "ST_SKIP"};
  TLButton RewriteButton{*this, "RewriteButton", "ST_REWRITE"};
  TLButton UpdateButton{*this, "UpdateButton", "ST_UPDATE"};
  TLCheckBox ForAllLCheckBox{*this, "ForAllLCheckBox", "C_Velkrund_DSPConfirmForm_ForAllLCheckBox_L"};

  // The answer: stays at its beginning when the window is closed without a button.
  bool ForAll = false;
  TDSPImportOverwriteOptions Res = TDSPImportOverwriteOptions::ioSkip;

 private:
  void AnswerWith(TLButton& Button, TDSPImportOverwriteOptions Answer);
};

/// To be called on the main thread. ForAll: whether the answer holds for all the rest.
TDSPImportOverwriteOptions DSPConfirmation(std::string_view Message, bool& ForAll);

}  // namespace velkrund
