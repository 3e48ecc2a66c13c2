#pragma once

#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/Streams.h"

namespace velkrund {

/// Begins the comment that names the section of an entry's string, behind "#".
inline constexpr std::string_view PoSectionMark = ". velkrund-section:";
/// The header field for the language of every msgid.
inline constexpr std::string_view PoSourceLanguage = "X-Source-Language";

/// What is written as an escape.
constexpr bool IsPoControl(char Char) { return static_cast<unsigned char>(Char) < 0x20 || Char == 0x7F; }

/// Writes a gettext catalogue in UTF-8: the header, then an entry for each string. The same content gives the same
/// bytes. Texts are UTF-8 without U+0000.
class TPoWriter {
 public:
  /// Stream: borrowed.
  explicit TPoWriter(TStream& Stream) : FStream(Stream) {}

  void WriteHeader(std::string_view Language, std::string_view SourceLanguage);
  /// Target: empty: not translated.
  void WriteEntry(std::string_view Section, std::string_view StringID, std::string_view Source,
                  std::string_view Target);

 private:
  void AppendText(std::string_view Keyword, std::string_view Text);
  void Flush();

  TStream& FStream;
  std::string FBuffer;
};

}  // namespace velkrund
