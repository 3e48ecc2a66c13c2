#include "velkrund/dsp/TreeMerge.h"

#include <unordered_map>
#include <utility>
#include <vector>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// The children of one node by name, so that a long list can be merged into a long list. What is deleted is not found
/// any more; it goes when the list is done with.
class TChildIndex {
 public:
  explicit TChildIndex(TDSPNode& Parent) : FParent(Parent) {
    FNodes.reserve(static_cast<std::size_t>(Parent.GetCount()));
    for (int Place = 0; Place < Parent.GetCount(); ++Place) Enter(Place);
  }

  TDSPNode* Find(std::string_view Name) const {
    const auto Found = FNodes.find(LowerCase(Name));
    return Found == FNodes.end() ? nullptr : &FParent.GetNodes(Found->second.First);
  }
  TDSPNode& Add(std::string_view Name) {
    TDSPNode& Node = FParent.AddNode(Name);
    Enter(FParent.GetCount() - 1);
    return Node;
  }
  /// Node: one that was found.
  void Delete(const TDSPNode& Node) {
    const auto Found = FNodes.find(LowerCase(Node.Name()));
    TPlaces& Places = Found->second;
    FGone.resize(static_cast<std::size_t>(FParent.GetCount()));
    FGone[static_cast<std::size_t>(Places.First)] = true;
    if (Places.First == Places.Last)
      FNodes.erase(Found);
    else
      Places.First = FNamesakes.at(Places.First);
  }
  void RemoveDeleted() { FParent.DeleteNodes(FGone); }

 private:
  struct TPlaces {
    int First, Last;
  };

  void Enter(int Place) {
    const auto [Found, IsNew] = FNodes.emplace(LowerCase(FParent.GetNodes(Place).Name()), TPlaces{Place, Place});
    if (!IsNew) FNamesakes[std::exchange(Found->second.Last, Place)] = Place;
  }

  TDSPNode& FParent;
  std::unordered_map<std::string, TPlaces> FNodes;  // in lower case; the first is the one that counts
  std::unordered_map<int, int> FNamesakes;          // of a place, the next one of the same name
  std::vector<bool> FGone;                          // by place
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
      Level.Targets.RemoveDeleted();
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
  Targets.RemoveDeleted();
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
