#include "velkrund/platform/ormtools/StringLists.h"

#include <algorithm>
#include <numeric>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

const std::string& TStringList::operator[](int Index) const {
  if (Index < 0 || Index >= Count())
    throw EListError(Format("List index %d is outside a list of %d texts", Index, Count()));
  return FItems[static_cast<std::size_t>(Index)];
}

int TStringList::IndexOf(std::string_view Text) const {
  // So many are searched one by one.
  constexpr int Few = 16;
  if (Count() <= Few) {
    const auto Found =
        std::find_if(FItems.begin(), FItems.end(), [&](const std::string& Item) { return SameText(Item, Text); });
    return Found == FItems.end() ? -1 : static_cast<int>(Found - FItems.begin());
  }
  const auto NameAt = [this](int Place) -> std::string_view { return FItems[static_cast<std::size_t>(Place)]; };
  while (FIndexed < Count()) FIndex.Add(FIndexed++, NameAt);
  return FIndex.Find(Text, NameAt);
}

void TStringList::CustomSort(const TComparer& Comparer) {
  // The comparer names texts by position, so the list must stand still until the order is known.
  std::vector<int> Order(FItems.size());
  std::iota(Order.begin(), Order.end(), 0);
  std::stable_sort(Order.begin(), Order.end(), [&](int A, int B) { return Comparer(*this, A, B) < 0; });
  std::vector<std::string> Sorted;
  Sorted.reserve(FItems.size());
  for (const int Index : Order) Sorted.push_back(std::move(FItems[static_cast<std::size_t>(Index)]));
  FItems = std::move(Sorted);
  ForgetIndex();
}

void TStringList::ForgetIndex() {
  FIndex.Clear();
  FIndexed = 0;
}

void TStringList::Sort() {
  ForgetIndex();
  std::stable_sort(FItems.begin(), FItems.end(), [](const std::string& A, const std::string& B) {
    const int Result = CompareText(A, B);
    // The order of UTF-8 bytes is that of code points.
    return Result != 0 ? Result < 0 : A < B;
  });
}

}  // namespace velkrund
