#include <set>

#include "hosts/cli/SectionExport.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/line/Commands.h"
#include "velkrund/dsp/DSPStructureOperations.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPContainer.h"

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
    "already is asked about, unless --overwrite or --add says what to do.\n\n"
    "A file that is made here and gets no section, because the export fails or is cancelled, is removed again. What "
    "is finished stays.",
    {{"export structure -d sqlite:shop.db --type 12 --name CLIENTS -o clients.eif", "one form"},
     {"export structure -d sqlite:shop.db --all -o shop.eif --overwrite yes",
      "all structures; sections of an earlier export are replaced"},
     {"export structure -d shop --name CLIENTS --root \"Columns\\ID\" -o part.eif", "one node with all below it"}}};

class TExportStructure final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportStructureTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  bool WritesStandardOutput() const override { return FExport.ToStandardOutput(); }
  int Run(TSession& Session) override;

 private:
  std::vector<TStructureId> Structures(const std::string& Database) const;
  std::string SectionName(const TStructureId& Structure) const;

  std::vector<std::string> FNames;
  std::optional<std::int32_t> FType;
  bool FAll = false;
  std::string FRoot;
  TExportOptions FExport;
};

std::vector<TOptionGroup> TExportStructure::Options() {
  std::vector<TOption> Own = {
      Shared.DatabaseOption(),
      Number("--type", "T", "the structures' object type, a number", FType),
      NotWith(List("--name", "NAME", "a structure to export", FNames), {"--all"}),
      Switch("--all", "all structures of the database, or of that type", FAll),
      Text("--root", "NODE", "only this node with all below it: its names from the top, \"\\\" between them", FRoot),
      FExport.OutputOption(),
      FExport.SectionOption("the structure's, its type and the node, \"CLIENTS (12) Columns\"")};
  for (TOption& Option : FExport.Others(Shared, "structure")) Own.push_back(std::move(Option));
  return {{"Options", Own}, Shared.General()};
}

void TExportStructure::CheckOptions() {
  if (FNames.empty() && !FAll) throw EUsage("say which structures: --name NAME, with --type, or --all");
  const bool Several = FAll || FNames.size() > 1;
  FExport.Check(Several, "structures");
  if (Several && !FRoot.empty())
    throw EUsage("--root names a node of one structure, but several structures are exported");
}

/// The structures under their stored names, each once. A name that is none ends the run before anything is written.
std::vector<TStructureId> TExportStructure::Structures(const std::string& Database) const {
  TDSPTable& Table = DSPContainer().Table(Shared.Database);
  TStructureSearch Search(Table, Database);
  std::vector<TDSPListItem> Found;
  if (FAll) Found = StructuresLike(Table, FType, {});
  for (const std::string& Name : FNames) Found.push_back(Search.Find(Name, FType));
  std::vector<TStructureId> Result;
  std::set<std::pair<int, std::string>> Seen;
  for (TDSPListItem& Item : Found)
    if (Seen.insert({Item.ObjectType, Item.ObjectName}).second)
      Result.push_back({Item.ObjectType, std::move(Item.ObjectName)});
  return Result;
}

/// A part has a name of its own, so that it does not take the place of the whole.
std::string TExportStructure::SectionName(const TStructureId& Structure) const {
  if (!FExport.Section.empty()) return FExport.Section;
  return FRoot.empty() ? StructureText(Structure) : StructureText(Structure) + " " + FRoot;
}

int TExportStructure::Run(TSession& Session) {
  TReport Report{"export structure", "exported", Session.Application.DatabaseText(Session.Database()), FExport.Output};
  for (TStructureId& Structure : Structures(Report.Database)) {
    Report.Items.push_back({SectionName(Structure)});
    Report.Items.back().Structure = std::move(Structure);
  }
  if (Report.Items.empty())
    Report.Notes.push_back(Format("there are no structures%s", FType ? Format(" of type %d", *FType) : ""));
  TUOExportDSPStructureInterface Interface;
  Interface.SetRootNode(FRoot);
  const TSectionExport Export{Interface, TSectionRole::Structure, "bytes", [&](std::size_t I) {
                                Interface.SetObjectType(Report.Items[I].Structure->Type);
                                Interface.SetObjectName(Report.Items[I].Structure->Name);
                              }};
  return ExportSections(Session, FExport, Export, Report);
}

}  // namespace

std::unique_ptr<TCommand> MakeExportStructure() { return std::make_unique<TExportStructure>(); }

}  // namespace velkrund
