#include "hosts/cli/Structures.h"

#include "hosts/cli/line/Command.h"
#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

std::string StructureText(const TStructureId& Structure) { return Format("%s (%d)", Structure.Name, Structure.Type); }

std::string_view KindOfStructure(int Type) {
  switch (Type) {
    case 10:
      return "table";
    case 12:
      return "visual form";
    case 71:
      return "generator";
    case 72:
      return "view";
    case 73:
    case 74:
      return "stored procedure";
    default:
      return {};
  }
}

std::string TypeText(int Type) {
  const std::string_view Kind = KindOfStructure(Type);
  return Kind.empty() ? Format("%d", Type) : Format("%d %s", Type, Kind);
}

std::optional<TStructureId> StructureOf(const TEISection& Section) {
  const TEISectionParameters& Parameters = Section.FParameters;
  const int Type = Parameters.IndexOf("ObjectType"), Name = Parameters.IndexOf("ObjectName");
  if (Type < 0 || Name < 0) return std::nullopt;
  const std::optional<std::int32_t> Number = StrToInt32(Parameters.ParamValues(Type));
  if (!Number) return std::nullopt;
  return TStructureId{*Number, Parameters.ParamValues(Name)};
}

void TStructureSearch::Missing(const std::string& What) const {
  throw EDatabaseError(
      Format("There is no %s in the database %s; velkrund dictionary list shows what there is", What, FDatabase));
}

TDSPListItem TStructureSearch::FindOfAnyType(const std::string& Name) {
  if (!FByName) {
    FByName.emplace();
    for (const TDSPListItem& Item : FTable.List()) FByName->emplace(LowerCase(Item.ObjectName), Item);
  }
  const auto [First, End] = FByName->equal_range(LowerCase(Name));
  if (First == End) Missing(Format("structure '%s'", Name));
  if (std::next(First) == End) return First->second;
  std::vector<std::string> Types;
  for (auto Found = First; Found != End; ++Found) Types.push_back(TypeText(Found->second.ObjectType));
  throw EUsage(Format("There are structures '%s' of several types: choose with --type (%s)", Name, Joined(Types)));
}

TDSPListItem TStructureSearch::Find(const std::string& Name, const std::optional<std::int32_t>& Type) {
  if (!Type) return FindOfAnyType(Name);
  std::optional<TDSPListItem> Item = FTable.GetStructureProperties(Name, *Type);
  if (!Item) Missing(Format("structure '%s' of type %d", Name, *Type));
  return *Item;
}

std::vector<TDSPListItem> StructuresLike(TDSPTable& Table, const std::optional<std::int32_t>& Type,
                                         const std::string& Name) {
  std::vector<TDSPListItem> Result;
  for (const TDSPListItem& Item : Table.List())
    if (Item.ObjectType == Type.value_or(Item.ObjectType) && (Name.empty() || SameText(Item.ObjectName, Name)))
      Result.push_back(Item);
  return Result;
}

}  // namespace velkrund
