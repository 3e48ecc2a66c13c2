#include <algorithm>

#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/sections/ImportFiles.h"

namespace velkrund {

namespace {

const TCommandTexts ImportFileTexts = {
    "import",
    "file",
    "loads everything that export/import files hold",
    "-d DB -i FILE... [--create-tables yes|no] [--replace|--append] [--overwrite yes|no]",
    "Of all files together the structures come first, then the rows of tables, each into the table that its section "
    "names, and of queries, into the table that --target names or a person at a terminal chooses, then generators are "
    "moved to "
    "where "
    "they stood, and languages and localized strings come last. Tables that are missing, and that structures of the "
    "files or of the database describe, are made: "
    "fields "
    "and keys before the rows, then indexes, foreign keys, triggers and comments. That is asked about, unless "
    "--create-tables says so. What the engine has no words for is an error before anything is changed, unless "
    "--allow-missing names its kind.\n\n"
    "The whole import is one transaction: after an error, or when it is cancelled, the database is as it was "
    "before. With --on-error continue, or when a person at a terminal says so, the rest is gone on with: what fails is "
    "undone with the tables that hang together with it by foreign keys, and the rest stays.\n\n"
    "A table that has rows already needs --replace or --append, a structure or a localized text that is there already "
    "--overwrite. At a "
    "terminal they are asked about, elsewhere it is an error, before anything is changed.",
    {{"import file -d sqlite:shop.db -i shop.eif --replace --overwrite yes", "everything of one file"},
     {"import file -d sqlite:new.db --create --create-tables yes -i shop.eif",
      "a new database, of a file that export table --structures has made"},
     {"import file -d shop -i forms.eif -i data.eif --append --on-error continue",
      "two files; what is faulty is named in the report and left out"}}};

class TImportFile final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ImportFileTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override {
    FJob.Policies.ExistingStructures = FJob.Policies.ExistingTexts;
    FJob.CheckSettings();
  }
  bool ReadsStandardInput() const override {
    return std::find(FJob.FileNames.begin(), FJob.FileNames.end(), "-") != FJob.FileNames.end();
  }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobImportFilesInterface FInterface;
  TJobImportFiles& FJob = FInterface.Job();
};

std::vector<TOptionGroup> TImportFile::Options() {
  std::vector<TOption> Own = {
      Shared.DatabaseOption(),
      Required(List("-i,--input", "FILE", "a file to load, in this order; - is standard input", FJob.FileNames))};
  for (TOption& Option : TSharedOptions::LoadingOptions(FJob.Policies, FJob.CreateDatabase))
    Own.push_back(std::move(Option));
  for (TOption& Option : TSharedOptions::CreatingOptions(FJob.Policies)) Own.push_back(std::move(Option));
  Own.push_back(Choice<TExisting>(
      "--overwrite",
      "a structure, a localized text or a language of other names that is there: replace it, or leave it as it is "
      "(default: ask)",
      {{"ask", TExisting::Ask}, {"yes", TExisting::Replace}, {"no", TExisting::Skip}}, FJob.Policies.ExistingTexts));
  Own.push_back(TSharedOptions::AddLanguagesOption(FJob.AddLanguages));
  Own.push_back(Text("--target", "TABLE",
                     "the table that the rows of queries go into; without it a person at a terminal is asked",
                     FJob.QueryTarget));
  Own.push_back(Pairs("--map", "FILEFIELD=TABLEFIELD",
                      "of queries: the field TABLEFIELD of that table takes the values of the file's FILEFIELD",
                      FJob.Mapping));
  Own.push_back(TSharedOptions::SetGeneratorsOption(FJob.SetGenerators));
  Own.push_back(TSharedOptions::DryRunOption(FJob.Policies));
  Own.push_back(TSharedOptions::AllowLossOption(FJob.Policies));
  Own.push_back(TSharedOptions::OnErrorOption(FJob.Policies));
  Own.push_back(TSharedOptions::UnfinishedOption(FJob.Policies));
  return {{"Options", Own}, Shared.General()};
}

}  // namespace

std::unique_ptr<TCommand> MakeImportFile() { return std::make_unique<TImportFile>(); }

}  // namespace velkrund
