#include "velkrund/eif/TextEscapes.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

// The product looks at many bytes at a time; here the same rules are followed character by character.

std::string Escape(unsigned Code, std::size_t Digits) {
  std::string Hex;
  const char Bytes[] = {static_cast<char>(Code >> 8U & 0xFFU), static_cast<char>(Code & 0xFFU)};
  AppendHex(Hex, {Bytes, 2});
  return "#" + Hex.substr(4 - Digits);
}

bool IsPlain(char32_t Code, TEscapePlace Place) {
  return Code >= 0x20 && Code != '#' && (Code != '|' || Place == TEscapePlace::Alone);
}

std::string Escaped(std::string_view Text, TEscapePlace Place, TLoneUnit Lone) {
  std::string Out;
  for (std::size_t At = 0; At < Text.size();) {
    const std::size_t Start = At;
    const char32_t Code = NextCodePoint(Text, At);
    const std::string_view Bytes = Text.substr(Start, At - Start);
    const bool Broken = (Code == 0xFFFD && Bytes != ReplacementUtf8) || (Code >= 0xD800 && Code <= 0xDFFF);
    if (Broken && Lone == TLoneUnit::Byte)
      for (const char Byte : Bytes) Out += Escape(0xDC00U + static_cast<unsigned char>(Byte), 4);
    else if (!Broken && (!IsPlain(Code, Place) || (Code >= 0x7F && Code < 0xA0)))
      Out += Escape(Code, 4);
    else
      Out += Bytes;
  }
  return Out;
}

std::string OldEscaped(std::string_view Text, TEscapePlace Place, std::int64_t& Lost) {
  std::string Out;
  for (std::size_t At = 0; At < Text.size();) {
    const std::size_t Start = At;
    const char32_t Code = NextCodePoint(Text, At);
    if (!IsPlain(Code, Place))
      Out += Escape(Code, 2);
    else if (TCodePage::Default().FromUnicode(Code))
      Out += Text.substr(Start, At - Start);
    else
      Out += '?', ++Lost;
  }
  return Out;
}

/// What is wrong with the digits of an escape goes to Bad.
std::string Unescaped(std::string_view Text, TLoneUnit Lone, std::string& Bad) {
  std::string Out;
  char32_t High = 0;  // of the escape directly before
  for (std::size_t At = 0; At < Text.size();) {
    if (Text[At] != '#') {
      Out += Text[At++];
      High = 0;
      continue;
    }
    const std::string_view Rest = Text.substr(At + 1);
    const std::string_view Digits = Rest.substr(0, Utf16Prefix(Rest, 4));
    if (Utf16Length(Rest) < 4) break;
    const auto Unit = HexToUnsigned(Digits);
    if (!Unit || Digits.size() != 4) return Bad = Digits, Out;
    At += 5;
    const auto Code = static_cast<char32_t>(*Unit);
    const bool IsLow = Code >= 0xDC00 && Code <= 0xDFFF;
    if (High != 0 && IsLow)
      Out.resize(Out.size() - 3), AppendUtf8(Out, 0x10000 + ((High - 0xD800) << 10U) + (Code - 0xDC00));
    else if (Lone == TLoneUnit::Byte && Code >= 0xDC80 && Code <= 0xDCFF)
      Out += static_cast<char>(Code - 0xDC00);
    else
      AppendUtf8(Out, Code);
    High = Code >= 0xD800 && Code <= 0xDBFF ? Code : 0;
  }
  return Out;
}

using TRandom = std::mt19937_64;

/// Of pieces at which a scan of words may stop, at any place of a word and on both sides of what is put together at
/// once.
std::string AnyText(TRandom& Random, bool OfEscapes) {
  static constexpr std::string_view Pieces[] = {
      "#",        "|",           "'",    "\r\n", "\t",       "\x1F",     " ",    "\x7F",         "~",
      "ж",        "Я",           "é",    "«",    "\xC2\x80", "\xC2\x9F", "—",    "日",           "😀",
      "\xDF\xBF", "\xC3",        "\xD0", "\x80", "\xC0\xAF", "\xE2\x80", "\xFF", "\xED\xA0\xBD", "\xED\xB8\x80",
      "\xF0\x9F", "\xEF\xBF\xBD"};
  static constexpr std::string_view Escapes[] = {"#0041", "#000d", "#D83D", "#DE00",
                                                 "#DC80", "#DCff", "#0416", "#20AC"};
  static constexpr std::string_view Damaged[] = {"#00G0", "#12", "#жжжж", "#12😀", "#"};
  std::string Text;
  for (std::size_t Left = Random() % (Random() % 16 == 0 ? 200 : 12); Left > 0; --Left) {
    const std::uint64_t Choice = Random() % 8;
    if (Choice < 3)
      Text += std::string(Random() % 20, static_cast<char>('A' + Random() % 26));
    else if (!OfEscapes)
      Text += Pieces[Random() % std::size(Pieces)];
    else if (Choice < 4)
      Text += Pieces[1 + Random() % (std::size(Pieces) - 1)];
    else
      Text += Escapes[Random() % std::size(Escapes)];
  }
  if (OfEscapes && Random() % 4 == 0) Text += Damaged[Random() % std::size(Damaged)];
  if (OfEscapes && Random() % 4 == 0) Text += std::string(Random() % 6, '0');
  return Text;
}

constexpr int Rounds = 30'000;
constexpr TEscapePlace Places[] = {TEscapePlace::Record, TEscapePlace::Alone};
constexpr TLoneUnit Lones[] = {TLoneUnit::Byte, TLoneUnit::Character};

TEST(TextEscapes, AreThoseOfACharacterByCharacterWalk) {
  TRandom Random(20261126);
  for (int Round = 0; Round < Rounds; ++Round) {
    const std::string Text = AnyText(Random, false);
    for (const TEscapePlace Place : Places) {
      for (const TLoneUnit Lone : Lones) {
        std::string Out = "before";
        AppendEscaped(Out, Text, Place, Lone);
        ASSERT_EQ(Out, "before" + Escaped(Text, Place, Lone)) << "round " << Round;
        if (Lone == TLoneUnit::Character) continue;
        ASSERT_TRUE(IsStrictUtf8(Out)) << "nobody looks at it again; round " << Round;
        std::string Bad, Back = Out.substr(6);
        Back.resize(UnescapeInPlace(Back, Bad));
        ASSERT_EQ(Back, Text) << "round " << Round;
      }
      std::int64_t Lost = 0;
      std::string Out = "before";
      const std::int64_t Counted = AppendOldEscaped(Out, Text, TCodePage::Default(), Place);
      ASSERT_EQ(Out, "before" + OldEscaped(Text, Place, Lost)) << "round " << Round;
      ASSERT_EQ(Counted, Lost);
      ASSERT_EQ(FindMalformedUtf8(Out), std::string::npos) << "round " << Round;
    }
  }
}

TEST(TextEscapes, AreReadAsCharacterByCharacter) {
  TRandom Random(20261127);
  for (int Round = 0; Round < Rounds; ++Round) {
    const std::string Text = AnyText(Random, true);
    for (const TLoneUnit Lone : Lones) {
      std::string Bad, ExpectedBad, Out = Text;
      const std::string Expected = Unescaped(Text, Lone, ExpectedBad);
      // The byte behind the text is somebody else's.
      Out += '!';
      const std::size_t Size = UnescapeInPlace({Out.data(), Text.size()}, Bad, Lone);
      ASSERT_EQ(Out.back(), '!');
      ASSERT_EQ(Bad, ExpectedBad) << Text;
      if (Bad.empty()) {
        ASSERT_EQ(Out.substr(0, Size), Expected) << Text;
      }
    }
  }
}

}  // namespace
}  // namespace velkrund::tests
