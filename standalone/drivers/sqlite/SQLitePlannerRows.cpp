#include "standalone/drivers/sqlite/SQLitePlannerRows.h"

#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "standalone/drivers/sqlite/SQLiteExecution.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Those of the engine's tables that are there.
std::vector<std::string> PlannerTables(const TSQLiteDatabase& Database) {
  TSQLiteStatement Found(Database.Handle(),
                         "SELECT name FROM main.sqlite_schema WHERE type = 'table' AND name IN ('sqlite_stat1', "
                         "'sqlite_stat4') ORDER BY name",
                         Database.About("read"));
  std::vector<std::string> Result;
  while (Found.Step()) Result.push_back(Found.Text(0));
  return Result;
}

TKvVariant TextOf(std::string_view Text) {
  TKvVariant Result;
  Result.SetText(Text);
  return Result;
}

}  // namespace

std::vector<TSQLitePlannerRow> SQLitePlannerRows(const TSQLiteDatabase& Database, const std::string& Table) {
  const TKvVariant Name[] = {TextOf(Table)};
  std::vector<TSQLitePlannerRow> Result;
  for (const std::string& Kept : PlannerTables(Database)) {
    TSQLiteQueryCursor Rows(Database, Format("SELECT * FROM main.%s WHERE tbl = ?1", Kept), Name);
    for (TKvVariant Value; Rows.Next();) {
      TSQLitePlannerRow& Row = Result.emplace_back(TSQLitePlannerRow{Kept, {}});
      for (int Column = 0; Column < Rows.ColumnCount(); ++Column) Rows.Read(Column, Value), Row.Cells.push_back(Value);
    }
  }
  return Result;
}

void InsertSQLitePlannerRow(const TSQLiteDatabase& Database, const TSQLitePlannerRow& Row) {
  std::string Places = "?";
  for (std::size_t I = 1; I < Row.Cells.size(); ++I) Places += ", ?";
  RunSQLite(Database, Format("INSERT INTO main.%s VALUES (%s)", Row.Table, Places), Row.Cells);
}

void DeleteSQLitePlannerRows(const TSQLiteDatabase& Database, const std::string& Table) {
  for (const std::string& Kept : PlannerTables(Database))
    RunSQLite(Database, Format("DELETE FROM main.%s WHERE tbl = ?1", Kept), std::vector<TKvVariant>{TextOf(Table)});
}

}  // namespace velkrund
