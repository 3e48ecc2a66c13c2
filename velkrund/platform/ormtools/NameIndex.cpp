#include "velkrund/platform/ormtools/NameIndex.h"

#include <functional>
#include <string>
#include <utility>

namespace velkrund {

std::uint32_t TNameIndex::HashOf(std::string_view Name) {
  const std::uint64_t Hash = std::hash<std::string>()(LowerCase(Name));
  return static_cast<std::uint32_t>(Hash ^ (Hash >> 32));
}

void TNameIndex::Grow() {
  constexpr std::size_t Fewest = 16;
  std::vector<TSlot> Before(FSlots.empty() ? Fewest : FSlots.size() * 2);
  Before.swap(FSlots);
  for (const TSlot& Slot : Before) {
    if (Slot.Place < 0) continue;
    std::size_t At = Slot.Hash & (FSlots.size() - 1);
    while (FSlots[At].Place >= 0) At = (At + 1) & (FSlots.size() - 1);
    FSlots[At] = Slot;
  }
}

}  // namespace velkrund
