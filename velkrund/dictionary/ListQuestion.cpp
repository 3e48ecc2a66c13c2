#include "velkrund/dictionary/ListQuestion.h"

#include "velkrund/dialogs/YesNoConfirmationForm.h"
#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

bool AskOfList(TYesNoCancelAsk& Ask, const std::string& Text, TUtilOperation* Sender) {
  if (!Ask.FAlwaysAsk) return Ask.FYes;
  Ask.fAskCallbackString = Text;
  Ask.FCancel = false;
  Synchronize([&] {
    if (Ask.FCallback) return Ask.FCallback(Ask, Sender);
    const int Code = YesNoCancelConfirmation(Text);
    Ask.FYes = Code == mrYes || Code == ConfirmedYesToAll;
    Ask.FAlwaysAsk = Code == mrYes || Code == mrNo || Code == mrCancel;
    Ask.FCancel = Code == mrCancel;
  });
  return Ask.FYes && !Ask.FCancel;
}

}  // namespace velkrund
