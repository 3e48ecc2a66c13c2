#include "velkrund/eif/EIStream.h"

#include <algorithm>

#include "velkrund/eif/EIErrors.h"
#include "velkrund/eif/TextChecks.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::size_t MaxShortLine = 1024 * 1024;

}  // namespace

TEIStream::TEIStream(TStream& Stream, std::int64_t Size, TTextLosses* Losses)
    : FStream(Stream),
      FOrigin(Stream.Position()),
      FDataSize(Size),
      FStrictText(WorkSettings().StrictText),
      FCodec(*WorkSettings().AnsiCodePage),
      FLosses(Losses ? Losses : &FOwnLosses) {}

std::int64_t TEIStream::Rest() { return std::max<std::int64_t>(0, FOrigin + FDataSize - FStream.Position()); }

std::string_view TEIStream::Readln() {
  const std::string_view Raw = ReadRawLine(*this, FSpill);
  if (FReadLnCnt >= 0) ++FReadLnCnt;
  return Decoded(Raw);
}

std::string_view TEIStream::ReadShortLine() {
  const std::string_view Raw = ReadRawLine(*this, FSpill, MaxShortLine);
  if (FReadLnCnt >= 0) ++FReadLnCnt;
  if (Raw.size() > MaxShortLine)
    throw EEIError(Format("A line is longer than %d bytes (Position:%d)", MaxShortLine, Position()));
  return Decoded(Raw);
}

std::string_view TEIStream::Decoded(std::string_view Raw) {
  const TTextLosses Before = *FLosses;
  const std::string_view Line = FCodec.Decode(Raw, FEncoding, *FLosses);
  if (FStrictText && FLosses->Malformed != Before.Malformed) RefuseTextRead(Position());
  return Line;
}

void TEIStream::Writeln(std::string_view Text) {
  CheckReadOnly();
  const TTextLosses Before = *FLosses;
  const std::string_view Bytes = FCodec.Encode(Text, FEncoding, *FLosses);
  if (FStrictText && *FLosses != Before) RefuseTextWritten(Text, Position());
  if (!Bytes.empty()) FStream.Write(Bytes);
  FStream.Write(LineEnd);
}

std::size_t TEIStream::Read(char* Buffer, std::size_t Count) {
  if (GetReadOnly()) Count = std::min(Count, static_cast<std::size_t>(Rest()));
  return FStream.Read(Buffer, Count);
}

void TEIStream::Write(std::string_view Data) {
  CheckReadOnly();
  FStream.Write(Data);
}

std::int64_t TEIStream::Seek(std::int64_t Offset, TSeekOrigin Origin) {
  std::int64_t Target = Offset;
  switch (Origin) {
    case TSeekOrigin::Beginning:
      break;
    case TSeekOrigin::Current: {
      const std::int64_t Here = FStream.Position() - FOrigin;
      if (Offset == 0 && Here >= 0 && (!GetReadOnly() || Here <= FDataSize)) return Here;
      Target = Here + Offset;
      break;
    }
    case TSeekOrigin::End:
      Target = GetReadOnly() ? FDataSize - Offset : FStream.Size() - FOrigin + Offset;
      break;
  }
  Target = std::max<std::int64_t>(Target, 0);
  if (GetReadOnly() && Target > FDataSize) return FStream.Seek(0, TSeekOrigin::End) - FOrigin;
  return FStream.Seek(FOrigin + Target, TSeekOrigin::Beginning) - FOrigin;
}

std::int64_t TEIStream::Size() { return GetReadOnly() ? FDataSize : FStream.Size() - FOrigin; }

void TEIStream::SetSize(std::int64_t Size) {
  CheckReadOnly();
  if (Size < 0) throw EEIError("Invalid EIWriter data size");
  FStream.SetSize(Size - FOrigin);
}

std::string_view TEIStream::Peek() {
  if (!GetReadOnly()) return FStream.Peek();
  const std::int64_t Left = Rest();
  if (Left == 0) return {};
  return FStream.Peek().substr(0, static_cast<std::size_t>(Left));
}

void TEIStream::CheckReadOnly() const {
  if (GetReadOnly()) throw EEIError("Can not change EIStream data in readonly mode");
}

}  // namespace velkrund
