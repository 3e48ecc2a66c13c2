// A table's row in pg_class is seen as the transaction's moment has it, what the engine's own functions say of the
// table is of now. Its rows are in another file after it was rewritten.

#include "standalone/drivers/postgresql/PostgreSQLChangedTables.h"

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {
namespace {

/// The first of the tables that this session has a lock on, which are also those that a view reads, and the parts of a
/// table; and whether the name $1, unless it is empty, is another table's than that of the number $2. Without a join,
/// for which the server would read the whole list of tables.
constexpr const char* ChangedTablesStatement =
    "SELECT (SELECT c.relname FROM pg_catalog.pg_class c WHERE c.oid = ANY (ARRAY(SELECT l.relation FROM "
    "pg_catalog.pg_locks l WHERE l.pid = pg_catalog.pg_backend_pid() AND l.locktype = 'relation' AND l.database = "
    "(SELECT d.oid FROM pg_catalog.pg_database d WHERE d.datname = pg_catalog.current_database()))) "
    "AND c.relkind = ANY ('{r,m}') AND c.relfilenode <> '0' "
    "AND c.relfilenode <> coalesce(pg_catalog.pg_relation_filenode(c.oid), '0') LIMIT 1), "
    "$1::pg_catalog.text <> '' AND coalesce(pg_catalog.to_regclass($1::pg_catalog.text)::pg_catalog.oid, '0') <> "
    "$2::pg_catalog.oid";

[[noreturn]] void Refuse(const std::string& What, std::string_view Table, const char* How) {
  throw EDatabaseError(What + ": somebody else has " + How + " the table '" + std::string(Table) +
                       "' since this run began, and the rows of that moment are gone; run it again");
}

}  // namespace

void RefuseChangedTables(TPostgreSQLSession& Session, const std::string& Name, const std::string& Oid,
                         const std::string& What) {
  static const std::string Statement = CatalogueStatement(ChangedTablesStatement);
  const TPostgreSQLResult Found = Session.Query(What, Statement, {Name.c_str(), Oid.empty() ? "0" : Oid.c_str()});
  if (!Found.Text(0, 0).empty()) Refuse(What, Found.Text(0, 0), "emptied or rewritten");
  if (Found.Boolean(0, 1)) Refuse(What, Name, "renamed or replaced");
}

}  // namespace velkrund
