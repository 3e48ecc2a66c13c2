// The foreign keys of TPostgreSQLConnection.

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLConnection.h"

namespace velkrund {
namespace {

/// What acts on a deletion: cascade, set null, set default. The keys that a partition has from its table are that
/// table's.
constexpr const char* KeysStatement =
    "SELECT f.relname, fn.nspname, f.relhassubclass AND f.relkind = 'r', "
    "t.relname, tn.nspname, t.relhassubclass AND t.relkind = 'r', k.confdeltype = ANY ('{c,n,d}') "
    "FROM pg_catalog.pg_constraint k "
    "JOIN pg_catalog.pg_class f ON f.oid = k.conrelid JOIN pg_catalog.pg_namespace fn ON fn.oid = f.relnamespace "
    "JOIN pg_catalog.pg_class t ON t.oid = k.confrelid JOIN pg_catalog.pg_namespace tn ON tn.oid = t.relnamespace "
    "WHERE k.contype = 'f' AND NOT (k.conparentid <> '0' AND f.relispartition) "
    "ORDER BY fn.nspname, f.relname, k.conname";

}  // namespace

std::vector<TForeignKey> TPostgreSQLConnection::ForeignKeys() {
  const TPostgreSQLResult Rows = FSession.Query("Can not list the foreign keys", CatalogueStatement(KeysStatement));
  const auto TableAt = [&](int Row, int Column) {
    std::string Schema = Rows.Copy(Row, Column + 1);
    if (Schema == FSession.Dialect().CurrentSchema()) Schema.clear();
    return TTableInfo{Rows.Copy(Row, Column), std::move(Schema), TTableKind::Table, Rows.Boolean(Row, Column + 2)};
  };
  std::vector<TForeignKey> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row)
    Result.push_back({TableAt(Row, 0), TableAt(Row, 3), Rows.Boolean(Row, 6)});
  return Result;
}

}  // namespace velkrund
