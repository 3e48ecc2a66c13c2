#include "velkrund/operations/ListQuestion.h"

#include "velkrund/dialogs/YesNoConfirmationForm.h"
#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

namespace {

/// Confirmation: the dialog; returns its code.
bool AskWith(int (*Confirmation)(std::string_view), bool Cancels, TYesNoCancelAsk& Ask, const std::string& Text,
             TUtilOperation* Sender) {
  Synchronize([&] {
    if (Ask.FCallback) {
      Ask.fAskCallbackString = Text;
      return Ask.FCallback(Ask, Sender);
    }
    const int Code = Confirmation(Text);
    const bool IsCancel = Cancels && Code == mrCancel;
    Ask.FYes = Code == mrYes || Code == ConfirmedYesToAll;
    Ask.FAlwaysAsk = Code == mrYes || Code == mrNo || IsCancel;
    Ask.FCancel = Ask.FCancel || IsCancel;
  });
  return Ask.FYes && !Ask.FCancel;
}

}  // namespace

bool AskOfList(TYesNoCancelAsk& Ask, const std::string& Text, TUtilOperation* Sender) {
  if (!Ask.FAlwaysAsk) return Ask.FYes;
  Ask.FCancel = false;
  return AskWith(YesNoCancelConfirmation, true, Ask, Text, Sender);
}

bool AskOfListToEnd(TYesNoCancelAsk& Ask, const std::string& Text, TUtilOperation* Sender) {
  if (!Ask.FAlwaysAsk) return Ask.FYes && !Ask.FCancel;
  return AskWith(YesNoConfirmation, false, Ask, Text, Sender);
}

}  // namespace velkrund
