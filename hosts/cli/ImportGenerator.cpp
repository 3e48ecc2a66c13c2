#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/generators/ImportGenerators.h"

namespace velkrund {

namespace {

const TCommandTexts ImportGeneratorTexts = {
    "import",
    "generator",
    "moves generators to where the sections of an export/import file say that they stood",
    "-d DB -i FILE [--section NAME|INDEX] [--set-generators]",
    "A generator that is missing is made, and counts by 1; one that stands further already stays there, unless "
    "--set-generators says otherwise. Of several sections for one generator the furthest counts. Sections that stand "
    "below 2 are left alone, and the report names them. The import is one transaction.",
    {{"import generator -d sqlite:other.db -i counters.eif", "every generator of the file"},
     {"import generator -d shop -i counters.eif --section ORDER_NO --set-generators", "one of them, be it backwards"}},
    "generators"};

class TImportGenerator final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ImportGeneratorTexts; }
  std::vector<TOptionGroup> Options() override {
    TPolicies& Policies = FJob.Policies;
    return {{"Options",
             {Shared.DatabaseOption(),
              Required(Text("-i,--input", "FILE", "the file to read; - is standard input", FJob.FileName)),
              List("--section", "NAME|INDEX", "the section; a number is an index as file list shows it", FJob.Sections),
              TSharedOptions::SetGeneratorsOption(FJob.SetGenerators), TSharedOptions::CommitOption(Policies),
              Switch("--create", "make the database when it does not exist", FJob.CreateDatabase),
              TSharedOptions::DryRunOption(Policies), TSharedOptions::OnErrorOption(Policies),
              TSharedOptions::UnfinishedOption(Policies)}},
            Shared.General()};
  }
  bool ReadsStandardInput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobImportGeneratorsInterface FInterface;
  TJobImportGenerators& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeImportGenerator() { return std::make_unique<TImportGenerator>(); }

}  // namespace velkrund
