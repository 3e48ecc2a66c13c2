#include "velkrund/dsp/DSPOverwriteAsk.h"

namespace velkrund {

void TDSPOverwriteAsk::Assign(const TAskObject& Source) {
  TYesNoCancelAsk::Assign(Source);
  if (const auto* Same = dynamic_cast<const TDSPOverwriteAsk*>(&Source)) FForAll = Same->FForAll;
}

}  // namespace velkrund
