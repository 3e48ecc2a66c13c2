#pragma once

#include <span>

#include "standalone/drivers/Cursor.h"
#include "standalone/drivers/QueryText.h"
#include "velkrund/platform/database/SelectQuery.h"

namespace velkrund {

class TPostgreSQLSession;

/// As TConnection::OpenQuery. Outside of transactions, and in one that only reads, the cursor holds the connection.
TQueryRows OpenPostgreSQLQuery(TPostgreSQLSession& Session, const TQueryText& Text,
                               std::span<const TQueryParameter> Parameters);

}  // namespace velkrund
