#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velkrund {

inline constexpr char HexDigits[] = "0123456789ABCDEF";

/// By byte; 255 for what is no digit of either case.
inline constexpr std::array<std::uint8_t, 256> HexValues = [] {
  std::array<std::uint8_t, 256> Values{};
  for (std::size_t Byte = 0; Byte < Values.size(); ++Byte)
    Values[Byte] = static_cast<std::uint8_t>(Byte >= '0' && Byte <= '9'   ? Byte - '0'
                                             : Byte >= 'A' && Byte <= 'F' ? Byte - 'A' + 10
                                             : Byte >= 'a' && Byte <= 'f' ? Byte - 'a' + 10
                                                                          : 255);
  return Values;
}();

constexpr unsigned HexValue(char Digit) { return HexValues[static_cast<unsigned char>(Digit)]; }

/// Writes two digits for every byte at Out.
void EncodeHex(std::string_view Bytes, char* Out);

/// Decodes pairs of hexadecimal digits of either case to Out, which may be where they stand. Returns how many digits it
/// took: all, or those before the first pair that is none.
std::size_t DecodeHex(std::string_view Digits, char* Out);

}  // namespace velkrund
