#include "jobs/generators/ImportGenerators.h"

#include "jobs/files/SectionChoice.h"
#include "jobs/generators/GeneratorImport.h"

namespace velkrund {

namespace {

using TThis = TJobImportGenerators;

constexpr TProperty Properties[] = {
    TPolicyRows::OnError,
    TPolicyRows::Unfinished,
    TPolicyRows::Commit,
    TPolicyRows::DryRun,
    PropertyOf<&TThis::FileName>("FileName", "the file to read; - is standard input"),
    PropertyOf<&TThis::Sections>("Sections", "names or indexes of the sections; empty: all generator data sections"),
    PropertyOf<&TThis::SetGenerators>("SetGenerators", "move generators backwards too"),
    PropertyOf<&TThis::CreateDatabase>("CreateDatabase", "make the database when it does not exist"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobImportGenerators");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobImportGeneratorsInterface", {&SectionsJobProperties, Properties});

TImportJob::TParts TJobImportGenerators::MakeParts() {
  TParts Result;
  Result.emplace(TSectionRole::GeneratorData,
                 std::make_unique<TGeneratorImport>(Manager(), DatabaseName, SetGenerators));
  return Result;
}

std::vector<int> TJobImportGenerators::Choose(TInputFile& Input) {
  const TSectionChoice Choice{TSectionRole::GeneratorData, "generator data", Sections, Input.Name()};
  return ChosenSections(Input.File().Sections(), Choice, FOutcome.Notes);
}

}  // namespace velkrund
