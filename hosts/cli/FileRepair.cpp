#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/Interrupt.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/files/FileOpening.h"
#include "jobs/files/SectionRepair.h"
#include "jobs/report/Json.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const TCommandTexts FileRepairTexts = {
    "file",
    "repair",
    "cuts an unfinished last section off an export/import file",
    "FILE",
    "For what an export leaves that was killed or met a full disk. What is cut off is kept beside the file as "
    "FILE.cut, "
    "or FILE.cut-2 and so on where that is taken. A piece of a section's first line at the end of the file is cut off "
    "too, since more could not be added behind it. Any other fault is an error, and nothing is changed.",
    {{"file repair orders.eif", "says what was cut off, or that there was nothing to repair"}}};

class TFileRepair final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return FileRepairTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Arguments", {Required(Text("FILE", "FILE", "the file", FFile))}}, Shared.General()};
  }
  void CheckOptions() override {
    if (IsPipe(FFile)) throw EUsage(Format("'%s' is a pipe: there is nothing to cut off", FFile));
  }
  TApplicationOptions ApplicationOptions() const override {
    TApplicationOptions Result = TCommand::ApplicationOptions();
    Result.StrictText = false;  // texts are not touched
    return Result;
  }
  int Run(TSession& Session) override;

 private:
  std::string FFile;
};

int TFileRepair::Run(TSession& Session) {
  const TSectionRepair Repair = RepairFile(Session.Files(), FFile, &TInterrupt::Requested);
  const bool IsCut = Repair.Position >= 0;
  if (Shared.Json) {
    TJson Document = {{"file", FFile}, {"bytesCut", Repair.Bytes}, {"sectionsLeft", Repair.SectionsLeft}};
    if (IsCut) Document["position"] = Repair.Position;
    if (IsCut) Document["cutFile"] = Repair.CutFile;
    if (!Repair.Fault.empty()) Document["fault"] = Repair.Fault;
    Session.Console.Result(JsonText(Document));
  }
  const std::string Left = Counted(Repair.SectionsLeft, "section");
  if (!IsCut) {
    Session.Console.Message(Format("nothing to repair: '%s' has %s", FFile, Left));
    return ExitDone;
  }
  if (!Repair.Fault.empty()) Session.Console.Message("the fault was: " + Repair.Fault);
  Session.Console.Message(Format("cut off an unfinished section from position %d on: %s, now in '%s'\n%s left",
                                 Repair.Position, Counted(Repair.Bytes, "byte"), Repair.CutFile, Left));
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeFileRepair() { return std::make_unique<TFileRepair>(); }

}  // namespace velkrund
