#pragma once

#include <functional>
#include <string>

#include "velkrund/dsp/NodeTexts.h"
#include "velkrund/eif/EIStream.h"

namespace velkrund {

/// Writes the lines of a tree: one a node, indented by its level, a node before what is below it, children sorted. A
/// line of more than 99990 UTF-16 units is cut into pieces of that length, all but the last followed and all but the
/// first preceded by "@". Sorts the tree. Errors name the node, that of a tree of more than
/// DSPDeepestTree levels the first one below them. For one tree.
class TDSPTreeWriter {
 public:
  /// All borrowed. CutsAtBreaks: lines are also cut before every line break in their values, so that programs that they
  /// hold can be compared line by line.
  TDSPTreeWriter(TEIStream& Stream, const TNodeTexts& Texts, bool CutsAtBreaks);

  /// Writes Start itself and what is below it, or only that. OnNode: called before every node; raises what ends the
  /// writing.
  void Write(TDSPNode& Start, bool WithStart, const std::function<void()>& OnNode = {});

 private:
  void CheckDepth(const TDSPNode& Node, std::size_t Depth) const;
  void WriteNode(const TDSPNode& Node, std::size_t Depth);
  void WriteNamed(const TDSPNode& Node, std::size_t Depth);
  void CheckTops(const TDSPNode& Root);
  void WriteLine(std::string_view Break);

  TEIStream& FStream;
  const TNodeTexts& FTexts;
  const bool FCutsAtBreaks;
  std::string FLine;
  std::size_t FLevelsAbove = 0;  // what is written, in its tree
};

}  // namespace velkrund
