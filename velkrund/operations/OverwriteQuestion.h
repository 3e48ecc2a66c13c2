#pragma once

#include <string>

#include "velkrund/operations/AskObjects.h"
#include "velkrund/operations/RecreateOverwrite.h"

namespace velkrund {

/// The question of an operation whether what is there is overwritten: one of its own, yes without asking unless it is
/// told otherwise, whose answers hold for one run; or one that several operations share, whose answers stay in it.
class TOverwriteQuestion {
 public:
  TOverwriteQuestion() { FOwn.FYes = true; }
  TOverwriteQuestion(const TOverwriteQuestion&) = delete;
  TOverwriteQuestion& operator=(const TOverwriteQuestion&) = delete;

  TYesNoCancelAsk& OverwriteAsk() { return FShared ? *FShared : FOwn; }
  const TYesNoCancelAsk& OverwriteAsk() const { return FShared ? *FShared : FOwn; }
  /// Borrowed; it outlives the runs.
  void SetOverwriteAsk(TYesNoCancelAsk& Ask) { FShared = &Ask; }

  /// OverwriteAsk as one setting.
  TRecreateOverwrite Overwrite() const { return OverwriteOf(OverwriteAsk()); }
  void SetOverwrite(TRecreateOverwrite Overwrite) { SetOverwriteOf(OverwriteAsk(), Overwrite); }
  /// The same where a host knows two: overwrite without asking, or ask.
  bool OverwritesAll() const { return Overwrite() == TRecreateOverwrite::Yes; }
  void SetOverwritesAll(bool Value) { SetOverwrite(Value ? TRecreateOverwrite::Yes : TRecreateOverwrite::Ask); }

 protected:
  ~TOverwriteQuestion() = default;

  /// To be called where a run begins.
  void BeginAsking() { FOfRun.Assign(FOwn); }
  /// The question of the run.
  TYesNoCancelAsk& RunAsk() { return FShared ? *FShared : FOfRun; }
  /// The text that a host has put into the question; empty: none, also where it is shared, since other operations put
  /// theirs into it.
  std::string HostText() const { return FShared ? std::string() : FOwn.fAskCallbackString; }

 private:
  TYesNoCancelAsk FOwn, FOfRun;
  TYesNoCancelAsk* FShared = nullptr;  // borrowed
};

}  // namespace velkrund
