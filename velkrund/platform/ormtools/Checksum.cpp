#include "velkrund/platform/ormtools/Checksum.h"

#include <array>
#include <cstddef>

namespace velkrund {

namespace {

constexpr std::uint32_t Polynomial = 0xEDB88320;
constexpr std::size_t Slices = 8;

using TSlices = std::array<std::array<std::uint32_t, 256>, Slices>;

/// Slice n: what a byte contributes when n bytes follow it, so that eight bytes take eight look-ups at once.
constexpr TSlices MakeSlices() {
  TSlices Result{};
  for (std::uint32_t Byte = 0; Byte < 256; ++Byte) {
    std::uint32_t Rest = Byte;
    for (int Bit = 0; Bit < 8; ++Bit) Rest = (Rest >> 1U) ^ ((Rest & 1U) != 0 ? Polynomial : 0U);
    Result[0][Byte] = Rest;
  }
  for (std::size_t Slice = 1; Slice < Slices; ++Slice)
    for (std::size_t Byte = 0; Byte < 256; ++Byte) {
      const std::uint32_t Before = Result[Slice - 1][Byte];
      Result[Slice][Byte] = (Before >> 8U) ^ Result[0][Before & 0xFFU];
    }
  return Result;
}

constexpr TSlices Table = MakeSlices();

std::uint32_t LittleEndian(const char* At) {
  std::uint32_t Result = 0;
  for (unsigned Byte = 0; Byte < 4; ++Byte)
    Result |= static_cast<std::uint32_t>(static_cast<unsigned char>(At[Byte])) << (8U * Byte);
  return Result;
}

}  // namespace

std::uint32_t Crc32(std::string_view Bytes) {
  std::uint32_t Rest = 0xFFFFFFFF;
  for (; Bytes.size() >= Slices; Bytes.remove_prefix(Slices)) {
    const std::uint32_t Low = LittleEndian(Bytes.data()) ^ Rest;
    const std::uint32_t High = LittleEndian(Bytes.data() + 4);
    Rest = 0;
    for (unsigned Byte = 0; Byte < 4; ++Byte)
      Rest ^= Table[7 - Byte][(Low >> (8U * Byte)) & 0xFFU] ^ Table[3 - Byte][(High >> (8U * Byte)) & 0xFFU];
  }
  for (const char Byte : Bytes) Rest = (Rest >> 8U) ^ Table[0][(Rest ^ static_cast<unsigned char>(Byte)) & 0xFFU];
  return ~Rest;
}

}  // namespace velkrund
