#include "standalone/relations/LoadOrder.h"

namespace velkrund {

TLoadOrder::TLoadOrder(const std::vector<std::string>& Tables, const std::vector<TTie>& Ties, bool InGroups) {
  for (const std::string& Table : Tables) FPlaces[Table].Leader = InGroups ? Table : Tables.front();
  for (const TTie& Tie : Ties) {
    if (Tie.Child == Tie.Parent || !Has(Tie.Child) || !Has(Tie.Parent)) continue;
    FPlaces.at(Tie.Child).Parents.push_back(Tie.Parent);
    FPlaces.at(LeaderOf(Tie.Child)).Leader = LeaderOf(Tie.Parent);
  }
  std::vector<std::string> Order;
  for (const std::string& Table : Tables) Visit(Table, Order);
  PutIntoGroups(Order);
}

/// Shortens the way for those that ask later.
const std::string& TLoadOrder::LeaderOf(const std::string& Table) {
  for (std::string* Leader = &FPlaces.at(Table).Leader;;) {
    std::string& Next = FPlaces.at(*Leader).Leader;
    if (Next == *Leader) return Next;
    *Leader = FPlaces.at(Next).Leader;
    Leader = &Next;
  }
}

/// What a table refers to comes before it; in a circle, whatever was met first comes last. Without recursion: tables
/// can refer to each other in a long line.
void TLoadOrder::Visit(const std::string& Table, std::vector<std::string>& Order) {
  struct TStep {
    const std::string* Table;
    std::size_t Parent = 0;  // the next to look at
  };
  if (std::exchange(FPlaces.at(Table).Visited, true)) return;
  std::vector<TStep> Path{{&Table}};
  while (!Path.empty()) {
    const std::vector<std::string>& Parents = FPlaces.at(*Path.back().Table).Parents;
    if (Path.back().Parent == Parents.size()) {
      Order.push_back(*Path.back().Table);
      Path.pop_back();
      continue;
    }
    const std::string& Parent = Parents[Path.back().Parent++];
    if (!std::exchange(FPlaces.at(Parent).Visited, true)) Path.push_back({&Parent});
  }
}

void TLoadOrder::PutIntoGroups(const std::vector<std::string>& Order) {
  std::map<std::string, std::size_t> Numbers;  // of groups, by their leaders
  for (const std::string& Table : Order) {
    const auto [Number, IsNew] = Numbers.try_emplace(LeaderOf(Table), FGroups.size());
    if (IsNew) FGroups.emplace_back();
    FGroups[Number->second].push_back(Table);
    FPlaces.at(Table).Group = Number->second;
  }
  std::size_t Rank = 0;
  for (const std::vector<std::string>& Group : FGroups)
    for (const std::string& Table : Group) FPlaces.at(Table).Rank = ++Rank;
}

std::size_t TLoadOrder::Rank(const std::string& Table) const {
  const auto Found = FPlaces.find(Table);
  return Found == FPlaces.end() ? 0 : Found->second.Rank;
}

std::size_t TLoadOrder::Group(const std::string& Table) const { return FPlaces.at(Table).Group; }

bool TLoadOrder::IsBackwards(const TTie& Tie) const {
  return Tie.Child != Tie.Parent && Has(Tie.Child) && Has(Tie.Parent) && Rank(Tie.Child) < Rank(Tie.Parent);
}

}  // namespace velkrund
