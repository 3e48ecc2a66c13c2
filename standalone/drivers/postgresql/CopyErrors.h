#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLResult.h"

namespace velkrund {

/// Where in the data of a COPY the server found an error.
struct TCopyErrorPlace {
  std::int64_t Line = 0;  // from 1; 0: not told
  std::string Column;     // empty: not told
};

/// Reads it from the error of a COPY into the table of that name, without its schema. The server tells it in words of
/// its language; only the names and the number in them are relied on.
TCopyErrorPlace PlaceOfCopyError(const TPostgreSQLResult& Error, std::string_view TableName,
                                 const std::vector<std::string>& Columns);

}  // namespace velkrund
