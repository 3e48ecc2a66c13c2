#include "velkrund/platform/ormtools/CodePage.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <cerrno>
#include <set>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

/// The C library's opinion of one byte; empty when it has none.
std::string IconvByte(int Page, unsigned char Byte) {
  const iconv_t Converter = iconv_open("UTF-8", ("CP" + std::to_string(Page)).c_str());
  if (Converter == reinterpret_cast<iconv_t>(-1)) throw std::runtime_error("iconv lacks the page");
  char In = static_cast<char>(Byte);
  char Out[16];
  char* InAt = &In;
  char* OutAt = Out;
  std::size_t InLeft = 1;
  std::size_t OutLeft = sizeof Out;
  const bool Known = iconv(Converter, &InAt, &InLeft, &OutAt, &OutLeft) != static_cast<std::size_t>(-1) &&
                     iconv(Converter, nullptr, nullptr, &OutAt, &OutLeft) != static_cast<std::size_t>(-1);
  iconv_close(Converter);
  return Known ? std::string(Out, OutAt) : std::string();
}

TEST(CodePage, AgreesWithIconvAndCarriesEveryByteBack) {
  for (int Number = 1250; Number <= 1258; ++Number) {
    const TCodePage* Page = TCodePage::Find(Number);
    ASSERT_NE(Page, nullptr);
    EXPECT_EQ(Page->Number(), Number);
    std::string AllBytes;
    std::set<char16_t> Codes;
    int Undefined = 0;
    for (int Value = 0; Value < 256; ++Value) {
      const auto Byte = static_cast<unsigned char>(Value);
      AllBytes += static_cast<char>(Byte);
      Codes.insert(Page->ToUnicode(Byte));
      EXPECT_EQ(Page->FromUnicode(Page->ToUnicode(Byte)), Byte);
      const std::string Expected = IconvByte(Number, Byte);
      std::string Decoded;
      Page->Decode(std::string_view(AllBytes).substr(AllBytes.size() - 1), Decoded);
      if (Expected.empty()) {
        ++Undefined;
        EXPECT_EQ(Page->ToUnicode(Byte), Value) << Number;
      } else {
        EXPECT_EQ(Decoded, Expected) << Number << " byte " << Value;
      }
    }
    EXPECT_EQ(Codes.size(), 256u) << Number;
    EXPECT_LE(Undefined, 30) << Number;
    std::string Text;
    std::string Back;
    for (int Copy = 0; Copy < 5; ++Copy) AllBytes += AllBytes.substr(100, 156);  // runs longer than one piece
    Page->Decode(AllBytes, Text);
    EXPECT_EQ(Page->Encode(Text, Back), 0) << Number;
    EXPECT_EQ(Back, AllBytes) << Number;
  }
  EXPECT_EQ(TCodePage::Find(1249), nullptr);
  EXPECT_EQ(TCodePage::Default().Number(), 1251);
}

TEST(CodePage, CountsWhatItCannotRepresent) {
  std::string Out = "kept ";
  // A letter of another script, beyond the first plane, a lone surrogate, a malformed byte, a look-alike.
  EXPECT_EQ(TCodePage::Default().Encode("?\xC3\xA9\xF0\x9F\x98\x80\xED\xA0\x80\xFFж\xE2\x80\xB2", Out), 5);
  EXPECT_EQ(Out, "kept ?????\xE6?");
}

TEST(CodePage, TakesAPageOfItsOwnWithUndefinedAndRepeatedCharacters) {
  std::array<char16_t, 128> Upper{};
  Upper[0x7F] = Upper[0x7E] = u'\x4E2D';
  Upper[1] = Upper[2] = u'\xE9';
  const TCodePage Page(1, Upper);
  EXPECT_EQ(Page.FromUnicode(0x4E2D), 0xFE);
  EXPECT_EQ(Page.FromUnicode(0xE9), 0x81);
  EXPECT_EQ(Page.FromUnicode(0x90), 0x90);
  EXPECT_EQ(Page.FromUnicode(0xFE), std::nullopt);
}

}  // namespace
}  // namespace velkrund::tests
