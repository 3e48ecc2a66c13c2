#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "hosts/cli/Structures.h"
#include "hosts/cli/line/Option.h"
#include "jobs/report/Json.h"

namespace velkrund {

/// Which stored structures a dictionary command is about.
struct TStructureOptions {
  std::optional<std::int32_t> Type;
  std::string Name;

  TOption TypeOption() { return Number("--type", "T", "the object type, a number", Type); }
  TOption NameOption() { return Text("--name", "NAME", "the structure's name, in any case", Name); }
  /// The one structure that they name. Errors as in TStructureSearch.
  TDSPListItem One(TDSPTable& Table, const std::string& Database) const {
    return TStructureSearch(Table, Database).Find(Name, Type);
  }
};

/// Everything about the structure but its tree.
TJson PropertiesJson(const TDSPListItem& Item);

}  // namespace velkrund
