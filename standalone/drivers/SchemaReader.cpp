#include "standalone/drivers/SchemaReader.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr std::string_view CatalogueTables[] = {"velkrund_catalogue", "velkrund_structures", "velkrund_generators",
                                                "velkrund_procedures", "velkrund_unfinished"};

}  // namespace

bool IsCatalogueTable(std::string_view Name) {
  return std::any_of(std::begin(CatalogueTables), std::end(CatalogueTables),
                     [Name](std::string_view Known) { return SameText(Known, Name); });
}

}  // namespace velkrund
