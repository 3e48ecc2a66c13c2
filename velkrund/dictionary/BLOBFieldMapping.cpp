#include "velkrund/dictionary/BLOBFieldMapping.h"

#include <algorithm>

#include "velkrund/platform/database/Tables.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

std::string OldNameFor(const TStringPairs& Mapping, const std::string& NewName) {
  const auto Found =
      std::find_if(Mapping.begin(), Mapping.end(), [&](const auto& Pair) { return SameText(Pair.second, NewName); });
  return Found == Mapping.end() ? NewName : Found->first;
}

TStringPairs MappingFor(const TStringPairs& Given, const std::string& TableName, TTable* Table) {
  TStringPairs Result;
  const std::string Prefix = TableName + ".";
  for (const auto& [Old, New] : Given) {
    const bool IsOfTable = Old.size() > Prefix.size() && SameText(Old.substr(0, Prefix.size()), Prefix);
    const std::string Field = IsOfTable ? Old.substr(Prefix.size()) : Old;
    if (Table && Table->FindField(Field)) Result.emplace_back(Field, New);
  }
  return Result;
}

TBLOBFieldMapping& TBLOBFieldMappingList::Items(int Index) const {
  if (Index < 0 || Index >= Count()) throw EListError(Format("List index out of bounds (%d)", Index));
  return *FItems[static_cast<std::size_t>(Index)];
}

TBLOBFieldMapping* TBLOBFieldMappingList::GetMappingByField(std::string_view FieldName) const {
  const auto Found = std::find_if(FItems.begin(), FItems.end(),
                                  [&](const auto& Item) { return SameText(Item->FieldName, FieldName); });
  return Found == FItems.end() ? nullptr : Found->get();
}

std::string TBLOBFieldMappingList::OldName(std::string_view FieldName, const std::string& NewName) const {
  const TBLOBFieldMapping* const Found = GetMappingByField(FieldName);
  return Found ? OldNameFor(Found->Mapping, NewName) : NewName;
}

TBLOBFieldMapping& TBLOBFieldMappingList::Add(const std::string& FieldName) {
  return *FItems.emplace_back(std::make_unique<TBLOBFieldMapping>(FieldName));
}

void TBLOBFieldMappingList::Delete(int Index) {
  static_cast<void>(Items(Index));
  FItems.erase(FItems.begin() + Index);
}

void TBLOBFieldMappingList::Assign(const TBLOBFieldMappingList& Other) {
  if (this == &Other) return;
  FItems.clear();
  for (const auto& Item : Other.FItems) FItems.push_back(std::make_unique<TBLOBFieldMapping>(*Item));
}

TStringPairs TBLOBFieldMappingList::Pairs() const {
  TStringPairs Result;
  for (const auto& Item : FItems)
    for (const auto& [Old, New] : Item->Mapping) Result.emplace_back(Item->FieldName + "." + Old, New);
  return Result;
}

void TBLOBFieldMappingList::SetPairs(const TStringPairs& Pairs) {
  TBLOBFieldMappingList Result;
  for (const auto& [Old, New] : Pairs) {
    const std::size_t Stop = Old.find('.');
    if (Stop == Old.npos) throw EListError(Format("'%s' names no field inside a BLOB field: write FIELD.OLD=NEW", Old));
    const std::string Field = Old.substr(0, Stop);
    TBLOBFieldMapping* const Known = Result.GetMappingByField(Field);
    (Known ? *Known : Result.Add(Field)).Mapping.emplace_back(Old.substr(Stop + 1), New);
  }
  *this = Result;
}

}  // namespace velkrund
