#include "standalone/drivers/postgresql/PostgreSQLSchemaReader.h"

#include <utility>

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "standalone/drivers/postgresql/PostgreSQLTypes.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

/// What acts on a deletion: cascade, set null, set default. The keys that a partition has from its table are that
/// table's; each end is shown with what it is a part of. Somebody may have switched the triggers off that enforce a
/// key.
constexpr const char* KeysStatement =
    "SELECT f.relname, fn.nspname, f.relhassubclass AND f.relkind = 'r', "
    "t.relname, tn.nspname, t.relhassubclass AND t.relkind = 'r', k.confdeltype = ANY ('{c,n,d}'), k.oid, "
    "NOT EXISTS (SELECT FROM pg_catalog.pg_trigger g WHERE g.tgconstraint = k.oid "
    "AND NOT (g.tgenabled = ANY ('{O,A}'))), fw.relname, fwn.nspname, tw.relname, twn.nspname, "
    "CASE WHEN NOT EXISTS (SELECT FROM pg_catalog.pg_index i WHERE i.indrelid = k.conrelid AND i.indisvalid "
    "AND i.indpred IS NULL AND pg_catalog.arraycontains((i.indkey::pg_catalog.int2[])"
    "[0:pg_catalog.int4mi(pg_catalog.cardinality(k.conkey), 1)], k.conkey)) "
    "THEN (SELECT pg_catalog.string_agg(a.attname, ', ' ORDER BY c.n) FROM ROWS FROM (pg_catalog.unnest(k.conkey)) "
    "WITH ORDINALITY AS c (f, n) JOIN pg_catalog.pg_attribute a ON a.attrelid = k.conrelid AND a.attnum = c.f) END "
    "FROM pg_catalog.pg_constraint k "
    "JOIN pg_catalog.pg_class f ON f.oid = k.conrelid JOIN pg_catalog.pg_namespace fn ON fn.oid = f.relnamespace "
    "JOIN pg_catalog.pg_class t ON t.oid = k.confrelid JOIN pg_catalog.pg_namespace tn ON tn.oid = t.relnamespace "
    "JOIN pg_catalog.pg_class fw ON fw.oid = coalesce(CASE WHEN f.relispartition THEN "
    "pg_catalog.pg_partition_root(f.oid)::pg_catalog.oid END, f.oid) "
    "JOIN pg_catalog.pg_namespace fwn ON fwn.oid = fw.relnamespace "
    "JOIN pg_catalog.pg_class tw ON tw.oid = coalesce(CASE WHEN t.relispartition THEN "
    "pg_catalog.pg_partition_root(t.oid)::pg_catalog.oid END, t.oid) "
    "JOIN pg_catalog.pg_namespace twn ON twn.oid = tw.relnamespace "
    "WHERE k.contype = 'f' ORDER BY fn.nspname, f.relname, k.conname";

/// What fires for rows, or statements, that insert or delete: bits 4 and 8 of tgtype. Those of a partition are shown as
/// its table's. Rules come along for deletions; a COPY knows none.
constexpr const char* TriggersStatement =
    "SELECT DISTINCT r.relname, n.nspname, r.relkind, t.tgname, (t.tgtype & 4) <> 0, (t.tgtype & 8) <> 0, "
    "t.tgenabled = 'A', false "
    "FROM pg_catalog.pg_trigger t JOIN pg_catalog.pg_class c ON c.oid = t.tgrelid "
    "JOIN pg_catalog.pg_class r ON r.oid = coalesce(CASE WHEN c.relispartition THEN "
    "pg_catalog.pg_partition_root(c.oid)::pg_catalog.oid END, c.oid) "
    "JOIN pg_catalog.pg_namespace n ON n.oid = r.relnamespace "
    "WHERE NOT t.tgisinternal AND (t.tgenabled = 'O' OR t.tgenabled = 'A') AND (t.tgtype & 12) <> 0 "
    "UNION ALL SELECT c.relname, n.nspname, c.relkind, w.rulename, false, true, true, true "
    "FROM pg_catalog.pg_rewrite w JOIN pg_catalog.pg_class c ON c.oid = w.ev_class "
    "JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
    "WHERE w.ev_type = '4' AND w.ev_enabled = ANY ('{O,A}') ORDER BY 2, 1, 4";

/// The keys of a table ($1) and its parts, with the columns at both ends, one row a column.
constexpr const char* KeyColumnsStatement =
    "SELECT k.oid, k.confrelid::pg_catalog.regclass, t.relname, a.attname, b.attname, "
    "k.conrelid::pg_catalog.regclass, f.relhassubclass AND f.relkind = 'r', k.confmatchtype = 'f' "
    "FROM pg_catalog.pg_constraint k, "
    "ROWS FROM (pg_catalog.unnest(k.conkey), pg_catalog.unnest(k.confkey)) AS c (f, t), "
    "pg_catalog.pg_attribute a, pg_catalog.pg_attribute b, pg_catalog.pg_class t, pg_catalog.pg_class f "
    "WHERE k.contype = 'f' AND t.oid = k.confrelid AND f.oid = k.conrelid AND k.conparentid = '0' "
    "AND (k.conrelid = $1::pg_catalog.text::pg_catalog.regclass::pg_catalog.oid OR k.conrelid IN (SELECT p.relid "
    "FROM pg_catalog.pg_partition_tree($1::pg_catalog.text::pg_catalog.regclass) p)) "
    "AND a.attrelid = k.conrelid AND a.attnum = c.f AND b.attrelid = k.confrelid AND b.attnum = c.t ORDER BY "
    "k.conname, k.oid";

/// A row per column of every unique index over columns alone that holds for all rows.
std::string UniqueKeysStatement() {
  return CatalogueStatement(
      "SELECT i.indexrelid, a.attname FROM pg_catalog.pg_index i "
      "JOIN pg_catalog.pg_class c ON c.oid = i.indrelid JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
      "CROSS JOIN LATERAL pg_catalog.unnest(i.indkey) WITH ORDINALITY AS k (attnum, place) "
      "JOIN pg_catalog.pg_attribute a ON a.attrelid = c.oid AND a.attnum = k.attnum "
      "WHERE n.nspname = $1::pg_catalog.text AND c.relname = $2::pg_catalog.text AND i.indisunique AND i.indisvalid "
      "AND NOT i.indisprimary AND i.indpred IS NULL AND i.indexprs IS NULL AND NOT (k.place > i.indnkeyatts) "
      "ORDER BY i.indexrelid, k.place");
}

}  // namespace

TTableDescription TPostgreSQLSchemaReader::Describe(const TTableInfo& Table) {
  TPostgreSQLTable Known =
      ReadPostgreSQLTable(FSession, Table, Format("Cannot read the columns of table '%s'", FullName(Table)));
  TTableDescription Result{Table, {}};
  for (TPostgreSQLColumn& Column : Known.Columns) Result.Columns.push_back(std::move(Column.Info));
  return Result;
}

std::vector<std::vector<int>> TPostgreSQLSchemaReader::UniqueKeys(const TTableDescription& Table) {
  static const std::string Statement = UniqueKeysStatement();
  const TPostgreSQLResult Rows =
      FSession.Query(Format("Cannot read the keys of table '%s'", FullName(Table.Table)), Statement,
                     {FSession.Dialect().SchemaOf(Table.Table).c_str(), Table.Table.Name.c_str()});
  std::vector<std::vector<int>> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    if (Row == 0 || Rows.Text(Row, 0) != Rows.Text(Row - 1, 0)) Result.emplace_back();
    Result.back().push_back(IndexOf(Table, Rows.Text(Row, 1)));
  }
  return Result;
}

std::int64_t TPostgreSQLSchemaReader::RowCount(const TTableInfo& Table) {
  return FSession
      .Query(Format("Cannot count the rows of table '%s'", FullName(Table)),
             "SELECT pg_catalog.count(*) FROM " + FSession.Dialect().SQLName(Table))
      .Integer(0, 0);
}

/// As the planner does: by the rows of a page when it was last looked at, and the pages that there are.
std::optional<std::int64_t> TPostgreSQLSchemaReader::EstimatedRows(const TTableDescription& Table) {
  if (Table.Table.Kind != TTableKind::Table) return std::nullopt;
  const std::string Name = FSession.Dialect().QualifiedName(Table.Table);
  const TPostgreSQLResult Found = FSession.Query(
      Format("Cannot look into table '%s'", FullName(Table.Table)),
      "SELECT (c.reltuples::pg_catalog.float8 OPERATOR(pg_catalog./) c.relpages::pg_catalog.float8 OPERATOR("
      "pg_catalog.*) (pg_catalog.pg_relation_size(c.oid) OPERATOR(pg_catalog./) "
      "pg_catalog.current_setting('block_size')::pg_catalog.int8)::pg_catalog.float8)::pg_catalog.int8 "
      "FROM pg_catalog.pg_class c WHERE c.oid OPERATOR(pg_catalog.=) $1::pg_catalog.text::pg_catalog.regclass AND "
      "c.relkind OPERATOR(pg_catalog.=) 'r' AND c.relpages OPERATOR(pg_catalog.>) 0 AND c.reltuples "
      "OPERATOR(pg_catalog.>=) 0 AND c.reltuples OPERATOR(pg_catalog.<) 1e12",
      {Name.c_str()});
  if (Found.RowCount() == 0) return std::nullopt;
  return Found.Integer(0, 0);
}

bool TPostgreSQLSchemaReader::HasAtLeast(const TTableInfo& Table, std::int64_t Rows) {
  return FSession
             .Query(Format("Cannot look into table '%s'", FullName(Table)),
                    Format("SELECT FROM %s LIMIT 1 OFFSET %d", FSession.Dialect().SQLName(Table), Rows - 1))
             .RowCount() > 0;
}

std::optional<std::int64_t> TPostgreSQLSchemaReader::TableBytes(const TTableInfo& Table) {
  if (Table.Kind != TTableKind::Table) return std::nullopt;
  // A partitioned table keeps nothing itself. The function takes the names as a statement would.
  const std::string Name = FSession.Dialect().QualifiedName(Table);
  return FSession
      .Query(Format("Cannot measure table '%s'", FullName(Table)),
             "SELECT coalesce(pg_catalog.sum(pg_catalog.pg_total_relation_size(t.relid)), 0) "
             "FROM (SELECT $1::pg_catalog.text::pg_catalog.regclass AS relid UNION SELECT p.relid FROM "
             "pg_catalog.pg_partition_tree($1::pg_catalog.text::pg_catalog.regclass) p) t",
             {Name.c_str()})
      .Integer(0, 0);
}

bool TPostgreSQLSchemaReader::HasCatalogueTable(const std::string& Name) {
  // A view of that name would run whatever its maker has put into it.
  const std::string Quoted = QuoteStandardName(Name);
  return FSession
      .Query(Format("Cannot look for table '%s'", Name),
             CatalogueStatement("SELECT EXISTS (SELECT FROM pg_catalog.pg_class c WHERE c.relkind = 'r' "
                                "AND c.oid = pg_catalog.to_regclass($1::pg_catalog.text))"),
             {Quoted.c_str()})
      .Boolean(0, 0);
}

std::vector<TForeignKey> TPostgreSQLSchemaReader::ForeignKeys() {
  const TPostgreSQLResult Rows = FSession.Query("Cannot list the foreign keys", CatalogueStatement(KeysStatement));
  const auto TableAt = [&](int Row, int Column, bool HasHeirs) {
    return TTableInfo{Rows.Copy(Row, Column), FSession.Dialect().ShownSchema(Rows.Text(Row, Column + 1)),
                      TTableKind::Table, HasHeirs};
  };
  std::vector<TForeignKey> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row)
    Result.push_back({.From = TableAt(Row, 0, Rows.Boolean(Row, 2)),
                      .To = TableAt(Row, 3, Rows.Boolean(Row, 5)),
                      .FromWhole = TableAt(Row, 9, Rows.Boolean(Row, 2)),
                      .ToWhole = TableAt(Row, 11, Rows.Boolean(Row, 5)),
                      .ActsOnDelete = Rows.Boolean(Row, 6),
                      .Id = Rows.Copy(Row, 7),
                      .IsEnforced = Rows.Boolean(Row, 8),
                      .Unindexed = Rows.Copy(Row, 13)});
  std::vector<TTableInfo*> Tables;
  for (TForeignKey& Key : Result) Tables.insert(Tables.end(), {&Key.From, &Key.To, &Key.FromWhole, &Key.ToWhole});
  FSearch.MarkShared(std::move(Tables));
  return Result;
}

std::vector<TTrigger> TPostgreSQLSchemaReader::Triggers() {
  const TPostgreSQLResult Rows = FSession.Query("Cannot list the triggers", CatalogueStatement(TriggersStatement));
  std::vector<TTrigger> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row)
    Result.push_back({{Rows.Copy(Row, 0), FSession.Dialect().ShownSchema(Rows.Text(Row, 1)),
                       KindOfPostgreSQLTable(Rows.Text(Row, 2).front())},
                      Rows.Copy(Row, 3),
                      Rows.Boolean(Row, 4),
                      Rows.Boolean(Row, 5),
                      Rows.Boolean(Row, 6),
                      Rows.Boolean(Row, 7)});
  std::vector<TTableInfo*> Tables;
  for (TTrigger& Trigger : Result) Tables.push_back(&Trigger.Table);
  FSearch.MarkShared(std::move(Tables));
  return Result;
}

TBrokenReferences TPostgreSQLSchemaReader::BrokenReferences(const TTableInfo& Table) {
  const std::string What = Format("Cannot check the foreign keys of table '%s'", FullName(Table));
  const std::string Name = FSession.Dialect().QualifiedName(Table);
  const TPostgreSQLResult Keys = FSession.Query(What, CatalogueStatement(KeyColumnsStatement), {Name.c_str()});
  TBrokenReferences Result;
  for (int Row = 0; Row < Keys.RowCount();) {
    const int First = Row;
    // A key that has to match in full may be NULL as a whole only.
    const std::string_view Between = Keys.Boolean(First, 7) ? " OR " : " AND ";
    std::string IsKey, IsThere;
    for (; Row < Keys.RowCount() && Keys.Text(Row, 0) == Keys.Text(First, 0); ++Row) {
      const std::string Column = "c." + QuoteStandardName(Keys.Text(Row, 3));
      IsKey += Format("%s%s IS NOT NULL", IsKey.empty() ? "" : Between, Column);
      IsThere += Format("%sp.%s = %s", IsThere.empty() ? "" : " AND ", QuoteStandardName(Keys.Text(Row, 4)), Column);
    }
    const TPostgreSQLResult Broken = FSession.Query(
        What,
        Format("SELECT pg_catalog.count(*), pg_catalog.min(c::pg_catalog.text) FROM %s c WHERE (%s) AND NOT "
               "EXISTS (SELECT FROM %s p WHERE %s)",
               (Keys.Boolean(First, 6) ? "ONLY " : "") + Keys.Copy(First, 5), IsKey, Keys.Text(First, 1), IsThere));
    const std::int64_t Count = Broken.Integer(0, 0);
    Result.Count += Count;
    if (Count > 0 && Result.Example.empty())
      Result.Example = Format("row %s to a row of '%s'", Shortened(Broken.Text(0, 1)), Keys.Text(First, 2));
  }
  return Result;
}

}  // namespace velkrund
