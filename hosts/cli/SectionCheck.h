#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hosts/cli/Report.h"
#include "hosts/cli/Session.h"
#include "standalone/discard/DiscardManager.h"
#include "standalone/discard/DiscardStructures.h"
#include "velkrund/eif/EIFile.h"
#include "velkrund/platform/installation/Platform.h"

namespace velkrund {

/// What became of one section.
struct TSectionCheck {
  TItemState State = TItemState::NotReached;
  std::string Error = {};                 // of a failed one, as an import would give it
  std::optional<std::int64_t> Rows = {};  // read before the end or the fault; none where a section has no rows
  double Seconds = 0;
  TTextLosses Losses = {};
};

/// Reads sections as an import does, each through its own reader, on a platform whose stores swallow everything. While
/// it lives that platform is the installed one. A value that nothing can read is a fault, whatever the configuration
/// says, and a reader that asks a question gets no answer.
class TSectionChecker {
 public:
  /// Session: borrowed.
  explicit TSectionChecker(const TSession& Session);

  /// File: opened, as far as it could be. Shows the progress, and ends early when the person wishes.
  TSectionCheck Check(TEIFile& File, int Index);

 private:
  void Read(TEIFile& File, int Index, TSectionCheck& Result);

  const TSession& FSession;
  TDiscardManager FDiscard;
  TDiscardStructures FStructures;
  TPlatformGuard FGuard;
};

/// A text for every section whose type and name an earlier one has: no reader stumbles over it, and a person may want
/// to know.
std::vector<std::string> RepeatedNames(const TEISectionList& Sections);

}  // namespace velkrund
