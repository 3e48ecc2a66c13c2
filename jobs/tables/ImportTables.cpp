#include "jobs/tables/ImportTables.h"

#include "jobs/files/SectionChoice.h"
#include "jobs/tables/TableImport.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

using TThis = TImportRowsJob;

constexpr TProperty Properties[] = {
    TPolicyRows::ExistingRows,
    TPolicyRows::OnError,
    TPolicyRows::Unfinished,
    TPolicyRows::MissingFields,
    TPolicyRows::RepeatedTables,
    TPolicyRows::Commit,
    TPolicyRows::Triggers,
    TPolicyRows::TableIndexes,
    TPolicyRows::BrokenReferences,
    TPolicyRows::DryRun,
    TPolicyRows::AllowLoss,
    TPolicyRows::Lenient,
    PropertyOf<&TThis::FileName>("FileName", "the file to read; - is standard input"),
    PropertyOf<&TThis::Sections>("Sections", "names or indexes of the sections to load; empty: all of their kind"),
    PropertyOf<&TThis::TableName>("TableName", "for one section: the table to load; empty: the one that it names"),
    PropertyOf<&TThis::Mapping>("Mapping", "fields with other names in the table: file=table"),
    PropertyOf<&TThis::Fields>("Fields", "the only fields to load, as the file has them; empty: all"),
    PropertyOf<&TThis::CreateDatabase>("CreateDatabase", "make the database when it does not exist"),
};

}  // namespace

constinit const TPropertyTable ImportRowsProperties{&SectionsJobProperties, Properties};

constinit const TUtilOperationDescriptor TJobImportTables::Descriptor =
    OperationDescriptor<TJobImportTables>("TJobImportTables");
constinit const TInterfaceDescriptor TJobImportTables::Interface =
    TJobInterface<TJobImportTables>::Describe("TJobImportTablesInterface", TPropertyTable{&ImportRowsProperties, {}});
TImportJob::TParts TImportRowsJob::MakeParts() {
  TTableImport::TSettings Settings{DatabaseName, DatabaseText(), TableName, Mapping, Fields};
  Settings.AreChosen = !Sections.empty();
  TParts Result;
  Result.emplace(FRole, std::make_unique<TTableImport>(Manager(), Policies, std::move(Settings)));
  return Result;
}

/// What else the file holds is named in the report.
std::vector<int> TImportRowsJob::Choose(TInputFile& Input) {
  const TSectionChoice Choice{FRole, FContent, Sections, Input.Name()};
  std::vector<int> Result = ChosenSections(Input.File().Sections(), Choice, FOutcome.Notes);
  if (Result.size() > 1 && !TableName.empty())
    throw ESettingsError(Format("%s names one table, but %d sections are to be loaded: choose one with %s",
                                Setting("TableName"), Result.size(), Setting("Sections")));
  return Result;
}

}  // namespace velkrund
