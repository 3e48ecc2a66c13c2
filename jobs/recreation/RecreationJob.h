#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "jobs/dictionary/AllowedGaps.h"
#include "jobs/policies/ErrorPolicy.h"
#include "jobs/policies/LongNames.h"
#include "jobs/policies/Questions.h"
#include "jobs/report/Outcome.h"
#include "jobs/run/JobInterface.h"
#include "velkrund/platform/database/Transaction.h"

namespace velkrund {

/// What became of one object that was to be made anew.
struct TRecreation {
  TStructureId Structure;
  TItemState State = TItemState::NotReached;
  bool IsThere = false;                   // before the run
  TLText Note = {};                       // why it was left out
  std::optional<std::int64_t> Rows = {};  // carried over, of a table
  std::optional<std::int64_t> RowsDropped = {};
  std::vector<TLText> Remarks = {};  // what goes or changes with it; notes of the run, once that stays
  std::optional<TErrorFacts> Error = {};
};

/// Makes objects of a database anew, as their structures describe them: all in one transaction, within which each is a
/// part of its own. What was decided by nobody is asked before anything is changed. After a failure the run is taken
/// back, unless it is told to go on.
class TRecreationJob : public TPolicyJob {
 public:
  std::vector<std::string> Names;  // of structures, in any case

  const std::vector<TRecreation>& Items() const { return FItems; }
  const std::vector<TLText>& Notes() const { return FNotes; }
  int Count(TItemState State) const;
  void CheckSettings() const override;

 protected:
  /// The object types whose structures are meant; in messages What, "table".
  virtual std::vector<int> Types() const = 0;
  virtual std::string_view What() const = 0;
  virtual bool Exists(const TRecreation& Item) = 0;
  /// The text of the question whether one that is there may be made anew.
  virtual std::string_view OverwriteKey() const = 0;
  /// What is known to fail, and other questions; before the transaction.
  virtual void Check(TRecreation& /*Item*/) {}
  /// The same of all together.
  virtual void CheckAll() {}
  /// All that are not left out, in the transaction. Each gets its state; one that fails, when the others are not gone
  /// on with, is marked before its error is raised again.
  virtual void RecreateAll(TAllowedGaps& Gaps) = 0;
  /// The same for a dry run: adds the steps.
  virtual void Plan(TAllowedGaps& Gaps) = 0;

  void Run() final;
  void Forget() override;
  TEnd Conclusion() const override;
  std::exception_ptr Failure() const override;
  std::string_view Schema() const override { return "recreation"; }
  void Describe(TDocument& Document) const override;
  void Warn(const std::string& Text) override { FNotes.push_back(LText("M_Velkrund_Jobs_Warning", Text)); }

  /// Names in any case.
  TRecreation* Find(const TStructureId& Structure);
  std::vector<TRecreation>& ChangeItems() { return FItems; }
  void Fail(TRecreation& Item, const std::exception_ptr& Error);
  /// Behind Fail: whether the others are gone on with.
  bool MayGoOn(const TRecreation& Failed);
  void Note(TLText Text) { FNotes.push_back(std::move(Text)); }
  TLongNames& LongNames() { return *FLongNames; }
  TConnection& Connection() const { return Manager().Databases().Connection(DatabaseName); }

 private:
  void TakeItems();
  TStructureId TheOneMeant(const std::vector<TStructureId>& Found);
  bool Look(TRecreation& Item);
  void AskFor(TRecreation& Item);
  void RunWhole(TAllowedGaps& Gaps);
  void Commit(TTransaction& Whole);
  void TellRemarks();
  void LeaveAll();
  void TakeBack();

  std::vector<TRecreation> FItems;
  std::vector<TLText> FNotes;
  std::exception_ptr FFirstError;
  std::optional<TErrorPolicy> FErrors;
  std::optional<TLongNames> FLongNames;
  TRepeatedQuestion FQuestion;
};

}  // namespace velkrund
