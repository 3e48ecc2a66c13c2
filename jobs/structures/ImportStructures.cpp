#include "jobs/structures/ImportStructures.h"

#include "jobs/files/SectionChoice.h"
#include "jobs/structures/StructureImport.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

using TThis = TJobImportStructures;
using enum TDSPImportOverwriteOptions;

constexpr std::string_view MergeChoices[] = {"no", "skip", "replace", "difference"};

constexpr TProperty Properties[] = {
    TPolicyRows::ExistingStructures,
    TPolicyRows::OnError,
    TPolicyRows::Unfinished,
    TPolicyRows::Commit,
    TPolicyRows::DryRun,
    TPolicyRows::AllowLoss,
    PropertyOf<&TThis::FileName>("FileName", "the file to read; - is standard input"),
    PropertyOf<&TThis::Sections>("Sections", "names or indexes of the sections to load; empty: all structure sections"),
    PropertyOf<&TThis::ObjectName>("ObjectName", "for one section: the structure to load; empty: the one it names"),
    PropertyOf<&TThis::ObjectType>("ObjectType", "for one section: the type to load it as; 0: the one it names"),
    PropertyOf<&TThis::RootNode>("RootNode", "for one section: the node to load; empty: the one it names"),
    ChoiceOf<&TThis::Merge>("Merge", "load into structures that are there, and what becomes of equal nodes",
                            MergeChoices),
    PropertyOf<&TThis::ClearRoot>("ClearRoot", "empty what is replaced first"),
    PropertyOf<&TThis::ChangeProperties>("ChangeProperties", "store table name, parent object and remarks too"),
    PropertyOf<&TThis::CreateDatabase>("CreateDatabase", "make the database when it does not exist"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobImportStructures");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobImportStructuresInterface", {&SectionsJobProperties, Properties});

void TJobImportStructures::CheckSettings() const {
  Require(FileName, "FileName");
  if (Merge && Policies.ExistingStructures != TExisting::Ask)
    throw ESettingsError(
        Format("%s and %s contradict each other: give one of them", Setting("Merge"), Setting("ExistingStructures")));
  if (!ClearRoot && Existing() != TExisting::Replace)
    throw ESettingsError(Format("%s goes with %s or %s, which say that structures are replaced", Setting("ClearRoot"),
                                Setting("ExistingStructures"), Setting("Merge")));
}

TImportJob::TParts TJobImportStructures::MakeParts() {
  TStructureImport::TSettings Settings{DatabaseName, ObjectName, ObjectType, RootNode};
  Settings.OverwriteOptions = Merge.value_or(ioReplace);
  // The other modes add to what is there.
  Settings.ClearRoot = ClearRoot && Settings.OverwriteOptions == ioReplace;
  Settings.ChangeStructureProperties = ChangeProperties;
  TParts Result;
  Result.emplace(TSectionRole::Structure, std::make_unique<TStructureImport>(Existing(), std::move(Settings)));
  return Result;
}

std::vector<int> TJobImportStructures::Choose(TInputFile& Input) {
  const TSectionChoice Choice{TSectionRole::Structure, "structure", Sections, Input.Name()};
  std::vector<int> Result = ChosenSections(Input.File().Sections(), Choice, FOutcome.Notes);
  if (Result.size() > 1 && (ObjectType != 0 || !ObjectName.empty() || !RootNode.empty()))
    throw ESettingsError(Format("%s, %s and %s are for one section, but %d are to be loaded: choose one with %s",
                                Setting("ObjectType"), Setting("ObjectName"), Setting("RootNode"), Result.size(),
                                Setting("Sections")));
  return Result;
}

}  // namespace velkrund
