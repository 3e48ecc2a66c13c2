#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/resources/ImportResources.h"

namespace velkrund {

namespace {

const TCommandTexts ImportResourceTexts = {
    "import",
    "resource",
    "loads localized strings from an export/import file",
    "-d DB -i FILE [--section NAME|INDEX] [--section-id ID] [--languages A,B] [--overwrite yes|no]",
    "Each section of strings goes into the section of the database that it names. A text that is there already needs "
    "--overwrite; at a terminal it is asked about. A language that the database lacks is an error before anything is "
    "changed, unless --languages leaves it out or --add-languages adds it; languages add tells what people call it.\n\n"
    "The import is one transaction: after an error, or when it is cancelled, the database is as it was before. Texts "
    "in a language that their section does not list, and a second text of one string, are an error, or counted with "
    "--allow-loss.",
    {{"import resources -d sqlite:other.db -i texts.eif --overwrite yes", "all sections of strings of a file"},
     {"import resource -d shop -i texts.eif --section K_CLIENTS --section-id K_CUSTOMERS --languages Russian",
      "one of them, under another ID, in one language"}},
    "resources"};

class TImportResource final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ImportResourceTexts; }
  std::vector<TOptionGroup> Options() override {
    TPolicies& Policies = FJob.Policies;
    return {
        {"Options",
         {Shared.DatabaseOption(),
          Required(Text("-i,--input", "FILE", "the file to read; - is standard input", FJob.FileName)),
          List("--section", "NAME|INDEX", "the section; a number is an index as file list shows it", FJob.Sections),
          Text("--section-id", "ID", "for one section: the resource of the database to load it into", FJob.SectionID),
          TSharedOptions::LanguagesOption(FJob.Languages, "the file"),
          TSharedOptions::AddLanguagesOption(FJob.AddLanguages), TSharedOptions::OverwriteTextsOption(Policies),
          TSharedOptions::CommitOption(Policies),
          Switch("--create", "make the database when it does not exist", FJob.CreateDatabase),
          TSharedOptions::DryRunOption(Policies), TSharedOptions::AllowLossOption(Policies),
          TSharedOptions::OnErrorOption(Policies), TSharedOptions::UnfinishedOption(Policies)}},
        Shared.General()};
  }
  void CheckOptions() override { FJob.CheckSettings(); }
  bool ReadsStandardInput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobImportResourcesInterface FInterface;
  TJobImportResources& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeImportResource() { return std::make_unique<TImportResource>(); }

}  // namespace velkrund
