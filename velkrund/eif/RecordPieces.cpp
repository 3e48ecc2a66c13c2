#include "velkrund/eif/RecordPieces.h"

#include "velkrund/eif/TextChecks.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// Of a text that is known to be well-formed, which only another encoding has to look at again.
void WriteWellFormed(TEIStream& Stream, std::string& Line) {
  if (Stream.Encoding() != TKvEncoding::Utf8) return Stream.Writeln(Line);
  Stream.Write(Line += LineEnd);
}

}  // namespace

void WritePieces(TEIStream& Stream, std::string_view Prefix, std::string_view Text,
                 const std::function<std::size_t(std::string_view Rest)>& PieceSize, bool WellFormed) {
  std::string Piece;
  bool First = true;
  do {
    const std::size_t Size = PieceSize(Text);
    Piece = Prefix;
    if (!First) Piece += ContinuationMark;
    Piece += Text.substr(0, Size);
    Text.remove_prefix(Size);
    if (!Text.empty()) Piece += ContinuationMark;
    if (WellFormed)
      WriteWellFormed(Stream, Piece);
    else
      Stream.Writeln(Piece);
    First = false;
  } while (!Text.empty());
}

void WriteRecordLines(TEIStream& Stream, std::string& Line) {
  // A text has at most as many units as bytes, so that counting is only due for the long ones.
  if (Line.size() <= Indentation.size() + MaxRecordPiece) return WriteWellFormed(Stream, Line);
  WritePieces(
      Stream, Indentation, std::string_view(Line).substr(Indentation.size()),
      [](std::string_view Rest) { return Utf16Prefix(Rest, MaxRecordPiece); }, true);
}

}  // namespace velkrund
