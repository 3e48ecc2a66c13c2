#include "velkrund/platform/ormtools/Text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cwctype>
#include <iterator>
#include <random>

namespace velkrund::tests {
namespace {

TEST(Text, RepairsMalformedUtf8) {
  struct TRow {
    std::string_view Input;
    std::string_view Repaired;  // "*" stands for U+FFFD
    std::size_t FirstMalformed;
  };
  constexpr std::size_t None = std::string_view::npos;
  const TRow Rows[] = {
      {"", "", None},
      {"plain ASCII, longer than a word", "plain ASCII, longer than a word", None},
      {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
       "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", None},
      {"\xED\xA0\x80-\xED\xBF\xBF", "\xED\xA0\x80-\xED\xBF\xBF", None},  // lone surrogates
      {"\x80", "*", 0},                                                  // nothing to continue
      {"ab\xBF\xBF", "ab**", 2},                                         //
      {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41", "********A", 0},          // overlong forms
      {"\xC1\xBF\xE0\x9F\xBF\xF0\x8F\xBF\xBF", "*********", 0},          //
      {"\xF4\x90\x80\x80\xF5\xFF\x41\x80\xBF\x42", "******A**B", 0},     // beyond U+10FFFF
      {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", "****A", 0},              // truncated
      {"\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64", "a***b*c**d", 1},
      {"12345678\xD0\x96\xD0", "12345678\xD0\x96*", 10},  // truncated at the end
      {"\xF0\x9F\x98", "*", 0},                           //
      {"\xD0\xD0\x96", "*\xD0\x96", 0},                   //
  };
  for (const TRow& Row : Rows) {
    std::string Expected;
    std::int64_t Stars = 0;
    for (const char Byte : Row.Repaired) {
      if (Byte == '*') ++Stars;
      Expected += Byte == '*' ? "\xEF\xBF\xBD" : std::string(1, Byte);
    }
    EXPECT_EQ(FindMalformedUtf8(Row.Input), Row.FirstMalformed) << Row.Repaired;
    std::string Text(Row.Input);
    EXPECT_EQ(RepairUtf8(Text), Stars) << Row.Repaired;
    EXPECT_EQ(Text, Expected);
    EXPECT_EQ(FromUtf16(ToUtf16(Row.Input)), Expected);
  }
}

TEST(Text, FindsMalformedBytesAtEveryOffsetOfTheWordScan) {
  for (std::size_t Offset = 0; Offset < 40; ++Offset) {
    std::string Text(40, 'x');
    Text[Offset] = '\x80';
    EXPECT_EQ(FindMalformedUtf8(Text), Offset);
    EXPECT_EQ(AsciiPrefix(Text), Offset);
  }
}

TEST(Text, FindsWhatACharacterByCharacterWalkFinds) {
  constexpr std::string_view Pieces[] = {"a",    "12345678", "ж",    "\xC2\x80", "日",       "😀",
                                         "\xD0", "\x80",     "\xC1", "\xE2\x80", "\xF0\x9F", "\xED\xA0\x80"};
  std::mt19937_64 Random(20261126);
  for (int Round = 0; Round < 100'000; ++Round) {
    std::string Text;
    // Mostly sound, so that what is broken stands anywhere.
    for (std::size_t Left = Random() % 24; Left > 0; --Left)
      Text += Pieces[Random() % (Random() % 16 == 0 ? std::size(Pieces) : 6)];
    std::size_t Expected = std::string::npos;
    for (std::size_t At = 0; At < Text.size() && Expected == std::string::npos;) {
      const std::size_t Start = At;
      if (NextCodePoint(Text, At) == 0xFFFD) Expected = Start;
    }
    ASSERT_EQ(FindMalformedUtf8(Text), Expected) << "round " << Round;
  }
}

TEST(Text, CountsAndCutsInUtf16Units) {
  const std::string_view Text = "a\xD0\x96\xF0\x9F\x98\x80z\xED\xA0\x80";  // 1 + 1 + 2 + 1 + 1 units
  EXPECT_EQ(Utf16Length(Text), 6u);
  const std::size_t Prefixes[] = {0, 1, 3, 3, 7, 8, 11, 11};
  for (std::size_t Units = 0; Units < std::size(Prefixes); ++Units)
    EXPECT_EQ(Utf16Prefix(Text, Units), Prefixes[Units]) << Units;
  EXPECT_EQ(Utf16Prefix(Text, 100), 11u);
}

TEST(Text, JoinsSurrogateHalvesThatMeet) {
  struct TRow {
    std::u16string_view Units;
    std::string_view Utf8;
  };
  const TRow Rows[] = {
      {u"\xD83D\xDE00", "\xF0\x9F\x98\x80"},
      {u"\xDBFF\xDFFF", "\xF4\x8F\xBF\xBF"},
      {u"\xDE00\xD83D", "\xED\xB8\x80\xED\xA0\xBD"},
      {u"\xD83D\xD83D\xDE00\xDE00", "\xED\xA0\xBD\xF0\x9F\x98\x80\xED\xB8\x80"},
      {u"\xD83Dx\xDE00", "\xED\xA0\xBDx\xED\xB8\x80"},
  };
  for (const TRow& Row : Rows) {
    std::string Text;
    for (const char16_t Unit : Row.Units) AppendUtf16Unit(Text, Unit);
    EXPECT_EQ(Text, Row.Utf8);
    EXPECT_EQ(ToUtf16(Row.Utf8), Row.Units);
  }
}

TEST(Text, Trims) {
  EXPECT_EQ(Trim(" \t\r\n\x01 a b \x1F\x20"), "a b");
  EXPECT_EQ(Trim(" \t"), "");
  EXPECT_EQ(TrimRight("\t a\xC2\xA0 \t"), "\t a\xC2\xA0");
  EXPECT_EQ(TrimRightBlanks(" a\t  "), " a\t");
}

TEST(TextCase, AgreesWithTheCLibraryWhereItChangesAnything) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  int Lowered = 0;
  int Uppered = 0;
  for (char32_t Code = 0; Code <= 0x1FFFF; ++Code) {
    const auto Wide = static_cast<std::wint_t>(Code);
    if (LowerCase(Code) != Code) {
      EXPECT_EQ(LowerCase(Code), static_cast<char32_t>(std::towlower(Wide))) << static_cast<unsigned>(Code);
      ++Lowered;
    }
    // The library leaves the titlecase digraphs and Georgian alone.
    if (UpperCase(Code) != Code && std::towupper(Wide) != Wide) {
      EXPECT_EQ(UpperCase(Code), static_cast<char32_t>(std::towupper(Wide))) << static_cast<unsigned>(Code);
      ++Uppered;
    }
    // Nothing is missing in the alphabets that names are made of; a dotted I changes into two characters.
    const bool Alphabet = (Code >= 0xC0 && Code < 0x250) || (Code >= 0x386 && Code < 0x3D0) ||
                          (Code >= 0x400 && Code < 0x530) || (Code >= 0x531 && Code < 0x557) ||
                          (Code >= 0xFF21 && Code < 0xFF3B);
    if (Alphabet && Code != 0x130) {
      EXPECT_EQ(LowerCase(Code), static_cast<char32_t>(std::towlower(Wide))) << static_cast<unsigned>(Code);
    }
  }
  std::setlocale(LC_CTYPE, "C");
  EXPECT_GT(Lowered, 900);
  EXPECT_GT(Uppered, 900);
}

TEST(TextCase, ComparesNames) {
  struct TRow {
    std::string_view A;
    std::string_view B;
    int Result;
  };
  const TRow Rows[] = {
      {"", "", 0},
      {"Orders", "oRDERS", 0},
      {"Заказы", "зАКАЗЫ", 0},
      {"ΣΑΣ", "σας", 1},  // a final sigma is another letter: U+03C3 before U+03C2
      {"a", "B", -1},
      {"a", "_", 1},
      {"_", "A", -1},
      {"ab", "a", 1},
      {"a", "AB", -1},
      {"Straße", "STRASSE", 1},
      {"x\xFF", "X\xFE", 1},
      {"x\xFF", "X\xEF\xBF\xBD", 1},
      {"\xEF\xBF\xBD", "\xEF\xBF\xBD", 0},
  };
  for (const TRow& Row : Rows) {
    EXPECT_EQ(CompareText(Row.A, Row.B), Row.Result) << Row.A << " " << Row.B;
    EXPECT_EQ(CompareText(Row.B, Row.A), -Row.Result) << Row.A << " " << Row.B;
    EXPECT_EQ(SameText(Row.A, Row.B), Row.Result == 0);
  }
  EXPECT_EQ(UpperCase("straße ё\xFFζ"), "STRAßE Ё\xFFΖ");
  EXPECT_EQ(LowerCase("Ẑ ЁΖ\xED\xA0\x80"), "ẑ ёζ\xED\xA0\x80");
  EXPECT_TRUE(SameAsciiWord("tRue", "TRUE"));
  EXPECT_FALSE(SameAsciiWord("TRU", "TRUE"));
  EXPECT_FALSE(SameAsciiWord("trūe", "TRUE"));
}

}  // namespace
}  // namespace velkrund::tests
