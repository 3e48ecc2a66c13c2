#pragma once

#include <string>
#include <string_view>

#include "velkrund/platform/lctrls/Form.h"

namespace velkrund {

// What YesNoConfirmation answers besides mrYes and mrNo. Operations keep these numbers in scripts: they stay.
inline constexpr int ConfirmedYesToAll = 14;
inline constexpr int ConfirmedNoToAll = 13;

/// A question about one of many things: yes and no, each also for all the rest.
class TYesNoConfirmationForm final : public TForm {
 public:
  TYesNoConfirmationForm();
  const char* ClassName() const override { return "TYesNoConfirmationForm"; }

  TLImage Image{*this, "Image", TLIcon::Question};
  TLLabel MainLabel{*this, "MainLabel"};
  TLButton YesButton{*this, "YesButton", "ST_YES", mrYes};
  TLButton NoButton{*this, "NoButton", "ST_NO", mrNo};
  TLButton YesForAllButton{*this, "YesForAllButton", "ST_YESTOALL", ConfirmedYesToAll,
                           "C_Catalox_YesNoConfirmationForm_YesForAllButton_H"};
  TLButton NoForAllButton{*this, "NoForAllButton", "ST_NOTOALL", ConfirmedNoToAll,
                          "C_Catalox_YesNoConfirmationForm_NoForAllButton_H"};
  TLButton CancelButton{*this, "CancelButton", "ST_CANCEL", mrCancel};
};

// To be called on the main thread. Return the code of the button, mrCancel when the window is closed otherwise: callers
// take every code that is not mrYes, mrNo or ConfirmedYesToAll as no to all.

int YesNoConfirmation(std::string_view Message);
/// With a cancel button beside the others.
int YesNoCancelConfirmation(std::string_view Message);

}  // namespace velkrund
