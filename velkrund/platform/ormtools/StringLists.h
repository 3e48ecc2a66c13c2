#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velkrund/platform/ormtools/NameIndex.h"

namespace velkrund {

/// A list of texts that can be sorted by a comparer of two of its positions.
class TStringList {
 public:
  /// Negative, zero or positive as the text at the first index sorts before, with or after that at the second.
  using TComparer = std::function<int(const TStringList& List, int Index1, int Index2)>;

  TStringList() = default;
  TStringList(std::initializer_list<std::string> Items) : FItems(Items) {}
  explicit TStringList(std::vector<std::string> Items) : FItems(std::move(Items)) {}

  int Count() const { return static_cast<int>(FItems.size()); }
  const std::vector<std::string>& Items() const { return FItems; }
  /// Raises EListError outside the list.
  const std::string& operator[](int Index) const;
  void Add(std::string Text) { FItems.push_back(std::move(Text)); }
  void Clear() { FItems.clear(), ForgetIndex(); }
  /// Position of the first text equal to Text without regard to case; -1 when absent. At once however long the list is:
  /// where it is long, an index is made that grows with it.
  int IndexOf(std::string_view Text) const;

  /// Stable. An error of the comparer passes through and leaves the order as it was.
  void CustomSort(const TComparer& Comparer);
  /// By lower-cased code points, whatever the locale; equal but for case: by code points.
  void Sort();

  auto begin() const { return FItems.begin(); }
  auto end() const { return FItems.end(); }

 private:
  void ForgetIndex();

  std::vector<std::string> FItems;
  mutable TNameIndex FIndex;  // of the first FIndexed texts
  mutable int FIndexed = 0;
};

/// Pairs of texts in a given order, e.g. source and target names.
using TStringPairs = std::vector<std::pair<std::string, std::string>>;

}  // namespace velkrund
