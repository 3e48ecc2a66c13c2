#include "velkrund/resources/DeleteLResources.h"

#include "velkrund/operations/ListProgress.h"
#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/localization/LContainer.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/resources/BulkUpdate.h"

namespace velkrund {

namespace {

using TString = TUODeleteLResource;
using TStrings = TUODeleteLResources;
using TSection = TUODeleteLSection;
using TSections = TUODeleteLSections;

constexpr int MostWithoutBulkUpdate = 10;

constexpr TProperty StringProperties[] = {
    PropertyOf<&TString::StringID>("StringID", "string to delete, in all languages"),
    ReadOnlyOf<&TString::Deleted>("Deleted", "whether the last run has found it"),
};

constexpr TProperty StringsProperties[] = {
    PropertyOf<&TStrings::StringIDs>("StringIDs", "strings to delete, in all languages"),
    ReadOnlyOf<&TStrings::Strings>("Deleted", "how many of them the last run has found"),
    ReadOnlyOf<&TStrings::Failed>("Failed", "strings that could not be deleted"),
};

constexpr TProperty SectionProperties[] = {
    PropertyOf<&TSection::SectionID>("SectionID", "section whose strings are deleted"),
    ReadOnlyOf<&TSection::Deleted>("Deleted", "strings of the last run"),
};

constexpr TProperty SectionsProperties[] = {
    PropertyOf<&TSections::SectionIDs>("SectionIDs", "sections whose strings are deleted"),
    ReadOnlyOf<&TSections::Strings>("Deleted", "strings of the last run"),
    ReadOnlyOf<&TSections::Failed>("Failed", "sections that could not be deleted"),
};

TStringList NamesOf(const std::string& DatabaseName, const std::string& SectionID) {
  TStringList Languages, Names;
  LContainer().GetLanguagesTable(DatabaseName).FillLanguageNames(Languages);
  const auto Texts = LContainer().GetLocalizatorTable(DatabaseName).ReadSection(SectionID, Languages);
  while (Texts->Next()) Names.Add(Texts->Name());
  return Names;
}

}  // namespace

constinit const TUtilOperationDescriptor TString::Descriptor = OperationDescriptor<TString>("TUODeleteLResource");
constinit const TUtilOperationDescriptor TStrings::Descriptor = OperationDescriptor<TStrings>("TUODeleteLResources");
constinit const TUtilOperationDescriptor TSection::Descriptor = OperationDescriptor<TSection>("TUODeleteLSection");
constinit const TUtilOperationDescriptor TSections::Descriptor = OperationDescriptor<TSections>("TUODeleteLSections");
constinit const TInterfaceDescriptor TUODeleteLResourceInterface::Descriptor =
    Describe("TUODeleteLResourceInterface", StringProperties);
constinit const TInterfaceDescriptor TUODeleteLResourcesInterface::Descriptor =
    Describe("TUODeleteLResourcesInterface", StringsProperties);
constinit const TInterfaceDescriptor TUODeleteLSectionInterface::Descriptor =
    Describe("TUODeleteLSectionInterface", SectionProperties);
constinit const TInterfaceDescriptor TUODeleteLSectionsInterface::Descriptor =
    Describe("TUODeleteLSectionsInterface", SectionsProperties);

int TUODeleteLResource::Execute() {
  FDeleted = LContainer().CreateLocalizator(DatabaseName)->DeleteString(StringID);
  return 1;
}

int TUODeleteLResources::Execute() {
  constexpr TListWords Words{"M_Velkrund_LUtils_ErrorOnDeleteLocalResource", "M_Velkrund_LUtils_ContinueDelete", true};
  return RunItems(*this, StringIDs, Words, [this](TLItemResult& Result, int) {
    TUODeleteLResource Operation;
    Operation.Owner = this;
    Operation.DatabaseName = DatabaseName;
    Operation.StringID = Result.Name;
    Operation.Execute();
    Result.Report.Strings = Operation.Deleted() ? 1 : 0;
    return true;
  });
}

int TUODeleteLSection::Execute() {
  FDeleted = 0;
  TLocalizatorTable& Table = LContainer().GetLocalizatorTable(DatabaseName);
  std::int64_t Deleted = 0;
  TTransaction Transaction(DatabaseName, TIsolationLevel::ReadCommitted);
  const TStringList Names = NamesOf(DatabaseName, SectionID);
  for (int Index = 0; Index < Names.Count(); ++Index) {
    ShowProgress(Index, Names.Count(), Names[Index]);
    if (IsCanceled()) return 0;
    if (Table.DeleteString(StringIDOf(SectionID, Names[Index]))) ++Deleted;
  }
  // A bulk update may hold deletions back until somebody reads; they belong into this transaction.
  Table.SectionOf(SectionID);
  Transaction.Commit();
  FDeleted = Deleted;
  return 1;
}

int TUODeleteLSections::Execute() {
  if (SectionIDs.Count() <= MostWithoutBulkUpdate) return DeleteAll();
  TBulkUpdate Update(LContainer().GetLocalizatorTable(DatabaseName));
  const int Result = DeleteAll();
  Update.End();
  return Result;
}

int TUODeleteLSections::DeleteAll() {
  constexpr TListWords Words{"M_Velkrund_LUtils_ErrorOnDeleteLocalSection", "M_Velkrund_LUtils_ContinueDelete", true};
  return RunItems(*this, SectionIDs, Words, [this](TLItemResult& Result, int Index) {
    TUODeleteLSection Operation;
    Operation.Owner = this;
    Operation.DatabaseName = DatabaseName;
    Operation.SectionID = Result.Name;
    Operation.FOnShowProgress = ProgressOfItem(*this, Index, SectionIDs.Count());
    const bool Done = Operation.Execute();
    Result.Report.Strings = Operation.Deleted();
    return Done;
  });
}

}  // namespace velkrund
