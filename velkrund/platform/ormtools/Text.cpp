#include "velkrund/platform/ormtools/Text.h"

#include <algorithm>

#include "velkrund/platform/ormtools/ByteWords.h"

namespace velkrund {
namespace {

constexpr char32_t Replacement = 0xFFFD;

unsigned char ByteAt(std::string_view Text, std::size_t Position) { return static_cast<unsigned char>(Text[Position]); }

/// Whether eight bytes of ASCII start at Position.
bool IsAsciiWord(std::string_view Text, std::size_t Position) {
  return Text.size() - Position >= WordSize && (LoadWord(Text.data() + Position) & FlagBits) == 0;
}

/// A character's bytes, or of a malformed sequence those that one U+FFFD stands for.
struct TSequence {
  std::size_t Length;
  bool WellFormed;
};

TSequence SequenceAt(std::string_view Text, std::size_t Position) {
  const unsigned char Lead = ByteAt(Text, Position);
  if (Lead < 0x80) return {1, true};
  if (Lead < 0xC2 || Lead > 0xF4) return {1, false};
  const std::size_t Length = Lead < 0xE0 ? 2 : Lead < 0xF0 ? 3 : 4;
  // The second byte excludes overlong forms and what lies beyond U+10FFFF.
  const unsigned char Low = Lead == 0xE0 ? 0xA0 : Lead == 0xF0 ? 0x90 : 0x80;
  const unsigned char High = Lead == 0xF4 ? 0x8F : 0xBF;
  const std::size_t Left = Text.size() - Position;
  if (Left < 2 || ByteAt(Text, Position + 1) < Low || ByteAt(Text, Position + 1) > High) return {1, false};
  for (std::size_t Index = 2; Index < Length; ++Index)
    if (Index >= Left || (ByteAt(Text, Position + Index) & 0xC0) != 0x80) return {Index, false};
  return {Length, true};
}

char32_t Decode(std::string_view Text, std::size_t Position, std::size_t Length) {
  const char32_t Lead = ByteAt(Text, Position);
  if (Length == 1) return Lead;
  char32_t Code = Lead & (0x7Fu >> Length);
  for (std::size_t Index = 1; Index < Length; ++Index) Code = (Code << 6) | (ByteAt(Text, Position + Index) & 0x3Fu);
  return Code;
}

}  // namespace

std::size_t AsciiPrefix(std::string_view Text) {
  std::size_t At = 0;
  while (IsAsciiWord(Text, At)) At += WordSize;
  const std::size_t Left = std::min(Text.size() - At, WordSize);
  return At + std::min(Left, FirstFlag(LoadUpTo(Text.data() + At, Left) & FlagBits));
}

std::size_t Utf16Length(std::string_view Text) {
  std::size_t Units = 0;
  std::size_t At = 0;
  while (At < Text.size()) {
    const TSequence Sequence = SequenceAt(Text, At);
    Units += Sequence.WellFormed && Sequence.Length == 4 ? 2 : 1;
    At += Sequence.Length;
  }
  return Units;
}

std::size_t Utf16Prefix(std::string_view Text, std::size_t Units) {
  // No character has more units than bytes.
  if (Text.size() <= Units) return Text.size();
  std::size_t At = 0;
  while (At < Text.size() && Units > 0) {
    if (Units >= WordSize && IsAsciiWord(Text, At)) {
      At += WordSize;
      Units -= WordSize;
      continue;
    }
    const TSequence Sequence = SequenceAt(Text, At);
    const std::size_t Needed = Sequence.WellFormed && Sequence.Length == 4 ? 2 : 1;
    if (Needed > Units) break;
    Units -= Needed;
    At += Sequence.Length;
  }
  return At;
}

char32_t NextCodePoint(std::string_view Text, std::size_t& Position) {
  const TSequence Sequence = SequenceAt(Text, Position);
  const char32_t Code = Sequence.WellFormed ? Decode(Text, Position, Sequence.Length) : Replacement;
  Position += Sequence.Length;
  return Code;
}

void AppendUtf8(std::string& Out, char32_t Code) {
  if (Code > 0x10FFFF) Code = Replacement;
  char Buffer[4];
  std::size_t Length = 0;
  const auto Put = [&](char32_t Byte) { Buffer[Length++] = static_cast<char>(static_cast<unsigned char>(Byte)); };
  if (Code < 0x80) {
    Put(Code);
  } else if (Code < 0x800) {
    Put(0xC0 | (Code >> 6));
    Put(0x80 | (Code & 0x3F));
  } else if (Code < 0x10000) {
    Put(0xE0 | (Code >> 12));
    Put(0x80 | ((Code >> 6) & 0x3F));
    Put(0x80 | (Code & 0x3F));
  } else {
    Put(0xF0 | (Code >> 18));
    Put(0x80 | ((Code >> 12) & 0x3F));
    Put(0x80 | ((Code >> 6) & 0x3F));
    Put(0x80 | (Code & 0x3F));
  }
  Out.append(Buffer, Length);
}

void AppendUtf16Unit(std::string& Out, char16_t Unit) {
  const bool IsLow = Unit >= 0xDC00 && Unit <= 0xDFFF;
  if (IsLow && Out.size() >= 3) {
    const std::size_t Start = Out.size() - 3;
    const bool HighBefore =
        ByteAt(Out, Start) == 0xED && ByteAt(Out, Start + 1) >= 0xA0 && ByteAt(Out, Start + 1) <= 0xAF;
    if (HighBefore) {
      const char32_t High = Decode(Out, Start, 3);
      Out.resize(Start);
      AppendUtf8(Out, 0x10000 + ((High - 0xD800) << 10) + (Unit - 0xDC00u));
      return;
    }
  }
  AppendUtf8(Out, Unit);
}

std::size_t FindMalformedUtf8(std::string_view Text) {
  // Below it characters take two bytes where one is enough.
  constexpr unsigned LeastLead = 0xC2;
  std::size_t At = 0;
  while (At < Text.size()) {
    while (IsAsciiWord(Text, At) && IsAsciiWord(Text, At + WordSize)) At += 2 * WordSize;
    const std::size_t Left = Text.size() - At;
    const TByteWord Word = LoadUpTo(Text.data() + At, Left);
    // Zeros stand for bytes behind the end.
    const std::size_t Known = (Word & FlagBits) == 0 ? WordSize : WholeCharacters<LeastLead>(Word, AsciiFlags(Word));
    At += std::min(Known, Left);
    if (Known != 0) continue;
    while (At < Text.size() && ByteAt(Text, At) >= 0x80) {
      const TSequence Sequence = SequenceAt(Text, At);
      if (!Sequence.WellFormed) return At;
      At += Sequence.Length;
    }
  }
  return std::string_view::npos;
}

std::int64_t RepairUtf8(std::string& Text, std::size_t From) {
  std::int64_t Count = 0;
  std::string Repaired;
  const std::string_view Whole = Text;
  std::size_t Copied = 0;
  std::size_t At = From;
  while (true) {
    const std::size_t Good = FindMalformedUtf8(Whole.substr(At));
    if (Good == std::string_view::npos) break;
    At += Good;
    Repaired += Whole.substr(Copied, At - Copied);
    Repaired += ReplacementUtf8;
    At += SequenceAt(Whole, At).Length;
    Copied = At;
    ++Count;
  }
  if (Count == 0) return 0;
  Repaired += Whole.substr(Copied);
  Text = std::move(Repaired);
  return Count;
}

bool IsStrictUtf8(std::string_view Text) {
  std::size_t At = AsciiPrefix(Text);
  if (At == Text.size()) return true;
  if (FindMalformedUtf8(Text.substr(At)) != std::string_view::npos) return false;
  for (; (At = Text.find('\xED', At)) != std::string_view::npos; ++At)
    if (ByteAt(Text, At + 1) >= 0xA0) return false;
  return true;
}

void AppendStrictUtf8(std::string& Out, std::string_view Text) {
  for (std::size_t At = 0; At < Text.size();) {
    const char32_t Code = NextCodePoint(Text, At);
    AppendUtf8(Out, (Code & 0xFFFF'F800) == 0xD800 ? Replacement : Code);
  }
}

std::u16string ToUtf16(std::string_view Text) {
  std::u16string Out;
  Out.reserve(Text.size());
  std::size_t At = 0;
  while (At < Text.size()) {
    const char32_t Code = NextCodePoint(Text, At);
    if (Code >= 0x10000) {
      Out += static_cast<char16_t>(0xD800 + ((Code - 0x10000) >> 10));
      Out += static_cast<char16_t>(0xDC00 + ((Code - 0x10000) & 0x3FF));
    } else {
      Out += static_cast<char16_t>(Code);
    }
  }
  return Out;
}

std::string FromUtf16(std::u16string_view Text) {
  std::string Out;
  Out.reserve(Text.size());
  for (const char16_t Unit : Text) AppendUtf16Unit(Out, Unit);
  return Out;
}

std::string_view Trim(std::string_view Text) {
  while (!Text.empty() && ByteAt(Text, 0) <= 0x20) Text.remove_prefix(1);
  return TrimRight(Text);
}

std::string_view TrimRight(std::string_view Text) {
  while (!Text.empty() && ByteAt(Text, Text.size() - 1) <= 0x20) Text.remove_suffix(1);
  return Text;
}

std::string_view TrimRightBlanks(std::string_view Text) {
  while (!Text.empty() && Text.back() == ' ') Text.remove_suffix(1);
  return Text;
}

}  // namespace velkrund
