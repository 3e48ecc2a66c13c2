#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/support/TestPlatform.h"
#include "velkrund/dialogs/Ynconf.h"
#include "velkrund/platform/lctrls/MessageBox.h"
#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund::tests {

/// A platform with captions.
class TDialogPlatform : public TTestPlatform {
 public:
  std::string LString(std::string_view Key) const override {
    const auto Found = Texts.find(Key);
    return Found == Texts.end() ? std::string(Key) : Found->second;
  }

  std::map<std::string, std::string, std::less<>> Texts = {
      {"ST_YES", "&Yes"},
      {"ST_NO", "&No"},
      {"ST_YESTOALL", "&All"},
      {"ST_NOTOALL", "N&one"},
      {"ST_CANCEL", "&Cancel"},
      {"ST_SKIP", "&Skip"},
      {"ST_REWRITE", "&Replace"},
      {"ST_UPDATE", "&Update"},
      {"ST_OK", "&OK"},
      {"ST_CONFIRMATION", "Confirmation"},
      {"C_Catalox_YesNoConfirmationForm_YesForAllButton_H", "Overwrite the others too"},
      {"C_Velkrund_OverwriteEIObjectForm_OverwriteButton_L", "&Overwrite"},
      {"C_Velkrund_OverwriteEIObjectForm_AppendButton_L", "&Append"},
      {"C_Velkrund_OverwriteEIObjectForm_SkipButton_L", "&Skip"},
      {"C_Velkrund_DSPConfirmForm_ForAllLCheckBox_L", "&For all structures"},
      {"C_Catalox_OverwriteAskExForm_ForAllOperationsCheckBox_L", "&For all operations"},
  };
};

/// One way to answer one dialog, on a screen and by keys.
struct TDialogCase {
  const char* Name;
  std::function<std::string()> Ask;  // the answer as a text
  std::string Button;                // empty: closed without one
  std::string CheckBox;              // ticked before; empty: none
  std::string Keys;                  // that do the same on a terminal
  std::string Answer;

  std::vector<std::string> Ticked() const {
    return CheckBox.empty() ? std::vector<std::string>() : std::vector<std::string>{CheckBox};
  }
};

/// Every button of every dialog.
const std::vector<TDialogCase>& DialogCases();

}  // namespace velkrund::tests
