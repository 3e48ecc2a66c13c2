#include "velkrund/eif/BodySkipper.h"

#include <algorithm>
#include <cstring>

namespace velkrund {

namespace {

constexpr char Bracket = '[', Return = '\r', LineFeed = '\n';

/// Counts in eight lanes of a word at once, in a form that compilers make vector instructions of.
std::int64_t CountReturns(std::string_view Text) {
  constexpr std::uint64_t Ones = 0x0101010101010101, Sevens = 0x7F7F7F7F7F7F7F7F;
  constexpr std::uint64_t Sought = Ones * static_cast<unsigned char>(Return);
  constexpr std::size_t LaneLimit = 255;  // a lane is a byte
  std::int64_t Result = 0;
  while (Text.size() >= sizeof Ones) {
    const std::size_t Words = std::min(Text.size() / sizeof Ones, LaneLimit);
    std::uint64_t Lanes = 0;
    for (std::size_t I = 0; I < Words; ++I) {
      std::uint64_t Word;
      std::memcpy(&Word, Text.data() + I * sizeof Word, sizeof Word);
      Word ^= Sought;
      // The high bit of every byte that is zero now, and of no other.
      Lanes += ~(((Word & Sevens) + Sevens) | Word | Sevens) >> 7;
    }
    // The lanes' sum can be more than a byte holds: added up in pairs.
    constexpr std::uint64_t Pairs = 0x00FF00FF00FF00FF;
    const std::uint64_t Sums = (Lanes & Pairs) + ((Lanes >> 8) & Pairs);
    Result += static_cast<std::int64_t>((Sums * 0x0001000100010001) >> 48);
    Text.remove_prefix(Words * sizeof Ones);
  }
  return Result + std::count(Text.begin(), Text.end(), Return);
}

}  // namespace

bool TBodySkipper::BeginsLine(std::string_view Block, std::size_t At) const {
  if (At == 0) return FPlace != TPlace::WithinLine;
  if (Block[At - 1] != LineFeed) return Block[At - 1] == Return;
  return At == 1 ? FPlace == TPlace::BehindReturn : Block[At - 2] == Return;
}

TBodySkipper::TPlace TBodySkipper::PlaceBehind(std::string_view Block) const {
  if (Block.back() == Return) return TPlace::BehindReturn;
  return Block.back() == LineFeed && BeginsLine(Block, Block.size()) ? TPlace::LineStart : TPlace::WithinLine;
}

bool TBodySkipper::NextBracketLine() {
  for (std::string_view Block = FStream.Peek(); !Block.empty(); Block = FStream.Peek()) {
    std::size_t At = Block.find(Bracket);
    while (At != std::string_view::npos && !BeginsLine(Block, At)) At = Block.find(Bracket, At + 1);
    const std::string_view Passed = Block.substr(0, At);
    FLines += CountReturns(Passed);
    if (At == std::string_view::npos) FPlace = PlaceBehind(Block);
    FStream.Seek(static_cast<std::int64_t>(Passed.size()), TSeekOrigin::Current);
    if (At == std::string_view::npos) continue;
    FPlace = TPlace::LineStart;
    return true;
  }
  if (FPlace == TPlace::WithinLine) ++FLines;
  return false;
}

bool TBodySkipper::PassLine(std::string_view Text) {
  FPlace = TPlace::LineStart;
  ++FLines;
  bool IsText = true;
  for (std::string_view Block = FStream.Peek(); !Block.empty(); Block = FStream.Peek()) {
    const std::size_t End = Block.find(Return);
    const std::string_view Part = Block.substr(0, End);
    const std::size_t Compared = std::min(Text.size(), Part.size());
    IsText = IsText && Part.substr(0, Compared) == Text.substr(0, Compared) &&
             Part.find_first_not_of(' ', Compared) == std::string_view::npos;
    Text.remove_prefix(Compared);
    const bool AtEnd = End != std::string_view::npos;
    FStream.Seek(static_cast<std::int64_t>(Part.size() + (AtEnd ? 1 : 0)), TSeekOrigin::Current);
    if (!AtEnd) continue;
    if (FStream.Peek().starts_with(LineFeed)) FStream.Seek(1, TSeekOrigin::Current);
    break;
  }
  return IsText && Text.empty();
}

}  // namespace velkrund
