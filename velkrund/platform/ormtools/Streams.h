#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace velkrund {

enum class TSeekOrigin { Beginning, Current, End };

/// Where a seek leads in a stream of that position and size: never before the beginning or beyond the end.
std::int64_t SeekTarget(std::int64_t Offset, TSeekOrigin Origin, std::int64_t Position, std::int64_t Size);

/// A sequence of bytes with a position. Positions and sizes are bytes, 64-bit. Used by one thread at a time. Failures
/// are EReadError and EWriteError.
class TStream {
 public:
  TStream() = default;
  TStream(const TStream&) = delete;
  TStream& operator=(const TStream&) = delete;
  virtual ~TStream() = default;

  /// Reads up to Count bytes; returns how many, fewer only at the end.
  virtual std::size_t Read(char* Buffer, std::size_t Count) = 0;
  /// Writes all of Data, growing the stream where it ends.
  virtual void Write(std::string_view Data) = 0;
  /// Moves the position and returns the new one, counted from the beginning. Moves as far as the stream reaches: to 0
  /// instead of before the beginning, to the end instead of beyond it.
  virtual std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) = 0;
  virtual std::int64_t Size() = 0;
  /// Cuts or extends (with zero bytes) the stream; a position beyond the new end moves to it.
  virtual void SetSize(std::int64_t Size) = 0;

  /// The bytes that lie ready at the position, without moving it: at least one unless the stream ends here. This is
  /// what makes scanning for line ends one call per block instead of one per byte; Seek(n, Current) then moves behind
  /// what was used. Valid until the next operation on the stream other than a seek within these bytes, up to and with
  /// their end.
  virtual std::string_view Peek() = 0;
  /// Hands written bytes on to the store, so that a full disk shows here and not later. Not a sync.
  virtual void Flush() {}

  std::int64_t Position() { return Seek(0, TSeekOrigin::Current); }
  void SetPosition(std::int64_t Position) { Seek(Position, TSeekOrigin::Beginning); }
};

/// A growable stream in memory.
class TMemoryStream : public TStream {
 public:
  std::size_t Read(char* Buffer, std::size_t Count) override;
  void Write(std::string_view Data) override;
  std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override;
  std::int64_t Size() override { return static_cast<std::int64_t>(FData.size()); }
  void SetSize(std::int64_t Size) override;
  std::string_view Peek() override { return std::string_view(FData).substr(FPosition); }

  /// The whole content; valid until the next change.
  std::string_view Memory() const { return FData; }
  void Clear() { FData.clear(), FPosition = 0; }

 private:
  std::string FData;
  std::size_t FPosition = 0;  // never beyond the end
};

}  // namespace velkrund
