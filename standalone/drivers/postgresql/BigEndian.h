#pragma once

#include <concepts>
#include <cstddef>

namespace velkrund {

/// The integer whose bytes, the highest first, begin at Bytes.
template <std::unsigned_integral T>
T ReadBigEndian(const char* Bytes) {
  T Result = 0;
  for (std::size_t I = 0; I < sizeof(T); ++I)
    Result = static_cast<T>(static_cast<T>(Result << 8U) | static_cast<unsigned char>(Bytes[I]));
  return Result;
}

/// Writes them from Bytes on.
template <std::unsigned_integral T>
void WriteBigEndian(char* Bytes, T Value) {
  for (std::size_t I = 0; I < sizeof(T); ++I)
    Bytes[I] = static_cast<char>(static_cast<unsigned char>(Value >> (8 * (sizeof(T) - 1 - I))));
}

}  // namespace velkrund
