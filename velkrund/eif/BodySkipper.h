#pragma once

#include <cstdint>
#include <string_view>

#include "velkrund/platform/ormtools/Streams.h"

namespace velkrund {

/// Passes over lines at the speed of memory, looking for one that begins with a "[", as markers do: what a listing does
/// with the bodies of sections. A line ends at a carriage return, which a line feed may follow; a lone line feed is
/// data.
class TBodySkipper {
 public:
  /// Stream: borrowed, at the begin of a line.
  explicit TBodySkipper(TStream& Stream) : FStream(Stream) {}

  /// Moves the stream to the begin of the next line that begins with a "["; false: to its end.
  bool NextBracketLine();
  /// Passes over the line at the position, of which nothing is held; whether it is Text, blanks behind it left aside.
  bool PassLine(std::string_view Text);
  /// How many lines were passed over since the object was made, a last one without an end included.
  std::int64_t Lines() const { return FLines; }

 private:
  enum class TPlace { LineStart, BehindReturn, WithinLine };

  bool BeginsLine(std::string_view Block, std::size_t At) const;
  TPlace PlaceBehind(std::string_view Block) const;

  TStream& FStream;
  TPlace FPlace = TPlace::LineStart;
  std::int64_t FLines = 0;
};

}  // namespace velkrund
