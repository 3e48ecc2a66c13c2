#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/report/ErrorReport.h"
#include "jobs/sections/RepairFile.h"

namespace velkrund {

namespace {

const TCommandTexts FileRepairTexts = {
    "file",
    "repair",
    "mends line ends of an export/import file, and cuts an unfinished last section off",
    "FILE",
    "For what an export leaves that was killed, or met a power failure or a full disk; a killed one leaves a file that "
    "can be read and added to without it. What is cut off is kept beside the file as "
    "FILE.cut, "
    "or FILE.cut-2 and so on where that is taken. A piece of a section's first line at the end of the file is cut off "
    "too, since more could not be added behind it.\n\n"
    "And for what version control or an editor makes of line ends: where a line feed alone ends lines of sections, it "
    "gets its carriage return back; every other byte stays. Any other fault is an error, and nothing is changed.",
    {{"file repair orders.eif", "says what was done, or that there was nothing to repair"}}};

class TFileRepair final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return FileRepairTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Arguments", {Required(Text("FILE", "FILE", "the file", FJob.FileName))}}, Shared.General()};
  }
  void CheckOptions() override { FJob.CheckSettings(); }
  int Run(TSession& Session) override;

 private:
  TJobRepairFileInterface FInterface;
  TJobRepairFile& FJob = FInterface.Job();
};

int TFileRepair::Run(TSession& Session) {
  RunJob(Session, FInterface);
  const TSectionRepair& Repair = FJob.Repair();
  const auto Count = static_cast<std::int64_t>(Repair.SectionsLeft);
  const auto LineFeeds = static_cast<std::int64_t>(Repair.LineFeeds);
  if (LineFeeds > 0) Session.Say(LCounted("M_Velkrund_Cli_LineFeedsMended", LineFeeds, LineFeeds).Local());
  if (Repair.Position < 0) {
    const char* const Key = LineFeeds > 0 ? "M_Velkrund_Cli_FileHas" : "M_Velkrund_Cli_NothingToRepair";
    Session.Say(LCounted(Key, Count, FJob.FileName, Count).Local());
    return ExitDone;
  }
  if (Repair.Fault) Session.Say(LText("M_Velkrund_Cli_FaultWas", LErrorLine(*Repair.Fault)).Local());
  Session.Say(LCounted("M_Velkrund_Cli_CutOff", Repair.Bytes, Repair.Position, Repair.Bytes, Repair.CutFile).Local() +
              "\n" + LCounted("M_Velkrund_Cli_SectionsLeft", Count, Count).Local());
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeFileRepair() { return std::make_unique<TFileRepair>(); }

}  // namespace velkrund
