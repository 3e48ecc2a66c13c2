#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/resources/ImportResources.h"

namespace velkrund {

namespace {

const TCommandTexts ImportLanguageTexts = {
    "import",
    "language",
    "adds the languages of an export/import file to a database",
    "-d DB -i FILE [--section NAME|INDEX] [--overwrite yes|no]",
    "A language that is there already under other names needs --overwrite; at a terminal it is asked about. The "
    "import is one transaction.",
    {{"import languages -d sqlite:other.db -i Languages.eif", "every language of the file"}},
    "languages"};

class TImportLanguage final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ImportLanguageTexts; }
  std::vector<TOptionGroup> Options() override {
    TPolicies& Policies = FJob.Policies;
    return {{"Options",
             {Shared.DatabaseOption(),
              Required(Text("-i,--input", "FILE", "the file to read; - is standard input", FJob.FileName)),
              List("--section", "NAME|INDEX", "the section; a number is an index as file list shows it", FJob.Sections),
              TSharedOptions::OverwriteTextsOption(Policies), TSharedOptions::CommitOption(Policies),
              Switch("--create", "make the database when it does not exist", FJob.CreateDatabase),
              TSharedOptions::DryRunOption(Policies), TSharedOptions::AllowLossOption(Policies),
              TSharedOptions::OnErrorOption(Policies), TSharedOptions::UnfinishedOption(Policies)}},
            Shared.General()};
  }
  bool ReadsStandardInput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobImportLanguagesInterface FInterface;
  TJobImportLanguages& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeImportLanguage() { return std::make_unique<TImportLanguage>(); }

}  // namespace velkrund
