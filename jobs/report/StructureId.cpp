#include "jobs/report/StructureId.h"

#include "velkrund/platform/ormtools/Format.h"

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

}  // namespace velkrund
