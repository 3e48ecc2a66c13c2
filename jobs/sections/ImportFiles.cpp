#include "jobs/sections/ImportFiles.h"

#include <algorithm>
#include <numeric>
#include <set>

#include "jobs/generators/GeneratorImport.h"
#include "jobs/resources/ResourceImport.h"
#include "jobs/structures/StructureImport.h"
#include "jobs/tables/TableImport.h"
#include "standalone/dictionary/ScriptRun.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"

namespace velkrund {

namespace {

using TThis = TJobImportFiles;

constexpr TProperty Properties[] = {
    TPolicyRows::ExistingRows,
    TPolicyRows::ExistingStructures,
    TPolicyRows::ExistingObjects,
    TPolicyRows::ExistingTexts,
    TPolicyRows::OnError,
    TPolicyRows::Unfinished,
    TPolicyRows::MissingFields,
    TPolicyRows::RepeatedTables,
    TPolicyRows::Commit,
    TPolicyRows::Triggers,
    TPolicyRows::TableIndexes,
    TPolicyRows::BrokenReferences,
    TPolicyRows::CreateTables,
    TPolicyRows::LongNames,
    TPolicyRows::MadeNames,
    TPolicyRows::AllowMissing,
    TPolicyRows::DryRun,
    TPolicyRows::AllowLoss,
    TPolicyRows::Lenient,
    PropertyOf<&TThis::FileNames>("FileNames", "the files to load, in this order; - is standard input"),
    PropertyOf<&TThis::QueryTarget>("QueryTarget",
                                    "the table that the rows of queries go into; empty: a person is asked"),
    PropertyOf<&TThis::Mapping>("Mapping", "fields of queries with other names in that table: file=table"),
    PropertyOf<&TThis::SetGenerators>("SetGenerators", "move generators backwards too"),
    PropertyOf<&TThis::AddLanguages>("AddLanguages", "add languages that texts are in and the database lacks"),
    PropertyOf<&TThis::CreateDatabase>("CreateDatabase", "make the database when it does not exist"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobImportFiles");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobImportFilesInterface", {&SectionsJobProperties, Properties});

void TJobImportFiles::CheckSettings() const {
  const std::vector<std::string> Kinds(std::begin(GapKinds), std::end(GapKinds));
  for (const std::string& Kind : Policies.AllowMissing)
    if (std::find(Kinds.begin(), Kinds.end(), Kind) == Kinds.end())
      throw ESettingsError(Format("%s: '%s' is no kind of things that can be missing%s", Setting("AllowMissing"), Kind,
                                  ContentHint(Kind, Kinds, "; kinds are ")));
  if (FileNames.empty()) throw ESettingsError(Format("%s names no file", Setting("FileNames")));
  std::set<std::string> Seen;
  for (const std::string& Name : FileNames)
    if (!Seen.insert(Name).second) throw ESettingsError(Format("%s names '%s' twice", Setting("FileNames"), Name));
}

TImportJob::TParts TJobImportFiles::MakeParts() {
  FCreation = std::make_unique<TTableCreation>(Manager(), Policies, DatabaseName);
  TTableImport::TSettings Tables{DatabaseName, DatabaseText()};
  Tables.HasToFit = false;
  Tables.Creation = FCreation.get();
  TStructureImport::TSettings Structures{DatabaseName};
  Structures.Creation = FCreation.get();
  TParts Result;
  TTableImport::TSettings Queries = Tables;
  Queries.TableName = QueryTarget;
  Queries.Mapping = Mapping;
  Result.emplace(TSectionRole::QueryData, std::make_unique<TTableImport>(Manager(), Policies, std::move(Queries)));
  Result.emplace(TSectionRole::GeneratorData,
                 std::make_unique<TGeneratorImport>(Manager(), DatabaseName, SetGenerators));
  Result.emplace(TSectionRole::TableData, std::make_unique<TTableImport>(Manager(), Policies, std::move(Tables)));
  Result.emplace(TSectionRole::Structure,
                 std::make_unique<TStructureImport>(Policies.ExistingStructures, std::move(Structures)));
  const auto Coming = std::make_shared<TComingLanguages>();
  TResourceImport::TSettings Texts{DatabaseName, DatabaseText(), Policies.ExistingTexts};
  Texts.AddLanguages = AddLanguages;
  Result.emplace(TSectionRole::Language,
                 std::make_unique<TLanguageImport>(DatabaseName, Policies.ExistingTexts, Coming));
  Result.emplace(TSectionRole::Resource, std::make_unique<TResourceImport>(std::move(Texts), Coming));
  return Result;
}

std::vector<int> TJobImportFiles::Choose(TInputFile& Input) {
  std::vector<int> Result(static_cast<std::size_t>(Input.File().Sections().Count()));
  std::iota(Result.begin(), Result.end(), 0);
  return Result;
}

}  // namespace velkrund
