#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/dictionary/DescriptionWords.h"
#include "velkrund/platform/dictionary/EngineWords.h"
#include "velkrund/platform/structures/DSPNode.h"

namespace velkrund {

/// Takes what describes an item from below its node, whatever the order of the nodes; what is absent stays as it was.
/// Raises EDSPError naming the node that is not as it should be.
class TDescriptionReader {
 public:
  static constexpr bool Reads = true;

  /// Node: borrowed.
  explicit TDescriptionReader(const TDSPNode& Node)
      : FNode(Node), FRead(static_cast<std::size_t>(Node.GetCount()), false) {}

  bool IsOf(std::string_view Name) const { return IsNamed(FNode, Name); }
  void Own(std::string& Value) const { Value = TextOf(FNode); }
  /// Nothing that is newer than Number.
  void Layout(int Number);
  void Name(std::string_view Node, std::string& Value) { Value = TextOf(Needed(Node)); }
  void Text(std::string_view Node, std::string& Value);
  void Text(std::string_view Node, std::optional<std::string>& Value);
  void Number(std::string_view Node, std::optional<int>& Value);
  void Flag(std::string_view Node, bool& Value);
  template <typename T>
  void Word(std::string_view Node, T& Value, const TWords<T>& Words, std::optional<T> Usual) {
    const TDSPNode* const Found = Usual ? TakeLeaf(Node) : &Needed(Node);
    if (Found) Value = static_cast<T>(IndexOfWord(*Found, Words));
  }
  template <typename T, typename TEach>
  void List(std::string_view Node, std::string_view Item, std::vector<T>& Items, TEach Each) {
    const TDSPNode* const Found = Take(Node);
    if (Found) ReadItems(*Found, Item, CheckedCount(*Found, {Item}), Items, Each);
  }
  template <typename T, typename TNameOf, typename TEach>
  void Lists(std::string_view Node, const std::vector<std::string_view>& Names, std::vector<T>& Items, TNameOf,
             TEach Each) {
    const TDSPNode* const Found = Take(Node);
    if (!Found) return;
    CheckedCount(*Found, Names);
    for (const std::string_view Name : Names) ReadItems(*Found, Name, 0, Items, Each);
  }
  template <typename T, typename TEach>
  void Below(std::string_view Node, T& Value, const TWords<T>& Words, bool, TEach Each) {
    const TDSPNode* const Found = Take(Node);
    if (!Found) return;
    Value = static_cast<T>(IndexOfWord(*Found, Words));
    TDescriptionReader Reader(*Found);
    Each(Reader);
    Reader.Finish();
  }
  void EngineWords(TDicEngineWords& Words, std::string_view Lines);
  void EngineLines(TDicEngineWords& Words);
  /// Nothing else may be there.
  void Finish() const;

 private:
  template <typename T, typename TEach>
  static void ReadItems(const TDSPNode& List, std::string_view Name, std::size_t Count, std::vector<T>& Items,
                        TEach Each) {
    Items.reserve(Items.size() + Count);
    for (int I = 0; I < List.GetCount(); ++I) {
      const TDSPNode& Node = List.GetNodes(I);
      if (!IsNamed(Node, Name)) continue;
      TDescriptionReader Reader(Node);
      Each(Reader, Items.emplace_back());
      Reader.Finish();
    }
  }

  static bool IsNamed(const TDSPNode& Node, std::string_view Name);
  static std::string TextOf(const TDSPNode& Node);
  static int NumberOf(const TDSPNode& Node);
  static std::size_t IndexOfWord(const TDSPNode& Node, std::span<const std::string_view> Words);
  /// Of a list whose items have those names, and that holds nothing else.
  static std::size_t CheckedCount(const TDSPNode& List, const std::vector<std::string_view>& Names);
  static std::vector<std::string> LinesOf(const TDSPNode& List);

  /// The only child of that name; null when there is none.
  const TDSPNode* Take(std::string_view Name);
  /// One that has none below it.
  const TDSPNode* TakeLeaf(std::string_view Name);
  const TDSPNode& Needed(std::string_view Name);
  void TakeParts(TDicWords& Words);

  const TDSPNode& FNode;
  std::vector<bool> FRead;  // which of its children
};

}  // namespace velkrund
