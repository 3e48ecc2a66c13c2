#include "jobs/structures/StructureSearch.h"

#include "jobs/policies/Policies.h"
#include "jobs/report/StructureId.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

void TStructureSearch::Missing(const std::string& Name, std::int32_t Type) const {
  std::vector<std::string> Names, OtherTypes;
  for (const TDSPListItem& Item : FTable.List()) {
    if (Type == AnyType || Item.ObjectType == Type)
      Names.push_back(Item.ObjectName);
    else if (SameText(Item.ObjectName, Name))
      OtherTypes.push_back(TypeText(Item.ObjectType));
  }
  const std::string Hint =
      OtherTypes.empty() ? NearestHint(Name, Names) : "; of that name there is one of type " + Joined(OtherTypes);
  throw EStructureMissing(Format("There is no structure '%s'%s in the database %s%s", Name,
                                 Type == AnyType ? "" : Format(" of type %d", Type), FDatabase, Hint),
                          {.Code = TErrorCode::StructureMissing, .Value = Name, .Database = FDatabase});
}

TDSPListItem TStructureSearch::FindOfAnyType(const std::string& Name) {
  if (!FByName) {
    FByName.emplace();
    for (const TDSPListItem& Item : FTable.List()) FByName->emplace(LowerCase(Item.ObjectName), Item);
  }
  const auto [First, End] = FByName->equal_range(LowerCase(Name));
  if (First == End) Missing(Name, AnyType);
  if (std::next(First) == End) return First->second;
  std::vector<std::string> Types;
  for (auto Found = First; Found != End; ++Found) Types.push_back(TypeText(Found->second.ObjectType));
  throw ESettingsError(Format("There are structures '%s' of several types: choose with %s (%s)", Name,
                              Setting("ObjectType"), Joined(Types)));
}

TDSPListItem TStructureSearch::Find(const std::string& Name, std::int32_t Type) {
  if (Type == AnyType) return FindOfAnyType(Name);
  std::optional<TDSPListItem> Item = FTable.GetStructureProperties(Name, Type);
  if (!Item) Missing(Name, Type);
  return *Item;
}

std::vector<TDSPListItem> StructuresLike(TDSPTable& Table, std::int32_t Type, const std::string& Name) {
  std::vector<TDSPListItem> Result;
  for (const TDSPListItem& Item : Table.List())
    if ((Type == AnyType || Item.ObjectType == Type) && (Name.empty() || SameText(Item.ObjectName, Name)))
      Result.push_back(Item);
  return Result;
}

}  // namespace velkrund
