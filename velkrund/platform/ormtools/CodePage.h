#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velkrund {

/// A single-byte ("ANSI") code page: 256 bytes to Unicode and back. Immutable once built; shared freely between
/// threads. The built-in pages, windows-1250 to windows-1258, follow the tables that Unicode, Inc. publishes for them
/// (VENDORS/MICSFT/WINDOWS). A byte that a table leaves undefined maps to the character of the same code, so that every
/// byte survives the way to Unicode and back: a C1 control, and from 0xA0 on, where 1253, 1255 and 1257 have such
/// bytes, a character of Latin-1. So 1255 takes a U+00D9 as its undefined byte 0xD9, which programs with another rule
/// may not read. There is no best fit: what a page cannot represent is '?'.
class TCodePage {
 public:
  /// The built-in page of that Windows number (1250 .. 1258); null when there is none. Lives as long as the program.
  static const TCodePage* Find(int Number);
  /// windows-1251.
  static const TCodePage& Default();

  /// Upper holds the characters of the bytes 0x80 .. 0xFF; 0 marks an undefined byte. Bytes below 0x80 are ASCII.
  TCodePage(int Number, const std::array<char16_t, 128>& Upper);

  int Number() const { return FNumber; }
  char16_t ToUnicode(unsigned char Byte) const { return FToUnicode[Byte]; }
  /// The byte of a character; nothing when the page has none.
  std::optional<unsigned char> FromUnicode(char32_t Code) const;

  /// Appends the UTF-8 form of Bytes.
  void Decode(std::string_view Bytes, std::string& Out) const;
  /// Appends the bytes of a UTF-8 text; returns how many characters were replaced by '?'.
  std::int64_t Encode(std::string_view Text, std::string& Out) const;

 private:
  struct TForward {
    char Utf8[3];
    std::uint8_t Length;
  };
  struct TBackward {
    char16_t Code;
    unsigned char Byte;
  };

  /// The byte of a character beyond ASCII; 0 when the page has none.
  unsigned char ByteOf(char32_t Code) const;

  int FNumber;
  std::array<char16_t, 256> FToUnicode{};
  std::array<TForward, 256> FForward{};
  // Back: by index where the alphabets are, by search beyond them.
  std::array<unsigned char, 0x700> FNear{};
  std::array<TBackward, 128> FFar{};  // sorted by code
  std::size_t FFarCount = 0;
};

/// How the texts of a file or a stream are encoded. The numbers are part of the module's interface.
enum class TKvEncoding : int { Ansi = 0, Utf8 = 1 };

}  // namespace velkrund
