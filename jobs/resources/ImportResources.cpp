#include "jobs/resources/ImportResources.h"

#include "jobs/files/SectionChoice.h"
#include "jobs/resources/ResourceImport.h"
#include "jobs/resources/ResourceNames.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

using TResources = TJobImportResources;
using TLanguages = TJobImportLanguages;

constexpr TProperty ResourceProperties[] = {
    TPolicyRows::ExistingTexts,
    TPolicyRows::OnError,
    TPolicyRows::Unfinished,
    TPolicyRows::Commit,
    TPolicyRows::DryRun,
    TPolicyRows::AllowLoss,
    PropertyOf<&TResources::FileName>("FileName", "the file to read; - is standard input"),
    PropertyOf<&TResources::Sections>("Sections",
                                      "names or indexes of the sections to load; empty: all sections of strings"),
    PropertyOf<&TResources::SectionID>("SectionID",
                                       "for one section: the section of the database; empty: the one that it names"),
    PropertyOf<&TResources::Languages>("Languages", "the languages to load; empty: all of the file"),
    PropertyOf<&TResources::AddLanguages>("AddLanguages", "add languages that the database lacks"),
    PropertyOf<&TResources::CreateDatabase>("CreateDatabase", "make the database when it does not exist"),
};

constexpr TProperty LanguageProperties[] = {
    TPolicyRows::ExistingTexts,
    TPolicyRows::OnError,
    TPolicyRows::Unfinished,
    TPolicyRows::Commit,
    TPolicyRows::DryRun,
    TPolicyRows::AllowLoss,
    PropertyOf<&TLanguages::FileName>("FileName", "the file to read; - is standard input"),
    PropertyOf<&TLanguages::Sections>("Sections",
                                      "names or indexes of the sections to load; empty: all language sections"),
    PropertyOf<&TLanguages::CreateDatabase>("CreateDatabase", "make the database when it does not exist"),
};

}  // namespace

constinit const TUtilOperationDescriptor TResources::Descriptor =
    OperationDescriptor<TResources>("TJobImportResources");
constinit const TInterfaceDescriptor TResources::Interface =
    TJobInterface<TResources>::Describe("TJobImportResourcesInterface", {&SectionsJobProperties, ResourceProperties});
constinit const TUtilOperationDescriptor TLanguages::Descriptor =
    OperationDescriptor<TLanguages>("TJobImportLanguages");
constinit const TInterfaceDescriptor TLanguages::Interface =
    TJobInterface<TLanguages>::Describe("TJobImportLanguagesInterface", {&SectionsJobProperties, LanguageProperties});

void TJobImportResources::CheckSettings() const {
  Require(FileName, "FileName");
  if (!SectionID.empty()) RequireKept(TResourceName::Section, SectionID);
}

TImportJob::TParts TJobImportResources::MakeParts() {
  TResourceImport::TSettings Settings{DatabaseName, DatabaseText(), Policies.ExistingTexts};
  Settings.SectionID = SectionID;
  Settings.Languages = Languages;
  Settings.AddLanguages = AddLanguages;
  TParts Result;
  Result.emplace(TSectionRole::Resource,
                 std::make_unique<TResourceImport>(std::move(Settings), std::make_shared<TComingLanguages>()));
  return Result;
}

std::vector<int> TJobImportResources::Choose(TInputFile& Input) {
  const TSectionChoice Choice{TSectionRole::Resource, "localized resource", Sections, Input.Name()};
  std::vector<int> Result = ChosenSections(Input.File().Sections(), Choice, FOutcome.Notes);
  if (Result.size() > 1 && !SectionID.empty())
    throw ESettingsError(Format("%s is for one section, but %d are to be loaded: choose one with %s",
                                Setting("SectionID"), Result.size(), Setting("Sections")));
  return Result;
}

TImportJob::TParts TJobImportLanguages::MakeParts() {
  TParts Result;
  Result.emplace(TSectionRole::Language, std::make_unique<TLanguageImport>(DatabaseName, Policies.ExistingTexts,
                                                                           std::make_shared<TComingLanguages>()));
  return Result;
}

std::vector<int> TJobImportLanguages::Choose(TInputFile& Input) {
  const TSectionChoice Choice{TSectionRole::Language, "language", Sections, Input.Name()};
  return ChosenSections(Input.File().Sections(), Choice, FOutcome.Notes);
}

}  // namespace velkrund
