#include "velkrund/dsp/TreeMerge.h"

#include <memory>
#include <unordered_set>
#include <utility>
#include <vector>

#include "velkrund/platform/ormtools/NameIndex.h"

namespace velkrund {

namespace {

using TNodes = std::vector<std::unique_ptr<TDSPNode>>;

/// The children of one node by name, so that a long list can be merged into a long list. What is deleted is not found
/// any more; it goes when the list is done with.
class TChildIndex {
  struct TNameAt {
    const TDSPNode* Parent;
    std::string_view operator()(int Place) const { return Parent->GetNodes(Place).Name(); }
  };

 public:
  /// KeepsNamesakes: what is merged finds each child once, the first of a name by the first, the second by the second,
  /// and what is added is not found; otherwise all of one name find the first that is there.
  TChildIndex(TDSPNode& Parent, bool KeepsNamesakes) : FParent(&Parent), FKeepsNamesakes(KeepsNamesakes) {
    for (int Place = 0; Place < Parent.GetCount(); ++Place) Enter(Place);
  }

  /// The child that a node of that name is to be merged into; null when there is none.
  TDSPNode* Take(std::string_view Name) {
    const int First = FNames.Find(Name, NameAt());
    const int Place = First < 0 ? First : FNamesakes[static_cast<std::size_t>(First)].Taken;
    if (Place < 0) return nullptr;
    if (FKeepsNamesakes) Pass(First);
    return &FParent->GetNodes(Place);
  }
  void Add(std::unique_ptr<TDSPNode> Node) {
    FParent->AddNode(std::move(Node));
    if (!FKeepsNamesakes) Enter(FParent->GetCount() - 1);
  }
  /// Node: one that was taken.
  void Delete(const TDSPNode& Node) {
    if (!FKeepsNamesakes) Pass(FNames.Find(Node.Name(), NameAt()));
    FGone.insert(&Node);
  }
  void RemoveDeleted() {
    if (FGone.empty()) return;
    std::vector<bool> Places(static_cast<std::size_t>(FParent->GetCount()));
    for (int Place = 0; Place < FParent->GetCount(); ++Place)
      Places[static_cast<std::size_t>(Place)] = FGone.contains(&FParent->GetNodes(Place));
    FParent->DeleteNodes(Places);
  }

 private:
  struct TNamesakes {
    int Next;   // the next place of the same name; -1: none
    int Taken;  // of the first of a name: the place that is found now; -1: none any more
    int Last;   // of the first of a name
  };

  void Enter(int Place) {
    FNamesakes.push_back({-1, Place, Place});
    const int First = FNames.Add(Place, NameAt());
    if (First == Place) return;
    TNamesakes& Known = FNamesakes[static_cast<std::size_t>(First)];
    FNamesakes[static_cast<std::size_t>(std::exchange(Known.Last, Place))].Next = Place;
    if (Known.Taken < 0) Known.Taken = Place;
  }
  void Pass(int First) {
    int& Taken = FNamesakes[static_cast<std::size_t>(First)].Taken;
    Taken = FNamesakes[static_cast<std::size_t>(Taken)].Next;
  }

  TNameAt NameAt() const { return {FParent}; }

  TDSPNode* FParent;
  bool FKeepsNamesakes;
  TNameIndex FNames;
  std::vector<TNamesakes> FNamesakes;  // by place
  std::unordered_set<const TDSPNode*> FGone;
};

/// The children of two nodes without values, which are being merged.
struct TLevel {
  TNodes Sources;
  TChildIndex Targets;
  std::size_t Next = 0;
};

/// Nodes move over with all that is below them: copies would be a second tree in memory.
class TMerger {
 public:
  explicit TMerger(const TDSPMergeOptions& Options)
      : FSkips(Options.Overwrite == TDSPImportOverwriteOptions::ioSkip),
        FErases(Options.Overwrite == TDSPImportOverwriteOptions::ioDifference),
        FKeepsNamesakes(Options.KeepNamesakes) {}

  /// Sources: nodes of no tree, to be merged into children of Parent.
  void Merge(TNodes Sources, TDSPNode& Parent) const;

 private:
  TDSPNode* MergeInto(TChildIndex& Targets, std::unique_ptr<TDSPNode>& Source) const;

  const bool FSkips, FErases, FKeepsNamesakes;
};

// Returns the target whose children are still to be merged; null when there is nothing more to do.
TDSPNode* TMerger::MergeInto(TChildIndex& Targets, std::unique_ptr<TDSPNode>& Source) const {
  TDSPNode* const Target = Targets.Take(Source->Name());
  if (!Target) {
    if (FErases) Source->EraseDeleted();
    Targets.Add(std::move(Source));
  } else if (Target->HasValue()) {
    if (FSkips) return nullptr;
    Target->TakeContent(*Source);
    if (FErases) Target->EraseDeleted();
  } else if (!Source->HasValue()) {
    return Target;
  } else if (FErases && Source->ValueType() == TDSPValueType::Deleted) {
    Targets.Delete(*Target);
  } else if (!FSkips) {
    Target->TakeContent(*Source);
  }
  return nullptr;
}

void TMerger::Merge(TNodes Sources, TDSPNode& Parent) const {
  std::vector<TLevel> Levels;
  Levels.push_back({std::move(Sources), TChildIndex(Parent, false)});
  while (!Levels.empty()) {
    TLevel& Level = Levels.back();
    if (Level.Next == Level.Sources.size()) {
      Level.Targets.RemoveDeleted();
      Levels.pop_back();
      continue;
    }
    auto Node = std::move(Level.Sources[Level.Next++]);
    if (TDSPNode* const Below = MergeInto(Level.Targets, Node))
      Levels.push_back({Node->ReleaseNodes(), TChildIndex(*Below, FKeepsNamesakes)});
  }
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

void MergeTree(TDSPFormManager& Manager, TDSPNode Tree, const TDSPMergeOptions& Options) {
  TDSPNode* const Target = Manager.FindSection(Options.RootNode);
  if (Target && Options.ClearRoot) ClearTarget(*Target);
  const TMerger Merger(Options);
  if (Options.RootNode.empty()) return Merger.Merge(Tree.ReleaseNodes(), Manager.Root());
  TNodes Tops;
  Tops.push_back(std::make_unique<TDSPNode>(std::move(Tree)));
  Merger.Merge(std::move(Tops), ParentOf(Manager, Options.RootNode));
}

}  // namespace velkrund
