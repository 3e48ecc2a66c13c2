#include "standalone/structures/MemoryStructures.h"

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

class TMemoryStructures::TForm final : public TDSPFormManager {
 public:
  explicit TForm(TMemoryStructures& Owner) : FOwner(Owner) {}

  bool LoadPureStructure() override {
    Root().Clear();
    if (const TStored* const Found = FOwner.Stored(ObjectName, ObjectType)) Root().Assign(Found->Tree);
    return true;
  }
  bool SavePureStructure() override {
    FOwner.Made(ObjectName, ObjectType).Tree.Assign(Root());
    return true;
  }

 private:
  TMemoryStructures& FOwner;
};

void TMemoryStructures::Put(TDSPListItem Item, TDSPNode Tree) {
  TStored& Place = Made(Item.ObjectName, Item.ObjectType);
  Place.Item = std::move(Item);
  Place.Tree = std::move(Tree);
}

const TDSPNode* TMemoryStructures::Find(const std::string& ObjectName, int ObjectType) const {
  const auto Found = FStored.find({ObjectType, LowerCase(ObjectName)});
  return Found == FStored.end() ? nullptr : &Found->second.Tree;
}

std::unique_ptr<TDSPFormManager> TMemoryStructures::CreateFormManager(const std::string&) {
  return std::make_unique<TForm>(*this);
}

TMemoryStructures::TStored* TMemoryStructures::Stored(const std::string& ObjectName, int ObjectType) {
  const auto Found = FStored.find({ObjectType, LowerCase(ObjectName)});
  return Found == FStored.end() ? nullptr : &Found->second;
}

TMemoryStructures::TStored& TMemoryStructures::Made(const std::string& ObjectName, int ObjectType) {
  TStored& Result = FStored[{ObjectType, LowerCase(ObjectName)}];
  if (Result.Item.ObjectName.empty()) Result.Item = {ObjectName, ObjectType, {}, {}, {}};
  return Result;
}

bool TMemoryStructures::DSPStructureExist(const std::string& ObjectName, int ObjectType) {
  return Stored(ObjectName, ObjectType) != nullptr;
}

std::optional<TDSPListItem> TMemoryStructures::GetStructureProperties(const std::string& ObjectName, int ObjectType) {
  const TStored* const Found = Stored(ObjectName, ObjectType);
  return Found ? std::optional(Found->Item) : std::nullopt;
}

void TMemoryStructures::ChangeStructureProperties(const TDSPListItem& Item) {
  Made(Item.ObjectName, Item.ObjectType).Item = Item;
}

TDSPList TMemoryStructures::List() {
  TDSPList Result;
  for (const auto& [Key, Structure] : FStored) Result.Add(Structure.Item);
  return Result;
}

bool TMemoryStructures::DeleteStructure(const std::string& ObjectName, int ObjectType) {
  return FStored.erase({ObjectType, LowerCase(ObjectName)}) > 0;
}

}  // namespace velkrund
