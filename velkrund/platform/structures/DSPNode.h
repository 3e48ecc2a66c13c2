#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velkrund/platform/ormtools/Variant.h"
#include "velkrund/platform/structures/DSPValueType.h"

namespace velkrund {

/// Between the names in the full name of a node.
inline constexpr char DSPNameSeparator = '\\';
/// Levels of a tree in files and documents. An indented text of a tree grows with the square of its depth, and many
/// programs go down a document by calling themselves; no structure that anybody writes comes near.
inline constexpr int DSPDeepestTree = 1000;

/// A node of a structure's tree: a name, a typed value, and children in an order, which it owns. Names may repeat; they
/// are looked up ignoring case, and the first one is found. No operation recurses, so that a tree may be as deep as
/// memory allows. Used by one thread at a time.
class TDSPNode {
 public:
  explicit TDSPNode(std::string_view Name = {}) : FName(Name) {}
  /// Takes name, value and children; the new node has no parent.
  TDSPNode(TDSPNode&& Other) noexcept;
  /// The same, in this node's place under its own parent. Other may be a descendant.
  TDSPNode& operator=(TDSPNode&& Other) noexcept;
  TDSPNode(const TDSPNode&) = delete;
  TDSPNode& operator=(const TDSPNode&) = delete;
  ~TDSPNode() { Dismantle(std::move(FNodes)); }

  const std::string& Name() const { return FName; }
  void SetName(std::string_view Name) { FName = Name; }
  /// Null for a root.
  TDSPNode* Parent() const { return FParent; }
  /// The names from below the root down to this node; empty for a root.
  std::string GetFullName() const;

  TDSPValueType ValueType() const { return FType; }
  bool HasValue() const { return FType != TDSPValueType::None; }
  /// Changes the type and sets the value to zero: an empty text, FALSE, midnight of 1899-12-30, NULL for Variant.
  void SetValueType(TDSPValueType Type);
  const TKvVariant& Value() const { return FValue; }
  /// Value has to fit the type (FitsType), else EDSPError. One that is moved in has to own its bytes.
  void SetValue(TKvVariant Value);

  // The value as something else, where that makes sense; otherwise EDSPError that names the node.
  /// The text of any value; 8-bit text is decoded from the code page.
  std::string GetAsString() const;
  /// A boolean, or whether a number is not zero.
  bool GetAsBoolean() const;
  /// A number; dates and times as day numbers since 1899-12-30.
  double GetAsDouble() const;
  TDateTime GetAsDateTime() const;
  TCurrency GetAsCurrency() const;
  /// The bytes of a text in the code page, '?' for characters that it lacks.
  std::string GetAsANSIString() const;
  /// Valid until the value changes.
  std::string_view GetAsBinary() const;

  int GetCount() const { return static_cast<int>(FNodes.size()); }
  /// Index: 0 .. GetCount - 1, else EListError.
  TDSPNode& GetNodes(int Index) const;
  /// The first child of that name; null when there is none.
  TDSPNode* FindNode(std::string_view Name) const;
  /// Adds a child behind the others; it stays where it is in memory.
  TDSPNode& AddNode(std::string_view Name);
  TDSPNode& AddNode(std::unique_ptr<TDSPNode> Node);
  /// Hands the children over, which have no parent then.
  std::vector<std::unique_ptr<TDSPNode>> ReleaseNodes();
  /// Index as for GetNodes.
  void DeleteNode(int Index);
  /// Removes the children at whose place Gone is true; those beyond its end stay.
  void DeleteNodes(const std::vector<bool>& Gone);
  /// The position of that very child; -1 when it is none.
  int GetIndexOf(const TDSPNode& Node) const;

  /// Makes value and children those of Source, copied. The name stays. Source may be a part of this tree.
  void Assign(const TDSPNode& Source);
  /// The same, but takes them: Source keeps its name alone. It is no part of this tree, and this one none of Source's.
  void TakeContent(TDSPNode& Source);
  /// Orders the children by name ignoring case, then by code; names that are equal keep their order.
  void Sort();
  /// Removes every descendant that is marked Deleted, with all that is below it.
  void EraseDeleted();
  /// Removes children and value.
  void Clear();

  /// Same name, value and children in the same order, all the way down.
  friend bool operator==(const TDSPNode& A, const TDSPNode& B);

 private:
  using TNodes = std::vector<std::unique_ptr<TDSPNode>>;

  static void Dismantle(TNodes Nodes);
  void TakeNodes(TNodes Nodes);
  std::size_t Checked(int Index) const;
  [[noreturn]] void CanNotBe(std::string_view What) const;

  std::string FName;
  TDSPValueType FType = TDSPValueType::None;
  TKvVariant FValue;
  TDSPNode* FParent = nullptr;
  TNodes FNodes;
};

}  // namespace velkrund
