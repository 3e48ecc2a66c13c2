#pragma once

#include <cstdint>
#include <span>

namespace velkrund {

/// Characters that change case by the same distance: every Step-th code from First to Last.
struct TCaseRange {
  char32_t First;
  char32_t Last;
  std::uint32_t Step;
  std::int32_t Distance;
};

// What changes into lower and into upper case, ASCII left out: sorted, without overlaps. TextCase.cpp looks things up.
std::span<const TCaseRange> LowerCaseRanges();
std::span<const TCaseRange> UpperCaseRanges();

}  // namespace velkrund
