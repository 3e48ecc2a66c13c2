#include "hosts/cli/ExportOptions.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/resources/ExportResources.h"

namespace velkrund {

namespace {

const TCommandTexts ExportSingleResourcesTexts = {
    "export",
    "single-resources",
    "saves the strings of several resources in one language as one section",
    "-d DB --language L --section-id ID --section-ids S,T -o FILE",
    "For programs that show texts in one language and read nothing else: import resource does not take such a "
    "section. The keys are the IDs of the strings, without the base section's ID where they begin with it.",
    {{"export single-resources -d sqlite:shop.db --language Russian --section-id K_FORM --section-ids K_FORM,K_LIST "
      "-o form.eif",
      "the texts of a form and its list"}}};

class TExportSingleResources final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportSingleResourcesTexts; }
  std::vector<TOptionGroup> Options() override {
    std::vector<TOption> Own = {
        Shared.DatabaseOption(),
        Required(Text("--language", "L", "the language of the texts", FJob.Language)),
        Required(Text("--section-id", "ID", "the base section, whose ID the keys leave out", FJob.SectionID)),
        Required(CommaList("--section-ids", "S,T", "the resources whose strings are saved", FJob.SectionIDs)),
        OutputOption(FJob),
        SectionOption(FJob, "the base section's ID")};
    for (TOption& Option : OtherExportOptions(FJob, "section")) Own.push_back(std::move(Option));
    return {{"Options", Own}, Shared.General()};
  }
  void CheckOptions() override { FJob.CheckSettings(); }
  bool WritesStandardOutput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobExportSingleResourcesInterface FInterface;
  TJobExportSingleResources& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeExportSingleResources() { return std::make_unique<TExportSingleResources>(); }

}  // namespace velkrund
