#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velkrund {

/// What a stored structure is, beside its tree. Object type and name identify it.
struct TDSPListItem {
  std::string ObjectName;
  int ObjectType = 0;
  std::string TableName;
  std::string ParentObject;
  std::string Remarks;  // free text; lines end with carriage return + line feed
};

/// Structures in an order.
class TDSPList {
 public:
  int Count() const { return static_cast<int>(FItems.size()); }
  /// Index: 0 .. Count - 1, else EListError.
  const TDSPListItem& operator[](int Index) const;
  void Add(TDSPListItem Item) { FItems.push_back(std::move(Item)); }
  void Clear() { FItems.clear(); }
  /// Position of the first structure of that name, ignoring case, and type; -1 when absent.
  int IndexOf(std::string_view ObjectName, int ObjectType) const;

  auto begin() const { return FItems.begin(); }
  auto end() const { return FItems.end(); }

 private:
  std::vector<TDSPListItem> FItems;
};

}  // namespace velkrund
