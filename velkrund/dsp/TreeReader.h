#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/dsp/NodeTexts.h"
#include "velkrund/eif/EIStream.h"
#include "velkrund/platform/ormtools/ErrorInfo.h"
#include "velkrund/platform/ormtools/NameIndex.h"

namespace velkrund {

/// Reads the lines that TDSPTreeWriter writes. Errors are EDSPUtilError; those about the lines name the position in the
/// source, behind the line. For one tree.
class TDSPTreeReader {
 public:
  /// All borrowed. Stream: bounded, at the first line of the tree. StrictLines: as a section has it.
  TDSPTreeReader(TEIStream& Stream, const TNodeTexts& Texts, bool StrictLines = false)
      : FStream(Stream), FTexts(Texts), FStrictLines(StrictLines) {}

  /// Reads to the end of the stream into Tree, which is empty. RootNode: the full name of the node that the first line
  /// stands for, and which Tree becomes, under the last of its names, which is not empty; an empty one: the top nodes
  /// become Tree's children.
  /// A tree of more than DSPDeepestTree levels, those above Tree included, is refused at the first line below them.
  /// StrictLines: so are two top nodes of one name, of which a merge would keep the last; where the stream is not
  /// strict about texts they are counted. OnLine: called for every line of the file; false ends the reading, and Read
  /// returns false.
  bool Read(TDSPNode& Tree, std::string_view RootNode, std::function<bool()> OnLine = {});

 private:
  bool AtEnd() { return FStream.Position() >= FStream.Size(); }
  bool NextLine(std::string_view& Line);
  bool JoinPieces(std::string_view Line);
  void ReadLine(std::string_view Line, TDSPNode& Tree, std::string_view RootName);
  TDSPNode& PlaceOf(std::string_view Indented, TDSPNode& Tree, std::string_view RootName);
  void ReadTypeAndValue(std::string_view Text, TDSPNode& Node);
  void CheckTop(const TDSPNode& Tree);
  [[noreturn]] void LineError(std::string_view What, TErrorCode Code = TErrorCode::Structure);

  TEIStream& FStream;
  const TNodeTexts& FTexts;
  const bool FStrictLines;
  std::function<bool()> FOnLine;
  std::string FJoined;
  std::string FName;
  std::vector<TDSPNode*> FPath;  // the last node read and those above it, by depth
  std::size_t FLevelsAbove = 0;  // the tree, of the one that it is a part of
  std::int64_t FLine = 0;        // of the source, where the node at hand begins
  TNameIndex FTops;
  std::vector<std::int64_t> FTopLines;
};

}  // namespace velkrund
