#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velkrund/eif/EIErrors.h"
#include "velkrund/eif/EIObject.h"
#include "velkrund/eif/Section.h"
#include "velkrund/platform/ormtools/LineReader.h"
#include "velkrund/platform/ormtools/Streams.h"
#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// A stream of sections in the EIF layout.
///
///   [SECTION]              ASCII
///   Encoding = UTF8        or ANSI; ANSI when absent; holds for the header lines that follow it and for the body
///   Name = ...             \ in any order; the last of a repeated one counts
///   Type = ...             |
///   Version = 200          /
///   Parameter = value      any number, names unique without regard to case
///   [DATA]
///   ...                    the body, whatever the section's class writes
///   [END]
///
/// A line ends at a carriage return, which may be followed by a line feed; writers always write both. A lone line feed
/// is data. Text outside sections is ignored and kept; in a header, empty lines and those that begin with ";" are too.
/// A UTF-8 source begins with a byte-order mark on a line of its own. Sections of both encodings may stand in one
/// source.
///
/// Until a section is whole its first line reads ";SECTION]", so that it is text outside of sections to every reader:
/// its "[" is written last. What a writer has left so at the end is known as unfinished, and the next one cuts it off.
///
/// Open once, then export, import and delete. Errors are EEIError; those of Open and ImportObject name file and line.
/// Used by one thread at a time.
class TEISource {
 public:
  /// Bytes of a header line, its end not counted. The longest values are the texts of queries, which people write;
  /// a line without an end would be read into memory to the end of the file.
  static constexpr std::size_t MaxHeaderLine = 1024 * 1024;

  TEISource();
  TEISource(const TEISource&) = delete;
  TEISource& operator=(const TEISource&) = delete;
  virtual ~TEISource();

  /// Opens the store and reads every header; bodies are passed over. After a failure Sections holds what came before
  /// the faulty section.
  void Open();
  /// Makes a new, empty store.
  virtual void CreateFile() = 0;
  /// Appends one section, on a line of its own, where something unfinished begins or at the end. A failure, EAbort
  /// included, leaves stream and Sections as they were, unfinished things apart.
  virtual void ExportObject(TEIObject& Object, const std::string& Name);
  /// Gives the object the body of the section that its SectionNumber names.
  virtual void ImportObject(TEIObject& Object);
  /// Whether sections that are added from now on stay unfinished, though Sections has them, until FinishHeld.
  void SetHoldsBack(bool HoldsBack) { FHoldsBack = HoldsBack; }
  bool HoldsBack() const { return FHoldsBack; }
  /// Where the first lines of those sections begin.
  const std::vector<std::int64_t>& Held() const { return FHeld; }
  /// Makes them sections for every reader.
  void FinishHeld();
  /// Cuts them off again.
  void DropHeld();
  /// A new object of the section's class, initialised from its header. Index: 0 .. Sections().Count() - 1.
  std::unique_ptr<TEIObject> CreateEIObject(int Index);

  /// Removes one section. Text before its "[SECTION]" line stays; with the last section goes all that follows it.
  /// DataLinePosition of later headers stays as the file was opened.
  void DeleteSection(int Index);
  /// Removes the sections whose indexes the list holds as decimal texts, in one pass. EConvertError and EListError come
  /// before anything is changed.
  void DeleteSections(TStringList List);

  /// Bytes of the stream from Start up to End.
  struct TCut {
    std::int64_t Start, End;
  };
  /// What to leave out of a copy of the stream so that it is the same without these sections: in their order, none
  /// touching another. What stands behind the last section stays. Raises as DeleteSections does; nothing is changed.
  std::vector<TCut> CutsOf(const std::vector<int>& Indexes);

  /// The position behind the "[END]" line of a section, or behind the store's end where that is missing.
  std::int64_t EndOfSection(const TEISection& Section);

  virtual TStream& Stream() = 0;
  const TEISectionList& Sections() const { return FSections; }
  /// Hands the headers over; the source has none any more.
  TEISectionList TakeSections() { return std::exchange(FSections, {}); }
  TKvEncoding DefaultEncoding() const { return FDefaultEncoding; }
  /// The encoding of sections to be written.
  void SetDefaultEncoding(TKvEncoding Encoding) { FDefaultEncoding = Encoding; }
  /// Whether characters that an encoding cannot carry, and malformed UTF-8, are errors; otherwise they are replaced
  /// and counted. Holds for headers and bodies. As the application has it when the source is made.
  bool StrictText() const { return FStrictText; }
  void SetStrictText(bool Strict) { FStrictText = Strict; }
  /// Where the "[SECTION]" line of the section begins that Open could not read through, a byte offset; -1: none.
  std::int64_t UnreadPosition() const { return FUnreadPosition; }
  /// Where unfinished sections at the end begin, those of other writers, as Open has found them; a byte offset; -1:
  /// there are none, or they were cut off.
  std::int64_t UnfinishedPosition() const { return FUnfinishedPosition; }
  /// Lines read by ReadlnString since Open began; -1 while lines are not counted.
  std::int64_t ReadLnCnt() const { return FReadLnCnt; }
  /// Characters lost to encodings so far.
  const TTextLosses& Losses() const { return FLosses; }

  /// Reads one line at the stream's position, as UTF-8; valid until the next operation.
  std::string_view ReadlnString(TKvEncoding Encoding);
  void WritelnString(std::string_view Text, TKvEncoding Encoding);
  /// Text without trailing blanks; tabs stay.
  static std::string_view RightTrim(std::string_view Text);

 protected:
  /// Makes the stream ready.
  virtual void InternalOpen() = 0;
  /// The file name for error texts; none when the source is no file.
  virtual std::optional<std::string> ErrorFileName() const { return std::nullopt; }

 private:
  void ReadSection();
  void ReadHeader(TEISection& Section, std::string& TypeName);
  void TakeHeaderLine(TEISection& Section, std::string& TypeName, std::string_view Line);
  void CheckHeader(TEISection& Section, const std::string& TypeName);
  bool FindMarkerLine(std::string_view Marker, std::int64_t& LineStart);
  std::string_view ReadHeaderLine(TKvEncoding Encoding);
  std::string_view Decoded(std::string_view Raw, TKvEncoding Encoding);
  [[noreturn]] void StructureError(std::string_view What, std::string_view Detail = {});
  [[noreturn]] void Decorate(const std::exception& Error, std::int64_t Line, TErrorInfo Place) const;
  void CutUnfinished();
  void FinishSection(std::int64_t Start);
  void WriteSection(TEIObject& Object, const std::string& Name, TEISection& Section);
  void WriteHeaderLine(std::string_view Name, std::string_view Value, TKvEncoding Encoding);
  TCut CutOf(int Index, bool ToTheEnd);
  void DeleteMarked(const std::vector<bool>& Marks);
  bool WouldJoinLineEnd(std::int64_t LastKept, std::int64_t NextKept);
  void MoveDown(std::int64_t& WriteAt, std::int64_t From, std::int64_t To);

  std::int64_t FReadLnCnt = -1;
  std::int64_t FUnreadPosition = -1;
  std::int64_t FUnfinishedPosition = -1;
  bool FHoldsBack = false;
  std::vector<std::int64_t> FHeld;
  std::string FUnreadName;  // of the section that Open is reading
  TKvEncoding FDefaultEncoding = TKvEncoding::Ansi;
  bool FStrictText;
  TEISectionList FSections;
  TTextLosses FLosses;
  TLineCodec FCodec;
  std::string FSpill;
};

}  // namespace velkrund
