#include "standalone/drivers/Schema.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

int IndexInAnyCase(const TTableDescription& Table, std::string_view Name) {
  if (const int Exact = IndexOf(Table, Name); Exact >= 0) return Exact;
  const auto Found = std::find_if(Table.Columns.begin(), Table.Columns.end(),
                                  [&](const TColumnInfo& Column) { return SameText(Column.Name, Name); });
  return Found == Table.Columns.end() ? -1 : static_cast<int>(Found - Table.Columns.begin());
}

}  // namespace velkrund
