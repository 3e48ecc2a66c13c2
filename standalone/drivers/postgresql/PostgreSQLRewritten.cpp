// A table's row in pg_class is seen as the transaction's moment has it, what the engine's own functions say of the
// table is of now. Its rows are in another file after it was rewritten.

#include "standalone/drivers/postgresql/PostgreSQLRewritten.h"

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {
namespace {

/// Those that this session has a lock on: also what a view reads, and the parts of a table.
constexpr const char* RewrittenStatement =
    "SELECT c.relname FROM pg_catalog.pg_locks l JOIN pg_catalog.pg_class c ON c.oid = l.relation "
    "WHERE l.pid = pg_catalog.pg_backend_pid() AND l.locktype = 'relation' AND c.relkind = ANY ('{r,m}') "
    "AND l.database = (SELECT d.oid FROM pg_catalog.pg_database d WHERE d.datname = pg_catalog.current_database()) "
    "AND c.relfilenode <> '0' AND c.relfilenode <> coalesce(pg_catalog.pg_relation_filenode(c.oid), '0') LIMIT 1";

constexpr const char* RenamedStatement =
    "SELECT coalesce(pg_catalog.to_regclass($1::pg_catalog.text)::pg_catalog.oid, '0') <> $2::pg_catalog.oid";

[[noreturn]] void Refuse(const std::string& What, std::string_view Table, const char* How) {
  throw EDatabaseError(What + ": somebody else has " + How + " the table '" + std::string(Table) +
                       "' since this run began, and the rows of that moment are gone; run it again");
}

}  // namespace

void RefuseRewrittenTables(TPostgreSQLSession& Session, const std::string& What) {
  static const std::string Statement = CatalogueStatement(RewrittenStatement);
  const TPostgreSQLResult Rows = Session.Query(What, Statement);
  if (Rows.RowCount() > 0) Refuse(What, Rows.Text(0, 0), "emptied or rewritten");
}

void RefuseRenamedTable(TPostgreSQLSession& Session, const std::string& Name, const std::string& Oid,
                        const std::string& What) {
  static const std::string Statement = CatalogueStatement(RenamedStatement);
  if (Session.Query(What, Statement, {Name.c_str(), Oid.c_str()}).Boolean(0, 0))
    Refuse(What, Name, "renamed or replaced");
}

}  // namespace velkrund
