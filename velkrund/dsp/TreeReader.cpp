#include "velkrund/dsp/TreeReader.h"

#include <algorithm>
#include <utility>

#include "velkrund/dsp/DSPUtilErrors.h"
#include "velkrund/dsp/NodeNames.h"
#include "velkrund/eif/RecordPieces.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

void TDSPTreeReader::LineError(std::string_view What, TErrorCode Code) {
  throw EDSPUtilError(Format("Can not import DSP structure. Invalid tree data structure. %s (Position:%d)", What,
                             FStream.SourcePosition()),
                      {.Code = Code});
}

bool TDSPTreeReader::Read(TDSPNode& Tree, std::string_view RootNode, std::function<bool()> OnLine) {
  FPath.clear();
  FLevelsAbove = static_cast<std::size_t>(std::count(RootNode.begin(), RootNode.end(), DSPNameSeparator));
  FOnLine = std::move(OnLine);
  const std::string_view RootName = RootNode.substr(RootNode.rfind(DSPNameSeparator) + 1);
  for (std::string_view Line; !AtEnd();) {
    if (!NextLine(Line)) return false;
    if (FStrictLines && Line.find('\n') != std::string_view::npos)
      LineError("A line feed alone stands within a line, where it ends none", TErrorCode::LineFeeds);
    ReadLine(Line, Tree, RootName);
  }
  // Without its node the tree would become one without a name.
  if (!RootName.empty() && FPath.empty()) LineError("Unexpected end of tree section");
  return true;
}

// The next line, its pieces put together; false when it is not wanted any more.
bool TDSPTreeReader::NextLine(std::string_view& Line) {
  if (FOnLine && !FOnLine()) return false;
  Line = FStream.Readln();
  FLine = FStream.SourceLine();
  if (!Line.ends_with(ContinuationMark)) return true;
  if (!JoinPieces(Line)) return false;
  Line = FJoined;
  return true;
}

bool TDSPTreeReader::JoinPieces(std::string_view Line) {
  FJoined = Line;
  for (bool More = true; More;) {
    FJoined.pop_back();
    if (AtEnd()) LineError("Unexpected end of tree section");
    if (FOnLine && !FOnLine()) return false;
    std::string_view Piece = FStream.Readln();
    if (!Piece.starts_with(ContinuationMark)) LineError("'@' is missing");
    Piece.remove_prefix(1);
    FJoined += Piece;
    More = Piece.ends_with(ContinuationMark);
  }
  return true;
}

void TDSPTreeReader::ReadLine(std::string_view Line, TDSPNode& Tree, std::string_view RootName) {
  if (!Line.starts_with(Indentation)) LineError("Starting spaces is missing");
  const std::size_t Colon = Line.find(':');
  TDSPNode& Node = PlaceOf(Line.substr(0, Colon), Tree, RootName);
  if (Colon != std::string_view::npos) ReadTypeAndValue(Line.substr(Colon + 1), Node);
}

// Makes the node that an indented name stands for, where it belongs.
TDSPNode& TDSPTreeReader::PlaceOf(std::string_view Indented, TDSPNode& Tree, std::string_view RootName) {
  const std::size_t Blanks = std::min(Indented.find_first_not_of(' '), Indented.size());
  const std::size_t Depth = Blanks / Indentation.size() - 1;
  const bool OneTop = !RootName.empty();
  if (Blanks % Indentation.size() != 0 || Depth > FPath.size() || (OneTop && Depth == 0 && !FPath.empty()))
    LineError("Invalid level structure");
  if (FLevelsAbove + Depth >= static_cast<std::size_t>(DSPDeepestTree))
    LineError(Format("The tree has more than %d levels", DSPDeepestTree));
  ReadNodeName(Indented.substr(Blanks), FName);
  if (FName.empty()) LineError("Empty name of node");
  FPath.resize(Depth);
  if (OneTop && Depth == 0) {
    // It takes the place of the node that is asked for; the file may know better how that is spelt.
    Tree.SetName(SameText(FName, RootName) ? std::string_view(FName) : RootName);
    FPath.push_back(&Tree);
  } else {
    FPath.push_back(&(Depth == 0 ? Tree : *FPath.back()).AddNode(FName));
    if (Depth == 0 && FStrictLines) CheckTop(Tree);
  }
  return *FPath.back();
}

/// The one that was added last.
void TDSPTreeReader::CheckTop(const TDSPNode& Tree) {
  const int Place = Tree.GetCount() - 1;
  FTopLines.push_back(FLine);
  const int First = FTops.Add(Place, [&Tree](int At) -> std::string_view { return Tree.GetNodes(At).Name(); });
  if (First == Place) return;
  ++FStream.Losses().Altered;
  if (FStream.StrictText())
    LineError(Format(
        "Two top nodes have the name '%s', in the lines %d and %d: they would be merged into one. Allow losses to "
        "load it all the same",
        FName, FTopLines[static_cast<std::size_t>(First)], FLine));
}

void TDSPTreeReader::ReadTypeAndValue(std::string_view Text, TDSPNode& Node) {
  const std::size_t Equals = Text.find('=');
  const std::string_view Word = Trim(Text.substr(0, Equals));
  const std::string_view Value = Equals == std::string_view::npos ? std::string_view() : Trim(Text.substr(Equals + 1));
  const auto Type = FTexts.FindType(Word);
  if (!Type) throw EDSPUtilError(Format("Can not import DSP structure. Invalid node type:'%s'.", Word));
  TTextLosses Lost;
  FTexts.ReadValue(Node, *Type, Value, Lost);
  if (Lost.Any()) ReportLosses(FStream, Lost, Node);
}

}  // namespace velkrund
