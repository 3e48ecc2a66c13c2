#pragma once

#include <functional>
#include <string>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLResult.h"
#include "standalone/drivers/postgresql/PostgreSQLWait.h"

namespace velkrund {

/// Executes one statement for every row of Values, texts whose types the server is told, without waiting for one answer
/// before the next. Took is called with each answer, in order; an error ends the rows and is returned. Wait: of a
/// statement that has begun.
TPostgreSQLResult RunPostgreSQLPipeline(pg_conn* Connection, TPostgreSQLWait& Wait, const std::string& Statement,
                                        const std::vector<unsigned>& Types, const std::vector<const char*>& Values,
                                        const std::function<void(const TPostgreSQLResult& Answer)>& Took);

}  // namespace velkrund
