#include "velkrund/eif/BodySkipper.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/ChoppedStream.h"
#include "velkrund/platform/ormtools/LineReader.h"

namespace velkrund::tests {
namespace {

/// Where lines begin that begin with a bracket, and how many lines there are, read one by one.
std::string ByLines(const std::string& Bytes, std::size_t Piece) {
  TChoppedStream Stream(Bytes, Piece);
  std::string Result, Spill;
  int Lines = 0;
  for (; !Stream.Peek().empty(); ++Lines) {
    const std::int64_t Start = Stream.Position();
    if (ReadRawLine(Stream, Spill).starts_with('[')) Result += std::to_string(Start) + " ";
  }
  return Result + "of " + std::to_string(Lines);
}

std::string BySkipping(const std::string& Bytes, std::size_t Piece) {
  TChoppedStream Stream(Bytes, Piece);
  TBodySkipper Skipper(Stream);
  std::string Result, Spill;
  std::int64_t Lines = 0;
  for (; Skipper.NextBracketLine(); ++Lines) {
    Result += std::to_string(Stream.Position()) + " ";
    ReadRawLine(Stream, Spill);
  }
  return Result + "of " + std::to_string(Lines + Skipper.Lines());
}

TEST(BodySkipper, FindsWhatReadingLineByLineFinds) {
  std::mt19937 Random(20);
  const std::string Letters = "\r\n[x";
  for (int Round = 0; Round < 20'000; ++Round) {
    std::string Bytes(Random() % 40, ' ');
    for (char& Byte : Bytes) Byte = Letters[Random() % Letters.size()];
    const std::size_t Piece = 1 + Random() % 9;
    ASSERT_EQ(BySkipping(Bytes, Piece), ByLines(Bytes, Piece)) << testing::PrintToString(Bytes) << " by " << Piece;
  }
  const std::string Long = std::string(100'000, '\r') + std::string(5000, 'x') + "\r\n[";
  EXPECT_EQ(BySkipping(Long, 1 << 20), "105002 of 100002");
}

}  // namespace
}  // namespace velkrund::tests
