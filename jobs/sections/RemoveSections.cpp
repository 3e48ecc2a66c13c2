#include "jobs/sections/RemoveSections.h"

#include <algorithm>

#include "jobs/files/FileKind.h"
#include "jobs/files/FileOpening.h"
#include "jobs/files/SectionChoice.h"
#include "jobs/files/SectionRemoval.h"
#include "jobs/policies/Questions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

using TThis = TJobRemoveSections;

constexpr TProperty Properties[] = {
    TPolicyRows::DryRun,
    TPolicyRows::Yes,
    PropertyOf<&TThis::FileName>("FileName", "the file"),
    PropertyOf<&TThis::Indexes>("Indexes", "sections to remove, by index from 0"),
    PropertyOf<&TThis::Names>("Names", "sections to remove, by name"),
    ReadOnlyOf<[](const TThis& Job) { return static_cast<std::int64_t>(Job.Removed().size()); }>(
        "SectionsRemoved", "sections that the last run took out"),
    ReadOnlyOf<&TThis::SectionsLeft>("SectionsLeft", "sections that are left in the file"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobRemoveSections");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobRemoveSectionsInterface", {&JobProperties, Properties});

void TJobRemoveSections::CheckSettings() const {
  Require(FileName, "FileName");
  if (Indexes.empty() && Names.empty())
    throw ESettingsError(Format("say which sections: %s or %s", Setting("Indexes"), Setting("Names")));
  const auto IsDigit = [](char C) { return C >= '0' && C <= '9'; };
  for (const std::string& Index : Indexes)
    if (Index.empty() || !std::all_of(Index.begin(), Index.end(), IsDigit))
      throw ESettingsError(Format("'%s' is not an index; sections are named with %s", Index, Setting("Names")));
  if (IsPipe(FileName))
    throw ESettingsError(Format("'%s' is a pipe: there is nothing to take a section out of", FileName));
}

std::set<int> TJobRemoveSections::Chosen(const TEISectionList& Sections) const {
  std::set<int> Result;
  const TSectionNames Known(Sections);
  for (const std::string& Index : Indexes) Result.insert(TheSection(Known, Index, FileName));
  for (const std::string& Name : Names) {
    const std::vector<int> Found = Known.Named(Name);
    if (Found.size() > 1 && !Policies.Yes && !Policies.DryRun) {
      std::vector<TLText> Texts;
      for (const int Index : Found) Texts.push_back(LSectionText(Sections, Index));
      Ask({LText("M_Velkrund_Jobs_RemoveSeveral", FileName, LJoined(Texts)),
           {TAnswer::Yes, TAnswer::Cancel},
           TPolicy::Yes});
    }
    if (Found.empty()) TheSection(Known, Name, FileName);  // says what there is
    Result.insert(Found.begin(), Found.end());
  }
  return Result;
}

void TJobRemoveSections::Forget() {
  ForgetPlan();
  FRemoved.clear();
  FLeft = 0;
}

void TJobRemoveSections::Run() {
  FFile = FileName;
  TEIFile File(Files());
  File.SetStrictText(false);  // texts are not touched
  File.SetFileName(FileName);
  OpenForSections(File);
  RefuseForeignFile(File, FileName);
  const std::set<int> Going = Chosen(File.Sections());
  for (const int Index : Going) {
    const TEISection& Section = File.Sections()[Index];
    FRemoved.push_back({Index, Section.Name(), std::string(Section.TypeName()), LSectionText(File.Sections(), Index)});
  }
  FLeft = File.Sections().Count() - static_cast<int>(Going.size());
  for (const TRemoved& Section : FRemoved) AddToPlan({"remove " + Section.Text.English()});
  if (!Policies.DryRun) RemoveSections(Files(), File, {Going.begin(), Going.end()}, Canceled());
}

void TJobRemoveSections::Describe(TDocument& Document) const {
  Document.Set("file", FFile);
  Document.Set("removed", TElements{FRemoved.size(), [this](std::size_t Index) {
                                      const TRemoved& Section = FRemoved[Index];
                                      TDocument Entry;
                                      Entry.Set("index", Section.Index);
                                      Entry.Set("name", Section.Name).Set("type", Section.Type);
                                      return Entry;
                                    }});
  Document.Set("sectionsLeft", FLeft);
}

}  // namespace velkrund
