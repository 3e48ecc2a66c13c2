#include "jobs/structures/StructureImport.h"

#include "jobs/policies/Questions.h"
#include "velkrund/dsp/DSPStructure.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

/// The structure that a section names; nothing where its header is faulty.
std::optional<TStructureId> StructureOf(const TEISection& Section) {
  const auto Type = Section.FindParam("ObjectType"), Name = Section.FindParam("ObjectName");
  if (!Type || !Name) return std::nullopt;
  const std::optional<std::int32_t> Number = StrToInt32(*Type);
  if (!Number) return std::nullopt;
  return TStructureId{*Number, *Name};
}

}  // namespace

TStructureImport::TStructureImport(TExisting Existing, TSettings Settings) : FSettings(std::move(Settings)) {
  FAsk.FAlwaysAsk = Existing == TExisting::Ask;
  FAsk.FYes = Existing != TExisting::Skip;
  if (Existing == TExisting::Add) FAsk.FForAll = TDSPImportOverwriteOptions::ioDifference;
}

void TStructureImport::Announce(TInputFile& Input, int Index) {
  if (FSettings.Creation) FSettings.Creation->AddStructure(Input, Index);
}

std::vector<TPlanStep> TStructureImport::Steps(const TItem& Item, std::size_t) const {
  if (!Item.Structure) return {};
  const bool Exists =
      DSPContainer().Table(FSettings.DatabaseName).DSPStructureExist(Item.Structure->Name, Item.Structure->Type);
  if (Exists && !FAsk.FYes) return {};
  return {{Format("%s the structure %s", Exists ? "replace or update" : "add", StructureText(*Item.Structure))}};
}

void TStructureImport::Add(TInputFile& Input, int Index, TItem& Item, std::size_t) {
  Item.Structure = StructureOf(Input.File().Sections()[Index]);
  if (!Item.Structure) return;  // the import says what is wrong with the header
  if (FSettings.ObjectType != 0) Item.Structure->Type = FSettings.ObjectType;
  if (!FSettings.ObjectName.empty()) Item.Structure->Name = FSettings.ObjectName;
  const auto [Place, IsNew] =
      FPlaces.emplace(std::pair(Item.Structure->Type, LowerCase(Item.Structure->Name)), FTargets.size());
  if (IsNew) FTargets.push_back({*Item.Structure});
  ++FTargets[Place->second].Count;
}

void TStructureImport::Settle(TOutcome&) {
  if (FAsk.FAlwaysAsk && !FTargets.empty() && !CanAsk()) RefuseUnanswered();
}

/// Structures that exist, and those that the run loads more than once.
void TStructureImport::RefuseUnanswered() const {
  TDSPTable& Table = DSPContainer().Table(FSettings.DatabaseName);
  std::vector<std::string> Met, Repeated;
  for (const auto& [Structure, Count] : FTargets) {
    if (Table.DSPStructureExist(Structure.Name, Structure.Type))
      Met.push_back(StructureText(Structure));
    else if (Count > 1)
      Repeated.push_back(StructureText(Structure));
  }
  TLText Text;
  if (!Met.empty()) Text = LText("M_Velkrund_Jobs_StructuresThere", LJoinedInShort(Met));
  if (!Repeated.empty()) {
    if (!Text.Empty()) Text += " ";
    Text += LText("M_Velkrund_Jobs_StructuresRepeated", LJoinedInShort(Repeated));
  }
  if (!Text.Empty()) throw EPolicyUnanswered(TPolicy::ExistingStructures, Text);
}

void TStructureImport::Begin(std::size_t, TEIObject& Object) {
  auto* const Section = dynamic_cast<TEIDSPStructureCommon*>(&Object);
  if (!Section) return;
  if (!FSettings.ObjectName.empty()) Section->Item.ObjectName = FSettings.ObjectName;
  if (FSettings.ObjectType != 0) Section->Item.ObjectType = FSettings.ObjectType;
  if (!FSettings.RootNode.empty()) Section->RootNode = FSettings.RootNode;
  Section->ChangeStructureProperties = FSettings.ChangeStructureProperties;
  // What an answer made of these for another structure is not for this one.
  Section->ClearRoot = FSettings.ClearRoot;
  Section->OverwriteOptions = FSettings.OverwriteOptions;
  Section->StrictLines = true;
  Section->KeepNamesakes = true;
  FAsk.FLeftAlone = false;
  Section->SetOverwriteAsk(FAsk);
}

void TStructureImport::End(TItem& Item, const TEIObject*) {
  if (Item.State != TItemState::Done || !FAsk.FLeftAlone) return;
  Item.State = TItemState::LeftOut;
  Item.Note = LText("M_Velkrund_Jobs_StructureIsThere");
}

}  // namespace velkrund
