#include "velkrund/dictionary/RecordPieces.h"

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

void WriteRecordLines(TEIStream& Stream, std::string_view Line) {
  std::string_view Rest = Line.substr(Indentation.size());
  // A text has at most as many units as bytes, so that counting is only due for the long ones.
  if (Rest.size() <= MaxRecordPiece) return Stream.Writeln(Line);
  std::string Piece;
  bool First = true;
  do {
    const std::size_t Size = Utf16Prefix(Rest, MaxRecordPiece);
    Piece = Indentation;
    if (!First) Piece += ContinuationMark;
    Piece += Rest.substr(0, Size);
    Rest.remove_prefix(Size);
    if (!Rest.empty()) Piece += ContinuationMark;
    Stream.Writeln(Piece);
    First = false;
  } while (!Rest.empty());
}

}  // namespace velkrund
