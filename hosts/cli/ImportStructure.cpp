#include "hosts/cli/Batch.h"
#include "hosts/cli/InputFile.h"
#include "hosts/cli/Sections.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/StrayMarkers.h"
#include "hosts/cli/StructureAnswers.h"
#include "hosts/cli/line/Commands.h"
#include "velkrund/dsp/DSPStructureOperations.h"
#include "velkrund/platform/ormtools/Format.h"

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
  TApplicationOptions ApplicationOptions() const override;
  bool ReadsStandardInput() const override { return FInput == "-"; }
  int Run(TSession& Session) override;

 private:
  std::vector<int> Chosen(TInputFile& Input, TReport& Report) const;
  std::optional<TStructureId> Target(const TEISection& Section) const;
  TOverwrite Answer() const { return FMerge ? TOverwrite::Yes : FOverwrite; }
  void SetUp(const TSession& Session, TUOImportDSPStructureInterface& Interface) const;
  void Import(const TSession& Session, TInputFile& Input, const std::vector<int>& Indexes, TReport& Report) const;

  std::string FInput, FName, FRoot;
  std::vector<std::string> FSections;
  std::optional<std::int32_t> FType;
  TOverwrite FOverwrite = TOverwrite::Ask;
  std::optional<TDSPImportOverwriteOptions> FMerge;
  bool FNoClearRoot = false, FKeepProperties = false, FCreate = false;
};

std::vector<TOptionGroup> TImportStructure::Options() {
  return {
      {"Options",
       {Shared.DatabaseOption(), Required(Text("-i,--input", "FILE", "the file to read; - is standard input", FInput)),
        List("--section", "NAME|INDEX", "the section to load; a number is an index as file list shows it", FSections),
        Number("--type", "T", "the object type to load it as (default: the one that the section names)", FType),
        Text("--name", "NAME", "the structure to load it into (default: the one that the section names)", FName),
        Text("--root", "NODE",
             "the node to load it into: its names from the top, \"\\\" between them (default: the one that the section "
             "names)",
             FRoot),
        NotWith(OverwriteStructuresOption(FOverwrite), {"--merge"}),
        Choice<std::optional<TDSPImportOverwriteOptions>>(
            "--merge",
            "load into structures that are there; nodes that both have are kept as stored (skip) or taken from the "
            "file (replace, difference); difference also removes stored nodes without a value that the file marks as "
            "deleted. Replace empties the structure, or the node, first",
            {{"skip", ioSkip}, {"replace", ioReplace}, {"difference", ioDifference}}, FMerge),
        Switch("--no-clear-root", "do not empty the structure, or the node, before it is replaced", FNoClearRoot),
        Switch("--keep-properties", "leave table name, parent object and remarks as they are stored", FKeepProperties),
        Switch("--create", "make the database when it does not exist", FCreate), Shared.AllowLossOption(),
        Shared.OnErrorOption()}},
      Shared.General()};
}

void TImportStructure::CheckOptions() {
  if (FType == 0) throw EUsage("--type 0 is no type to load a structure as");
  if (FNoClearRoot && Answer() != TOverwrite::Yes)
    throw EUsage("--no-clear-root goes with --overwrite yes or --merge, which say that structures are replaced");
}

TApplicationOptions TImportStructure::ApplicationOptions() const {
  TApplicationOptions Result = TCommand::ApplicationOptions();
  Result.CreateDatabases = FCreate;
  return Result;
}

std::vector<int> TImportStructure::Chosen(TInputFile& Input, TReport& Report) const {
  const TSectionChoice Choice{TSectionRole::Structure, "structure", FSections, Input.Name(),
                              NoteStrayMarkers(Input, Report)};
  std::vector<int> Result = ChosenSections(Input.File().Sections(), Choice, Report.Notes);
  if (Result.size() > 1 && (FType || !FName.empty() || !FRoot.empty()))
    throw EUsage(
        Format("--type, --name and --root are for one section, but %d are to be loaded: choose one with --section",
               Result.size()));
  return Result;
}

/// Nothing where the header is faulty; the import says what is wrong with it.
std::optional<TStructureId> TImportStructure::Target(const TEISection& Section) const {
  std::optional<TStructureId> Result = StructureOf(Section);
  if (!Result) return Result;
  if (FType) Result->Type = *FType;
  if (!FName.empty()) Result->Name = FName;
  return Result;
}

void TImportStructure::SetUp(const TSession& Session, TUOImportDSPStructureInterface& Interface) const {
  Interface.SetDatabaseName(Session.Database());
  Interface.SetObjectName(FName);
  Interface.SetObjectType(FType.value_or(0));
  Interface.SetRootNode(FRoot);
  Interface.SetUseCustomRootNode(!FRoot.empty());
  Interface.SetChangeStructureproperties(!FKeepProperties);
  Interface.SetOverwriteOptions(FMerge.value_or(ioReplace));
  // The other modes add to what is there.
  Interface.SetClearRoot(FMerge.value_or(ioReplace) == ioReplace && !FNoClearRoot);
  AnswerByOption(static_cast<TUOImportDSPStructure&>(Interface.Operation()).OverwriteAsk, Answer());
}

void TImportStructure::Import(const TSession& Session, TInputFile& Input, const std::vector<int>& Indexes,
                              TReport& Report) const {
  TUOImportDSPStructureInterface Interface;
  SetUp(Session, Interface);
  Interface.SetSource(&Input.File());
  TBatch Batch(Session, Input.File(), Report);
  for (std::size_t I = 0; I < Indexes.size(); ++I) {
    TReportItem& Item = Report.Items[I];
    Item.Bytes = Input.File().Sections()[Indexes[I]].DataSize;
    Interface.SetSectionNumber(Indexes[I]);
    const bool GoOn = Batch.Run(Item, Interface, {"bytes", Item.Bytes}, I + 1 < Indexes.size());
    if (Item.State == TItemState::Done &&
        static_cast<const TUOImportDSPStructure&>(Interface.Operation()).LeftAlone()) {
      Item.State = TItemState::LeftOut;
      Item.Note = StructureKept;
    }
    if (!GoOn) break;
  }
}

int TImportStructure::Run(TSession& Session) {
  TReport Report{"import structure", "imported", Session.Application.DatabaseText(Session.Database()), FInput};
  TInputFile Input(Session, FInput);
  Input.Open();
  if (Input.File().Losses().Any()) Report.Notes.emplace_back("warning: section headers hold malformed characters");
  const std::vector<int> Indexes = Chosen(Input, Report);
  TStructureTargets Targets;
  for (const int Index : Indexes) {
    const TEISection& Section = Input.File().Sections()[Index];
    Report.Items.push_back({Section.Name()});
    Report.Items.back().Structure = Target(Section);
    if (Report.Items.back().Structure) Targets.Add(*Report.Items.back().Structure);
  }
  if (Answer() == TOverwrite::Ask)
    Targets.RefuseUnanswered(Session, "--overwrite yes to replace them, --overwrite no to leave them out, or --merge");
  Import(Session, Input, Indexes, Report);
  return Finish(Session, Report);
}

}  // namespace

std::unique_ptr<TCommand> MakeImportStructure() { return std::make_unique<TImportStructure>(); }

}  // namespace velkrund
