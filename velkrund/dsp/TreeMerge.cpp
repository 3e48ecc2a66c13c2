#include "velkrund/dsp/TreeMerge.h"

#include <unordered_map>
#include <vector>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// The children of one node by name, so that a long list can be merged into a long list.
class TChildIndex {
 public:
  explicit TChildIndex(TDSPNode& Parent) : FParent(Parent) {
    for (int Index = 0; Index < Parent.GetCount(); ++Index) Enter(Parent.GetNodes(Index));
  }

  TDSPNode* Find(std::string_view Name) const {
    const auto Found = FNodes.find(LowerCase(Name));
    return Found == FNodes.end() ? nullptr : Found->second;
  }
  TDSPNode& Add(std::string_view Name) {
    TDSPNode& Node = FParent.AddNode(Name);
    Enter(Node);
    return Node;
  }
  void Delete(const TDSPNode& Node) {
    const std::string Name = LowerCase(Node.Name());
    FNodes.erase(Name);
    FParent.DeleteNode(FParent.GetIndexOf(Node));
    TDSPNode* const Namesake = FTwins ? FParent.FindNode(Name) : nullptr;
    if (Namesake) Enter(*Namesake);
  }

 private:
  void Enter(TDSPNode& Node) { FTwins |= !FNodes.emplace(LowerCase(Node.Name()), &Node).second; }

  TDSPNode& FParent;
  std::unordered_map<std::string, TDSPNode*> FNodes;  // in lower case; the first of each name
  bool FTwins = false;
};

/// Two nodes without values whose children are being merged.
struct TLevel {
  const TDSPNode& Source;
  TChildIndex Targets;
  int Next = 0;
};

class TMerger {
 public:
  explicit TMerger(TDSPImportOverwriteOptions Overwrite)
      : FSkips(Overwrite == TDSPImportOverwriteOptions::ioSkip),
        FErases(Overwrite == TDSPImportOverwriteOptions::ioDifference) {}

  void MergeChildren(const TDSPNode& Source, TDSPNode& Target);
  void Merge(const TDSPNode& Source, TDSPNode& Parent);

 private:
  TDSPNode* MergeInto(TChildIndex& Targets, const TDSPNode& Source) const;
  void Copy(const TDSPNode& Source, TDSPNode& Target) const;

  const bool FSkips, FErases;
};

void TMerger::Copy(const TDSPNode& Source, TDSPNode& Target) const {
  Target.Assign(Source);
  if (FErases) Target.EraseDeleted();
}

// Returns the target whose children are still to be merged; null when there is nothing more to do.
TDSPNode* TMerger::MergeInto(TChildIndex& Targets, const TDSPNode& Source) const {
  TDSPNode* const Target = Targets.Find(Source.Name());
  if (!Target) {
    Copy(Source, Targets.Add(Source.Name()));
  } else if (Target->HasValue()) {
    if (!FSkips) Copy(Source, *Target);
  } else if (!Source.HasValue()) {
    return Target;
  } else if (FErases && Source.ValueType() == TDSPValueType::Deleted) {
    Targets.Delete(*Target);
  } else if (!FSkips) {
    Target->Assign(Source);
  }
  return nullptr;
}

void TMerger::MergeChildren(const TDSPNode& Source, TDSPNode& Target) {
  std::vector<TLevel> Levels;
  Levels.push_back({Source, TChildIndex(Target)});
  while (!Levels.empty()) {
    TLevel& Level = Levels.back();
    if (Level.Next == Level.Source.GetCount()) {
      Levels.pop_back();
      continue;
    }
    const TDSPNode& Node = Level.Source.GetNodes(Level.Next++);
    if (TDSPNode* const Below = MergeInto(Level.Targets, Node)) Levels.push_back({Node, TChildIndex(*Below)});
  }
}

void TMerger::Merge(const TDSPNode& Source, TDSPNode& Parent) {
  TChildIndex Targets(Parent);
  if (TDSPNode* const Target = MergeInto(Targets, Source)) MergeChildren(Source, *Target);
}

void ClearTarget(TDSPNode& Target) {
  if (TDSPNode* const Parent = Target.Parent())
    Parent->DeleteNode(Parent->GetIndexOf(Target));
  else
    Target.Clear();
}

// The parent of the node of that full name, made where it is missing; the node itself is not made.
TDSPNode& ParentOf(TDSPFormManager& Manager, const std::string& FullName) {
  if (TDSPNode* const Node = Manager.FindSection(FullName)) return *Node->Parent();
  TDSPNode& Node = Manager.CreateSection(FullName);
  TDSPNode& Parent = *Node.Parent();
  Parent.DeleteNode(Parent.GetIndexOf(Node));
  return Parent;
}

}  // namespace

void MergeTree(TDSPFormManager& Manager, const TDSPNode& Tree, const TDSPMergeOptions& Options) {
  TDSPNode* const Target = Manager.FindSection(Options.RootNode);
  if (Target && Options.ClearRoot) ClearTarget(*Target);
  TMerger Merger(Options.Overwrite);
  if (Options.RootNode.empty())
    Merger.MergeChildren(Tree, Manager.Root());
  else
    Merger.Merge(Tree, ParentOf(Manager, Options.RootNode));
}

}  // namespace velkrund
