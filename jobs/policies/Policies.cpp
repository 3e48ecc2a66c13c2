#include "jobs/policies/Policies.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

// Around the names of properties; no text of a person has them.
constexpr char Opening = '\x1E', Closing = '\x1F';

std::string WithNames(std::string_view Text, const std::function<std::string(std::string_view)>& NameOf) {
  std::string Result;
  for (std::size_t Open = Text.find(Opening); Open != std::string_view::npos; Open = Text.find(Opening)) {
    const std::size_t Close = Text.find(Closing, Open);
    if (Close == std::string_view::npos) break;
    Result += Text.substr(0, Open);
    Result += NameOf(Text.substr(Open + 1, Close - Open - 1));
    Text.remove_prefix(Close + 1);
  }
  return Result += Text;
}

std::string SameName(std::string_view Property) { return std::string(Property); }

}  // namespace

bool MayBeMissing(const TPolicies& Policies, const TErrorInfo& Error) {
  if (Error.Code != TErrorCode::NoWords) return false;
  for (std::size_t At = 0; At <= Error.Value.size();) {
    const std::size_t End = std::min(Error.Value.find(',', At), Error.Value.size());
    const std::string Kind = Error.Value.substr(At, End - At);
    if (std::find(Policies.AllowMissing.begin(), Policies.AllowMissing.end(), Kind) == Policies.AllowMissing.end())
      return false;
    At = End + 1;
  }
  return true;
}

std::string_view Remedy(TPolicy Policy) {
  switch (Policy) {
    case TPolicy::ExistingRows:
      return "Set ExistingRows to replace, to append or to skip";
    case TPolicy::ExistingSections:
      return "Set ExistingSections to replace, to add or to skip";
    case TPolicy::ExistingStructures:
      return "Set ExistingStructures to replace, to update or to skip";
    case TPolicy::ExistingObjects:
      return "Set ExistingObjects to replace or to skip";
    case TPolicy::ExistingTexts:
      return "Set ExistingTexts to replace or to skip";
    case TPolicy::ExistingFiles:
      return "Set ExistingFiles to replace or to skip";
    case TPolicy::OnError:
      return "Set OnError to continue or to stop";
    case TPolicy::CreateTables:
      return "Set CreateTables to yes or to no";
    case TPolicy::LongNames:
      return "Set LongNames to keep or to cancel";
    case TPolicy::MissingSources:
      return "Set MissingSources to skip or to stop";
    case TPolicy::QueryTarget:
      return "Set QueryTarget, or TableName of TJobImportQueries";
    case TPolicy::Yes:
      break;
  }
  return "Set Yes to true";
}

EPolicyUnanswered::EPolicyUnanswered(TPolicy Policy, const TLText& Stakes)
    : EQuestionUnanswered(Format("%s %s; nobody can be asked", Stakes.English(), Remedy(Policy))),
      FPolicy(Policy),
      FStakes(Stakes) {}

std::string Setting(std::string_view Property) { return Opening + std::string(Property) + Closing; }

ESettingsError::ESettingsError(const std::string& Text) : Exception(WithNames(Text, &SameName)), FText(Text) {}

std::string ESettingsError::Worded(const std::function<std::string(std::string_view Property)>& NameOf) const {
  return WithNames(FText, NameOf);
}

}  // namespace velkrund
