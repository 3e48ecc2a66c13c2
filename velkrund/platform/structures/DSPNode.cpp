#include "velkrund/platform/structures/DSPNode.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

TDSPNode::TDSPNode(TDSPNode&& Other) noexcept { *this = std::move(Other); }

TDSPNode& TDSPNode::operator=(TDSPNode&& Other) noexcept {
  if (this == &Other) return *this;
  // Everything is taken out of Other before what may hold it goes.
  TNodes Nodes = std::move(Other.FNodes);
  Other.FNodes.clear();
  FName = std::move(Other.FName);
  FType = std::exchange(Other.FType, TDSPValueType::None);
  FValue = std::move(Other.FValue);
  TakeNodes(std::move(Nodes));
  return *this;
}

void TDSPNode::TakeNodes(TNodes Nodes) {
  for (const auto& Node : Nodes) Node->FParent = this;
  FNodes.swap(Nodes);
  Dismantle(std::move(Nodes));
}

// Node by node with a list in place of the call stack: a chain of nodes may be longer than that.
void TDSPNode::Dismantle(TNodes Nodes) {
  while (!Nodes.empty()) {
    const std::unique_ptr<TDSPNode> Node = std::move(Nodes.back());
    Nodes.pop_back();
    for (auto& Below : Node->FNodes) Nodes.push_back(std::move(Below));
    Node->FNodes.clear();
  }
}

std::string TDSPNode::GetFullName() const {
  std::vector<const TDSPNode*> Path;
  for (const TDSPNode* At = this; At->FParent; At = At->FParent) Path.push_back(At);
  std::string Name;
  for (auto At = Path.rbegin(); At != Path.rend(); ++At) {
    if (At != Path.rbegin()) Name += DSPNameSeparator;
    Name += (*At)->FName;
  }
  return Name;
}

std::size_t TDSPNode::Checked(int Index) const {
  if (Index < 0 || Index >= GetCount()) throw EListError(Format("Node index %d is out of bounds", Index));
  return static_cast<std::size_t>(Index);
}

TDSPNode& TDSPNode::GetNodes(int Index) const { return *FNodes[Checked(Index)]; }

TDSPNode* TDSPNode::FindNode(std::string_view Name) const {
  for (const auto& Node : FNodes)
    if (SameText(Node->FName, Name)) return Node.get();
  return nullptr;
}

TDSPNode& TDSPNode::AddNode(std::string_view Name) { return AddNode(std::make_unique<TDSPNode>(Name)); }

TDSPNode& TDSPNode::AddNode(std::unique_ptr<TDSPNode> Node) {
  Node->FParent = this;
  return *FNodes.emplace_back(std::move(Node));
}

std::vector<std::unique_ptr<TDSPNode>> TDSPNode::ReleaseNodes() {
  for (const auto& Node : FNodes) Node->FParent = nullptr;
  return std::exchange(FNodes, {});
}

void TDSPNode::DeleteNode(int Index) { FNodes.erase(FNodes.begin() + static_cast<std::ptrdiff_t>(Checked(Index))); }

void TDSPNode::DeleteNodes(const std::vector<bool>& Gone) {
  std::size_t Kept = 0;
  for (std::size_t Index = 0; Index < FNodes.size(); ++Index)
    if (Index >= Gone.size() || !Gone[Index]) FNodes[Kept++].swap(FNodes[Index]);
  FNodes.resize(Kept);
}

int TDSPNode::GetIndexOf(const TDSPNode& Node) const {
  for (std::size_t Index = 0; Index < FNodes.size(); ++Index)
    if (FNodes[Index].get() == &Node) return static_cast<int>(Index);
  return -1;
}

void TDSPNode::Assign(const TDSPNode& Source) {
  if (this == &Source) return;
  TDSPNode Copy(FName);
  std::vector<std::pair<const TDSPNode*, TDSPNode*>> Pending{{&Source, &Copy}};
  while (!Pending.empty()) {
    const auto [From, To] = Pending.back();
    Pending.pop_back();
    To->FType = From->FType;
    To->FValue = From->FValue;
    To->FNodes.reserve(From->FNodes.size());
    for (const auto& Node : From->FNodes) Pending.emplace_back(Node.get(), &To->AddNode(Node->FName));
  }
  *this = std::move(Copy);
}

void TDSPNode::TakeContent(TDSPNode& Source) {
  FType = std::exchange(Source.FType, TDSPValueType::None);
  FValue = std::move(Source.FValue);
  TakeNodes(std::exchange(Source.FNodes, {}));
}

void TDSPNode::Sort() {
  const auto Before = [](const std::unique_ptr<TDSPNode>& A, const std::unique_ptr<TDSPNode>& B) {
    const int Order = CompareText(A->FName, B->FName);
    return Order != 0 ? Order < 0 : A->FName < B->FName;
  };
  if (!std::is_sorted(FNodes.begin(), FNodes.end(), Before)) std::stable_sort(FNodes.begin(), FNodes.end(), Before);
}

void TDSPNode::EraseDeleted() {
  std::vector<TDSPNode*> Pending{this};
  while (!Pending.empty()) {
    TNodes& Nodes = Pending.back()->FNodes;
    Pending.pop_back();
    std::erase_if(Nodes, [](const auto& Node) { return Node->FType == TDSPValueType::Deleted; });
    for (const auto& Node : Nodes) Pending.push_back(Node.get());
  }
}

void TDSPNode::Clear() {
  SetValueType(TDSPValueType::None);
  Dismantle(std::exchange(FNodes, {}));
}

bool operator==(const TDSPNode& A, const TDSPNode& B) {
  std::vector<std::pair<const TDSPNode*, const TDSPNode*>> Pending{{&A, &B}};
  while (!Pending.empty()) {
    const auto [First, Second] = Pending.back();
    Pending.pop_back();
    if (First->FName != Second->FName || First->FType != Second->FType || !(First->FValue == Second->FValue) ||
        First->FNodes.size() != Second->FNodes.size())
      return false;
    for (std::size_t Index = 0; Index < First->FNodes.size(); ++Index)
      Pending.emplace_back(First->FNodes[Index].get(), Second->FNodes[Index].get());
  }
  return true;
}

}  // namespace velkrund
