#include "jobs/resources/DeleteTexts.h"

#include "jobs/policies/MissingSources.h"
#include "jobs/policies/Questions.h"
#include "jobs/resources/ResourceSearch.h"
#include "jobs/resources/StoredStrings.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Wording.h"
#include "velkrund/resources/BulkUpdate.h"
#include "velkrund/resources/DeleteLResources.h"

namespace velkrund {

namespace {

using TSections = TJobDeleteResources;
using TStrings = TJobDeleteStrings;

constexpr TProperty SectionProperties[] = {
    PropertyOf<&TSections::SectionIDs>("SectionIDs", "the sections whose strings are deleted"),
    TPolicyRows::MissingSources,
    TPolicyRows::OnError,
    TPolicyRows::DryRun,
    TPolicyRows::Yes,
};

constexpr TProperty StringProperties[] = {
    PropertyOf<&TStrings::StringIDs>("StringIDs", "the whole IDs of the strings to delete"),
    TPolicyRows::MissingSources,
    TPolicyRows::OnError,
    TPolicyRows::DryRun,
    TPolicyRows::Yes,
};

/// Asks whether all of that goes, unless it is said beforehand.
void Agree(const TPolicies& Policies, const std::vector<TLText>& Whats) {
  if (Policies.Yes) return;
  const TLText What = LJoinedInShort(Whats);
  if (!CanAsk()) throw EPolicyUnanswered(TPolicy::Yes, LText("M_Velkrund_Jobs_ToBeDeleted", What));
  Ask({LText("M_Velkrund_Jobs_Delete", What), {TAnswer::Yes, TAnswer::Cancel}, TPolicy::Yes});
}

/// What is missing is left out, or passed on.
void LeaveOut(TItem& Item, TMissingSources& Missing, const std::exception& Error) {
  if (!Missing.LeavesOut(Error)) throw;
  Item.State = TItemState::LeftOut;
  Item.Note = TLText(Error.what());
}

}  // namespace

constinit const TUtilOperationDescriptor TSections::Descriptor = OperationDescriptor<TSections>("TJobDeleteResources");
constinit const TInterfaceDescriptor TSections::Interface =
    TJobInterface<TSections>::Describe("TJobDeleteResourcesInterface", {&SectionsJobProperties, SectionProperties});
constinit const TUtilOperationDescriptor TStrings::Descriptor = OperationDescriptor<TStrings>("TJobDeleteStrings");
constinit const TInterfaceDescriptor TStrings::Interface =
    TJobInterface<TStrings>::Describe("TJobDeleteStringsInterface", {&SectionsJobProperties, StringProperties});

void TJobDeleteResources::CheckSettings() const {
  if (SectionIDs.empty()) throw ESettingsError(Setting("SectionIDs") + " names no section");
}

void TJobDeleteResources::Run() {
  FOutcome = {LText("M_Velkrund_Jobs_Deleted"), DatabaseText(), {}};
  const TResourceSearch Search(DatabaseName, DatabaseText());
  TMissingSources Missing(Policies.MissingSources);
  std::vector<TLText> Whats;
  TStringList Seen;
  for (const std::string& Named : SectionIDs) {
    const TLSectionInfo* const Found = Search.Look(Named);
    const std::string SectionID = Found ? Found->SectionID : Named;
    if (Seen.IndexOf(SectionID) >= 0) continue;
    Seen.Add(SectionID);
    TItem& Item = FOutcome.Items.emplace_back();
    Item.Source = Item.Section = SectionID;
    Item.Resource = TTextCounts{SectionID};
    try {
      const TLSectionInfo& Section = Search.Find(Named);
      Item.Resource->Strings = Section.Strings;
      Item.Resource->Texts = Section.Texts;
      Whats.push_back(LText("M_Velkrund_Jobs_ResourceWith", OnOneLine(SectionID),
                            LCounted("M_Velkrund_Jobs_Strings", Section.Strings, Section.Strings),
                            LCounted("M_Velkrund_Jobs_Texts", Section.Texts, Section.Texts)));
    } catch (const EResourceMissing& Error) {
      LeaveOut(Item, Missing, Error);
    }
  }
  if (Policies.DryRun)
    return PlanAll([](const TItem& Item) {
      return Format("delete the resource '%s': %s, %s", OnOneLine(Item.Source),
                    Counted(Item.Resource->Strings, "string"), Counted(Item.Resource->Texts, "text"));
    });
  if (Whats.empty()) return;
  Agree(Policies, Whats);
  DoAll([this](TItem& Item) { DeleteOne(Item); });
}

void TJobDeleteResources::DeleteOne(TItem& Item) {
  TUODeleteLSection Operation;
  Operation.Owner = this;
  Operation.DatabaseName = DatabaseName;
  Operation.SectionID = Item.Source;
  Operation.FOnShowProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    ShowPart(Current, Total, Name);
  };
  TBulkUpdate Update(LContainer().GetLocalizatorTable(DatabaseName));
  const int Result = Operation.Execute();
  Update.End();
  if (Result == 0) throw EAbort("cancelled");
  Item.Resource->Strings = Operation.Deleted();
}

void TJobDeleteStrings::CheckSettings() const {
  if (StringIDs.empty()) throw ESettingsError(Setting("StringIDs") + " names no string");
}

void TJobDeleteStrings::Run() {
  FOutcome = {LText("M_Velkrund_Jobs_Deleted"), DatabaseText(), {}};
  TLocalizatorTable& Table = LContainer().GetLocalizatorTable(DatabaseName);
  TMissingSources Missing(Policies.MissingSources);
  std::vector<TLText> Whats;
  TStringList Seen;
  for (const std::string& StringID : StringIDs) {
    if (Seen.IndexOf(StringID) >= 0) continue;
    Seen.Add(StringID);
    TItem& Item = FOutcome.Items.emplace_back();
    Item.Source = Item.Section = StringID;
    const auto Section = Table.SectionOf(StringID);
    Item.Resource = TTextCounts{Section.value_or("")};
    Item.Resource->IsOneString = true;
    try {
      if (!Section)
        throw EStringMissing(Format("There is no string '%s' in the database %s", OnOneLine(StringID), DatabaseText()));
      Whats.push_back(LText("M_Velkrund_Jobs_TheString", OnOneLine(StringID)));
    } catch (const EStringMissing& Error) {
      LeaveOut(Item, Missing, Error);
    }
  }
  if (Policies.DryRun)
    return PlanAll([](const TItem& Item) { return Format("delete the string '%s'", OnOneLine(Item.Source)); });
  if (Whats.empty()) return;
  Agree(Policies, Whats);
  DoAll([this](TItem& Item) {
    if (!LContainer().CreateLocalizator(DatabaseName)->DeleteString(Item.Source))
      throw EStringMissing(Format("Somebody else has deleted the string '%s'", OnOneLine(Item.Source)));
    Item.Resource->Strings = 1;
  });
}

}  // namespace velkrund
