#pragma once

#include <cstdint>
#include <string_view>

#include "velkrund/platform/lctrls/Form.h"

namespace velkrund {

// What the form answers besides mrYes, mrNo and mrCancel; not the numbers of YesNoConfirmation. They stay.
inline constexpr int OverwriteYesToAll = 10;
inline constexpr int OverwriteNoToAll = 9;

struct TApplyForAll {
  std::int32_t YesCancel = -1;  // the code of the button; -1: not asked
  bool Apply = false;           // for all operations, not only for all objects of this one
};

/// Overwriting, asked about in a series of operations: yes and no, each for all the rest, and for all operations.
class TOverwriteAskExForm final : public TForm {
 public:
  TOverwriteAskExForm();
  const char* ClassName() const override { return "TOverwriteAskExForm"; }

  TLLabel Label1{*this, "Label1"};
  TLButton YesButton{*this, "YesButton", "ST_YES", mrYes};
  TLButton NoButton{*this, "NoButton", "ST_NO", mrNo};
  TLButton YesToAllButton{*this, "YesToAllButton", "ST_YESTOALL", OverwriteYesToAll};
  TLButton NoToAllButton{*this, "NoToAllButton", "ST_NOTOALL", OverwriteNoToAll};
  TLButton CancelButton{*this, "CancelButton", "ST_CANCEL", mrCancel};
  TLCheckBox ForAllOperationsCheckBox{*this, "ForAllOperationsCheckBox",
                                      "C_Catalox_OverwriteAskExForm_ForAllOperationsCheckBox_L"};
};

/// To be called on the main thread. Answer is reset before the question.
void ShowOverwriteAskExForm(std::string_view Message, std::string_view WindowCaption, TApplyForAll& Answer);

}  // namespace velkrund
