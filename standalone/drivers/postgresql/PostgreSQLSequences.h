#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLEncoder.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// Moves the sequences that belong to the columns of a table behind the highest key that was written into each, the
/// lowest where a sequence counts down; not when they are beyond it, nor when their range ends before it. TableOid: in
/// decimal. Names and Encoders: of the columns. What begins messages.
void MovePostgreSQLSequences(TPostgreSQLSession& Session, const std::string& What, const std::string& TableOid,
                             const std::vector<std::string>& Names, const std::vector<TPostgreSQLEncoder>& Encoders);

}  // namespace velkrund
