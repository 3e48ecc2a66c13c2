#include "jobs/dictionary/AllowedGaps.h"

#include <map>
#include <utility>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TStandaloneDictionary& InstalledDictionary() {
  if (auto* const Result = dynamic_cast<TStandaloneDictionary*>(&Dictionary())) return *Result;
  throw EAccessViolation("A job needs the stand-alone platform, and another data dictionary is installed");
}

TAllowedGaps::TAllowedGaps(const TPolicies& Policies)
    : FDictionary(InstalledDictionary()),
      FAllowedBefore(FDictionary.Gaps().Allow({Policies.AllowMissing.begin(), Policies.AllowMissing.end()})) {}

TAllowedGaps::~TAllowedGaps() {
  FDictionary.Gaps().Allow(std::move(FAllowedBefore));
  FDictionary.Gaps().TakeNoted();
}

std::vector<TLText> TAllowedGaps::TakeNotes() {
  std::map<std::string, int> Times;
  std::vector<std::string> Texts;
  std::vector<TLText> Result;
  for (const TScriptGap& Gap : FDictionary.Gaps().TakeNoted())
    if (++Times[GapText(Gap)] == 1) Texts.push_back(GapText(Gap));
  for (const std::string& Text : Texts)
    Result.push_back(Times[Text] == 1 ? LText("M_Velkrund_Jobs_NotMade", Text)
                                      : LCounted("M_Velkrund_Jobs_NotMadeTimes", Times[Text], Text, Times[Text]));
  return Result;
}

}  // namespace velkrund
