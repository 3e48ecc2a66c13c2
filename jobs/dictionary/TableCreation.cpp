#include "jobs/dictionary/TableCreation.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "jobs/dictionary/SectionTree.h"
#include "jobs/policies/Questions.h"
#include "standalone/databases/ReadTransaction.h"
#include "standalone/dictionary/Layout.h"
#include "standalone/dictionary/LoweredNames.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "velkrund/dictionary/TableMaker.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

namespace {

std::vector<std::string> NamesOf(const std::vector<std::string>& Tables) {
  std::vector<std::string> Result;
  for (const std::string& Table : Tables) Result.push_back(Format("'%s'", Table));
  return Result;
}

TScriptGap KeyToNowhere(const TDicTableDescription& Table, const TDicForeignKey& Key) {
  return {"references", Format("the foreign key of table '%s' to the table '%s'", Table.FullName(), Key.Table),
          "that table is neither in the files nor in the database"};
}

}  // namespace

/// What the run has decided takes the place of questions.
class TTableCreation::TMaker final : public TTableMaker {
 public:
  TMaker(TTableCreation& Owner, TUtilOperation& Operation, TIsUseless IsUseless)
      : TTableMaker(Operation, Owner.FDatabaseName), FOwner(Owner), FIsUseless(std::move(IsUseless)) {}

 private:
  /// What was declined beforehand is no error, but left out.
  void Make(const std::vector<std::string>& Names) override {
    if (!FOwner.FDeclined) TTableMaker::Make(Names);
  }
  bool MayMake(const std::vector<TDicTableDescription>&) override { return true; }
  bool MayGoByName(const TDicTableDescription& Table) override {
    const TEntry* const Entry = FOwner.EntryOf(Table.FullName());
    return !Entry || !Entry->IsCancelled;
  }
  bool CanMake(const TDicTableDescription& Table) override {
    const TEntry* const Entry = FOwner.EntryOf(Table.FullName());
    return !Entry || !Entry->IsNone;
  }
  void Prepare(TDicTableDescription& Table) override {
    if (FOwner.FPolicies.Names == TMadeNames::Lower) {
      std::vector<TScriptGap> Gaps;
      Table = FOwner.Named(std::move(Table), Gaps);
      FOwner.FDictionary.Gaps().Take(Gaps);
      StoreDescription(DatabaseName(), Table);
    }
    std::erase_if(Table.ForeignKeys, [&](const TDicForeignKey& Key) {
      const bool Goes = !FOwner.IsReachable(Key);
      if (Goes) FOwner.FDictionary.Gaps().Take({KeyToNowhere(Table, Key)});
      return Goes;
    });
  }
  void HasMade(const TDicTableDescription& Table) override { FOwner.FMade.push_back(Table.FullName()); }
  bool CommitsSteps() const override { return FOwner.FPolicies.Commit == TCommit::Each; }
  void WillComplete(const TDicTableDescription& Table) override { FOwner.FCompleted.push_back(Table.FullName()); }
  void HasDropped(const TDicTableDescription& Table) override { std::erase(FOwner.FMade, Table.FullName()); }
  bool IsUseless(const TDicTableDescription& Table) override { return FIsUseless(Table.FullName()); }
  void MakeRest(const TMade& Made) override;

  TTableCreation& FOwner;
  const TIsUseless FIsUseless;
};

/// Rows that refer to nothing stay where they are let in; the key is made for rows to come.
void TTableCreation::TMaker::MakeRest(const TMade& Made) {
  try {
    TTransaction Transaction(DatabaseName());
    TTableMaker::MakeRest(Made);
    return Transaction.Commit();
  } catch (const EDatabaseError& Error) {
    const bool IsAllowed = FOwner.FPolicies.BrokenReferences == TBrokenReferencePolicy::Allow;
    if (Error.Info().Code != TErrorCode::References || !IsAllowed) throw;
  }
  TMade Unchecked = Made;
  for (TDicForeignKey& Key : Unchecked.Description.ForeignKeys) Key.NotChecked = true;
  TTableMaker::MakeRest(Unchecked);
  FOwner.FUnchecked.push_back(Made.Description.FullName());
}

TTableCreation::TTableCreation(TStandaloneManager& Manager, const TPolicies& Policies, std::string DatabaseName)
    : FManager(Manager),
      FPolicies(Policies),
      FDatabaseName(std::move(DatabaseName)),
      FGaps(Policies),
      FDictionary(FGaps.Dictionary()),
      FLongNames(Policies.LongNames),
      FObjects(Manager, Policies, FDatabaseName, FLongNames) {}

void TTableCreation::AddStructure(TInputFile& Input, int Index) {
  const TEISection& Section = Input.File().Sections()[Index];
  FObjects.AddStructure(Input, Index);
  const auto Type = Section.FindParam("ObjectType"), Name = Section.FindParam("ObjectName");
  if (!Type || !Name || *Type != std::to_string(TableObjectType)) return;
  const bool StaysStored = FPolicies.ExistingStructures == TExisting::Skip;
  if (StaysStored && DSPContainer().Table(FDatabaseName).DSPStructureExist(*Name, TableObjectType)) return;
  const std::optional<TDSPNode> Tree = TreeOfSection(FManager, Input, Index);
  if (!Tree) return;
  // Before what may be passed over: that the database cannot be read is no fault of the section.
  const bool IsThere = FManager.Databases().Connection(FDatabaseName).Schema().FindTable(*Name).has_value();
  try {
    TEntry Entry;
    Entry.Description = ReadTable(*Tree);
    NameAfter(Entry.Description, *Name);
    Entry.Description = Named(std::move(Entry.Description), Entry.Gaps);
    Entry.IsThere = IsThere;
    FEntries[LowerCase(*Name)] = std::move(Entry);
  } catch (const EAbort&) {
    throw;
  } catch (const Exception&) {
    // The import of the section meets the same error, or nobody needs its tree to describe a table.
  }
}

TDicTableDescription TTableCreation::Named(TDicTableDescription Table, std::vector<TScriptGap>& Gaps) const {
  if (FPolicies.Names == TMadeNames::Keep) return Table;
  return WithLoweredNames(std::move(Table), FManager.Databases().Connection(FDatabaseName).Scripts().Engine(), Gaps);
}

const TDicTableDescription* TTableCreation::Find(const std::string& Table) {
  const std::string Key = LowerCase(Table);
  auto Found = FEntries.find(Key);
  if (Found == FEntries.end()) {
    TEntry Entry;
    Entry.IsThere = FManager.Databases().Connection(FDatabaseName).Schema().FindTable(Table).has_value();
    if (!Entry.IsThere && !FDictionary.GetDicTable(FDatabaseName).GetTableInfo(Table, Entry.Description))
      return nullptr;
    Entry.Description = Named(std::move(Entry.Description), Entry.Gaps);
    Found = FEntries.emplace(Key, std::move(Entry)).first;
  }
  return Found->second.IsThere ? nullptr : &Found->second.Description;
}

const TTableCreation::TEntry* TTableCreation::EntryOf(const std::string& Table) const {
  const auto Found = FEntries.find(LowerCase(Table));
  return Found == FEntries.end() ? nullptr : &Found->second;
}

std::vector<const TTableCreation::TEntry*> TTableCreation::ToBeMade() const {
  std::vector<const TEntry*> Result;
  for (const auto& [Key, Entry] : FEntries)
    if (!FDeclined && !Entry.IsThere && !Entry.IsCancelled && !Entry.IsNone) Result.push_back(&Entry);
  return Result;
}

std::vector<TTableCreation::TEntry*> TTableCreation::Missing() {
  std::vector<TEntry*> Result;
  for (auto& [Key, Entry] : FEntries)
    if (!Entry.IsThere) Result.push_back(&Entry);
  return Result;
}

void TTableCreation::Settle(TOutcome& Outcome) {
  if (std::exchange(FIsSettled, true)) return;
  const std::vector<TEntry*> Tables = Missing();
  if (Tables.empty() && FObjects.Missing().empty()) return;
  AskFor(Tables);
  if (FDeclined) FObjects.Decline();
  if (Tables.empty()) return;
  if (!FDeclined) {
    for (TEntry* const Table : Tables) Table->IsCancelled = !FLongNames.MayMakeTable(Table->Description);
    return CheckScripts(Tables);
  }
  std::vector<std::string> Names;
  for (const TEntry* Table : Tables) Names.push_back(Table->Description.FullName());
  const auto Count = static_cast<std::int64_t>(Names.size());
  Outcome.Notes.push_back(LCounted("M_Velkrund_Jobs_TablesDeclined", Count, Count, Joined(NamesOf(Names))));
}

void TTableCreation::AskFor(const std::vector<TEntry*>& Tables) {
  FDeclined = FPolicies.CreateTables == TCreateTables::No;
  if (FPolicies.CreateTables != TCreateTables::Ask) return;
  std::vector<TLText> Names;
  for (const TEntry* Table : Tables) Names.emplace_back(Format("'%s'", Table->Description.FullName()));
  const char* const Key = Names.empty() ? "M_Velkrund_Jobs_MissingObjects" : "M_Velkrund_Jobs_MissingTables";
  for (TLText& Object : FObjects.Missing()) Names.push_back(std::move(Object));
  const TLText Text = LText(Key, LJoinedInShort(Names));
  if (!CanAsk()) throw EPolicyUnanswered(TPolicy::CreateTables, Text);
  FDeclined = Ask({LText("M_Velkrund_Jobs_MakeThem", Text),
                   {TAnswer::Yes, TAnswer::No, TAnswer::Cancel},
                   TPolicy::CreateTables}) == TAnswer::No;
}

bool TTableCreation::IsReachable(const TDicForeignKey& Key) {
  const std::string Name = Key.FullTable();
  const auto Entry = FEntries.find(LowerCase(Name));
  if (Entry != FEntries.end() && !Entry->second.IsThere) return !Entry->second.IsCancelled;
  return FManager.Databases().Connection(FDatabaseName).Schema().FindTable(Name).has_value();
}

/// All that is in the way, of all tables at once.
void TTableCreation::CheckScripts(const std::vector<TEntry*>& Tables) {
  std::vector<TScriptGap> Refused, OfNone;
  std::vector<std::string> Problems;
  std::map<std::string, std::string> Makers;  // of names, the tables that they come with
  const auto Take = [&](const TScriptGap& Gap) {
    if (!FDictionary.Gaps().Allows(Gap)) Refused.push_back(Gap);
  };
  // What many tables ask the database for is found at once then.
  TReadTransaction Moment(FManager.Databases(), FDatabaseName);
  for (TEntry* const Table : Tables) {
    if (Table->IsCancelled) continue;
    const TDicTableDescription& Description = Table->Description;
    std::for_each(Table->Gaps.begin(), Table->Gaps.end(), Take);
    for (const TDicForeignKey& Key : Description.ForeignKeys)
      if (!IsReachable(Key)) Take(KeyToNowhere(Description, Key));
    try {
      const std::string Pattern = FDictionary.GetCreateTablePatternString(
          FDictionary.GetPatternName(Description.FullName(), FDatabaseName), FDatabaseName);
      const TScript Script = FDictionary.Script(FDatabaseName, Description, Pattern, TTableScriptPart::All);
      std::for_each(Script.Gaps.begin(), Script.Gaps.end(), Take);
      for (const std::string& Made : Script.Makes)
        if (const auto [Other, IsNew] = Makers.emplace(Made, Description.FullName()); !IsNew)
          Problems.push_back(
              Format("'%s' comes with the name of a table, index, key or sequence that '%s' comes with too; rename one",
                     Description.FullName(), Other->second));
      Table->IsNone = Script.Statements.empty();
      if (Table->IsNone) OfNone.insert(OfNone.end(), Script.Gaps.begin(), Script.Gaps.end());
    } catch (const EDatabaseError& Error) {
      Problems.emplace_back(Error.what());
      Moment.Renew();
    }
  }
  if (!Problems.empty())
    throw EDatabaseError(Format("%s cannot be made: %s", Counted(static_cast<std::int64_t>(Problems.size()), "table"),
                                Joined(Problems)));
  if (!Refused.empty()) throw EGap(std::move(Refused));
  FDictionary.Gaps().Take(OfNone);
}

void TTableCreation::AddSteps(TTableScriptPart Part, std::vector<TPlanStep>& Steps) const {
  for (const TEntry* const Entry : ToBeMade()) {
    const std::string Name = Entry->Description.FullName();
    const std::string Pattern =
        FDictionary.GetCreateTablePatternString(FDictionary.GetPatternName(Name, FDatabaseName), FDatabaseName);
    TDicTableDescription Table = Entry->Description;
    if (Part == TTableScriptPart::Table) Table.Indexes.clear();
    for (const TScriptStatement& Statement : FDictionary.Script(FDatabaseName, Table, Pattern, Part).Statements)
      Steps.push_back({"make " + Statement.What, {}, Statement.Text});
  }
}

std::vector<TPlanStep> TTableCreation::StepsBefore() const {
  std::vector<TPlanStep> Result;
  AddSteps(TTableScriptPart::Table, Result);
  return Result;
}

std::vector<TPlanStep> TTableCreation::StepsBehind() const {
  std::vector<TPlanStep> Result;
  for (const TEntry* const Entry : ToBeMade())
    for (const TScriptStatement& Statement : FDictionary.IndexScript(FDatabaseName, Entry->Description).Statements)
      Result.push_back({"make " + Statement.What, {}, Statement.Text});
  AddSteps(TTableScriptPart::Rest, Result);
  for (TPlanStep& Step : FObjects.Steps()) Result.push_back(std::move(Step));
  return Result;
}

std::unique_ptr<TMissingTables> TTableCreation::Maker(TUtilOperation& Operation, TIsUseless IsUseless) {
  return std::make_unique<TMaker>(*this, Operation, std::move(IsUseless));
}

void TTableCreation::AddNotes(TOutcome& Outcome, bool Stays) {
  if (!Stays) return;
  const auto Add = [&](const char* Key, const std::vector<std::string>& Tables) {
    const auto Count = static_cast<std::int64_t>(Tables.size());
    if (Count > 0) Outcome.Notes.push_back(LCounted(Key, Count, Count, Joined(NamesOf(Tables))));
  };
  Add("M_Velkrund_Jobs_TablesMade", FMade);
  FObjects.AddNotes(Outcome);
  FLongNames.AddNote(Outcome.Notes);
  std::vector<std::string> Waiting, Completed = FCompleted;
  const auto Waits = [this](const std::string& Table) {
    return FDictionary.StageOf(FDatabaseName, Table) != TTableStage::Complete;
  };
  if (FPolicies.Commit == TCommit::Each)
    for (const std::vector<std::string>& Tables : {FMade, FCompleted})
      std::copy_if(Tables.begin(), Tables.end(), std::back_inserter(Waiting), Waits);
  std::erase_if(Completed,
                [&](const std::string& Table) { return std::ranges::find(Waiting, Table) != Waiting.end(); });
  Add("M_Velkrund_Jobs_TablesWait", Waiting);
  Add("M_Velkrund_Jobs_TablesCompleted", Completed);
  for (const std::string& Table : FUnchecked) Outcome.Notes.push_back(LText("M_Velkrund_Jobs_Unchecked", Table));
  for (TLText& Note : FGaps.TakeNotes()) Outcome.Notes.push_back(std::move(Note));
}

}  // namespace velkrund
