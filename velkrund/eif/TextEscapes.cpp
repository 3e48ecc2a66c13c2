#include "velkrund/eif/TextEscapes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "velkrund/platform/ormtools/ByteWords.h"
#include "velkrund/platform/ormtools/HexDigits.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::size_t LongValue = 64 * 1024;
constexpr std::size_t EscapeDigits = 4;
constexpr std::size_t EscapeSize = 1 + EscapeDigits;
constexpr std::size_t OldEscapeSize = 3;

/// What stands for itself in which place, of the ASCII characters.
struct TPlainCharacters {
  bool BarToo;     // "|" does
  bool DeleteToo;  // the control character 127 does

  constexpr bool Holds(unsigned char Byte) const {
    return Byte >= 0x20 && Byte < 0x80 && Byte != '#' && (BarToo || Byte != '|') && (DeleteToo || Byte != 0x7F);
  }

  /// The same of eight bytes at once.
  constexpr TByteWord Flags(TByteWord Word) const {
    const TByteWord Low = Word & ~FlagBits;
    TByteWord Plain = (Low + EachByte(0x60)) & ((Low ^ EachByte('#')) + EachByte(0x7F)) & ~Word;
    if (!BarToo) Plain &= (Low ^ EachByte('|')) + EachByte(0x7F);
    if (!DeleteToo) Plain &= ~(Low + EachByte(1));
    return Plain & FlagBits;
  }
};

constexpr TPlainCharacters Plain(TEscapePlace Place) { return {Place == TEscapePlace::Alone, false}; }
constexpr TPlainCharacters OldPlain(TEscapePlace Place) { return {Place == TEscapePlace::Alone, true}; }

/// What an ASCII character is written as: eight bytes, quicker to copy than one or five, the last of them the length.
using TWritten = std::array<char, WordSize>;

template <TPlainCharacters Plain>
constexpr auto WrittenAscii = [] {
  std::array<TWritten, 128> Written{};
  for (std::size_t Code = 0; Code < Written.size(); ++Code) {
    if (Plain.Holds(static_cast<unsigned char>(Code)))
      Written[Code] = {static_cast<char>(Code)};
    else
      Written[Code] = {'#', '0', '0', HexDigits[Code / 16], HexDigits[Code % 16]};
    Written[Code].back() = Plain.Holds(static_cast<unsigned char>(Code)) ? 1 : EscapeSize;
  }
  return Written;
}();

/// Writes ASCII characters without asking what each of them is, which a processor cannot foresee.
template <TPlainCharacters Plain>
char* PutAscii(char* To, std::string_view Text) {
  for (const char Character : Text) {
    const TWritten& Written = WrittenAscii<Plain>[static_cast<unsigned char>(Character)];
    std::memcpy(To, Written.data(), WordSize);
    To += Written.back();
  }
  return To;
}

char* PutEscape(char* To, unsigned Code) {
  *To++ = '#';
  for (unsigned Shift = 4 * EscapeDigits; Shift > 0;) *To++ = HexDigits[Code >> (Shift -= 4) & 15U];
  return To;
}

char* PutByteEscape(char* To, unsigned char Byte) {
  *To++ = '#';
  *To++ = HexDigits[Byte / 16];
  *To++ = HexDigits[Byte % 16];
  return To;
}

unsigned char ByteAt(std::string_view Text, std::size_t At) { return static_cast<unsigned char>(Text[At]); }

/// For the room that a long text takes.
std::size_t EscapedCount(TPlainCharacters Plain, std::string_view Text) {
  return static_cast<std::size_t>(std::count_if(Text.begin(), Text.end(), [Plain](char Character) {
    const auto Byte = static_cast<unsigned char>(Character);
    return Byte < 0x80 && !Plain.Holds(Byte);
  }));
}

/// Text on its way out in pieces, which are put together on the stack: to append to a string character by character
/// takes several times as long.
constexpr std::size_t PieceSize = 256;
/// Whatever begins in a piece is written whole.
constexpr std::size_t PieceRoom = EscapeSize * (PieceSize + WordSize) + WordSize;

constexpr unsigned ByteUnits = 0xDC00;  // plus the byte that is not UTF-8

constexpr bool IsSurrogate(char32_t Code) { return (Code & 0xFFFF'F800) == 0xD800; }
constexpr bool IsHigh(unsigned Unit) { return (Unit & 0xFC00) == 0xD800; }
constexpr bool IsLow(unsigned Unit) { return (Unit & 0xFC00) == 0xDC00; }

// Writes one UTF-16 unit at Out; never beyond the five bytes of its own escape. BehindHigh: the form of a high
// surrogate ends at Out, for a low one to join.
char* PutUnit(char* Out, unsigned Unit, bool BehindHigh, TLoneUnit Lone) {
  const auto Put = [&Out](unsigned Byte) { *Out++ = static_cast<char>(Byte); };
  if (BehindHigh && IsLow(Unit)) {
    const unsigned High =
        0xD000u | (static_cast<unsigned>(Out[-2]) & 0x3F) << 6 | (static_cast<unsigned>(Out[-1]) & 0x3F);
    const unsigned Code = 0x10000 + ((High & 0x3FF) << 10) + (Unit & 0x3FF);
    Out -= 3;
    Put(0xF0 | Code >> 18), Put(0x80 | (Code >> 12 & 0x3F)), Put(0x80 | (Code >> 6 & 0x3F)), Put(0x80 | (Code & 0x3F));
  } else if (Lone == TLoneUnit::Byte && Unit >= ByteUnits + 0x80 && Unit <= ByteUnits + 0xFF) {
    Put(Unit - ByteUnits);
  } else if (Unit < 0x80) {
    Put(Unit);
  } else if (Unit < 0x800) {
    Put(0xC0 | Unit >> 6), Put(0x80 | (Unit & 0x3F));
  } else {
    Put(0xE0 | Unit >> 12), Put(0x80 | (Unit >> 6 & 0x3F)), Put(0x80 | (Unit & 0x3F));
  }
  return Out;
}

}  // namespace

void ReserveFor(std::string& Out, std::size_t Bytes) {
  if (Bytes > LongValue) Out.reserve(Out.size() + Bytes + 16);
}

void AppendByteEscape(std::string& Out, unsigned char Byte) {
  char Escape[OldEscapeSize];
  Out.append(Escape, PutByteEscape(Escape, Byte));
}

namespace {

/// Writes the character of several bytes at At, or what is broken there, and moves At behind it.
char* PutHighCharacter(char* To, std::string_view Text, std::size_t& At, TLoneUnit Lone) {
  const std::size_t Start = At;
  const char32_t Code = NextCodePoint(Text, At);
  const bool Broken = IsSurrogate(Code) || (Code == 0xFFFD && Text.substr(Start, 3) != ReplacementUtf8);
  if (!Broken && Code < 0xA0) return PutEscape(To, Code);
  for (std::size_t From = Start; From < At; ++From) {
    if (Broken && Lone == TLoneUnit::Byte)
      To = PutEscape(To, ByteUnits + ByteAt(Text, From));
    else
      *To++ = Text[From];
  }
  return To;
}

/// Writes the piece of Text that begins at At and moves At behind it.
template <TPlainCharacters Plain>
char* PutPiece(char* To, std::string_view Text, std::size_t& At, TLoneUnit Lone) {
  // Below it are the control characters 128 .. 159.
  constexpr unsigned LeastLead = 0xC3;
  const std::size_t End = std::min(Text.size(), At + PieceSize);
  while (At < End) {
    const std::size_t Left = std::min(Text.size() - At, WordSize);
    const TByteWord Word = LoadUpTo(Text.data() + At, Left);
    const TByteWord Singles = Plain.Flags(Word);
    if (Singles != FlagBits && (Word & FlagBits) == 0) {
      To = PutAscii<Plain>(To, Text.substr(At, Left));
      At += Left;
      continue;
    }
    StoreWord(To, Word);
    const std::size_t Count = Singles == FlagBits ? WordSize : WholeCharacters<LeastLead>(Word, Singles);
    At += Count;
    To += Count;
    if (Count == WordSize || At >= Text.size()) continue;
    if (ByteAt(Text, At) < 0x80)
      To = PutAscii<Plain>(To, Text.substr(At++, 1));
    else if (Count == 0)
      To = PutHighCharacter(To, Text, At, Lone);
  }
  return To;
}

}  // namespace

void AppendEscaped(std::string& Out, std::string_view Text, TEscapePlace Place, TLoneUnit Lone) {
  if (Text.size() > LongValue) ReserveFor(Out, Text.size() + EscapeDigits * EscapedCount(Plain(Place), Text));
  const auto Put =
      Place == TEscapePlace::Record ? &PutPiece<Plain(TEscapePlace::Record)> : &PutPiece<Plain(TEscapePlace::Alone)>;
  for (std::size_t At = 0; At < Text.size();) {
    char Piece[PieceRoom];
    Out.append(Piece, Put(Piece, Text, At, Lone));
  }
}

namespace {

/// The UTF-16 unit of the four digits at From; above 0xFFFF when one of them is none.
unsigned UnitOf(const char* From) {
  const unsigned First = HexValue(From[0]), Second = HexValue(From[1]), Third = HexValue(From[2]),
                 Fourth = HexValue(From[3]);
  if ((First | Second | Third | Fourth) > 15) return 0x10000;
  return First << 12U | Second << 8U | Third << 4U | Fourth;
}

/// Moves the bytes from In on up to the next "#" to Out, which lies before In; both are moved behind them.
void MoveRun(char*& Out, char*& In, const char* End) {
  for (std::size_t Count = WordSize; Count == WordSize && In < End; Out += Count, In += Count) {
    const auto Left = static_cast<std::size_t>(End - In);
    const TByteWord Word = LoadUpTo(In, Left);
    Count = std::min(FirstFlag(EqualFlags(Word, '#')), Left);
    StoreBytes(Out, Word, Count);
  }
}

}  // namespace

std::size_t UnescapeInPlace(std::span<char> Text, std::string& BadDigits, TLoneUnit Lone) {
  char* const Begin = Text.data();
  char* const End = Begin + Text.size();
  char* In = Text.empty() ? End : static_cast<char*>(std::memchr(Begin, '#', Text.size()));
  if (!In || In == End) return Text.size();
  char* Out = In;
  bool BehindHigh = false;
  while (In < End) {
    const auto Left = static_cast<std::size_t>(End - In);
    const unsigned Unit = Left < EscapeSize ? 0x10000 : UnitOf(In + 1);
    if (Unit > 0xFFFF) {
      // Four characters may be more than four bytes, and fewer than four end the text.
      const std::string_view Rest(In + 1, Left - 1);
      const std::string_view Digits = Rest.substr(0, Utf16Prefix(Rest, EscapeDigits));
      if (Digits.size() == Rest.size() && Utf16Length(Digits) < EscapeDigits) break;
      BadDigits = Digits;
      return 0;
    }
    In += EscapeSize;
    if (Unit < 0x80)
      *Out++ = static_cast<char>(Unit);
    else
      Out = PutUnit(Out, Unit, BehindHigh, Lone);
    char* const Run = In;
    MoveRun(Out, In, End);
    BehindHigh = In == Run && IsHigh(Unit);
  }
  return static_cast<std::size_t>(Out - Begin);
}

namespace {

/// As PutPiece.
template <TPlainCharacters Plain>
char* PutOldPiece(char* To, std::string_view Text, std::size_t& At, const TCodePage& Page, std::int64_t& Lost) {
  const std::size_t End = std::min(Text.size(), At + PieceSize);
  while (At < End) {
    const TByteWord Word = LoadUpTo(Text.data() + At, Text.size() - At);
    StoreWord(To, Word);
    const std::size_t Count = FirstFlag(~Plain.Flags(Word) & FlagBits);
    At += Count;
    To += Count;
    if (Count == WordSize) continue;
    for (; At < End && ByteAt(Text, At) < 0x80 && !Plain.Holds(ByteAt(Text, At)); ++At)
      To = PutByteEscape(To, ByteAt(Text, At));
    while (At < End && ByteAt(Text, At) >= 0x80) {
      const std::size_t Start = At;
      // A character of the page stands for itself: its byte would be turned back into it.
      if (Page.FromUnicode(NextHighCharacter(Text, At)))
        for (std::size_t From = Start; From < At; ++From) *To++ = Text[From];
      else
        *To++ = '?', ++Lost;
    }
  }
  return To;
}

}  // namespace

std::int64_t AppendOldEscaped(std::string& Out, std::string_view Text, const TCodePage& Page, TEscapePlace Place) {
  if (Text.size() > LongValue) ReserveFor(Out, Text.size() + (OldEscapeSize - 1) * EscapedCount(OldPlain(Place), Text));
  const auto Put = Place == TEscapePlace::Record ? &PutOldPiece<OldPlain(TEscapePlace::Record)>
                                                 : &PutOldPiece<OldPlain(TEscapePlace::Alone)>;
  std::int64_t Lost = 0;
  for (std::size_t At = 0; At < Text.size();) {
    char Piece[PieceRoom];
    Out.append(Piece, Put(Piece, Text, At, Page, Lost));
  }
  return Lost;
}

void AppendOldEscapedBytes(std::string& Out, std::string_view Bytes, const TCodePage& Page, TEscapePlace Place) {
  const TPlainCharacters Plain = OldPlain(Place);
  for (std::size_t At = 0; At < Bytes.size();) {
    std::size_t Stop = At;
    while (Stop < Bytes.size() && (ByteAt(Bytes, Stop) >= 0x80 || Plain.Holds(ByteAt(Bytes, Stop)))) ++Stop;
    Page.Decode(Bytes.substr(At, Stop - At), Out);
    if (Stop < Bytes.size()) AppendByteEscape(Out, ByteAt(Bytes, Stop++));
    At = Stop;
  }
}

}  // namespace velkrund
