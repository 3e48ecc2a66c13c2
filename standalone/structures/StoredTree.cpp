#include "standalone/structures/StoredTree.h"

#include <vector>

#include "standalone/values/StoredValues.h"
#include "velkrund/platform/ormtools/Checksum.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

namespace {

constexpr std::string_view Magic = "VKTR";
constexpr unsigned char Version = 1;
constexpr std::size_t HeaderSize = Magic.size() + 1;
constexpr std::size_t ChecksumSize = 4;
/// An empty name, a type and no children.
constexpr std::size_t SmallestNode = 3;

bool StoresValue(TDSPValueType Type) { return Type != TDSPValueType::None && Type != TDSPValueType::Deleted; }

void AppendNode(std::string& Out, const TDSPNode& Node) {
  AppendStoredText(Out, Node.Name());
  Out += static_cast<char>(Node.ValueType());
  if (Node.ValueType() == TDSPValueType::Variant) Out += static_cast<char>(Node.Value().Kind());
  if (StoresValue(Node.ValueType())) AppendStoredValue(Out, Node.Value());
  AppendStoredNumber(Out, static_cast<std::uint64_t>(Node.GetCount()));
}

void ReadValue(TStoredBytes& Bytes, TDSPNode& Node) {
  const unsigned Type = Bytes.Byte();
  if (Type >= static_cast<unsigned>(DSPValueTypeCount)) throw EDSPError(Format("unknown value type %d", Type));
  Node.SetValueType(static_cast<TDSPValueType>(Type));
  if (!StoresValue(Node.ValueType())) return;
  const bool IsVariant = Node.ValueType() == TDSPValueType::Variant;
  const TKvKind Kind = IsVariant ? static_cast<TKvKind>(Bytes.Byte()) : KindOfType(Node.ValueType());
  TKvVariant Value;
  ReadStoredValue(Bytes, Kind, Value);
  Node.SetValue(Value);  // a copy, since it borrows the bytes
}

/// Reads value and number of children.
int ReadNode(TStoredBytes& Bytes, TDSPNode& Node) {
  ReadValue(Bytes, Node);
  const std::uint64_t Count = Bytes.Number();
  if (Count > Bytes.Left() / SmallestNode)
    throw EDSPError(Format("node '%s' cannot have so many children", Node.Name()));
  return static_cast<int>(Count);
}

std::string_view CheckedBody(std::string_view Bytes) {
  if (!Bytes.starts_with(Magic)) throw EDSPError("it does not begin as a tree does");
  if (Bytes.size() < HeaderSize + SmallestNode + ChecksumSize) throw EDSPError("it is cut off");
  const unsigned Found = static_cast<unsigned char>(Bytes[Magic.size()]);
  if (Found != Version) throw EDSPError(Format("its format has the version %d, only %d is known", Found, Version));
  TStoredBytes Checksum(Bytes.substr(Bytes.size() - ChecksumSize));
  Bytes.remove_suffix(ChecksumSize);
  if (Checksum.Fixed(ChecksumSize) != Crc32(Bytes)) throw EDSPError("its checksum is wrong");
  return Bytes.substr(HeaderSize);
}

TDSPNode ReadTree(std::string_view Stored) {
  TStoredBytes Bytes(CheckedBody(Stored));
  struct TLevel {
    TDSPNode* Node;
    int Left;  // children to be read
  };
  TDSPNode Tree(Bytes.Text());
  std::vector<TLevel> Levels{{&Tree, ReadNode(Bytes, Tree)}};
  while (!Levels.empty()) {
    if (Levels.back().Left == 0) {
      Levels.pop_back();
      continue;
    }
    --Levels.back().Left;
    TDSPNode& Node = Levels.back().Node->AddNode(Bytes.Text());
    if (const int Count = ReadNode(Bytes, Node); Count > 0) Levels.push_back({&Node, Count});
  }
  if (Bytes.Left() > 0) throw EDSPError("something stands behind its last node");
  return Tree;
}

}  // namespace

void AppendStoredTree(std::string& Out, const TDSPNode& Root) {
  const std::size_t Start = Out.size();
  Out += Magic;
  Out += static_cast<char>(Version);
  struct TLevel {
    const TDSPNode* Node;
    int Next;  // child to be written
  };
  AppendNode(Out, Root);
  std::vector<TLevel> Levels{{&Root, 0}};
  while (!Levels.empty()) {
    TLevel& Level = Levels.back();
    if (Level.Next == Level.Node->GetCount()) {
      Levels.pop_back();
      continue;
    }
    const TDSPNode& Node = Level.Node->GetNodes(Level.Next++);
    AppendNode(Out, Node);
    if (Node.GetCount() > 0) Levels.push_back({&Node, 0});
  }
  AppendStoredFixed(Out, Crc32(std::string_view(Out).substr(Start)), ChecksumSize);
}

void ReadStoredTree(std::string_view Stored, TDSPNode& Root) {
  try {
    Root = ReadTree(Stored);
  } catch (const EStoredValue& Error) {
    throw EDSPError(Error.what());
  }
}

}  // namespace velkrund
