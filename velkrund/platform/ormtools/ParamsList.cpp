#include "velkrund/platform/ormtools/ParamsList.h"

#include <algorithm>

namespace velkrund {

TKvParamsList::TKvParamsList(TComparer Comparer, bool Reversed) : FComparer(std::move(Comparer)), FReversed(Reversed) {}

int TKvParamsList::Compare(std::string_view A, std::string_view B) const {
  const int Result = FComparer ? FComparer(A, B) : A.compare(B);
  return FReversed ? (Result < 0 ? 1 : -Result) : Result;
}

std::size_t TKvParamsList::LowerBound(std::string_view Name) const {
  const auto Found =
      std::lower_bound(FPairs.begin(), FPairs.end(), Name,
                       [this](const TPair& Pair, std::string_view Sought) { return Compare(Pair.first, Sought) < 0; });
  return static_cast<std::size_t>(Found - FPairs.begin());
}

bool TKvParamsList::HasName(std::size_t Index, std::string_view Name) const {
  return Index < FPairs.size() && Compare(FPairs[Index].first, Name) == 0;
}

void TKvParamsList::Add(std::string_view Name, std::string_view Value) {
  std::unique_lock Lock(FLock);
  std::size_t Index = LowerBound(Name);
  if (HasName(Index, Name) && FOnChange) {
    const TChangeEvent Event = FOnChange;
    const std::string Old = FPairs[Index].second;
    Lock.unlock();
    Event(Name, Old, Value);
    Lock.lock();
    // The event or another thread may have changed the list meanwhile.
    Index = LowerBound(Name);
  }
  if (HasName(Index, Name))
    FPairs[Index].second = Value;
  else
    FPairs.emplace(FPairs.begin() + static_cast<std::ptrdiff_t>(Index), Name, Value);
}

std::optional<std::string> TKvParamsList::Find(std::string_view Name) const {
  const std::lock_guard Lock(FLock);
  const std::size_t Index = LowerBound(Name);
  if (!HasName(Index, Name)) return std::nullopt;
  return FPairs[Index].second;
}

std::string TKvParamsList::Value(std::string_view Name, std::string_view Default) const {
  return Find(Name).value_or(std::string(Default));
}

bool TKvParamsList::Remove(std::string_view Name) {
  const std::lock_guard Lock(FLock);
  const std::size_t Index = LowerBound(Name);
  if (!HasName(Index, Name)) return false;
  FPairs.erase(FPairs.begin() + static_cast<std::ptrdiff_t>(Index));
  return true;
}

void TKvParamsList::Clear() {
  const std::lock_guard Lock(FLock);
  FPairs.clear();
}

int TKvParamsList::Count() const {
  const std::lock_guard Lock(FLock);
  return static_cast<int>(FPairs.size());
}

std::vector<TKvParamsList::TPair> TKvParamsList::Pairs() const {
  const std::lock_guard Lock(FLock);
  return FPairs;
}

void TKvParamsList::SetReversed(bool Reversed) {
  const std::lock_guard Lock(FLock);
  if (FReversed == Reversed) return;
  FReversed = Reversed;
  std::reverse(FPairs.begin(), FPairs.end());
}

void TKvParamsList::SetOnChange(TChangeEvent Event) {
  const std::lock_guard Lock(FLock);
  FOnChange = std::move(Event);
}

}  // namespace velkrund
