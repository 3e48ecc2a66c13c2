#pragma once

#include <set>
#include <string>
#include <vector>

#include "jobs/policies/Policies.h"
#include "standalone/dictionary/StandaloneDictionary.h"

namespace velkrund {

/// The stand-alone platform's data dictionary. Raises EAccessViolation when another one is installed.
TStandaloneDictionary& InstalledDictionary();

/// As long as it lives, objects may be made without what engines have no words for, as the policies say.
class TAllowedGaps {
 public:
  explicit TAllowedGaps(const TPolicies& Policies);
  TAllowedGaps(const TAllowedGaps&) = delete;
  TAllowedGaps& operator=(const TAllowedGaps&) = delete;
  ~TAllowedGaps();

  TStandaloneDictionary& Dictionary() const { return FDictionary; }
  /// What was left out since the last call, for people, each once with its number: "not made: the check 'C' ...".
  std::vector<TLText> TakeNotes();

 private:
  TStandaloneDictionary& FDictionary;
  std::set<std::string> FAllowedBefore;
};

}  // namespace velkrund
