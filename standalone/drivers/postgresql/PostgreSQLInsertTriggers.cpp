#include "standalone/drivers/postgresql/PostgreSQLInsertTriggers.h"

#include "standalone/drivers/postgresql/CatalogueStatement.h"

namespace velkrund {
namespace {

constexpr int InsertBit = 4, UpdateBit = 16;

std::string Statement() {
  return CatalogueStatement(
      "SELECT DISTINCT t.tgname FROM pg_catalog.pg_trigger t "
      "WHERE NOT t.tgisinternal AND t.tgenabled <> 'D' AND (t.tgtype & $2::pg_catalog.int2) <> 0 "
      "AND t.tgrelid IN (SELECT $1::pg_catalog.oid UNION SELECT p.relid::pg_catalog.oid "
      "FROM pg_catalog.pg_partition_tree($1::pg_catalog.oid::pg_catalog.regclass) p) ORDER BY t.tgname");
}

}  // namespace

std::vector<std::string> ReadPostgreSQLTriggers(TPostgreSQLSession& Session, const std::string& TableOid,
                                                const std::string& What, TPostgreSQLRowEvents Events) {
  const std::string Bits = std::to_string((Events.OnInsert ? InsertBit : 0) + (Events.OnUpdate ? UpdateBit : 0));
  const TPostgreSQLResult Rows = Session.Query(What, Statement(), {TableOid.c_str(), Bits.c_str()});
  std::vector<std::string> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) Result.push_back(Rows.Copy(Row, 0));
  return Result;
}

}  // namespace velkrund
