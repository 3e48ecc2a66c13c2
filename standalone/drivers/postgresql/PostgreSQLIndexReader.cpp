#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/postgresql/PostgreSQLDescribed.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"

namespace velkrund {
namespace {

/// A row per index of the tables $1 and column of it, the table last in it; neither those of keys nor those that a
/// partition has from its table. The low bit of indoption: descending.
constexpr const char* IndexesStatement =
    "SELECT i.indexrelid, c.relname, pg_catalog.quote_ident(c.relname), i.indisunique, "
    "pg_catalog.pg_get_indexdef(i.indexrelid), a.attname, "
    "pg_catalog.pg_get_indexdef(i.indexrelid, k.place::pg_catalog.int4, false), (k.option & 1) <> 0, "
    "i.indrelid "
    "FROM pg_catalog.pg_index i JOIN pg_catalog.pg_class c ON c.oid = i.indexrelid "
    "CROSS JOIN LATERAL ROWS FROM (pg_catalog.unnest(i.indkey), pg_catalog.unnest(i.indoption)) WITH ORDINALITY "
    "AS k (attnum, option, place) "
    "LEFT JOIN pg_catalog.pg_attribute a ON a.attrelid = i.indrelid AND a.attnum = k.attnum "
    "WHERE i.indrelid = ANY ($1::pg_catalog.oid[]) AND NOT c.relispartition AND NOT (k.place > i.indnkeyatts) "
    "AND NOT EXISTS (SELECT FROM pg_catalog.pg_constraint o WHERE o.conrelid = i.indrelid "
    "AND o.conindid = i.indexrelid "
    "AND o.contype = ANY ('{p,u,x}')) ORDER BY i.indrelid, c.relname, k.place";

/// Those of the tables $1, the table last in each, but not what a partition has from its table.
constexpr const char* TriggersStatement =
    "SELECT g.tgname, g.tgenabled, pg_catalog.pg_get_triggerdef(g.oid), g.tgrelid FROM pg_catalog.pg_trigger g "
    "WHERE g.tgrelid = ANY ($1::pg_catalog.oid[]) AND NOT g.tgisinternal AND NOT EXISTS (SELECT FROM "
    "pg_catalog.pg_depend p "
    "WHERE p.classid = 'pg_catalog.pg_trigger'::pg_catalog.regclass::pg_catalog.oid AND p.objid = g.oid "
    "AND p.deptype = 'P') ORDER BY g.tgrelid, g.tgname";

std::string StateOf(std::string_view Letter) {
  if (Letter == "D") return "Disabled";
  if (Letter == "R") return "Replica";
  return Letter == "A" ? "Always" : "";
}

}  // namespace

std::vector<TDicIndex> ReadIndexes(const TDescribed& Table, const TPostgreSQLExpressions& Expressions) {
  const TDescribedRows Rows = Table.Describing.RowsOf(Table.Oid, "indexes", IndexesStatement);
  std::vector<TDicIndex> Result;
  for (int Row = 0; Row < Rows.RowCount();) {
    const int First = Row;
    TDicIndex Index;
    Index.Name = Rows.Copy(First, 1);
    Index.Unique = Rows.Boolean(First, 3);
    bool IsPlain = true;
    std::string Columns;
    for (; Row < Rows.RowCount() && Rows.Text(Row, 0) == Rows.Text(First, 0); ++Row) {
      TDicColumn Column{Rows.Copy(Row, 5), false, Rows.Boolean(Row, 7)};
      Columns += (Columns.empty() ? "" : ", ") + Rows.Copy(Row, 6) + (Column.Descending ? " DESC" : "");
      if (Column.Name.empty()) {
        const auto Neutral = Expressions.Expression(Rows.Copy(Row, 6));
        IsPlain = IsPlain && Neutral;
        Column.Name = Neutral.value_or(Rows.Copy(Row, 6));
        Column.Expression = true;
      }
      Index.Columns.push_back(std::move(Column));
    }
    const std::string Statement = OnPostgreSQLTable(Rows.Copy(First, 4), Table.SQLName);
    const std::string Plain = std::string(Index.Unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
                              Rows.Copy(First, 2) + " ON " + Table.SQLName + " USING btree (" + Columns + ")";
    if (!IsPlain || Plain != Statement) Index.Words["postgresql"].Text = Statement;
    Result.push_back(std::move(Index));
  }
  return Result;
}

std::vector<TDicTrigger> ReadTriggers(const TDescribed& Table) {
  const TDescribedRows Rows = Table.Describing.RowsOf(Table.Oid, "triggers", TriggersStatement);
  std::vector<TDicTrigger> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    TDicTrigger Trigger{Rows.Copy(Row, 0), StateOf(Rows.Text(Row, 1)), {}};
    Trigger.Words["postgresql"].Lines = SplitLines(OnPostgreSQLTable(Rows.Copy(Row, 2), Table.SQLName));
    Result.push_back(std::move(Trigger));
  }
  return Result;
}

}  // namespace velkrund
