#pragma once

#include <map>
#include <string>
#include <utility>

#include "standalone/drivers/postgresql/PostgreSQLTypes.h"

namespace velkrund {

/// What was read of the catalogue in a transaction that only reads: questions about it see one moment, so that asking
/// again would give the same answers.
struct TPostgreSQLMoment {
  std::map<std::string, TTableInfo, std::less<>> Found;                       // by the name that was looked for
  std::map<std::pair<std::string, std::string>, TPostgreSQLTable> Described;  // by schema and name
};

}  // namespace velkrund
