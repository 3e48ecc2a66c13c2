#include "velkrund/platform/ormtools/LineReader.h"

#include <cstring>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

std::size_t FindLineEnd(std::string_view Block) {
  if (Block.empty()) return std::string_view::npos;
  const auto* Found = static_cast<const char*>(std::memchr(Block.data(), '\r', Block.size()));
  return Found ? static_cast<std::size_t>(Found - Block.data()) : std::string_view::npos;
}

void Skip(TStream& Stream, std::size_t Count) { Stream.Seek(static_cast<std::int64_t>(Count), TSeekOrigin::Current); }

/// The rest of a line whose end, or what may belong to it, lies beyond Block, the bytes at the position.
std::string_view ReadSpanningLine(TStream& Stream, std::string_view Block, std::string& Spill, std::size_t Limit) {
  Spill.clear();
  while (!Block.empty() && Spill.size() <= Limit) {
    const std::size_t End = FindLineEnd(Block);
    Spill += Block.substr(0, End);
    if (End != std::string_view::npos) {
      Skip(Stream, End + 1);
      if (Stream.Peek().starts_with('\n')) Skip(Stream, 1);
      break;
    }
    Skip(Stream, Block.size());
    Block = Stream.Peek();
  }
  return Spill;
}

}  // namespace

std::string_view ReadRawLine(TStream& Stream, std::string& Spill, std::size_t Limit) {
  const std::string_view Block = Stream.Peek();
  const std::size_t End = FindLineEnd(Block);
  if (End == std::string_view::npos || End + 1 == Block.size()) return ReadSpanningLine(Stream, Block, Spill, Limit);
  Skip(Stream, End + (Block[End + 1] == '\n' ? 2 : 1));
  return Block.substr(0, End);
}

std::string_view TLineCodec::Decode(std::string_view Raw, TKvEncoding Encoding, TTextLosses& Losses) {
  if (Encoding == TKvEncoding::Utf8) return WellFormed(Raw, Losses);
  if (AsciiPrefix(Raw) == Raw.size()) return Raw;
  FBuffer.clear();
  FCodePage->Decode(Raw, FBuffer);
  return FBuffer;
}

std::string_view TLineCodec::Encode(std::string_view Text, TKvEncoding Encoding, TTextLosses& Losses) {
  if (Encoding == TKvEncoding::Utf8) return WellFormed(Text, Losses);
  if (AsciiPrefix(Text) == Text.size()) return Text;
  FBuffer.clear();
  Losses.Unrepresentable += FCodePage->Encode(Text, FBuffer);
  return FBuffer;
}

std::string_view TLineCodec::WellFormed(std::string_view Text, TTextLosses& Losses) {
  const std::size_t Malformed = FindMalformedUtf8(Text);
  if (Malformed == std::string_view::npos) return Text;
  FBuffer = Text;
  Losses.Malformed += RepairUtf8(FBuffer, Malformed);
  return FBuffer;
}

}  // namespace velkrund
