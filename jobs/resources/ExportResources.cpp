#include "jobs/resources/ExportResources.h"

#include <set>

#include "jobs/resources/ResourceNames.h"
#include "jobs/resources/ResourceSearch.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

using TJobSeveral = TJobExportResources;
using TJobSingle = TJobExportSingleResources;

constexpr TProperty Properties[] = {
    PropertyOf<&TJobSeveral::SectionIDs>("SectionIDs", "the sections of strings to save; empty: all of the database"),
    PropertyOf<&TJobSeveral::Languages>("Languages", "the languages to save; empty: all of the database"),
    PropertyOf<&TJobSeveral::Names>("Names", "for one section: the names of the strings to save; empty: all"),
};

constexpr TProperty SingleProperties[] = {
    PropertyOf<&TJobSingle::SectionID>("SectionID", "the section whose ID the keys leave out"),
    PropertyOf<&TJobSingle::SectionIDs>("SectionIDs", "the sections whose strings are saved"),
    PropertyOf<&TJobSingle::Language>("Language", "the language of the texts"),
};

}  // namespace

constinit const TUtilOperationDescriptor TJobSeveral::Descriptor =
    OperationDescriptor<TJobSeveral>("TJobExportResources");
constinit const TInterfaceDescriptor TJobSeveral::Interface =
    TJobInterface<TJobSeveral>::Describe("TJobExportResourcesInterface", {&ExportJobProperties, Properties});
constinit const TUtilOperationDescriptor TJobSingle::Descriptor =
    OperationDescriptor<TJobSingle>("TJobExportSingleResources");
constinit const TInterfaceDescriptor TJobSingle::Interface =
    TJobInterface<TJobSingle>::Describe("TJobExportSingleResourcesInterface", {&ExportJobProperties, SingleProperties});

void TJobExportResources::CheckSettings() const {
  TExportJob::CheckSettings();
  if (Several() && !Names.empty())
    throw ESettingsError(Format("%s are strings of one section, but several sections are exported", Setting("Names")));
}

std::vector<TItem> TJobExportResources::PlanItems() {
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  FOperation.Languages = LanguagesOf(DatabaseName, DatabaseText(), Languages);
  for (const std::string& Language : FOperation.Languages) RequireKept(TResourceName::Language, Language);
  const TResourceSearch Search(DatabaseName, DatabaseText());
  if (SectionIDs.empty() && Search.All().empty()) FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_NoResources"));
  std::vector<std::string> Wanted = SectionIDs;
  if (Wanted.empty())
    for (const TLSectionInfo& Section : Search.All()) Wanted.push_back(Section.SectionID);
  std::vector<TItem> Result;
  std::set<std::string> Seen;
  for (const std::string& Name : Wanted) {
    const TLSectionInfo* const Found = Search.Look(Name);
    const std::string SectionID = Found ? Found->SectionID : std::string(SectionWithoutSeparator(Name));
    if (!Seen.insert(LowerCase(SectionID)).second) continue;
    TItem& Item = Result.emplace_back();
    Item.Section = SectionName.empty() ? SectionID : SectionName;
    Item.Resource = TTextCounts{SectionID};
    try {
      RequireKept(TResourceName::Section, Search.Find(Name).SectionID);
    } catch (const EResourceMissing&) {
      LeaveOut(Item, std::current_exception());
    }
    if (Found && !Names.empty()) FindNames(SectionID);
  }
  return Result;
}

/// The names as they are stored. Raises an error for one that the section does not have in any of the languages.
void TJobExportResources::FindNames(const std::string& SectionID) {
  TStringList Known;
  for (const std::string& Language : FOperation.Languages)
    LContainer().GetLocalizatorTable(DatabaseName).FillResNames(SectionID, Language, Known);
  FOperation.Names.Clear();
  for (const std::string& Name : Names) {
    const int Index = Known.IndexOf(Name);
    if (Index < 0)
      throw EDatabaseError(Format("The resource '%s' has no string '%s' in the languages that are exported%s",
                                  OnOneLine(SectionID), OnOneLine(Name), NearestHint(Name, Known.Items())),
                           {.Value = Shortened(Name)});
    FOperation.Names.Add(Known[Index]);
  }
}

TExportUtilOperation& TJobExportResources::OperationFor(const TItem& Item) {
  FOperation.SectionID = Item.Resource->SectionID;
  return FOperation;
}

void TJobExportResources::AfterRun(TItem& Item) {
  Item.Resource->Strings = FOperation.Report.Strings;
  Item.Resource->Texts = FOperation.Report.Texts;
}

std::unique_ptr<TEIObject> TJobExportResources::TExport::CreateEIObject() {
  Report = {};
  auto Section = MakeForRelease<TEICommonLResource, TEILResource, TEIOldLResource>();
  Section->DatabaseName = DatabaseName;
  Section->SetSectionID(SectionID);
  Section->Languages = &Languages;
  Section->Resources = Names.Count() > 0 ? &Names : nullptr;
  Section->Counts = &Report;
  return Section;
}

void TJobExportSingleResources::CheckSettings() const {
  TExportJob::CheckSettings();
  Require(Language, "Language");
  Require(SectionID, "SectionID");
  if (SectionIDs.empty()) throw ESettingsError(Setting("SectionIDs") + " names no section");
}

std::vector<TItem> TJobExportSingleResources::PlanItems() {
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  FOperation.Language = LanguagesOf(DatabaseName, DatabaseText(), {Language})[0];
  RequireKept(TResourceName::Language, FOperation.Language);
  RequireKept(TResourceName::Section, SectionID);
  FOperation.SectionID = SectionID;
  FOperation.SectionIDs.Clear();
  for (const TLSectionInfo& Section : TResourceSearch(DatabaseName, DatabaseText()).Those(SectionIDs))
    FOperation.SectionIDs.Add(Section.SectionID);
  TItem Item;
  Item.Section = SectionName.empty() ? SectionID : SectionName;
  Item.Resource = TTextCounts{SectionID, FOperation.Language};
  return {std::move(Item)};
}

void TJobExportSingleResources::AfterRun(TItem& Item) {
  Item.Resource->Strings = FOperation.Report.Strings;
  Item.Resource->Texts = FOperation.Report.Texts;
}

std::unique_ptr<TEIObject> TJobExportSingleResources::TExport::CreateEIObject() {
  Report = {};
  auto Section = MakeForRelease<TEICommonSingleLResource, TEISingleLResource, TEIOldSingleLResource>();
  Section->DatabaseName = DatabaseName;
  Section->SetSectionID(SectionID);
  Section->Language = Language;
  Section->SectionIDs = SectionIDs;
  Section->Counts = &Report;
  return Section;
}

}  // namespace velkrund
