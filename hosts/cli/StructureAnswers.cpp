#include "hosts/cli/StructureAnswers.h"

#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

TOption OverwriteStructuresOption(TOverwrite& Overwrite) {
  return Choice<TOverwrite>("--overwrite", "a structure that is there: replace it, or leave it as it is (default: ask)",
                            {{"ask", TOverwrite::Ask}, {"yes", TOverwrite::Yes}, {"no", TOverwrite::No}}, Overwrite);
}

void AnswerByOption(TDSPOverwriteAsk& Ask, TOverwrite Overwrite) {
  Ask.FAlwaysAsk = Overwrite == TOverwrite::Ask;
  Ask.FYes = Overwrite != TOverwrite::No;
}

void TStructureTargets::Add(const TStructureId& Structure) {
  const auto [Place, IsNew] = FPlaces.emplace(std::pair(Structure.Type, LowerCase(Structure.Name)), FTargets.size());
  if (IsNew) FTargets.push_back({Structure});
  ++FTargets[Place->second].Count;
}

void TStructureTargets::RefuseUnanswered(const TSession& Session, const std::string& Options) const {
  if (Session.Answers.CanAsk() || FTargets.empty()) return;
  TDSPTable& Table = DSPContainer().Table(Session.Database());
  std::vector<std::string> Met, Repeated;
  for (const auto& [Structure, Count] : FTargets) {
    if (Table.DSPStructureExist(Structure.Name, Structure.Type))
      Met.push_back(StructureText(Structure));
    else if (Count > 1)
      Repeated.push_back(StructureText(Structure));
  }
  std::string Text;
  if (!Met.empty()) Text = Format("Structures that are there already: %s.", JoinedInShort(std::move(Met)));
  if (!Repeated.empty())
    Text += Format("%sStructures that come more than once: %s.", Text.empty() ? "" : " ",
                   JoinedInShort(std::move(Repeated)));
  if (!Text.empty()) Session.Answers.Ask({Text, {}, Options});
}

}  // namespace velkrund
