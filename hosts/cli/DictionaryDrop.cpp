#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/structures/StoredStructures.h"

namespace velkrund {

namespace {

const TCommandTexts DictionaryDropTexts = {
    "dictionary",
    "drop",
    "removes a stored structure",
    "-d DB --name NAME [--type T] [--yes]",
    "Removes its properties and its tree, in one go. What the structure describes, such as a table, stays. At a "
    "terminal it is asked first, elsewhere --yes is needed. The type can be left out where only one structure has the "
    "name.",
    {{"dictionary drop -d sqlite:shop.db --type 12 --name CLIENTS --yes", "without a question"}}};

class TDictionaryDrop final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return DictionaryDropTexts; }
  std::vector<TOptionGroup> Options() override {
    TStructureChoice& Choice = FInterface.Job().Choice;
    std::vector<TOptionGroup> Result = Shared.OfOneStructure(Choice.ObjectType, Choice.ObjectName);
    Result.front().Options.push_back(TSharedOptions::DryRunOption(FInterface.Job().Policies));
    return Result;
  }
  int Run(TSession& Session) override {
    RunJob(Session, FInterface);
    if (!SayDryRun(Session, FInterface.Job()))
      Session.Say(LText("M_Velkrund_Cli_Dropped", FInterface.Job().WhatWasDropped()).Local());
    return ExitDone;
  }

 private:
  TJobDropStructureInterface FInterface;
};

}  // namespace

std::unique_ptr<TCommand> MakeDictionaryDrop() { return std::make_unique<TDictionaryDrop>(); }

}  // namespace velkrund
