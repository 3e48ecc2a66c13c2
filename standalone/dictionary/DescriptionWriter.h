#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/dictionary/DescriptionWords.h"
#include "velkrund/platform/dictionary/EngineWords.h"
#include "velkrund/platform/structures/DSPNode.h"

namespace velkrund {

/// Puts what describes an item below its node. What is as usual is not written. Has the operations of
/// TDescriptionReader, so that one walk over an item writes and reads it.
class TDescriptionWriter {
 public:
  static constexpr bool Reads = false;

  /// Node: borrowed.
  explicit TDescriptionWriter(TDSPNode& Node) : FNode(Node) {}

  void Own(const std::string& Value) { SetText(FNode, Value); }
  void Layout(int Number);
  /// That is there even when it is empty.
  void Name(std::string_view Node, const std::string& Value) { SetText(FNode.AddNode(Node), Value); }
  void Text(std::string_view Node, const std::string& Value);
  void Text(std::string_view Node, const std::optional<std::string>& Value);
  void Number(std::string_view Node, const std::optional<int>& Value);
  void Flag(std::string_view Node, bool Value);
  /// One of a few values, by its word; Usual is not written.
  template <typename T>
  void Word(std::string_view Node, const T& Value, const TWords<T>& Words, std::optional<T> Usual) {
    if (Value == Usual) return;
    Name(Node, std::string(Words[static_cast<std::size_t>(Value)]));
  }
  /// Each: with the writer of the item's node, and the item.
  template <typename T, typename TEach>
  void List(std::string_view Node, std::string_view Item, const std::vector<T>& Items, TEach Each) {
    ListOf(
        Node, Items, [&](const T&) { return Item; }, Each);
  }
  /// NameOf: the name of an item's node. Items of one name are together, in the order of Names.
  template <typename T, typename TNameOf, typename TEach>
  void Lists(std::string_view Node, const std::vector<std::string_view>& Names, const std::vector<T>& Items,
             TNameOf NameOf, TEach Each) {
    std::vector<T> Ordered;
    for (const std::string_view Name : Names)
      std::ranges::copy_if(Items, std::back_inserter(Ordered), [&](const T& Item) { return NameOf(Item) == Name; });
    ListOf(Node, Ordered, NameOf, Each);
  }
  /// A node with some of the item's own below it. There: whether it is needed.
  template <typename T, typename TEach>
  void Below(std::string_view Node, const T& Value, const TWords<T>& Words, bool There, TEach Each) {
    if (!There) return;
    TDescriptionWriter Writer(FNode.AddNode(Node));
    Writer.Own(std::string(Words[static_cast<std::size_t>(Value)]));
    Each(Writer);
  }
  /// Of items whose words are a word or statement; Lines: the name of the list of lines.
  void EngineWords(const TDicEngineWords& Words, std::string_view Lines);
  /// Of items whose words are lines.
  void EngineLines(const TDicEngineWords& Words);

 private:
  template <typename T, typename TNameOf, typename TEach>
  void ListOf(std::string_view Node, const std::vector<T>& Items, TNameOf NameOf, TEach Each) {
    if (Items.empty()) return;
    TDSPNode& List = FNode.AddNode(Node);
    SetNumber(List, static_cast<int>(Items.size()));
    for (const T& Item : Items) {
      TDescriptionWriter Writer(List.AddNode(NameOf(Item)));
      Each(Writer, Item);
    }
  }

  static void SetText(TDSPNode& Node, std::string_view Text);
  static void SetNumber(TDSPNode& Node, int Number);
  static void SetLines(TDSPNode& Node, const std::vector<std::string>& Lines);
  static void AddParts(TDSPNode& Node, const TDicWords& Words, std::string_view Lines);

  TDSPNode& FNode;
};

}  // namespace velkrund
