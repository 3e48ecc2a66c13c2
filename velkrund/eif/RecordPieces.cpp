#include "velkrund/eif/RecordPieces.h"

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

void WritePieces(TEIStream& Stream, std::string_view Prefix, std::string_view Text,
                 const std::function<std::size_t(std::string_view Rest)>& PieceSize) {
  std::string Piece;
  bool First = true;
  do {
    const std::size_t Size = PieceSize(Text);
    Piece = Prefix;
    if (!First) Piece += ContinuationMark;
    Piece += Text.substr(0, Size);
    Text.remove_prefix(Size);
    if (!Text.empty()) Piece += ContinuationMark;
    Stream.Writeln(Piece);
    First = false;
  } while (!Text.empty());
}

void WriteRecordLines(TEIStream& Stream, std::string_view Line) {
  const std::string_view Record = Line.substr(Indentation.size());
  // A text has at most as many units as bytes, so that counting is only due for the long ones.
  if (Record.size() <= MaxRecordPiece) return Stream.Writeln(Line);
  WritePieces(Stream, Indentation, Record, [](std::string_view Rest) { return Utf16Prefix(Rest, MaxRecordPiece); });
}

}  // namespace velkrund
