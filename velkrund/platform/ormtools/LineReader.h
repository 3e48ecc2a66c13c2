#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/Streams.h"

namespace velkrund {

/// The next line of Stream, without its end, and the position moved behind it. A line ends at a carriage return, which
/// may be followed by a line feed that belongs to the end; a lone line feed is data. The end of the stream ends the
/// last line. The bytes lie in the stream's own buffer or, when the line spans blocks, in Spill (reused): valid until
/// the next operation on either. A line of more than Limit bytes is given up, with the position somewhere in it: what
/// is returned is longer than Limit then, and no more of it was held than a block.
std::string_view ReadRawLine(TStream& Stream, std::string& Spill, std::size_t Limit = std::string_view::npos);

/// What became of characters that an encoding could not carry.
struct TTextLosses {
  std::int64_t Unrepresentable = 0;  // written as '?' in the code page
  std::int64_t Malformed = 0;        // malformed UTF-8 sequences read or written as U+FFFD
  std::int64_t Altered = 0;          // names and texts of structures that their readers take for others
  bool Any() const { return Unrepresentable != 0 || Malformed != 0 || Altered != 0; }
  TTextLosses& operator+=(const TTextLosses& Other) {
    Unrepresentable += Other.Unrepresentable;
    Malformed += Other.Malformed;
    Altered += Other.Altered;
    return *this;
  }
  bool operator==(const TTextLosses&) const = default;
};

/// Lines of texts in one of the two encodings to and from UTF-8. Buffers are reused from line to line.
class TLineCodec {
 public:
  explicit TLineCodec(const TCodePage& CodePage) : FCodePage(&CodePage) {}

  /// The UTF-8 text of a raw line; malformed sequences become U+FFFD and are counted. Valid until the next call, and no
  /// longer than Raw itself.
  std::string_view Decode(std::string_view Raw, TKvEncoding Encoding, TTextLosses& Losses);
  /// The bytes of a UTF-8 text; characters that the code page lacks become '?' and are counted. As Decode.
  std::string_view Encode(std::string_view Text, TKvEncoding Encoding, TTextLosses& Losses);

 private:
  std::string_view WellFormed(std::string_view Text, TTextLosses& Losses);

  const TCodePage* FCodePage;  // borrowed
  std::string FBuffer;
};

}  // namespace velkrund
