#include "velkrund/platform/structures/DSPFormManager.h"

namespace velkrund {

namespace {

/// Takes the first name off the beginning of a full name that is not empty.
std::string_view TakeName(std::string_view& FullName) {
  const std::size_t End = FullName.find(DSPNameSeparator);
  const std::string_view Name = FullName.substr(0, End);
  FullName.remove_prefix(End == std::string_view::npos ? FullName.size() : End + 1);
  return Name;
}

}  // namespace

bool TDSPFormManager::SavePureStructureEx(bool, TStringList*) { return SavePureStructure(); }

TDSPNode* TDSPFormManager::FindSection(std::string_view FullName) {
  TDSPNode* Node = &FRoot;
  while (Node && !FullName.empty()) Node = Node->FindNode(TakeName(FullName));
  return Node;
}

TDSPNode& TDSPFormManager::CreateSection(std::string_view FullName) {
  TDSPNode* Node = &FRoot;
  while (!FullName.empty()) {
    const std::string_view Name = TakeName(FullName);
    TDSPNode* const Below = Node->FindNode(Name);
    Node = Below ? Below : &Node->AddNode(Name);
  }
  return *Node;
}

}  // namespace velkrund
