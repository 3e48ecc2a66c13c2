#include "jobs/dictionary/ObjectCreation.h"

#include "jobs/dictionary/SectionTree.h"
#include "standalone/dictionary/Layout.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "velkrund/eif/Section.h"
#include "velkrund/platform/dictionary/DicDatabase.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

const char* KeyOf(int ObjectType) {
  if (ObjectType == GeneratorObjectType) return "M_Velkrund_Jobs_TheGenerator";
  return ObjectType == ViewObjectType ? "M_Velkrund_Jobs_TheView" : "M_Velkrund_Jobs_TheProcedure";
}

TLText TextOf(const TStructureId& Structure) { return LText(KeyOf(Structure.Type), Structure.Name); }

template <typename TDescription>
TDescription Named(TDescription Description, const std::string& Name) {
  NameAfter(Description, Name);
  return Description;
}

/// Of objects that the engine makes; others are kept in the catalogue.
std::vector<TScriptStatement> StatementsOf(const TConnection& Connection, const TStructureId& Structure,
                                           const TDSPNode& Tree, bool IsThere) {
  const TScriptWriter& Scripts = Connection.Scripts();
  if (Structure.Type == ViewObjectType) return Scripts.View(Named(ReadView(Tree), Structure.Name), IsThere).Statements;
  if (Structure.Type == GeneratorObjectType) {
    if (IsThere || !Connection.Capabilities().Generators) return {};
    return Scripts.Generator(Named(ReadGenerator(Tree), Structure.Name), std::nullopt).Statements;
  }
  if (!Connection.Capabilities().Procedures) return {};
  const bool Selects = Structure.Type == SelectStoredProcObjectType;
  return Scripts.Procedure(Named(ReadProcedure(Tree, Selects), Structure.Name), IsThere).Statements;
}

}  // namespace

void TObjectCreation::AddStructure(TInputFile& Input, int Index) {
  const TEISection& Section = Input.File().Sections()[Index];
  const auto Type = Section.FindParam("ObjectType"), Name = Section.FindParam("ObjectName");
  const std::optional<std::int32_t> Number = Type ? StrToInt32(*Type) : std::nullopt;
  if (!Number || !Name || !TUORecreateContainer::OurObjectType(*Number) || Find(*Number, *Name)) return;
  TEntry Entry{{*Number, *Name}, ObjectExists(DicDBContainer().Database(FDatabaseName), *Number, *Name), {}};
  if (FPolicies.DryRun)
    if (const std::optional<TDSPNode> Tree = TreeOfSection(FManager, Input, Index)) try {
        Entry.Statements =
            StatementsOf(FManager.Databases().Connection(FDatabaseName), Entry.Structure, *Tree, Entry.IsThere);
      } catch (const Exception&) {
        // The run itself says what is wrong.
      }
  FPlaces.emplace(std::pair(*Number, LowerCase(*Name)), FEntries.size());
  FEntries.push_back(std::move(Entry));
}

const TObjectCreation::TEntry* TObjectCreation::Find(int Type, const std::string& Name) const {
  const auto Found = FPlaces.find(std::pair(Type, LowerCase(Name)));
  return Found == FPlaces.end() ? nullptr : &FEntries[Found->second];
}

std::vector<TLText> TObjectCreation::Missing() const {
  std::vector<TLText> Result;
  for (const TEntry& Entry : FEntries)
    if (!Entry.IsThere) Result.push_back(TextOf(Entry.Structure));
  return Result;
}

/// Whoever replaces structures means the objects, too.
TExisting TObjectCreation::Existing() const {
  return FPolicies.ExistingObjects == TExisting::Ask ? FPolicies.ExistingStructures : FPolicies.ExistingObjects;
}

bool TObjectCreation::SetUp(TRecreateOperation& Operation, int ObjectType) {
  const TEntry* const Entry = Find(ObjectType, Operation.ObjectName);
  const bool IsThere = Entry && Entry->IsThere;
  const bool HasGoodName = ObjectType != ViewObjectType || IsThere || FLongNames.MayMakeView(Operation.ObjectName);
  if ((!IsThere && FDeclined) || !HasGoodName) {
    FStored.push_back(TextOf({ObjectType, Operation.ObjectName}));
    return false;
  }
  Operation.TakesLongNames = true;
  Operation.OverwriteAsk.FAlwaysAsk = true;
  Operation.OverwriteAsk.FCallback = [this](TAskObject& Ask, TUtilOperation*) { Answer(static_cast<TYesNoAsk&>(Ask)); };
  return true;
}

void TObjectCreation::Answer(TYesNoAsk& Ask) {
  if (Existing() != TExisting::Ask) {
    Ask.FYes = Existing() != TExisting::Skip;
    return;
  }
  const TAnswer Given = FQuestion.Ask({TLText(Ask.fAskCallbackString),
                                       {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Cancel},
                                       TPolicy::ExistingObjects});
  Ask.FYes = Given == TAnswer::Yes;
}

std::vector<TPlanStep> TObjectCreation::Steps() const {
  std::vector<TPlanStep> Result;
  for (const TEntry& Entry : FEntries) {
    if (Entry.IsThere ? Existing() == TExisting::Skip : FDeclined) continue;
    if (Entry.Statements.empty())
      Result.push_back({Format("%s %s", Entry.IsThere ? "change" : "make", TextOf(Entry.Structure).English())});
    for (const TScriptStatement& Statement : Entry.Statements)
      Result.push_back({"make " + Statement.What, {}, Statement.Text});
  }
  return Result;
}

void TObjectCreation::Note(const TStructureId& Structure, TRecreateState State) {
  if (State == TRecreateState::Created) FMade.push_back(TextOf(Structure));
  if (State == TRecreateState::Declined) FLeft.push_back(TextOf(Structure));
}

void TObjectCreation::AddNotes(TOutcome& Outcome) const {
  const auto Add = [&](const char* Key, const std::vector<TLText>& Objects) {
    const auto Count = static_cast<std::int64_t>(Objects.size());
    if (Count > 0) Outcome.Notes.push_back(LCounted(Key, Count, Count, LJoined(Objects)));
  };
  Add("M_Velkrund_Jobs_ObjectsMade", FMade);
  Add("M_Velkrund_Jobs_ObjectsLeft", FLeft);
  Add("M_Velkrund_Jobs_ObjectsStored", FStored);
}

}  // namespace velkrund
