#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "fuzz/FuzzPlatform.h"
#include "velkrund/dsp/TreeReader.h"
#include "velkrund/dsp/TreeWriter.h"
#include "velkrund/platform/ormtools/Streams.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

inline void ReadTree(TDSPNode& Tree, std::string_view Lines, const TNodeTexts& Texts, TKvEncoding Encoding,
                     std::string_view RootNode) {
  TMemoryStream Memory;
  Memory.Write(Lines);
  Memory.SetPosition(0);
  TEIStream Stream(Memory, static_cast<std::int64_t>(Lines.size()));
  Stream.SetEncoding(Encoding);
  TDSPTreeReader(Stream, Texts).Read(Tree, RootNode);
}

/// Lost: set where characters were replaced.
inline std::string WriteTree(TDSPNode& Tree, const TNodeTexts& Texts, TKvEncoding Encoding, bool WithStart,
                             bool CutsAtBreaks, bool& Lost) {
  TMemoryStream Memory;
  TEIStream Stream(Memory);
  Stream.SetEncoding(Encoding);
  TDSPTreeWriter(Stream, Texts, CutsAtBreaks).Write(Tree, WithStart);
  Lost |= Stream.Losses().Any();
  return std::string(Memory.Memory());
}

/// Whether a name, or a text of 8 bits where Hashes says so, comes back as another one, as both versions want it.
inline bool IsAsymmetric(const TDSPNode& Tree, bool Hashes) {
  const auto Changes = [](char Byte) { return Byte == '#' || static_cast<unsigned char>(Byte) < 0x20 || Byte == 0x7F; };
  std::vector<const TDSPNode*> Pending{&Tree};
  while (!Pending.empty()) {
    const TDSPNode& Node = *Pending.back();
    Pending.pop_back();
    for (std::size_t At = 0; At < Node.Name().size(); ++At)
      if (Changes(Node.Name()[At]) || (Node.Name()[At] == '\xC2' && Node.Name()[At + 1] < '\xA0')) return true;
    const TKvKind Kind = Node.Value().Kind();
    const bool Is8Bit = Kind == TKvKind::AnsiChar || Kind == TKvKind::AnsiString;
    if (Hashes && Is8Bit && Node.Value().AsText().find('#') != std::string_view::npos) return true;
    for (int Index = 0; Index < Node.GetCount(); ++Index) Pending.push_back(&Node.GetNodes(Index));
  }
  return false;
}

/// Any bytes as the lines of a tree: an error, or a tree that is refused when it is to be written, or comes back as the
/// same tree and the same bytes. The first byte chooses: bit 0 the encoding, bit 1 whether the tree is one named node,
/// bit 2 whether lines are cut at breaks.
inline void CheckTree(std::string_view Data, const TNodeTexts& Texts, bool Hashes) {
  if (Data.empty()) return;
  const TKvEncoding Encoding = Data[0] & 1 ? TKvEncoding::Ansi : TKvEncoding::Utf8;
  const bool OneTop = (Data[0] & 2) != 0, CutsAtBreaks = (Data[0] & 4) != 0;
  bool Lost = false;
  TDSPNode Tree;
  std::string Written;
  try {
    ReadTree(Tree, Data.substr(1), Texts, Encoding, OneTop ? "a\\b" : "");
    Written = WriteTree(Tree, Texts, Encoding, OneTop, CutsAtBreaks, Lost);
  } catch (const std::exception& Error) {
    return RequireOwn(Error);
  }
  if (Lost || IsAsymmetric(Tree, Hashes)) return;
  TDSPNode Again;
  ReadTree(Again, Written, Texts, Encoding, OneTop ? "a\\b" : "");
  Require(Again == Tree);
  Require(WriteTree(Again, Texts, Encoding, OneTop, CutsAtBreaks, Lost) == Written);
}

}  // namespace velkrund
