#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/report/ErrorReport.h"
#include "jobs/sections/RepairFile.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const TCommandTexts FileRepairTexts = {
    "file",
    "repair",
    "mends line ends of an export/import file, and cuts an unfinished last section off",
    "FILE",
    "For what an export leaves that was killed or met a full disk. What is cut off is kept beside the file as "
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
  const std::string Left = Counted(Repair.SectionsLeft, "section");
  if (Repair.LineFeeds > 0)
    Session.Say(Format("put the carriage return back in front of %s that ended a line alone",
                       Counted(Repair.LineFeeds, "line feed")));
  if (Repair.Position < 0) {
    Session.Say(Repair.LineFeeds > 0 ? Format("'%s' has %s", FJob.FileName, Left)
                                     : Format("nothing to repair: '%s' has %s", FJob.FileName, Left));
    return ExitDone;
  }
  if (Repair.Fault) Session.Say("the fault was: " + ErrorLine(*Repair.Fault));
  Session.Say(Format("cut off an unfinished section from position %d on: %s, now in '%s'\n%s left", Repair.Position,
                     Counted(Repair.Bytes, "byte"), Repair.CutFile, Left));
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeFileRepair() { return std::make_unique<TFileRepair>(); }

}  // namespace velkrund
