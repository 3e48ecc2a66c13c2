#include "velkrund/platform/ormtools/HexDigits.h"

#include <cstring>

namespace velkrund {
namespace {

/// The digits of every byte.
constexpr std::array<std::array<char, 2>, 256> HexPairs = [] {
  std::array<std::array<char, 2>, 256> Pairs{};
  for (std::size_t Byte = 0; Byte < Pairs.size(); ++Byte) Pairs[Byte] = {HexDigits[Byte / 16], HexDigits[Byte % 16]};
  return Pairs;
}();

// Plain arithmetic: compilers turn a loop of it into vector instructions, which a table would forbid.

struct THexPiece {
  static constexpr std::size_t Bytes = 32;
  unsigned char Values[Bytes];
  bool AreDigits;
};

constexpr std::uint8_t Narrowed(unsigned Value) { return static_cast<std::uint8_t>(Value); }

/// The bytes of 64 digits.
THexPiece HexPieceAt(const char* Digits) {
  std::uint8_t Values[2 * THexPiece::Bytes];
  std::uint8_t Wrong = 0;
  for (std::size_t At = 0; At < sizeof Values; ++At) {
    const auto Byte = static_cast<std::uint8_t>(Digits[At]);
    const std::uint8_t Number = Narrowed(Byte - unsigned{'0'});
    const std::uint8_t Letter = Narrowed((Byte | 0x20U) - unsigned{'a'});
    Values[At] = Number < 10 ? Number : Narrowed(Letter + 10U);
    Wrong |= Narrowed((Number < 10 || Letter < 6) ? 0 : 1);
  }
  THexPiece Piece;
  for (std::size_t At = 0; At < THexPiece::Bytes; ++At)
    Piece.Values[At] = Narrowed(unsigned{Values[2 * At]} << 4U | Values[2 * At + 1]);
  Piece.AreDigits = Wrong == 0;
  return Piece;
}

/// As many bytes as a piece has.
void EncodeHexPiece(const char* Bytes, char* Out) {
  for (std::size_t At = 0; At < THexPiece::Bytes; ++At) {
    const auto Byte = static_cast<std::uint8_t>(Bytes[At]);
    const std::uint8_t High = Byte >> 4U, Low = Byte & 15U;
    Out[2 * At] = static_cast<char>(High + '0' + (High > 9 ? 'A' - '0' - 10 : 0));
    Out[2 * At + 1] = static_cast<char>(Low + '0' + (Low > 9 ? 'A' - '0' - 10 : 0));
  }
}

}  // namespace

void EncodeHex(std::string_view Bytes, char* Out) {
  for (; Bytes.size() >= THexPiece::Bytes; Out += 2 * THexPiece::Bytes) {
    EncodeHexPiece(Bytes.data(), Out);
    Bytes.remove_prefix(THexPiece::Bytes);
  }
  for (const char Byte : Bytes) {
    std::memcpy(Out, HexPairs[static_cast<unsigned char>(Byte)].data(), 2);
    Out += 2;
  }
}

std::size_t DecodeHex(std::string_view Digits, char* Out) {
  std::size_t At = 0;
  for (; Digits.size() - At >= 2 * THexPiece::Bytes; At += 2 * THexPiece::Bytes, Out += THexPiece::Bytes) {
    const THexPiece Piece = HexPieceAt(Digits.data() + At);
    if (!Piece.AreDigits) break;
    std::memcpy(Out, Piece.Values, THexPiece::Bytes);
  }
  for (; At + 1 < Digits.size(); At += 2) {
    const unsigned High = HexValue(Digits[At]), Low = HexValue(Digits[At + 1]);
    if ((High | Low) > 15) break;
    *Out++ = static_cast<char>(High << 4U | Low);
  }
  return At;
}

}  // namespace velkrund
