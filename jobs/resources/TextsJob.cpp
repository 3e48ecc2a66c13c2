#include "jobs/resources/TextsJob.h"

#include <chrono>

#include "jobs/report/ErrorReport.h"
#include "velkrund/operations/GoOnQuestion.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

void TTextsJob::PlanAll(const std::function<std::string(const TItem& Item)>& Step) {
  for (TItem& Item : FOutcome.Items) {
    if (Item.State == TItemState::LeftOut) continue;
    AddToPlan({Step(Item)});
    Item.State = TItemState::LeftOut;
    Item.Note = LText("M_Velkrund_Jobs_NothingChanged");
  }
}

void TTextsJob::DoAll(const std::function<void(TItem& Item)>& DoOne) {
  FErrors.emplace(Policies.OnError);
  TTransaction Whole(DatabaseName, TIsolationLevel::ReadCommitted);
  bool Stays = true;
  for (TItem& Item : FOutcome.Items) {
    if (Item.State == TItemState::LeftOut) continue;
    if (IsCanceled()) FOutcome.Cancelled = LText("M_Velkrund_Jobs_Cancelled");
    if (!(Stays = FOutcome.Cancelled.Empty())) break;
    const auto Start = std::chrono::steady_clock::now();
    BeginPart(Item.Section, "texts");
    try {
      TTransaction Own(DatabaseName, TIsolationLevel::ReadCommitted);
      // Whether to go on is for this job to ask, not for its steps.
      const TNobodyGoesOn Nobody;
      DoOne(Item);
      Own.Commit();
      if (Item.State == TItemState::NotReached) Item.State = TItemState::Done;
    } catch (const EAbort& Abort) {
      Item.State = TItemState::Cancelled;
      FOutcome.Cancelled = CancelText(Abort.what());
    } catch (const EQuestionUnanswered&) {
      throw;
    } catch (const std::exception&) {
      FOutcome.Fail(Item, std::current_exception());
    }
    EndPart();
    Item.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
    if (Item.Error && Listener) Fault(*Item.Error);
    TellItem({}, "section", [&Item] { return ItemDocument(Item); });
    if (!(Stays = FOutcome.Cancelled.Empty() && (Item.State != TItemState::Failed || GoOn(Item)))) break;
  }
  if (Stays && FOutcome.Any(TItemState::Done)) return Whole.Commit();
  TakeBack();
}

void TTextsJob::TakeBack() {
  for (TItem& Item : FOutcome.Items)
    if (Item.State == TItemState::Done) Item.State = TItemState::TakenBack;
  const bool HasBegun =
      FOutcome.Any(TItemState::Failed) || FOutcome.Any(TItemState::Cancelled) || FOutcome.Any(TItemState::TakenBack);
  if (HasBegun) FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_DatabaseAsBefore"));
}

bool TTextsJob::GoOn(const TItem& Failed) {
  if (!FOutcome.Any(TItemState::NotReached) && !FOutcome.Any(TItemState::Done)) return false;
  const TLText Question = LText("M_Velkrund_Jobs_ContinueOthers");
  try {
    return FErrors->GoOn(Listener ? Question : TLText(ErrorLine(*Failed.Error) + "\r\n") + Question);
  } catch (const EPolicyUnanswered& Unanswered) {
    Stop(Unanswered.Policy());
  } catch (const EAbort& Abort) {
    FOutcome.Cancelled = CancelText(Abort.what());
  }
  return false;
}

}  // namespace velkrund
