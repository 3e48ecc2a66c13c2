#include "jobs/report/StructureId.h"

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

std::string StructureText(const TStructureId& Structure) { return Format("%s (%d)", Structure.Name, Structure.Type); }

TDocument StructureDocument(const TStructureId& Structure) {
  TDocument Result;
  Result.Set("type", Structure.Type).Set("name", Structure.Name);
  return Result;
}

std::string_view KindOfStructure(int Type) {
  switch (Type) {
    case TableObjectType:
      return "table";
    case VisualFormObjectType:
      return "visual form";
    case GeneratorObjectType:
      return "generator";
    case ViewObjectType:
      return "view";
    case ExecStoredProcObjectType:
    case SelectStoredProcObjectType:
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
