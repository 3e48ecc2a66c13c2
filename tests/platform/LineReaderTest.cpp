#include "velkrund/platform/ormtools/LineReader.h"

#include <gtest/gtest.h>

#include "tests/support/ChoppedStream.h"

namespace velkrund::tests {
namespace {

/// The definition of a line, byte by byte.
std::string NaiveLine(const std::string& Data, std::size_t& At) {
  std::string Line;
  while (At < Data.size()) {
    const char Byte = Data[At++];
    if (Byte == '\r') {
      if (At < Data.size() && Data[At] == '\n') ++At;
      break;
    }
    Line += Byte;
  }
  return Line;
}

void CompareWithNaive(TStream& Stream, const std::string& Data) {
  std::string Spill;
  std::size_t At = 0;
  do {
    const std::string Expected = NaiveLine(Data, At);
    ASSERT_EQ(ReadRawLine(Stream, Spill), Expected) << testing::PrintToString(Data) << " before " << At;
    ASSERT_EQ(Stream.Position(), static_cast<std::int64_t>(At)) << testing::PrintToString(Data);
  } while (At < Data.size());
  EXPECT_EQ(ReadRawLine(Stream, Spill), "");
}

TEST(LineReader, EveryShortTextInEveryBlockSize) {
  for (std::size_t Length = 0; Length <= 7; ++Length) {
    std::size_t Texts = 1;
    for (std::size_t Index = 0; Index < Length; ++Index) Texts *= 3;
    for (std::size_t Number = 0; Number < Texts; ++Number) {
      std::string Data;
      for (std::size_t Rest = Number; Data.size() < Length; Rest /= 3)
        Data += Rest % 3 == 2 ? static_cast<char>('a' + Data.size()) : "\r\n"[Rest % 3];
      for (std::size_t BlockSize = 1; BlockSize <= 4; ++BlockSize) {
        TChoppedStream Stream(Data, BlockSize);
        ASSERT_NO_FATAL_FAILURE(CompareWithNaive(Stream, Data));
      }
    }
  }
}

TEST(LineCodec, CarriesLinesAndCountsWhatIsLost) {
  constexpr TKvEncoding Ansi = TKvEncoding::Ansi;
  constexpr TKvEncoding Utf8 = TKvEncoding::Utf8;
  struct TRow {
    bool Decode;
    TKvEncoding Encoding;
    std::string_view Input;
    std::string_view Output;
    std::int64_t Unrepresentable;
    std::int64_t Malformed;
    bool Copied;  // text that needs no change must not be copied
  };
  const TRow Rows[] = {
      {true, Utf8, "plain", "plain", 0, 0, false},
      {true, Utf8, "\xD0\x96\xED\xA0\x80", "\xD0\x96\xED\xA0\x80", 0, 0, false},
      {true, Utf8, "a\xFFz\xE2\x82", "a\xEF\xBF\xBDz\xEF\xBF\xBD", 0, 2, true},
      {true, Ansi, "plain", "plain", 0, 0, false},
      {true, Ansi, "a\xC6\x98z", "a\xD0\x96\xC2\x98z", 0, 0, true},
      {false, Utf8, "\xD0\x96", "\xD0\x96", 0, 0, false},
      {false, Utf8, "\xD0", "\xEF\xBF\xBD", 0, 1, true},
      {false, Ansi, "plain?", "plain?", 0, 0, false},
      {false, Ansi, "a\xD0\x96\xC2\x98z", "a\xC6\x98z", 0, 0, true},
      {false, Ansi, "\xE4\xB8\xAD-\xF0\x9F\x98\x80-\xFF", "?-?-?", 3, 0, true},
  };
  TLineCodec Codec(TCodePage::Default());
  for (const TRow& Row : Rows) {
    TTextLosses Losses;
    const std::string_view Result =
        Row.Decode ? Codec.Decode(Row.Input, Row.Encoding, Losses) : Codec.Encode(Row.Input, Row.Encoding, Losses);
    EXPECT_EQ(Result, Row.Output);
    EXPECT_EQ(Losses.Unrepresentable, Row.Unrepresentable) << Row.Output;
    EXPECT_EQ(Losses.Malformed, Row.Malformed) << Row.Output;
    EXPECT_EQ(Result.data() != Row.Input.data(), Row.Copied) << Row.Output;
  }
}

}  // namespace
}  // namespace velkrund::tests
