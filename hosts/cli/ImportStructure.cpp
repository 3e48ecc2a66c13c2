#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/structures/ImportStructures.h"
#include "jobs/structures/StructureSearch.h"

namespace velkrund {

namespace {

using enum TDSPImportOverwriteOptions;

const TCommandTexts ImportStructureTexts = {
    "import",
    "structure",
    "loads structure sections of an export/import file into the stored structures of a database",
    "-d DB -i FILE [--section NAME|INDEX] [--overwrite yes|no | --merge MODE]",
    "Without --section every structure section of the file is loaded, each into the structure that it names. A "
    "structure is loaded as a whole: after an error, or when the import is cancelled, it is as it was.\n\n"
    "A structure that exists is asked about at a terminal: it is skipped, replaced, or updated. Updated means: where a "
    "stored node or the file's one has a value, the file's takes its place with all below it, otherwise the two are "
    "merged; a node that the file marks as deleted is removed when the stored one has no value, elsewhere the mark is "
    "stored; nodes that the file does not name stay. Where nobody can be asked, a structure that exists is "
    "an error, before anything is changed, unless an option answers: --overwrite, or --merge with what becomes of "
    "nodes that are there.",
    {{"import structure -d sqlite:shop.db -i shop.eif --overwrite yes", "every structure of the file"},
     {"import structure -d sqlite:shop.db -i shop.eif --section \"CLIENTS (12)\" --name CLIENTS_NEW --type 12",
      "one section into a structure of another name"},
     {"import structure -d shop -i update.eif --merge difference", "changes to what is there"}}};

class TImportStructure final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ImportStructureTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  TLText Remedy(TPolicy Policy) const override;
  bool ReadsStandardInput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobImportStructuresInterface FInterface;
  TJobImportStructures& FJob = FInterface.Job();
  std::int32_t FType = AnyType;
};

std::vector<TOptionGroup> TImportStructure::Options() {
  return {
      {"Options",
       {Shared.DatabaseOption(),
        Required(Text("-i,--input", "FILE", "the file to read; - is standard input", FJob.FileName)),
        List("--section", "NAME|INDEX", "the section to load; a number is an index as file list shows it",
             FJob.Sections),
        Number("--type", "T", "the object type to load it as (default: the one that the section names)", FType),
        Text("--name", "NAME", "the structure to load it into (default: the one that the section names)",
             FJob.ObjectName),
        Text("--root", "NODE",
             "the node to load it into: its names from the top, \"\\\" between them (default: the one that the section "
             "names)",
             FJob.RootNode),
        NotWith(TSharedOptions::OverwriteStructuresOption(FJob.Policies), {"--merge"}),
        Choice<std::optional<TDSPImportOverwriteOptions>>(
            "--merge",
            "load into structures that are there; nodes that both have are kept as stored (skip) or taken from the "
            "file (replace, difference); difference also removes stored nodes without a value that the file marks as "
            "deleted. Replace empties the structure, or the node, first",
            {{"skip", ioSkip}, {"replace", ioReplace}, {"difference", ioDifference}}, FJob.Merge),
        Assigning("--no-clear-root", "do not empty the structure, or the node, before it is replaced", FJob.ClearRoot,
                  false),
        Assigning("--keep-properties", "leave table name, parent object and remarks as they are stored",
                  FJob.ChangeProperties, false),
        Switch("--create", "make the database when it does not exist", FJob.CreateDatabase),
        TSharedOptions::DryRunOption(FJob.Policies), TSharedOptions::AllowLossOption(FJob.Policies),
        TSharedOptions::OnErrorOption(FJob.Policies), TSharedOptions::UnfinishedOption(FJob.Policies),
        TSharedOptions::CommitOption(FJob.Policies)}},
      Shared.General()};
}

void TImportStructure::CheckOptions() {
  if (FType == 0) throw EUsage("--type 0 is not a type to load a structure as");
  if (FType != AnyType) FJob.ObjectType = FType;
  FJob.CheckSettings();
}

TLText TImportStructure::Remedy(TPolicy Policy) const {
  if (Policy != TPolicy::ExistingStructures) return TCommand::Remedy(Policy);
  return LText("M_Velkrund_Cli_GiveOverwriteOrMerge");
}

}  // namespace

std::unique_ptr<TCommand> MakeImportStructure() { return std::make_unique<TImportStructure>(); }

}  // namespace velkrund
