#include "standalone/dictionary/ScriptRun.h"

#include <algorithm>
#include <iterator>

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

std::string TextOf(const std::vector<TScriptGap>& Gaps) {
  std::vector<std::string> Texts;
  for (const TScriptGap& Gap : Gaps) Texts.push_back(Gap.What + (Gap.Why.empty() ? "" : ", " + Gap.Why));
  return JoinedInShort(std::move(Texts));
}

/// Each once.
std::string KindsOf(const std::vector<TScriptGap>& Gaps) {
  std::set<std::string> Kinds;
  for (const TScriptGap& Gap : Gaps) Kinds.insert(Gap.Kind);
  return Joined({Kinds.begin(), Kinds.end()});
}

}  // namespace

EGap::EGap(std::vector<TScriptGap> Gaps)
    : EDatabaseError(Format("The database has no words for %s (%s)", TextOf(Gaps), KindsOf(Gaps)),
                     {.Code = TErrorCode::NoWords}),
      FGaps(std::move(Gaps)) {}

void TGapBook::Take(const std::vector<TScriptGap>& Gaps) {
  std::vector<TScriptGap> Refused;
  std::copy_if(Gaps.begin(), Gaps.end(), std::back_inserter(Refused),
               [this](const TScriptGap& Gap) { return !Allows(Gap); });
  if (!Refused.empty()) throw EGap(std::move(Refused));
  FNoted.insert(FNoted.end(), Gaps.begin(), Gaps.end());
}

void RunScript(TConnection& Connection, const TScript& Script, TGapBook& Gaps) {
  Gaps.Take(Script.Gaps);
  for (const TScriptStatement& Statement : Script.Statements) {
    if (!Statement.Unless.empty() && Connection.Query(Statement.Unless)->Next()) continue;
    try {
      Connection.Execute(Statement.Text);
    } catch (const EAbort&) {
      throw;
    } catch (const EDatabaseError& Error) {
      throw EDatabaseError(Format("Cannot make %s: %s", Statement.What, Error.what()), Error.Info());
    }
  }
}

}  // namespace velkrund
