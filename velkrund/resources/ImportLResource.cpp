#include "velkrund/resources/ImportLResource.h"

#include <vector>

#include "velkrund/operations/ListProgress.h"
#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/resources/LUtilErrors.h"
#include "velkrund/resources/SingleLResource.h"

namespace velkrund {

namespace {

using TImport = TUOImportLResource;
using TList = TUOImportLSections;

constexpr TProperty ImportProperties[] = {
    PropertyOf<&TImport::SectionID>("SectionID", "section to load into; empty: the one that the file names"),
    PropertyOf<&TImport::ReadLanguagesOnly>("ReadLanguagesOnly",
                                            "read the section's languages into Languages, and nothing else"),
    PropertyOf<&TImport::Languages>("Languages", "languages to load; empty: all"),
    PropertyOf<&TImport::Resources>("Resources", "names of the strings to load; empty: all"),
    ChoiceOf<&TImport::Overwrite, &TImport::SetOverwrite>("Overwrite", "whether texts that are there are replaced",
                                                          RecreateOverwriteNames),
    ReadOnlyOf<[](const TImport& Import) { return Import.Report().Texts; }>("Texts", "texts written by the last run"),
    ReadOnlyOf<[](const TImport& Import) { return Import.Report().LeftAlone; }>(
        "TextsLeftAlone", "texts that were there, and stay because of an answer"),
};

constexpr TProperty ListProperties[] = {
    PropertyOf<&TList::FSource>("Source", "opened TEIFile to read from"),
    ChoiceOf<&TList::Overwrite, &TList::SetOverwrite>("Overwrite", "whether texts that are there are replaced",
                                                      RecreateOverwriteNames),
    ReadOnlyOf<&TList::Texts>("Texts", "texts written by the last run"),
    ReadOnlyOf<&TList::TextsLeftAlone>("TextsLeftAlone", "texts that were there, and stay because of an answer"),
    ReadOnlyOf<&TList::Failed>("Failed", "sections that could not be loaded"),
};

bool IsOfStrings(TSectionRole Role) { return Role == TSectionRole::Resource || Role == TSectionRole::SingleResource; }

}  // namespace

constinit const TUtilOperationDescriptor TImport::Descriptor = OperationDescriptor<TImport>("TUOImportLResource");
constinit const TUtilOperationDescriptor TList::Descriptor = OperationDescriptor<TList>("TUOImportLSections");
constinit const TInterfaceDescriptor TUOImportLResourceInterface::Descriptor =
    Describe("TUOImportLResourceInterface", ImportProperties);
constinit const TInterfaceDescriptor TUOImportLSectionsInterface::Descriptor =
    Describe("TUOImportLSectionsInterface", ListProperties);

int TUOImportLResource::Execute() {
  FReport = {};
  BeginAsking();
  return TImportUtilOperation::Execute();
}

void TUOImportLResource::InitEIObject(TEIObject& Object) {
  // Nothing can be set for a section whose import is an error anyway.
  if (dynamic_cast<const TEICommonSingleLResource*>(&Object)) return;
  auto* const Found = dynamic_cast<TEICommonLResource*>(&Object);
  if (!Found)
    throw ELUtilError(Format("Can not import localized resource. Section %d holds none, it is of the type '%s'",
                             FSectionNumber, Object.TypeName()));
  TEICommonLResource& Section = *Found;
  Section.DatabaseName = DatabaseName;
  if (!SectionID.empty()) Section.SetSectionID(SectionID);
  Section.ReadLanguagesOnly = ReadLanguagesOnly;
  Section.Languages = ReadLanguagesOnly || Languages.Count() ? &Languages : nullptr;
  Section.Resources = Resources.Count() ? &Resources : nullptr;
  Section.LSection = LSection;
  Section.SetOverwriteAsk(RunAsk());
}

void TUOImportLResource::EndEIObject(const TEIObject& Object) {
  if (const auto* const Section = dynamic_cast<const TEICommonLResource*>(&Object)) FReport = Section->Report();
}

int TUOImportLSections::Execute() {
  if (!FSource) throw EAccessViolation("Access violation: the source of an import operation is not assigned");
  BeginAsking();
  TStringList Names;
  std::vector<int> Sections;
  for (int Index = 0; Index < FSource->Sections().Count(); ++Index) {
    const TEISection& Section = FSource->Sections()[Index];
    if (!IsOfStrings(Section.ObjectClass.Role())) continue;
    Names.Add(Section.Name().empty() ? Section.ParamValue("SectionID") : Section.Name());
    Sections.push_back(Index);
  }
  constexpr TListWords Words{"M_Velkrund_DSPUtils_ErrorOnImportLocalResource", "M_Velkrund_DSPUtils_ContinueImport",
                             true};
  return RunItems(*this, Names, Words, [&](TLItemResult& Result, int Index) {
    TUOImportLResource Operation;
    Operation.Owner = this;
    Operation.DatabaseName = DatabaseName;
    Operation.FSource = FSource;
    Operation.FSectionNumber = Sections[static_cast<std::size_t>(Index)];
    Operation.SetOverwriteAsk(RunAsk());
    Operation.FOnShowProgress = ProgressOfItem(*this, Index, Names.Count());
    const bool Done = Operation.Execute();
    if (Done) Result.Report = Operation.Report();
    return Done;
  });
}

}  // namespace velkrund
