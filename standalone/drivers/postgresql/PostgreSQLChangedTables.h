#pragma once

#include <string>

namespace velkrund {

class TPostgreSQLSession;

/// Behind what was read in a transaction that only reads, which still has its locks on it: raises EDatabaseError where
/// somebody else has emptied or rewritten one of the tables since the transaction began (TRUNCATE, an ALTER TABLE that
/// changes its rows): such a table is empty to the transaction, without an error of the server. And where Name, quoted,
/// is now the name of another table than that of the number Oid; both empty: of none. What begins the message.
void RefuseChangedTables(TPostgreSQLSession& Session, const std::string& Name, const std::string& Oid,
                         const std::string& What);

}  // namespace velkrund
