#include "jobs/resources/LanguageQuestions.h"

#include "jobs/policies/Questions.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

void SettleLanguages(TOutcome& Outcome, const std::vector<std::size_t>& Met, TExisting Existing) {
  if (Existing == TExisting::Ask && !Met.empty() && !CanAsk()) {
    std::vector<std::string> Names;
    for (const std::size_t Number : Met) Names.push_back(OnOneLine(*Outcome.Items[Number].Language));
    throw EPolicyUnanswered(TPolicy::ExistingTexts, LText("M_Velkrund_Jobs_LanguagesThere", LJoinedInShort(Names)));
  }
  TRepeatedQuestion Question;
  for (const std::size_t Number : Met) {
    TItem& Item = Outcome.Items[Number];
    bool Replace = Existing == TExisting::Replace;
    if (Existing == TExisting::Ask)
      Replace = Question.Ask({LText("M_Catalox_LUtils_OverwriteLanguageConfirm", *Item.Language),
                              {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Cancel},
                              TPolicy::ExistingTexts}) == TAnswer::Yes;
    if (Replace) continue;
    Item.State = TItemState::LeftOut;
    Item.Note = LText("M_Velkrund_Jobs_LanguageIsThere");
  }
}

}  // namespace velkrund
