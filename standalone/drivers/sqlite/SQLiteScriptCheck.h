#pragma once

#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace velkrund {

/// As TConnection::CheckScript: the names of the parameters without what marks them.
std::vector<std::string> CheckSQLiteScript(sqlite3* Database, std::string_view Script);

}  // namespace velkrund
