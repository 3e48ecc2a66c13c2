#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/sqlite/SQLiteStatement.h"

namespace velkrund {

/// Takes the next statement off the front of a script, ready to run; null behind the last one. Statements that begin or
/// end transactions, or reach other databases, are an EDatabaseError. Task: how messages begin.
std::unique_ptr<TSQLiteStatement> NextSQLiteStatement(const TSQLiteHandle& Database, std::string_view& Script,
                                                      const std::string& Task,
                                                      TSQLiteStatement::TUse Use = TSQLiteStatement::TUse::Foreign);

/// As TConnection::CheckScript: the names of the parameters without what marks them.
std::vector<std::string> CheckSQLiteScript(const TSQLiteHandle& Database, std::string_view Script);

}  // namespace velkrund
