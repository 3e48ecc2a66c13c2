#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

// Texts eight bytes at a time, as a number whose lowest byte is the first of them, whatever the machine. What is found
// about bytes are flags: the highest bit of each byte that it is true of.

using TByteWord = std::uint64_t;
inline constexpr std::size_t WordSize = sizeof(TByteWord);
inline constexpr TByteWord FlagBits = 0x8080808080808080;

constexpr TByteWord EachByte(unsigned Byte) { return 0x0101010101010101 * TByteWord{Byte}; }

constexpr TByteWord FirstLowest(TByteWord Word) {
  if constexpr (std::endian::native == std::endian::little) return Word;
  TByteWord Result = 0;
  for (std::size_t At = 0; At < WordSize; ++At, Word >>= 8U) Result = Result << 8U | (Word & 0xFFU);
  return Result;
}

inline TByteWord LoadWord(const char* From) {
  TByteWord Word = 0;
  std::memcpy(&Word, From, WordSize);
  return FirstLowest(Word);
}

inline void StoreWord(char* To, TByteWord Word) {
  Word = FirstLowest(Word);
  std::memcpy(To, &Word, WordSize);
}

/// Count: 0 .. 7 bytes; zeros stand for the others.
inline TByteWord LoadBytes(const char* From, std::size_t Count) {
  const auto Byte = [From](std::size_t At) { return TByteWord{static_cast<unsigned char>(From[At])}; };
  const auto Four = [&](std::size_t At) {
    return Byte(At) | Byte(At + 1) << 8U | Byte(At + 2) << 16U | Byte(At + 3) << 24U;
  };
  if (Count >= 4) return Four(0) | Four(Count - 4) << 8 * (Count - 4);
  if (Count == 0) return 0;
  // Of one, two or three bytes the first, the one in the middle and the last are all.
  return Byte(0) | Byte(Count / 2) << 8 * (Count / 2) | Byte(Count - 1) << 8 * (Count - 1);
}

/// The word at From, of which Left bytes may be read.
inline TByteWord LoadUpTo(const char* From, std::size_t Left) {
  return Left >= WordSize ? LoadWord(From) : LoadBytes(From, Left);
}

/// Count: 0 .. 8; no byte behind them is touched.
inline void StoreBytes(char* To, TByteWord Word, std::size_t Count) {
  if (Count == WordSize) return StoreWord(To, Word);
  for (; Count > 0; --Count, Word >>= 8U) *To++ = static_cast<char>(Word & 0xFFU);
}

/// The index of the first flag; 8 when there is none.
constexpr std::size_t FirstFlag(TByteWord Flags) { return static_cast<std::size_t>(std::countr_zero(Flags)) / 8; }

constexpr TByteWord AsciiFlags(TByteWord Word) { return ~Word & FlagBits; }

/// The bytes that are Byte, which is ASCII.
constexpr TByteWord EqualFlags(TByteWord Word, char Byte) {
  const TByteWord Difference = Word ^ EachByte(static_cast<unsigned char>(Byte));
  return ~(((Difference & ~FlagBits) + EachByte(0x7F)) | Difference) & FlagBits;
}

/// How many bytes at the beginning of Word are whole characters: of one byte, Singles being the flags of those that
/// count, or of two, the first of them LeastLead (0xC2 or more) .. 0xDF.
template <unsigned LeastLead>
constexpr std::size_t WholeCharacters(TByteWord Word, TByteWord Singles) {
  const TByteWord InRange = (Word & EachByte(0x1F)) + EachByte(0x80 - (LeastLead & 0x1FU));
  const TByteWord Leads = Word & Word << 1U & ~(Word << 2U) & InRange & FlagBits;
  const TByteWord Followers = Word & ~(Word << 1U) & FlagBits;
  const TByteWord Other = (FlagBits & ~(Singles | Leads | Followers)) | (Leads << 8U ^ Followers);
  const std::size_t Count = FirstFlag(Other);
  // A first byte whose second one is missing, or stands in the next word.
  return Count > 0 && (Leads >> (8 * Count - 1) & 1U) != 0 ? Count - 1 : Count;
}

/// NextCodePoint, quicker where the character takes two bytes, as the letters of most pages do.
inline char32_t NextHighCharacter(std::string_view Text, std::size_t& At) {
  const auto Byte = [Text](std::size_t Index) { return static_cast<unsigned char>(Text[Index]); };
  if (At + 1 >= Text.size() || Byte(At) < 0xC2 || Byte(At) > 0xDF || (Byte(At + 1) & 0xC0) != 0x80)
    return NextCodePoint(Text, At);
  const char32_t Code = (Byte(At) & 0x1FU) << 6U | (Byte(At + 1) & 0x3FU);
  At += 2;
  return Code;
}

}  // namespace velkrund
