#include "velkrund/platform/ormtools/BufferedStream.h"

#include <algorithm>
#include <cstring>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {
namespace {

constexpr std::size_t LargestBuffer = 256 * 1024;
/// What is asked for at once from here on goes past the buffer.
constexpr std::size_t LargeRead = 64 * 1024;

}  // namespace

TBufferedStream::TBufferedStream(TFileSystem& Files, std::size_t BufferSize)
    : FFiles(Files), FFirstRead(std::clamp<std::size_t>(BufferSize, 1, LargestBuffer)), FNextRead(FFirstRead) {}

TBufferedStream::~TBufferedStream() = default;

void TBufferedStream::Open(TFileMode Mode) {
  Close();
  std::unique_ptr<TFile> Opened = FFiles.Open(FFileName, Mode);
  FSize = Opened->Size();
  FFile = std::move(Opened);
}

void TBufferedStream::Close() {
  FFile.reset();
  FWriting = false;
  FSize = 0;
  MoveBuffer(0);
}

TFile& TBufferedStream::File() const {
  if (!FFile) throw EStreamError("The file is not open: " + FFileName);
  return *FFile;
}

void TBufferedStream::MoveBuffer(std::int64_t Position) {
  FBufferStart = Position;
  FUsed = FAt = 0;
  FNextRead = FFirstRead;
}

void TBufferedStream::Reserve(std::size_t Capacity) {
  if (FCapacity >= Capacity) return;
  FBuffer = std::make_unique_for_overwrite<char[]>(Capacity);
  FCapacity = Capacity;
}

std::size_t TBufferedStream::ReadSequentially(char* Buffer, std::size_t Count) {
  if (FBufferStart >= FSize) return 0;
  const std::size_t Got = File().ReadAt(FBufferStart, Buffer, Count);
  FNextRead = std::min(FNextRead * 2, LargestBuffer);
  const std::int64_t End = FBufferStart + static_cast<std::int64_t>(Got);
  // Somebody else may have cut the file or added to it since it was opened.
  if (Got < Count || End > FSize) FSize = End;
  return Got;
}

void TBufferedStream::FillBuffer() {
  FBufferStart += static_cast<std::int64_t>(FUsed);
  FUsed = FAt = 0;
  Reserve(FNextRead);
  FUsed = ReadSequentially(FBuffer.get(), FNextRead);
}

std::size_t TBufferedStream::Read(char* Buffer, std::size_t Count) {
  EndWriting();
  std::size_t Done = 0;
  while (Done < Count) {
    if (FAt == FUsed && Count - Done >= std::min(FNextRead, LargeRead)) {
      FBufferStart += static_cast<std::int64_t>(FUsed);
      FUsed = FAt = 0;
      const std::size_t Got = ReadSequentially(Buffer + Done, Count - Done);
      FBufferStart += static_cast<std::int64_t>(Got);
      return Done + Got;
    }
    if (FAt == FUsed) FillBuffer();
    if (FAt == FUsed) break;
    const std::size_t Taken = std::min(Count - Done, FUsed - FAt);
    std::memcpy(Buffer + Done, FBuffer.get() + FAt, Taken);
    FAt += Taken;
    Done += Taken;
  }
  return Done;
}

std::string_view TBufferedStream::Peek() {
  EndWriting();
  if (FAt == FUsed) FillBuffer();
  return {FBuffer.get() + FAt, FUsed - FAt};
}

void TBufferedStream::Write(std::string_view Data) {
  if (!FWriting) {
    File();
    MoveBuffer(FBufferStart + static_cast<std::int64_t>(FAt));
    Reserve(LargestBuffer);
    FWriting = true;
  }
  if (Data.size() > FCapacity - FUsed) Flush();
  if (Data.size() >= FCapacity) {
    WriteThrough(Data);
    return;
  }
  if (!Data.empty()) std::memcpy(FBuffer.get() + FUsed, Data.data(), Data.size());
  FUsed += Data.size();
  FAt = FUsed;
  FSize = std::max(FSize, FBufferStart + static_cast<std::int64_t>(FUsed));
}

void TBufferedStream::WriteThrough(std::string_view Data) {
  File().WriteAt(FBufferStart, Data);
  FBufferStart += static_cast<std::int64_t>(Data.size());
  FSize = std::max(FSize, FBufferStart);
}

void TBufferedStream::Flush() {
  TFile& Target = File();
  if (!FWriting || FUsed == 0) return;
  // When this fails the bytes stay where they are, to be tried again or to be dropped by SetSize or Close.
  Target.WriteAt(FBufferStart, {FBuffer.get(), FUsed});
  FBufferStart += static_cast<std::int64_t>(FUsed);
  FUsed = FAt = 0;
}

void TBufferedStream::EndWriting() {
  if (!FWriting) {
    File();
    return;
  }
  Flush();
  FWriting = false;
}

void TBufferedStream::Sync() {
  Flush();
  File().Sync();
}

std::int64_t TBufferedStream::Seek(std::int64_t Offset, TSeekOrigin Origin) {
  File();
  const std::int64_t Position = FBufferStart + static_cast<std::int64_t>(FAt);
  const std::int64_t Target = SeekTarget(Offset, Origin, Position, FSize);
  if (Target == Position) return Target;
  EndWriting();
  if (Target >= FBufferStart && Target <= FBufferStart + static_cast<std::int64_t>(FUsed))
    FAt = static_cast<std::size_t>(Target - FBufferStart);
  else
    MoveBuffer(Target);
  return Target;
}

std::int64_t TBufferedStream::Size() {
  File();
  return FSize;
}

void TBufferedStream::SetSize(std::int64_t Size) {
  TFile& Target = File();
  if (Size < 0) throw EWriteError("A stream cannot have a negative size: " + FFileName);
  if (Size > FSize) {
    Target.SetSize(Size);
    FSize = Size;
    return;
  }
  if (Size < FBufferStart) {
    MoveBuffer(Size);
  } else if (Size < FBufferStart + static_cast<std::int64_t>(FUsed)) {
    FUsed = static_cast<std::size_t>(Size - FBufferStart);
    FAt = std::min(FAt, FUsed);
  }
  FSize = Size;
  // The file is shorter than the new size while the bytes before it are in the buffer; there may be no room for more.
  if (Target.Size() > Size) Target.SetSize(Size);
}

}  // namespace velkrund
