#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// How a generator counts, in numbers of 64 bits, with all that its description leaves out.
struct TGeneratorRange {
  std::int64_t Start, Step, Min, Max;
  bool Cycle;

  /// What comes after Value, or first of all; nothing when all numbers have been given out.
  std::optional<std::int64_t> After(std::optional<std::int64_t> Value) const;
  /// Whether Value, as the last one given out, leaves the generator within its limits.
  bool Takes(std::int64_t Value) const;
};

/// Name: for messages. Raises EDatabaseError for what is no such number, a step of 0, and limits that leave nothing to
/// count or that do not hold the start.
TGeneratorRange RangeOf(const std::string& Name, const TDicCounter& Counter);

/// Value minus, or plus, Step; EDatabaseError where that has more than 64 bits.
std::int64_t Before(const std::string& Name, std::int64_t Value, std::int64_t Step);
std::int64_t Behind(const std::string& Name, std::int64_t Value, std::int64_t Step);

}  // namespace velkrund
