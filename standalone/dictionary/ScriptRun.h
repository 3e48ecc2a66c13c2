#pragma once

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "standalone/drivers/Connection.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// The kinds of gaps that people may allow.
inline constexpr std::string_view GapKinds[] = {"checks",  "collations", "computed", "defaults",   "generators",
                                                "indexes", "keys",       "options",  "procedures", "references",
                                                "schemas", "triggers",   "types",    "views"};

/// "the check 'C1' of table 'ORDERS': its text is another engine's alone"
std::string GapText(const TScriptGap& Gap);

/// What engines had no words for, while objects are made: kinds that a host allows are noted, others are errors.
class TGapBook {
 public:
  /// Kinds as in TScriptGap. Returns what was allowed before.
  std::set<std::string> Allow(std::set<std::string> Kinds) { return std::exchange(FAllowed, std::move(Kinds)); }
  bool Allows(const TScriptGap& Gap) const { return Gap.Harmless || FAllowed.contains(Gap.Kind); }
  /// Raises EGap that names all that is not allowed; notes the rest.
  void Take(const std::vector<TScriptGap>& Gaps);
  /// What was noted since the last call.
  std::vector<TScriptGap> TakeNoted() { return std::exchange(FNoted, {}); }

 private:
  std::set<std::string> FAllowed;
  std::vector<TScriptGap> FNoted;
};

/// Something would be made without a part that the engine has no words for. Its Info().Value are the kinds that a host
/// would have to allow: "checks,triggers".
class EGap final : public EDatabaseError {
 public:
  explicit EGap(std::vector<TScriptGap> Gaps);
  const char* ClassName() const noexcept override { return "EGap"; }
  const std::vector<TScriptGap>& Gaps() const { return FGaps; }

 private:
  std::vector<TScriptGap> FGaps;
};

/// Runs the statements in order, in the caller's transaction. An error says what was made.
void RunScript(TConnection& Connection, const TScript& Script, TGapBook& Gaps);
/// The same where things may be left out: what the engine refuses, because something that it needs is not there, is a
/// gap of the statement's kind. Connection: of that database.
void RunScriptWithGaps(const std::string& DatabaseName, TConnection& Connection, const TScript& Script, TGapBook& Gaps);

}  // namespace velkrund
