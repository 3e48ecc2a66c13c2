#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

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
/// Open once, then export, import and delete. Errors are EEIError; those of Open and ImportObject name file and line.
/// Used by one thread at a time.
class TEISource {
 public:
  TEISource();
  TEISource(const TEISource&) = delete;
  TEISource& operator=(const TEISource&) = delete;
  virtual ~TEISource();

  /// Opens the store and reads every header; bodies are passed over. After a failure Sections holds what came before
  /// the faulty section.
  void Open();
  /// Makes a new, empty store.
  virtual void CreateFile() = 0;
  /// Appends one section, on a line of its own. A failure, EAbort included, leaves stream and Sections as they were.
  virtual void ExportObject(TEIObject& Object, const std::string& Name);
  /// Gives the object the body of the section that its SectionNumber names.
  virtual void ImportObject(TEIObject& Object);
  /// A new object of the section's class, initialised from its header. Index: 0 .. Sections().Count() - 1.
  std::unique_ptr<TEIObject> CreateEIObject(int Index);

  /// Removes one section. Text before its "[SECTION]" line stays; with the last section goes all that follows it.
  /// DataLinePosition of later headers stays as the file was opened.
  void DeleteSection(int Index);
  /// Removes the sections whose indexes the list holds as decimal texts, in one pass. EConvertError and EListError come
  /// before anything is changed.
  void DeleteSections(TStringList List);

  virtual TStream& Stream() = 0;
  const TEISectionList& Sections() const { return FSections; }
  TKvEncoding DefaultEncoding() const { return FDefaultEncoding; }
  /// The encoding of sections to be written.
  void SetDefaultEncoding(TKvEncoding Encoding) { FDefaultEncoding = Encoding; }
  /// Whether characters that an encoding cannot carry, and malformed UTF-8, are errors; otherwise they are replaced
  /// and counted. Holds for headers and bodies. As the application has it when the source is made.
  bool StrictText() const { return FStrictText; }
  void SetStrictText(bool Strict) { FStrictText = Strict; }
  /// Where the "[SECTION]" line of the section begins that Open could not read through, a byte offset; -1: none.
  std::int64_t UnreadPosition() const { return FUnreadPosition; }
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
  void ReadHeaderLine(TEISection& Section, std::string& TypeName, std::string_view Line);
  void CheckHeader(TEISection& Section, const std::string& TypeName);
  bool FindMarkerLine(std::string_view Marker, std::int64_t& LineStart);
  std::string_view ReadRaw();
  [[noreturn]] void StructureError(std::string_view What, std::string_view Detail = {});
  [[noreturn]] void Decorate(const std::exception& Error, std::int64_t Line, TErrorInfo Place) const;
  void WriteSection(TEIObject& Object, const std::string& Name, TEISection& Section);
  void WriteHeaderLine(std::string_view Name, std::string_view Value, TKvEncoding Encoding);
  void DeleteMarked(const std::vector<bool>& Marks);
  bool WouldJoinLineEnd(std::int64_t LastKept, std::int64_t NextKept);
  std::int64_t EndOfSection(const TEISection& Section);
  void MoveDown(std::int64_t& WriteAt, std::int64_t From, std::int64_t To);

  std::int64_t FReadLnCnt = -1;
  std::int64_t FUnreadPosition = -1;
  std::string FUnreadName;  // of the section that Open is reading
  TKvEncoding FDefaultEncoding = TKvEncoding::Ansi;
  bool FStrictText;
  TEISectionList FSections;
  TTextLosses FLosses;
  TLineCodec FCodec;
  std::string FSpill;
};

}  // namespace velkrund
