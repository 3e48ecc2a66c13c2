#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "velkrund/eif/EIStream.h"

namespace velkrund {

/// UTF-16 units of record text on one physical line; it keeps lines readable by tools with fixed buffers.
inline constexpr std::size_t MaxRecordPiece = 99990;
/// What stands before every field name and record.
inline constexpr std::string_view Indentation = "  ";
inline constexpr char ContinuationMark = '@';

/// Writes Text in pieces: each on a line of its own, behind Prefix, all but the first preceded and all but the last
/// followed by the mark. PieceSize: bytes of the next piece, more than 0, given what is left. WellFormed: Text is known
/// to be well-formed UTF-8.
void WritePieces(TEIStream& Stream, std::string_view Prefix, std::string_view Text,
                 const std::function<std::size_t(std::string_view Rest)>& PieceSize, bool WellFormed = false);

/// Writes Line, which is Indentation and a record text in well-formed UTF-8, as one line or as several pieces. Its end
/// is added to Line for that.
void WriteRecordLines(TEIStream& Stream, std::string& Line);

}  // namespace velkrund
