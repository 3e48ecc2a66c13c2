#include "jobs/policies/Policies.h"

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

std::string WithoutBraces(std::string Text) {
  std::erase_if(Text, [](char C) { return C == '{' || C == '}'; });
  return Text;
}

}  // namespace

std::string_view Remedy(TPolicy Policy) {
  switch (Policy) {
    case TPolicy::ExistingRows:
      return "Set ExistingRows to replace, to append or to skip";
    case TPolicy::ExistingSections:
      return "Set ExistingSections to replace, to add or to skip";
    case TPolicy::ExistingStructures:
      return "Set ExistingStructures to replace, to update or to skip";
    case TPolicy::OnError:
      return "Set OnError to continue or to stop";
    case TPolicy::Yes:
      break;
  }
  return "Set Yes to true";
}

EPolicyUnanswered::EPolicyUnanswered(TPolicy Policy, const std::string& Stakes)
    : EQuestionUnanswered(Format("%s %s; nobody can be asked", Stakes, Remedy(Policy))),
      FPolicy(Policy),
      FStakes(Stakes) {}

ESettingsError::ESettingsError(const std::string& Text) : Exception(WithoutBraces(Text)), FText(Text) {}

}  // namespace velkrund
