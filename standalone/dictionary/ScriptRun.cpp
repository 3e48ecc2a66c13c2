#include "standalone/dictionary/ScriptRun.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>

#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

/// By kind, each time the first one.
std::map<std::string, std::pair<std::int64_t, const TScriptGap*>> ByKind(const std::vector<TScriptGap>& Gaps) {
  std::map<std::string, std::pair<std::int64_t, const TScriptGap*>> Result;
  for (const TScriptGap& Gap : Gaps) {
    auto& [Count, First] = Result.try_emplace(Gap.Kind, 0, &Gap).first->second;
    ++Count;
  }
  return Result;
}

/// "the check 'C' of table 'T': its text is another engine's alone, and 2 more; the trigger ..."
std::string Summary(const std::vector<TScriptGap>& Gaps) {
  std::string Result;
  for (const auto& [Kind, Met] : ByKind(Gaps)) {
    const auto& [Count, First] = Met;
    Result += (Result.empty() ? "" : "; ") + GapText(*First);
    if (Count > 1) Result += Format(", and %d more", Count - 1);
  }
  return Result;
}

std::string KindsOf(const std::vector<TScriptGap>& Gaps) {
  std::string Result;
  for (const auto& [Kind, Met] : ByKind(Gaps)) Result += (Result.empty() ? "" : ",") + Kind;
  return Result;
}

}  // namespace

std::string GapText(const TScriptGap& Gap) { return Gap.What + (Gap.Why.empty() ? "" : ": " + Gap.Why); }

EGap::EGap(std::vector<TScriptGap> Gaps)
    : EDatabaseError(Format("The database has no words for %s of the kinds %s: %s",
                            Counted(static_cast<std::int64_t>(Gaps.size()), "thing"), KindsOf(Gaps), Summary(Gaps)),
                     {.Code = TErrorCode::NoWords, .Value = KindsOf(Gaps)}),
      FGaps(std::move(Gaps)) {}

void TGapBook::Take(const std::vector<TScriptGap>& Gaps) {
  std::vector<TScriptGap> Refused;
  std::copy_if(Gaps.begin(), Gaps.end(), std::back_inserter(Refused),
               [this](const TScriptGap& Gap) { return !Allows(Gap); });
  if (!Refused.empty()) throw EGap(std::move(Refused));
  FNoted.insert(FNoted.end(), Gaps.begin(), Gaps.end());
}

namespace {

void Run(TConnection& Connection, const TScriptStatement& Statement) {
  if (!Statement.Unless.empty() && Connection.Query(Statement.Unless)->Next()) return;
  try {
    Connection.Execute(Statement.Text);
  } catch (const EAbort&) {
    throw;
  } catch (const EDatabaseError& Error) {
    throw EDatabaseError(Format("Cannot make %s: %s", Statement.What, Error.what()), Error.Info());
  }
}

/// Of something that is not there, rather than of rows, rights or the server.
bool IsAboutWords(const EDatabaseError& Error) {
  const TErrorCode Code = Error.Info().Code;
  return Code == TErrorCode::Database || Code == TErrorCode::TableMissing || Code == TErrorCode::FieldMissing;
}

}  // namespace

void RunScript(TConnection& Connection, const TScript& Script, TGapBook& Gaps) {
  Gaps.Take(Script.Gaps);
  for (const TScriptStatement& Statement : Script.Statements) Run(Connection, Statement);
}

void RunScriptWithGaps(const std::string& DatabaseName, TConnection& Connection, const TScript& Script,
                       TGapBook& Gaps) {
  Gaps.Take(Script.Gaps);
  for (const TScriptStatement& Statement : Script.Statements) {
    if (Statement.Kind.empty()) {
      Run(Connection, Statement);
      continue;
    }
    try {
      TTransaction Part(DatabaseName);
      Run(Connection, Statement);
      Part.Commit();
    } catch (const EDatabaseError& Error) {
      if (!IsAboutWords(Error)) throw;
      const TScriptGap Gap{Statement.Kind, "the " + Statement.What, Error.what()};
      if (Gaps.Allows(Gap)) {
        Gaps.Take({Gap});
        continue;
      }
      TErrorInfo Info = Error.Info();
      Info.Code = TErrorCode::NoWords;
      Info.Value = Statement.Kind;
      throw EDatabaseError(Format("%s (it is of the kind %s)", Error.what(), Statement.Kind), Info);
    }
  }
}

}  // namespace velkrund
