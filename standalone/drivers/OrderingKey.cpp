#include "standalone/drivers/OrderingKey.h"

#include <algorithm>
#include <utility>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

std::vector<int> PrimaryKey(const TTableDescription& Table) {
  std::vector<std::pair<int, int>> Places;
  for (std::size_t I = 0; I < Table.Columns.size(); ++I)
    if (Table.Columns[I].KeyPosition > 0) Places.emplace_back(Table.Columns[I].KeyPosition, static_cast<int>(I));
  std::sort(Places.begin(), Places.end());
  std::vector<int> Result;
  for (const auto& [Position, Column] : Places) Result.push_back(Column);
  return Result;
}

std::vector<int> OrderingKey(TSchemaReader& Schema, const TTableDescription& Table) {
  std::vector<int> Best = PrimaryKey(Table);
  if (!Best.empty()) return Best;
  const auto At = [&](int Column) -> const TColumnInfo& { return Table.Columns[static_cast<std::size_t>(Column)]; };
  // Engines list keys in the order in which they were made.
  std::vector<std::string> BestNames;
  for (std::vector<int>& Key : Schema.UniqueKeys(Table)) {
    if (Key.empty() || std::any_of(Key.begin(), Key.end(), [&](int Column) { return At(Column).Nullable; })) continue;
    std::vector<std::string> Names;
    for (const int Column : Key) Names.push_back(LowerCase(At(Column).Name));
    if (!Best.empty() && std::pair(Best.size(), BestNames) <= std::pair(Key.size(), Names)) continue;
    Best = std::move(Key);
    BestNames = std::move(Names);
  }
  return Best;
}

}  // namespace velkrund
