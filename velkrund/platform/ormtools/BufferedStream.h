#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "velkrund/platform/ormtools/FileSystem.h"
#include "velkrund/platform/ormtools/Streams.h"

namespace velkrund {

/// A file as a stream, through one buffer that holds either bytes read ahead or bytes not yet written. The read buffer
/// starts small and doubles while reads are sequential, so that hopping from header to header reads little and scanning
/// reads much. Closed until Open; operations on a closed stream raise EStreamError. Close and destruction drop bytes
/// not yet flushed: whoever wrote calls Flush, and Sync before success is reported. After a failed write the bytes that
/// could not be written are still in the buffer: Flush tries them again, SetSize to where they begin and Close drop
/// them.
class TBufferedStream final : public TStream {
 public:
  /// Files: borrowed, outlives the stream. BufferSize: bytes of the first read, 1 .. 256 KiB.
  explicit TBufferedStream(TFileSystem& Files, std::size_t BufferSize = 1024);
  ~TBufferedStream() override;

  void SetFileName(std::string Name) { FFileName = std::move(Name); }
  const std::string& FileName() const { return FFileName; }
  /// Opens FileName; an open file is closed first.
  void Open(TFileMode Mode);
  void Close();
  bool IsOpen() const { return FFile != nullptr; }

  std::size_t Read(char* Buffer, std::size_t Count) override;
  void Write(std::string_view Data) override;
  std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override;
  std::int64_t Size() override;
  void SetSize(std::int64_t Size) override;
  std::string_view Peek() override;
  void Flush() override;
  /// Flushes and waits until the bytes are on the disk.
  void Sync();

 private:
  TFile& File() const;
  void MoveBuffer(std::int64_t Position);
  void Reserve(std::size_t Capacity);
  std::size_t ReadSequentially(char* Buffer, std::size_t Count);
  void FillBuffer();
  void WriteThrough(std::string_view Data);
  void EndWriting();

  TFileSystem& FFiles;
  std::string FFileName;
  std::unique_ptr<TFile> FFile;
  std::size_t FFirstRead;
  std::size_t FNextRead;  // size of the next read
  std::unique_ptr<char[]> FBuffer;
  std::size_t FCapacity = 0;
  std::int64_t FBufferStart = 0;  // file position of the buffer's first byte
  std::size_t FUsed = 0;          // bytes in the buffer
  std::size_t FAt = 0;            // position within the buffer
  bool FWriting = false;          // the buffer holds bytes to be written, FAt == FUsed
  std::int64_t FSize = 0;         // of the file, bytes not yet written included
};

}  // namespace velkrund
