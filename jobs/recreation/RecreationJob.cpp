#include "jobs/recreation/RecreationJob.h"

#include <algorithm>
#include <set>

#include "jobs/report/ErrorReport.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "velkrund/dictionary/TemporaryTable.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

TDocument ItemDocument(const TRecreation& Item) {
  TDocument Result = StructureDocument(Item.Structure);
  Result.Set("state", StateText(Item.State)).Set("existed", Item.IsThere);
  if (!Item.Note.Empty()) Result.Set("reason", Item.Note.English());
  if (Item.Error) Result.Set("error", ErrorDocument(*Item.Error));
  Result.Set("rows", Item.Rows).Set("rowsDropped", Item.RowsDropped);
  return Result;
}

}  // namespace

int TRecreationJob::Count(TItemState State) const {
  return static_cast<int>(
      std::count_if(FItems.begin(), FItems.end(), [&](const TRecreation& Item) { return Item.State == State; }));
}

void TRecreationJob::CheckSettings() const {
  if (Names.empty()) throw ESettingsError(Setting("ObjectNames") + " is missing: say what is to be made anew");
  if (std::any_of(Names.begin(), Names.end(), [](const std::string& Name) { return Name.empty(); }))
    throw ESettingsError(Setting("ObjectNames") + " has an empty name");
}

void TRecreationJob::Forget() {
  FItems.clear();
  FNotes.clear();
  FFirstError = nullptr;
  FQuestion = {};
  ForgetPlan();
}

TRecreation* TRecreationJob::Find(const TStructureId& Structure) {
  const auto Found = std::find_if(FItems.begin(), FItems.end(), [&](const TRecreation& Item) {
    return Item.Structure.Type == Structure.Type && SameText(Item.Structure.Name, Structure.Name);
  });
  return Found == FItems.end() ? nullptr : &*Found;
}

/// Every name is that of a structure, and comes once.
void TRecreationJob::TakeItems() {
  const std::vector<int> Meant = Types();
  std::vector<TStructureId> All;
  for (const TDSPListItem& Item : DSPContainer().Table(DatabaseName).List())
    if (std::find(Meant.begin(), Meant.end(), Item.ObjectType) != Meant.end())
      All.push_back({Item.ObjectType, Item.ObjectName});
  for (const std::string& Name : Names) {
    std::vector<std::string> Known;
    std::vector<TStructureId> Found;
    for (const TStructureId& Each : All) {
      if (SameText(Each.Name, Name)) Found.push_back(Each);
      Known.push_back(Each.Name);
    }
    if (Found.empty())
      throw EDatabaseError(Format("No structure in the database %s describes a %s '%s'%s", DatabaseText(), What(), Name,
                                  Known.empty() ? ": dictionary adopt makes structures of what is there"
                                                : ContentHint(Name, Known, ": there are ")),
                           {.Code = TErrorCode::StructureMissing});
    const TStructureId One = TheOneMeant(Found);
    if (!Find(One)) FItems.push_back({.Structure = One});
  }
}

/// Structures of both kinds of procedures may have one name: the one that the database has is meant.
TStructureId TRecreationJob::TheOneMeant(const std::vector<TStructureId>& Found) {
  if (Found.size() == 1) return Found.front();
  for (const TStructureId& Each : Found)
    if (Exists({.Structure = Each})) return Each;
  throw EDatabaseError(
      Format("Structures of several types describe '%s': %s and %s; drop the one that is not meant "
             "(velkrund dictionary drop)",
             Found.front().Name, StructureText(Found.front()), StructureText(Found.back())));
}

/// False: that has failed, and the others are not gone on with.
bool TRecreationJob::Look(TRecreation& Item) {
  try {
    Item.IsThere = Exists(Item);
    AskFor(Item);
    if (Item.State != TItemState::LeftOut) Check(Item);
    return true;
  } catch (const EAbort&) {
    throw;
  } catch (const EQuestionUnanswered&) {
    throw;
  } catch (const ESettingsError&) {
    throw;
  } catch (const std::exception&) {
    if (FItems.size() == 1) throw;
    Fail(Item, std::current_exception());
    return MayGoOn(Item);
  }
}

void TRecreationJob::AskFor(TRecreation& Item) {
  if (!Item.IsThere || Policies.ExistingObjects == TExisting::Replace) return;
  if (Policies.ExistingObjects == TExisting::Ask) {
    const TAnswer Answer = FQuestion.Ask({LText(OverwriteKey(), Item.Structure.Name),
                                          {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Cancel},
                                          TPolicy::ExistingObjects});
    if (Answer == TAnswer::Yes) return;
  }
  Item.State = TItemState::LeftOut;
  Item.Note = LText("M_Velkrund_Jobs_IsThere");
}

void TRecreationJob::Run() {
  FErrors.emplace(Policies.OnError);
  FLongNames.emplace(Policies.LongNames);
  TAllowedGaps Gaps(Policies);
  TakeItems();
  for (TRecreation& Item : FItems)
    if (!Look(Item)) return TakeBack();
  CheckAll();
  if (Count(TItemState::NotReached) > 0) RunWhole(Gaps);
}

void TRecreationJob::RunWhole(TAllowedGaps& Gaps) {
  // One that sees a single moment would not see, and so lose, what others commit until each table is locked.
  const bool LocksEach = Connection().Capabilities().LocksTables;
  TTransaction Whole(DatabaseName, LocksEach ? TIsolationLevel::ReadCommitted : TIsolationLevel::RepeatableRead);
  try {
    Policies.DryRun ? Plan(Gaps) : RecreateAll(Gaps);
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    if (Count(TItemState::Failed) == 0) throw;
    return TakeBack();
  }
  if (IsCanceled()) throw EAbort("cancelled");
  for (TLText& Text : Gaps.TakeNotes())
    // What waits meanwhile lacks the same.
    if (Text.English().find(TemporaryTableName) == std::string::npos) Note(std::move(Text));
  if (Policies.DryRun) return LeaveAll();
  // To commit nothing would be no difference.
  if (Count(TItemState::Done) > 0) Commit(Whole);
}

void TRecreationJob::Commit(TTransaction& Whole) {
  try {
    Whole.Commit();
  } catch (const std::exception& Error) {
    // An answer that never came: what has become of it only the database knows.
    const bool IsKnown = FactsOf(Error).Info.Code != TErrorCode::Connection;
    for (TRecreation& Item : FItems) {
      if (Item.State != TItemState::Done) continue;
      Item.State = IsKnown ? TItemState::TakenBack : TItemState::Failed;
      Item.Error = FactsOf(Error);
    }
    if (!FFirstError) FFirstError = std::current_exception();
    throw;
  }
  TellRemarks();
  FLongNames->AddNote(FNotes);
}

void TRecreationJob::TellRemarks() {
  for (TRecreation& Item : FItems)
    if (Item.State == TItemState::Done || Policies.DryRun)
      for (TLText& Remark : Item.Remarks) Note(std::move(Remark));
}

void TRecreationJob::LeaveAll() {
  TellRemarks();
  for (TRecreation& Item : FItems) {
    if (Item.State != TItemState::NotReached) continue;
    Item.State = TItemState::LeftOut;
    Item.Note = LText("M_Velkrund_Jobs_NothingChanged");
  }
}

void TRecreationJob::TakeBack() {
  for (TRecreation& Item : FItems)
    if (Item.State == TItemState::Done) Item.State = TItemState::TakenBack;
  Note(LText("M_Velkrund_Jobs_DatabaseAsBefore"));
}

void TRecreationJob::Fail(TRecreation& Item, const std::exception_ptr& Error) {
  Item.State = TItemState::Failed;
  Item.Error = FactsOf(Error);
  if (!FFirstError) FFirstError = Error;
  if (Listener) Fault(*Item.Error);
}

bool TRecreationJob::MayGoOn(const TRecreation& Failed) {
  const bool IsLast = std::none_of(FItems.begin(), FItems.end(), [](const TRecreation& Each) {
    return Each.State == TItemState::NotReached || Each.State == TItemState::Done;
  });
  if (IsLast) return true;
  try {
    const TLText Question = LText("M_Velkrund_DicUtils_ContinueRecreate");
    return FErrors->GoOn(Listener ? Question : LErrorLine(*Failed.Error) + "\r\n" + Question);
  } catch (const EPolicyUnanswered& Unanswered) {
    Stop(Unanswered.Policy());
    return false;
  }
}

TEnd TRecreationJob::Conclusion() const { return Count(TItemState::Failed) > 0 ? TEnd::Failed : TEnd::Done; }

std::exception_ptr TRecreationJob::Failure() const {
  const int Failed = Count(TItemState::Failed);
  if (Failed <= 1) return FFirstError;
  try {
    std::rethrow_exception(FFirstError);
  } catch (const std::exception& Error) {
    try {
      std::throw_with_nested(EJobFailed(
          Format("%d of %d objects could not be made. The first error: %s", Failed, FItems.size(), Error.what())));
    } catch (...) {
      return std::current_exception();
    }
  }
}

void TRecreationJob::Describe(TDocument& Document) const {
  TDocument Objects = TDocument::List();
  for (const TRecreation& Item : FItems) Objects.Add(ItemDocument(Item));
  Document.Set("database", DatabaseText()).Set("objects", std::move(Objects)).Set("notes", EnglishOf(FNotes));
}

}  // namespace velkrund
