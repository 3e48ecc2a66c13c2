#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// The new name of each pair gets the value of the old one; names in any case. Returns the old name for a new one: that
/// of the first pair that has it, else the name itself.
std::string OldNameFor(const TStringPairs& Mapping, const std::string& NewName);

class TTable;

/// What of a mapping that is given for several tables is meant for one: the pairs whose old field it has. The table may
/// stand before it: "ORDERS.SUM". Table: null has none.
TStringPairs MappingFor(const TStringPairs& Given, const std::string& TableName, TTable* Table);

/// What becomes of the fields of the table inside a BLOB field.
class TBLOBFieldMapping {
 public:
  explicit TBLOBFieldMapping(std::string Name) : FieldName(std::move(Name)) {}

  std::string FieldName;
  TStringPairs Mapping;  // old name, new name
};

/// One mapping for each BLOB field, by its name in any case.
class TBLOBFieldMappingList {
 public:
  TBLOBFieldMappingList() = default;
  TBLOBFieldMappingList(const TBLOBFieldMappingList& Other) { Assign(Other); }
  TBLOBFieldMappingList& operator=(const TBLOBFieldMappingList& Other) {
    Assign(Other);
    return *this;
  }

  int Count() const { return static_cast<int>(FItems.size()); }
  /// Raises EListError outside the list.
  TBLOBFieldMapping& Items(int Index) const;
  /// Null when the field has none.
  TBLOBFieldMapping* GetMappingByField(std::string_view FieldName) const;
  /// The old name for a new one inside the field; the name itself where nothing maps it.
  std::string OldName(std::string_view FieldName, const std::string& NewName) const;
  /// The new one, owned by the list.
  TBLOBFieldMapping& Add(const std::string& FieldName);
  /// Raises EListError outside the list.
  void Delete(int Index);
  void Clear() { FItems.clear(); }
  void Assign(const TBLOBFieldMappingList& Other);

  /// All of it as pairs, for scripts: "FIELD.OLD", "NEW". Raises EListError for an old name without a full stop.
  TStringPairs Pairs() const;
  void SetPairs(const TStringPairs& Pairs);

 private:
  std::vector<std::unique_ptr<TBLOBFieldMapping>> FItems;
};

}  // namespace velkrund
