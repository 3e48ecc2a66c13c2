#pragma once

#include <optional>

#include "velkrund/operations/AskObjects.h"
#include "velkrund/platform/structures/DSPImportOverwriteOptions.h"

namespace velkrund {

/// The question whether a structure that exists is overwritten, and how. An answer for all holds for every section that
/// shares the question, or a copy of it.
class TDSPOverwriteAsk final : public TYesNoCancelAsk {
 public:
  void Assign(const TAskObject& Source) override;

  std::optional<TDSPImportOverwriteOptions> FForAll;  // what was answered for all; nothing before
  bool FLeftAlone = false;  // whether the last structure exists and stays as it is because of the answer; not assigned
};

}  // namespace velkrund
