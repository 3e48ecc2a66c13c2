#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/LineReader.h"
#include "velkrund/platform/ormtools/Streams.h"

namespace velkrund {

/// A view onto a source's stream, through which a section object writes or reads its body in the section's encoding:
/// unbounded and writable while a section is exported, bounded to one body and read-only while it is imported. Position
/// 0 is where the underlying stream stood when the view was made. Lives for one export or import.
class TEIStream final : public TStream {
 public:
  /// Stream: borrowed. Size: bytes of the view, -1 for an unbounded one. Losses: borrowed, may be null; counts what the
  /// encoding could not carry.
  explicit TEIStream(TStream& Stream, std::int64_t Size = -1, TTextLosses* Losses = nullptr);

  /// The next line as UTF-8, valid until the next operation on the view. At the end of a bounded view an empty text, as
  /// for an empty line: the end is told by position and size. Where the view is strict about text, a malformed line
  /// raises EEIError.
  std::string_view Readln();
  /// The same for lines that cannot sensibly be long: one of more than 1 MiB raises EEIError before it is read whole.
  std::string_view ReadShortLine();
  /// Writes a UTF-8 text as one line, ended by carriage return and line feed. Where the view is strict about text, a
  /// character that the encoding lacks raises EEIError.
  void Writeln(std::string_view Text);

  std::size_t Read(char* Buffer, std::size_t Count) override;
  /// EEIError "Can not change EIStream data in readonly mode" on a bounded view; SetSize likewise.
  void Write(std::string_view Data) override;
  /// In a bounded view an offset from the end counts backwards, and a target beyond the view moves to the end of the
  /// whole underlying stream; a target before the view moves to its start. Readers of old files rely on each of the
  /// three.
  std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override;
  std::int64_t Size() override;
  /// EEIError "Invalid EIWriter data size" when negative. The underlying stream gets Size minus the view's origin.
  void SetSize(std::int64_t Size) override;
  std::string_view Peek() override;
  void Flush() override { FStream.Flush(); }

  bool GetReadOnly() const { return FDataSize >= 0; }
  void CheckReadOnly() const;

  TKvEncoding Encoding() const { return FEncoding; }
  void SetEncoding(TKvEncoding Encoding) { FEncoding = Encoding; }
  /// As the source has it; a view that is made without one, as the application has it then.
  bool StrictText() const { return FStrictText; }
  void SetStrictText(bool Strict) { FStrictText = Strict; }
  /// Lines read by Readln; -1 when they are not counted.
  std::int64_t ReadLnCnt() const { return FReadLnCnt; }
  void SetReadLnCnt(std::int64_t Count) { FReadLnCnt = Count; }
  /// The number of the line last read, in the source; of the view alone where nobody has said how many lie before it.
  std::int64_t SourceLine() const { return FLinesBefore + FReadLnCnt; }
  void SetLinesBefore(std::int64_t Count) { FLinesBefore = Count; }
  /// The line of the view that an error is about, from 1, where it is not the one last read; -1: none can be told.
  void SetErrorLine(std::int64_t Line) { FErrorLine = Line; }
  std::int64_t ErrorLine() const { return FErrorLine.value_or(FReadLnCnt); }
  TTextLosses& Losses() { return *FLosses; }
  /// The position in the underlying stream, for error texts about the place in a file.
  std::int64_t SourcePosition() { return FStream.Position(); }

 private:
  std::int64_t Rest();
  std::string_view Decoded(std::string_view Raw);

  TStream& FStream;  // borrowed
  std::int64_t FOrigin;
  std::int64_t FDataSize;
  std::int64_t FReadLnCnt = -1;
  std::int64_t FLinesBefore = 0;
  std::optional<std::int64_t> FErrorLine;
  TKvEncoding FEncoding = TKvEncoding::Ansi;
  bool FStrictText;
  TLineCodec FCodec;
  std::string FSpill;
  TTextLosses FOwnLosses;
  TTextLosses* FLosses;
};

}  // namespace velkrund
