// The foreign keys of TSQLiteConnection. The engine keeps them as words of a table's declaration; unless it is told to
// enforce them, rows may refer to whatever they like.

#include "standalone/drivers/sqlite/SQLiteConnection.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

std::vector<TForeignKey> TSQLiteConnection::ForeignKeys() {
  TSQLiteStatement Keys(FDatabase.get(),
                        "SELECT f.name, t.name, k.on_delete IN ('CASCADE', 'SET NULL', 'SET DEFAULT') "
                        "FROM main.sqlite_schema f, pragma_foreign_key_list(f.name, 'main') k "
                        "JOIN main.sqlite_schema t ON t.name = k.\"table\" COLLATE NOCASE AND t.type = 'table' "
                        "WHERE f.type = 'table' AND k.seq = 0 ORDER BY f.name, k.id",
                        "Can not list the foreign keys");
  std::vector<TForeignKey> Result;
  while (Keys.Step())
    Result.push_back(
        {{Keys.Text(0), {}}, {Keys.Text(1), {}}, FCapabilities.EnforcesForeignKeys && Keys.Integer(2) != 0});
  return Result;
}

TBrokenReferences TSQLiteConnection::BrokenReferences(const TTableInfo& Table) {
  TSQLiteStatement Broken(FDatabase.get(),
                          "SELECT count(*), min(rowid), parent FROM pragma_foreign_key_check(?1, 'main')",
                          Format("Can not check the foreign keys of table '%s'", Table.Name));
  Broken.BindText(1, Table.Name).Step();
  TBrokenReferences Result{Broken.Integer(0)};
  if (Result.Count == 0) return Result;
  // Tables without row numbers have none to show.
  const std::string Row = Broken.Text(1).empty() ? "a row" : "row " + Broken.Text(1);
  Result.Example = Format("%s to a row of '%s'", Row, Broken.Text(2));
  return Result;
}

}  // namespace velkrund
