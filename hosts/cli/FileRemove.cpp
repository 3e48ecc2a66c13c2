#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/sections/RemoveSections.h"

namespace velkrund {

namespace {

const TCommandTexts FileRemoveTexts = {
    "file",
    "remove",
    "takes sections out of an export/import file",
    "FILE (INDEX... | --name NAME...)",
    "Everything else in the file stays as it is, byte for byte. The work is done on a copy in the same folder, which "
    "then takes the file's place with its owner, rights and attributes: whatever happens, the old file is there or the "
    "new one. Where the file system has no files without a name, a run that is killed leaves the copy, "
    ".velkrund-HASH-N; the next one that writes the file removes it. A file with several names (hard links) is "
    "refused. "
    "Indexes are those of file list.",
    {{"file remove orders.eif 0 3", "the first section and the fourth"},
     {"file remove orders.eif --name ORDERS", "by name; several of that name need --yes"}}};

class TFileRemove final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return FileRemoveTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Arguments",
             {Required(Text("FILE", "FILE", "the file", FJob.FileName)),
              List("INDEX", "INDEX", "a section's index", FJob.Indexes)}},
            {"Options",
             {List("--name", "NAME", "a section's name", FJob.Names), TSharedOptions::DryRunOption(FJob.Policies)}},
            Shared.General()};
  }
  void CheckOptions() override { FJob.CheckSettings(); }
  TLText Remedy(TPolicy Policy) const override {
    return Policy == TPolicy::Yes ? LText("M_Velkrund_Cli_GiveYesOrIndex") : TCommand::Remedy(Policy);
  }
  int Run(TSession& Session) override;

 private:
  TJobRemoveSectionsInterface FInterface;
  TJobRemoveSections& FJob = FInterface.Job();
};

int TFileRemove::Run(TSession& Session) {
  RunJob(Session, FInterface);
  if (SayDryRun(Session, FJob)) return ExitDone;
  std::string Text;
  for (const TJobRemoveSections::TRemoved& Section : FJob.Removed())
    Text += LText("M_Velkrund_Cli_Removed", Section.Text).Local() + "\n";
  Session.Say(Text + LCounted("M_Velkrund_Cli_SectionsLeft", FJob.SectionsLeft(), FJob.SectionsLeft()).Local());
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeFileRemove() { return std::make_unique<TFileRemove>(); }

}  // namespace velkrund
