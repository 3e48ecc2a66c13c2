#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

/// Places of names in a list, found ignoring case: lists are as long as files make them, and searching one for each of
/// as many names takes ever longer. Of several of one name the first counts. The list keeps the names, so that one
/// costs a few bytes here; NameAt(Place) gives the name at a place of it.
class TNameIndex {
 public:
  /// The place of the first of that name; -1 when absent.
  template <typename TNameAt>
  int Find(std::string_view Name, const TNameAt& NameAt) const {
    if (FSlots.empty()) return -1;
    return FSlots[SlotOf(Name, HashOf(Name), NameAt)].Place;
  }
  /// Enters the name at a place; the place that counts for it: this one, or that of an earlier one.
  template <typename TNameAt>
  int Add(int Place, const TNameAt& NameAt) {
    const std::string_view Name = NameAt(Place);
    if ((FCount + 1) * 3 > FSlots.size() * 2) Grow();
    const std::uint32_t Hash = HashOf(Name);
    TSlot& Slot = FSlots[SlotOf(Name, Hash, NameAt)];
    if (Slot.Place >= 0) return Slot.Place;
    Slot = {Hash, Place};
    ++FCount;
    return Place;
  }
  /// Enters the names at the places from 0 to below Count.
  template <typename TNameAt>
  void AddAll(int Count, const TNameAt& NameAt) {
    for (int Place = 0; Place < Count; ++Place) Add(Place, NameAt);
  }
  bool Empty() const { return FCount == 0; }
  void Clear() { FSlots.clear(), FCount = 0; }

 private:
  struct TSlot {
    std::uint32_t Hash = 0;
    std::int32_t Place = -1;  // free
  };

  static std::uint32_t HashOf(std::string_view Name);
  void Grow();
  /// Where the name is, or is to be.
  template <typename TNameAt>
  std::size_t SlotOf(std::string_view Name, std::uint32_t Hash, const TNameAt& NameAt) const {
    std::size_t At = Hash & (FSlots.size() - 1);
    while (FSlots[At].Place >= 0 && (FSlots[At].Hash != Hash || !SameText(NameAt(FSlots[At].Place), Name)))
      At = (At + 1) & (FSlots.size() - 1);
    return At;
  }

  std::vector<TSlot> FSlots;  // a power of two of them, at most two thirds in use
  std::size_t FCount = 0;
};

}  // namespace velkrund
