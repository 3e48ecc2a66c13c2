#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace velkrund {

/// The order in which tables are loaded, and what of them has to come in one go, by the foreign keys between them: what
/// a table refers to comes before it, except in circles; where nothing asks for an order it is that of the tables.
class TLoadOrder {
 public:
  /// A table, and one that it refers to; either may be one that is not loaded.
  struct TTie {
    std::string Child, Parent;
  };

  /// InGroups: tables that are not tied to each other are groups of their own; otherwise all are one.
  TLoadOrder(const std::vector<std::string>& Tables, const std::vector<TTie>& Ties, bool InGroups);

  bool Has(const std::string& Table) const { return FPlaces.contains(Table); }
  /// 0 for a table that is not loaded. Those of a group stand together.
  std::size_t Rank(const std::string& Table) const;
  /// From 0, in the order of ranks.
  std::size_t Group(const std::string& Table) const;
  std::size_t GroupCount() const { return FGroups.size(); }
  /// By rank.
  const std::vector<std::string>& Tables(std::size_t Group) const { return FGroups.at(Group); }
  /// Whether rows come before those that they refer to, of another table of the load.
  bool IsBackwards(const TTie& Tie) const;

 private:
  struct TPlace {
    std::vector<std::string> Parents = {};
    std::string Leader = {};  // of the group, while groups are found; a table's own name: itself
    bool Visited = false;
    std::size_t Group = 0, Rank = 0;
  };

  const std::string& LeaderOf(const std::string& Table);
  void Visit(const std::string& Table, std::vector<std::string>& Order);
  void PutIntoGroups(const std::vector<std::string>& Order);

  std::map<std::string, TPlace> FPlaces;
  std::vector<std::vector<std::string>> FGroups;
};

}  // namespace velkrund
