#include "standalone/drivers/postgresql/PostgreSQLInsertTriggers.h"

#include <algorithm>

#include "standalone/drivers/postgresql/CatalogueStatement.h"

namespace velkrund {
namespace {

/// Bits of tgtype: 1 for each row, 2 before, 4 insert.
std::string Statement() {
  return CatalogueStatement(
      "SELECT DISTINCT t.tgname, (t.tgtype & 3) = 3 FROM pg_catalog.pg_trigger t "
      "WHERE NOT t.tgisinternal AND t.tgenabled <> 'D' AND (t.tgtype & 4) <> 0 "
      "AND t.tgrelid IN (SELECT $1::pg_catalog.oid UNION SELECT p.relid::pg_catalog.oid "
      "FROM pg_catalog.pg_partition_tree($1::pg_catalog.oid::pg_catalog.regclass) p) ORDER BY t.tgname");
}

}  // namespace

TPostgreSQLInsertTriggers ReadPostgreSQLInsertTriggers(TPostgreSQLSession& Session, const std::string& TableOid,
                                                       const std::string& What) {
  const TPostgreSQLResult Rows = Session.Query(What, Statement(), {TableOid.c_str()});
  TPostgreSQLInsertTriggers Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    std::string Name = Rows.Copy(Row, 0);
    if (std::find(Result.Names.begin(), Result.Names.end(), Name) == Result.Names.end())
      Result.Names.push_back(std::move(Name));
    Result.MayIgnoreRows = Result.MayIgnoreRows || Rows.Boolean(Row, 1);
  }
  return Result;
}

}  // namespace velkrund
