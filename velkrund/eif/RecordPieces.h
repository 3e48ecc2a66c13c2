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
/// followed by the mark. PieceSize: bytes of the next piece, more than 0, given what is left.
void WritePieces(TEIStream& Stream, std::string_view Prefix, std::string_view Text,
                 const std::function<std::size_t(std::string_view Rest)>& PieceSize);

/// Writes Line, which is Indentation and a record text, as one line or as several pieces.
void WriteRecordLines(TEIStream& Stream, std::string_view Line);

}  // namespace velkrund
