#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velkrund {

/// A sorted dictionary of texts, safe to use from several threads: every call takes the list's own lock. Names are
/// unique; setting an existing name replaces its value. Settings travel in it from one section object to the next.
class TKvParamsList {
 public:
  using TPair = std::pair<std::string, std::string>;
  /// Negative, zero or positive; names that compare equal are one name.
  using TComparer = std::function<int(std::string_view A, std::string_view B)>;
  /// Called, outside the lock, before the value of an existing name is replaced.
  using TChangeEvent = std::function<void(std::string_view Name, std::string_view OldValue, std::string_view NewValue)>;

  /// By code units unless a comparer is given.
  explicit TKvParamsList(TComparer Comparer = {}, bool Reversed = false);
  TKvParamsList(const TKvParamsList&) = delete;
  TKvParamsList& operator=(const TKvParamsList&) = delete;

  void Add(std::string_view Name, std::string_view Value);
  /// Nothing when the name is absent.
  std::optional<std::string> Find(std::string_view Name) const;
  /// The value of Name, or Default when it is absent.
  std::string Value(std::string_view Name, std::string_view Default = {}) const;
  bool Remove(std::string_view Name);
  void Clear();
  int Count() const;
  /// A copy of all pairs in the list's order.
  std::vector<TPair> Pairs() const;

  void SetReversed(bool Reversed);
  void SetOnChange(TChangeEvent Event);

 private:
  // With the lock held.
  int Compare(std::string_view A, std::string_view B) const;
  std::size_t LowerBound(std::string_view Name) const;
  bool HasName(std::size_t Index, std::string_view Name) const;

  mutable std::mutex FLock;
  TComparer FComparer;
  bool FReversed;
  TChangeEvent FOnChange;
  std::vector<TPair> FPairs;
};

}  // namespace velkrund
