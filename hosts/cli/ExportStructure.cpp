#include "hosts/cli/ExportOptions.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/structures/ExportStructures.h"

namespace velkrund {

namespace {

const TCommandTexts ExportStructureTexts = {
    "export",
    "structure",
    "saves stored structures (forms, views, procedures ...) as sections of an export/import file",
    "-d DB (--type T --name NAME... | --all [--type T]) -o FILE",
    "A structure is identified by the number of its type and its name; dictionary list shows both. The type can be "
    "left "
    "out where only one structure has the name. Sections are named after both, \"CLIENTS (12)\", and after the node "
    "where only a part is exported: \"CLIENTS (12) Columns\".\n\n"
    "The sections are added to the file, which is made when it does not exist. A section of the same name that is "
    "there "
    "already is asked about, unless --overwrite or --add says what to do. With --new the file is made afresh; unless "
    "all of the run is done, it is left as it was.\n\n"
    "A new file gets its name with its first finished section. What is finished stays, whatever happens; sections that "
    "replace others, and what follows them, are there at the end, in one step.",
    {{"export structure -d sqlite:shop.db --type 12 --name CLIENTS -o clients.eif", "one form"},
     {"export structure -d sqlite:shop.db --all -o shop.eif --overwrite yes",
      "all structures; sections of an earlier export are replaced"},
     {"export structure -d shop --name CLIENTS --root \"Columns\\ID\" -o part.eif", "one node with all below it"}}};

class TExportStructure final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportStructureTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  bool WritesStandardOutput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobExportStructuresInterface FInterface;
  TJobExportStructures& FJob = FInterface.Job();
  bool FAll = false;
};

std::vector<TOptionGroup> TExportStructure::Options() {
  std::vector<TOption> Own = {
      Shared.DatabaseOption(),
      Number("--type", "T", "the structures' object type, a number", FJob.ObjectType),
      NotWith(List("--name", "NAME", "a structure to export", FJob.Names), {"--all"}),
      Switch("--all", "all structures of the database, or of that type", FAll),
      Text("--root", "NODE", "only this node with all below it: its names from the top, \"\\\" between them",
           FJob.RootNode),
      OutputOption(FJob),
      SectionOption(FJob, "the structure's, its type and the node, \"CLIENTS (12) Columns\"")};
  for (TOption& Option : OtherExportOptions(FJob, "structure")) Own.push_back(std::move(Option));
  return {{"Options", Own}, Shared.General()};
}

void TExportStructure::CheckOptions() {
  if (FJob.Names.empty() && !FAll) throw EUsage("say which structures: --name NAME, with --type, or --all");
  FJob.CheckSettings();
}

}  // namespace

std::unique_ptr<TCommand> MakeExportStructure() { return std::make_unique<TExportStructure>(); }

}  // namespace velkrund
