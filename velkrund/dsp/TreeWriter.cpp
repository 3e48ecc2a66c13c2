#include "velkrund/dsp/TreeWriter.h"

#include <vector>

#include "velkrund/eif/RecordPieces.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

namespace {

// Bytes of the next piece of a line. A break begins a piece, so it is looked for behind the first character.
std::size_t PieceSize(std::string_view Rest, std::string_view Break) {
  const std::size_t Whole = Rest.size() <= MaxRecordPiece ? Rest.size() : Utf16Prefix(Rest, MaxRecordPiece);
  if (Break.empty()) return Whole;
  const std::size_t Place = Rest.substr(0, Whole + Break.size() - 1).find(Break, 1);
  return Place == std::string_view::npos ? Whole : Place;
}

}  // namespace

TDSPTreeWriter::TDSPTreeWriter(TEIStream& Stream, const TNodeTexts& Texts, bool CutsAtBreaks)
    : FStream(Stream), FTexts(Texts), FCutsAtBreaks(CutsAtBreaks) {}

void TDSPTreeWriter::Write(TDSPNode& Start, bool WithStart, const std::function<void()>& OnNode) {
  struct TLevel {
    TDSPNode* Node;
    int Next;  // child to be written
  };
  const auto Begin = [&](TDSPNode& Node, std::size_t Depth) {
    if (OnNode) OnNode();
    WriteNode(Node, Depth);
  };
  FLevelsAbove = 0;
  for (const TDSPNode* At = &Start; At->Parent(); At = At->Parent()) ++FLevelsAbove;
  if (WithStart && FLevelsAbove > 0) --FLevelsAbove;
  std::vector<TLevel> Levels{{&Start, 0}};
  Start.Sort();
  if (WithStart)
    Begin(Start, 0);
  else
    CheckTops(Start);
  while (!Levels.empty()) {
    TLevel& Level = Levels.back();
    if (Level.Next == Level.Node->GetCount()) {
      Levels.pop_back();
      continue;
    }
    TDSPNode& Node = Level.Node->GetNodes(Level.Next++);
    Begin(Node, Levels.size() - (WithStart ? 0 : 1));
    if (Node.GetCount() == 0) continue;
    Node.Sort();
    Levels.push_back({&Node, 0});
  }
}

/// Each of the top nodes is merged into the tree that is there, equal ones into each other.
void TDSPTreeWriter::CheckTops(const TDSPNode& Root) {
  for (int Index = 1; Index < Root.GetCount(); ++Index)
    if (SameText(Root.GetNodes(Index - 1).Name(), Root.GetNodes(Index).Name()))
      ReportAltered(FStream, "Readers of the file would make one of two top nodes of the same name",
                    Format("(Node:'%s')", Root.GetNodes(Index).Name()));
}

void TDSPTreeWriter::WriteNode(const TDSPNode& Node, std::size_t Depth) {
  try {
    WriteNamed(Node, Depth);
  } catch (Exception& Error) {
    Error.Add({.Node = Node.Parent() ? Node.GetFullName() : Node.Name()});
    throw;
  }
}

void TDSPTreeWriter::CheckDepth(const TDSPNode& Node, std::size_t Depth) const {
  if (FLevelsAbove + Depth >= static_cast<std::size_t>(DSPDeepestTree))
    throw EDSPError(Format("The tree has more than %d levels, too many for a file: '%s'", DSPDeepestTree, Node.Name()));
}

void TDSPTreeWriter::WriteNamed(const TDSPNode& Node, std::size_t Depth) {
  CheckDepth(Node, Depth);
  const TDSPValueType Type = Node.ValueType();
  TTextLosses Lost;
  FLine.assign(Indentation.size() * (Depth + 1), ' ');
  FTexts.AppendName(FLine, Node.Name(), Lost);
  if (Type != TDSPValueType::None) {
    FLine += ':';
    FLine += FTexts.TypeWord(Type);
    if (Type != TDSPValueType::Deleted) {
      FLine += " = ";
      FTexts.AppendValue(FLine, Node, Lost);
    }
  } else if (FLine.back() == ContinuationMark) {
    // The mark at the end would continue the line: an empty type behind it says the same as none.
    if (!FTexts.HasEmptyWord()) throw EDSPError("Invalid name of node for export: " + Node.Name());
    FLine += ':';
  }
  if (Lost.Any()) ReportLosses(FStream, Lost, Node);
  WriteLine(FCutsAtBreaks ? FTexts.LineBreak(Type) : std::string_view());
}

void TDSPTreeWriter::WriteLine(std::string_view Break) {
  // A text has at most as many units as bytes, so that counting is only due for the long ones.
  if (Break.empty() && FLine.size() <= MaxRecordPiece) return FStream.Writeln(FLine);
  WritePieces(FStream, {}, FLine, [Break](std::string_view Rest) { return PieceSize(Rest, Break); });
}

}  // namespace velkrund
