#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Streams.h"

namespace velkrund {

/// A gettext catalogue that cannot be read, or an entry of one; file and line are known.
VELKRUND_EXCEPTION(EPoError, Exception);

/// One message of a catalogue. Texts are UTF-8 without U+0000.
struct TPoEntry {
  std::int64_t Line = 0;               // of the file, on which it begins
  std::optional<std::string> Context;  // msgctxt
  std::string Id;                      // msgid
  std::string Text;                    // msgstr; empty of plural forms
  std::string Section;                 // of the store, where TPoWriter has named it; else empty
  bool IsFuzzy = false;
  bool IsPlural = false;
};

/// Where an entry begins, with the comments in front of it.
struct TPoPlace {
  std::int64_t Position = 0;  // of its line, in the file
  std::int64_t Line = 0;
  std::size_t Column = 0;  // in the line, in bytes
};

/// Reads a gettext catalogue (PO file) entry by entry; memory does not grow with the file. Lines end with a line feed,
/// with or without a carriage return. Strings are in the charset of the header: UTF-8, ASCII or windows-1250 to 1258;
/// without a header they are UTF-8. Comments are passed over, and so are obsolete entries ("#~"). Raises EPoError, and
/// what the stream raises.
///
///     #, fuzzy                flags of the entry that follows
///     msgctxt "K_Caption"     may be missing
///     msgid "Open\n"          strings behind each other are one
///     "a file"
///     msgstr "..."
class TPoReader {
 public:
  /// Reads the header. Stream: borrowed, at the beginning of the catalogue. FileName: for messages.
  TPoReader(TStream& Stream, std::string FileName);

  /// Reads the next entry; false behind the last one.
  bool Next(TPoEntry& Entry);
  /// Of the entry that comes.
  TPoPlace NextPlace() const { return {FLinePosition, FLineNumber, FTokenAt}; }
  void SeekTo(const TPoPlace& Place);
  /// The value of a header field ("Language"), in any case; empty where it is missing.
  std::string Field(std::string_view Name) const;
  /// Those that were passed over so far.
  std::int64_t ObsoleteEntries() const { return FObsolete; }
  /// An error about a line.
  [[noreturn]] void Refuse(std::int64_t Line, const std::string& Text, TErrorCode Code = TErrorCode::Catalogue) const;

 private:
  enum class TKind { End, Comment, Word, String };
  enum class TCharset { Utf8, Ascii, CodePage };

  bool ReadLine();
  void Advance();
  void TakeWord();
  void TakeString();
  void TakeEscape();
  void TakeNumber(unsigned Base, std::size_t MaxDigits);
  void TakeComment();
  bool IsWord(std::string_view Word, std::optional<int> Index = std::nullopt) const;
  void Expect(std::string_view Word, std::string_view Behind);
  void TakeStrings(std::string& Raw);
  bool ReadEntry(TPoEntry& Entry);
  void TakeTexts(TPoEntry& Entry);
  void TakeHeader(const TPoEntry& Header);
  void SetCharset(std::string_view Name, std::int64_t Line);
  void Decode(std::string& Text, std::int64_t Line) const;
  std::string TokenText() const;

  TStream& FStream;
  const std::string FFileName;
  TCharset FCharset = TCharset::Utf8;
  std::string FCharsetName;
  const TCodePage* FCodePage = nullptr;
  std::string FHeader;  // its fields, a line each

  std::string FLine;
  std::int64_t FLinePosition = 0, FLineNumber = 0;
  std::size_t FAt = 0;  // in the line, behind the token
  std::size_t FTokenAt = 0;

  TKind FKind = TKind::End;
  std::string FToken;  // word, comment, or string without its escapes
  int FIndex = -1;     // of msgstr[0]
  std::int64_t FObsolete = 0;
  bool FFuzzy = false;   // of the entry that comes
  std::string FSection;  // the same
};

}  // namespace velkrund
