#include "standalone/drivers/postgresql/PostgreSQLMoment.h"

#include <algorithm>

#include "standalone/drivers/postgresql/PostgreSQLDialect.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

void TPostgreSQLMoment::List(std::vector<TPostgreSQLListed> All) {
  Tables = std::move(All);
  IsListed = true;
  for (std::size_t Place = 0; Place < Tables.size(); ++Place) Places.emplace(LowerCase(Tables[Place].Info.Name), Place);
}

std::vector<TPostgreSQLName> TPostgreSQLMoment::Next(const TPostgreSQLName& Table,
                                                     const TPostgreSQLDialect& Dialect) const {
  constexpr std::size_t Most = 64;
  const auto NameAt = [&](std::size_t Place) {
    const TTableInfo& Info = Tables[Place].Info;
    return TPostgreSQLName(Dialect.SchemaOf(Info), Info.Name);
  };
  std::vector<TPostgreSQLName> Result{Table};
  const auto [First, Last] = Places.equal_range(LowerCase(Table.second));
  const auto At = std::find_if(First, Last, [&](const auto& Place) { return NameAt(Place.second) == Table; });
  if (At == Last) return Result;
  const std::size_t Wanted = std::min(Most, Described.size());
  for (std::size_t Place = At->second + 1; Place < Tables.size() && Result.size() < Wanted; ++Place)
    if (TPostgreSQLName Name = NameAt(Place); !Described.contains(Name)) Result.push_back(std::move(Name));
  return Result;
}

}  // namespace velkrund
