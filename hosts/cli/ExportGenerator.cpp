#include "hosts/cli/ExportOptions.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/generators/ExportGenerators.h"

namespace velkrund {

namespace {

const TCommandTexts ExportGeneratorTexts = {
    "export",
    "generator",
    "saves where generators stand as sections of an export/import file",
    "-d DB (--name NAME... | --all) -o FILE",
    "A section holds the last number that the generator has given out. What else a generator is stands in its "
    "structure, which export structure saves. Sections are added to the file as export table does it.",
    {{"export generator -d sqlite:shop.db --name ORDER_NO -o counters.eif", "one generator"},
     {"export generator -d shop --all -o counters.eif --new", "all of a database, and nothing else in the file"}},
    "generators"};

class TExportGenerator final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportGeneratorTexts; }
  std::vector<TOptionGroup> Options() override {
    std::vector<TOption> Own = {Shared.DatabaseOption(),
                                NotWith(List("--name", "NAME", "a generator, in any case", FJob.Names), {"--all"}),
                                Switch("--all", "all generators of the database", FAll), OutputOption(FJob),
                                SectionOption(FJob, "the generator's")};
    for (TOption& Option : OtherExportOptions(FJob, "generator")) Own.push_back(std::move(Option));
    return {{"Options", Own}, Shared.General()};
  }
  void CheckOptions() override {
    if (FJob.Names.empty() && !FAll) throw EUsage("say which generators: --name NAME or --all");
    FJob.CheckSettings();
  }
  bool WritesStandardOutput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobExportGeneratorsInterface FInterface;
  TJobExportGenerators& FJob = FInterface.Job();
  bool FAll = false;
};

}  // namespace

std::unique_ptr<TCommand> MakeExportGenerator() { return std::make_unique<TExportGenerator>(); }

}  // namespace velkrund
