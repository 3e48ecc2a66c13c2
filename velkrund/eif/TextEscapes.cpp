#include "velkrund/eif/TextEscapes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::size_t LongValue = 64 * 1024;
constexpr std::size_t EscapeDigits = 4;
constexpr char HexDigits[] = "0123456789ABCDEF";

enum class TByteClass : std::uint8_t { Plain, Escaped, High };

using TByteClasses = std::array<TByteClass, 256>;

constexpr TByteClasses MakeClasses(TEscapePlace Place, bool EscapeDelete) {
  TByteClasses Classes{};
  for (std::size_t Byte = 0; Byte < Classes.size(); ++Byte)
    Classes[Byte] =
        Byte < 0x20 || Byte == '#' || (Byte == '|' && Place == TEscapePlace::Record) || (Byte == 0x7F && EscapeDelete)
            ? TByteClass::Escaped
        : Byte >= 0x80 ? TByteClass::High
                       : TByteClass::Plain;
  return Classes;
}

constexpr TByteClasses Classes[] = {MakeClasses(TEscapePlace::Record, true), MakeClasses(TEscapePlace::Alone, true)};
constexpr TByteClasses OldClasses[] = {MakeClasses(TEscapePlace::Record, false),
                                       MakeClasses(TEscapePlace::Alone, false)};

void AppendEscape(std::string& Out, unsigned Code) {
  const char Escape[] = {'#', HexDigits[Code >> 12 & 15], HexDigits[Code >> 8 & 15], HexDigits[Code >> 4 & 15],
                         HexDigits[Code & 15]};
  Out.append(Escape, sizeof Escape);
}

// Position of the first byte from At on that is not of class Plain.
std::size_t PlainEnd(const TByteClasses& Table, std::string_view Text, std::size_t At) {
  while (At < Text.size() && Table[static_cast<unsigned char>(Text[At])] == TByteClass::Plain) ++At;
  return At;
}

// Length of the well-formed character of two bytes at At that is no control character; 0 when there is none.
std::size_t PlainPair(std::string_view Text, std::size_t At) {
  const auto Lead = static_cast<unsigned char>(Text[At]);
  if (Lead < 0xC2 || Lead > 0xDF || At + 1 >= Text.size()) return 0;
  const auto Next = static_cast<unsigned char>(Text[At + 1]);
  return (Next & 0xC0) == 0x80 && (Lead > 0xC2 || Next >= 0xA0) ? 2 : 0;
}

std::size_t EscapedSize(const TByteClasses& Table, std::string_view Text) {
  std::size_t Size = Text.size();
  for (const char Byte : Text)
    if (Table[static_cast<unsigned char>(Byte)] == TByteClass::Escaped) Size += EscapeDigits;
  return Size;
}

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
  const char Escape[] = {'#', HexDigits[Byte >> 4], HexDigits[Byte & 15]};
  Out.append(Escape, sizeof Escape);
}

void AppendEscaped(std::string& Out, std::string_view Text, TEscapePlace Place, TLoneUnit Lone) {
  const TByteClasses& Table = Classes[static_cast<int>(Place)];
  if (Text.size() > LongValue) ReserveFor(Out, EscapedSize(Table, Text));
  std::size_t RunStart = 0, At = 0;
  const auto FlushRun = [&] { Out.append(Text.data() + RunStart, At - RunStart); };
  while ((At = PlainEnd(Table, Text, At)) < Text.size()) {
    if (const std::size_t Pair = PlainPair(Text, At)) {
      At += Pair;
      continue;
    }
    std::size_t Next = At;
    const char32_t Code = NextCodePoint(Text, Next);
    const bool Broken = IsSurrogate(Code) || (Code == 0xFFFD && Text.substr(At, 3) != ReplacementUtf8);
    if (Broken ? Lone == TLoneUnit::Character : Code >= 0xA0) {
      At = Next;
      continue;
    }
    FlushRun();
    if (Broken)
      for (const char Byte : Text.substr(At, Next - At))
        AppendEscape(Out, ByteUnits + static_cast<unsigned char>(Byte));
    else
      AppendEscape(Out, Code);
    RunStart = At = Next;
  }
  FlushRun();
}

std::size_t UnescapeInPlace(std::span<char> Text, std::string& BadDigits, TLoneUnit Lone) {
  char* const Begin = Text.data();
  char* const End = Begin + Text.size();
  char* In = Text.empty() ? End : static_cast<char*>(std::memchr(Begin, '#', Text.size()));
  if (!In || In == End) return Text.size();
  char* Out = In;
  bool BehindHigh = false;
  while (In < End) {
    const std::string_view Rest(In + 1, static_cast<std::size_t>(End - In - 1));
    const std::string_view Digits = Rest.substr(0, Utf16Prefix(Rest, EscapeDigits));
    if (Digits.size() == Rest.size() && Utf16Length(Digits) < EscapeDigits) break;
    const auto Unit = HexToUnsigned(Digits);
    if (!Unit || Digits.size() != EscapeDigits) {
      BadDigits = Digits;
      return 0;
    }
    In += 1 + EscapeDigits;
    Out = PutUnit(Out, static_cast<unsigned>(*Unit), BehindHigh, Lone);
    const auto Left = static_cast<std::size_t>(End - In);
    char* Hash = Left ? static_cast<char*>(std::memchr(In, '#', Left)) : End;
    if (!Hash) Hash = End;
    BehindHigh = Hash == In && IsHigh(static_cast<unsigned>(*Unit));
    std::memmove(Out, In, static_cast<std::size_t>(Hash - In));
    Out += Hash - In;
    In = Hash;
  }
  return static_cast<std::size_t>(Out - Begin);
}

std::int64_t AppendOldEscaped(std::string& Out, std::string_view Text, const TCodePage& Page, TEscapePlace Place) {
  const TByteClasses& Table = OldClasses[static_cast<int>(Place)];
  if (Text.size() > LongValue) ReserveFor(Out, EscapedSize(Table, Text));
  std::int64_t Lost = 0;
  for (std::size_t At = 0; At < Text.size();) {
    const std::size_t RunStart = At;
    At = PlainEnd(Table, Text, At);
    Out.append(Text, RunStart, At - RunStart);
    if (At == Text.size()) break;
    if (Table[static_cast<unsigned char>(Text[At])] == TByteClass::Escaped) {
      AppendByteEscape(Out, static_cast<unsigned char>(Text[At++]));
      continue;
    }
    const std::size_t Start = At;
    // A character of the page stands for itself: its byte would be turned back into it.
    if (Page.FromUnicode(NextCodePoint(Text, At)))
      Out.append(Text, Start, At - Start);
    else
      Out += '?', ++Lost;
  }
  return Lost;
}

void AppendOldEscapedBytes(std::string& Out, std::string_view Bytes, const TCodePage& Page, TEscapePlace Place) {
  const TByteClasses& Table = OldClasses[static_cast<int>(Place)];
  for (std::size_t At = 0; At < Bytes.size();) {
    std::size_t Stop = At;
    while (Stop < Bytes.size() && Table[static_cast<unsigned char>(Bytes[Stop])] != TByteClass::Escaped) ++Stop;
    Page.Decode(Bytes.substr(At, Stop - At), Out);
    if (Stop < Bytes.size()) AppendByteEscape(Out, static_cast<unsigned char>(Bytes[Stop++]));
    At = Stop;
  }
}

}  // namespace velkrund
