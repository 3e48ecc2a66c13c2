#include "hosts/cli/ExportOptions.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/resources/ExportToFolder.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const TCommandTexts ExportResourceTexts = {
    "export",
    "resource",
    "saves localized strings as sections of an export/import file",
    "-d DB (--section-id ID... | --all) (-o FILE | --folder DIR) [--languages A,B] [--names N,M]",
    "A resource is a section of strings: all whose IDs begin with the section's ID and \"_\", as they were written "
    "in it. Each becomes a section of the file, with the texts of each language. Sections are added to the file as "
    "export table does it; with --folder each goes into a file of its own, ID.eif, which is made afresh.\n\n"
    "With --release rv17, characters that the code page lacks are an error, or counted with --allow-loss.",
    {{"export resource -d sqlite:shop.db --section-id K_CLIENTS -o texts.eif", "one section in all languages"},
     {"export resources -d shop --section-ids K_CLIENTS,K_ORDERS --languages Russian -o texts.eif",
      "two in one language"},
     {"export resources -d shop --all --folder texts --overwrite yes", "a file for each section of a database"}},
    "resources"};

class TExportResource final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportResourceTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  std::string OptionOf(std::string_view Property) const override {
    return Property == "Names" ? "--names" : TCommand::OptionOf(Property);
  }
  bool WritesStandardOutput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override;

 private:
  TJobExportResourcesInterface FInterface;
  TJobExportResources& FJob = FInterface.Job();
  TJobExportResourceFilesInterface FFolderInterface;
  TJobExportResourceFiles& FFolderJob = FFolderInterface.Job();
  bool FAll = false;
};

std::vector<TOptionGroup> TExportResource::Options() {
  std::vector<TOption> Own = {Shared.DatabaseOption()};
  for (TOption& Option : TSharedOptions::SectionIDsOptions(FJob.SectionIDs))
    Own.push_back(NotWith(std::move(Option), {"--all"}));
  Own.push_back(Switch("--all", "all resources of the database", FAll));
  Own.push_back(TSharedOptions::LanguagesOption(FJob.Languages, "the database"));
  Own.push_back(CommaList("--names", "N,M", "of one resource: only the strings of these names", FJob.Names));
  Own.push_back(NotRequired(OutputOption(FJob)));
  Own.push_back(NotWith(Text("--folder", "DIR", "the folder to make a file in for each resource", FFolderJob.Folder),
                        {"--output", "--section", "--add", "--new", "--names"}));
  Own.push_back(SectionOption(FJob, "the resource's ID"));
  for (TOption& Option : OtherExportOptions(FJob, "resource")) Own.push_back(std::move(Option));
  return {{"Options", Own}, Shared.General()};
}

void TExportResource::CheckOptions() {
  if (FJob.SectionIDs.empty() && !FAll) throw EUsage("say which resources: --section-id ID or --all");
  if (FFolderJob.Folder.empty() == FJob.FileName.empty()) throw EUsage("say where to: --output FILE or --folder DIR");
  if (!FFolderJob.Folder.empty()) {
    TakeExportSettings(FFolderJob, FJob);
    FFolderJob.SectionIDs = FJob.SectionIDs;
    FFolderJob.Languages = FJob.Languages;
    return FFolderJob.CheckSettings();
  }
  FJob.CheckSettings();
}

int TExportResource::Run(TSession& Session) {
  if (!FFolderJob.Folder.empty()) return RunSectionsJob(Session, FFolderInterface);
  return RunSectionsJob(Session, FInterface);
}

}  // namespace

std::unique_ptr<TCommand> MakeExportResource() { return std::make_unique<TExportResource>(); }

}  // namespace velkrund
