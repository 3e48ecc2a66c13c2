#include "velkrund/operations/AskObjects.h"

namespace velkrund {

void TAskObject::Assign(const TAskObject& Source) {
  FAlwaysAsk = Source.FAlwaysAsk;
  FCallback = Source.FCallback;
}

void TYesNoAsk::Assign(const TAskObject& Source) {
  TAskObject::Assign(Source);
  if (const auto* Same = dynamic_cast<const TYesNoAsk*>(&Source)) FYes = Same->FYes;
}

void TYesNoCancelAsk::Assign(const TAskObject& Source) {
  TAskObject::Assign(Source);
  if (const auto* Same = dynamic_cast<const TYesNoCancelAsk*>(&Source)) FYes = Same->FYes, FCancel = Same->FCancel;
}

}  // namespace velkrund
