#include "standalone/drivers/sqlite/SQLiteSchemaMemory.h"

#include <sqlite3.h>

#include <algorithm>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

std::int64_t TSQLiteSchemaMemory::Version() {
  if (!FAskVersion)
    FAskVersion.emplace(FDatabase, "PRAGMA main.schema_version",
                        Format("Cannot read the schema of the database '%s'", sqlite3_db_filename(FDatabase, "main")),
                        TSQLiteStatement::TUse::Often);
  FAskVersion->Step();
  const std::int64_t Result = FAskVersion->Integer(0);
  sqlite3_reset(FAskVersion->Handle());
  return Result;
}

TSQLiteSchemaMemory::TContent& TSQLiteSchemaMemory::Now() {
  const std::int64_t Current = Version();
  if (FContent && FVersion == Current) return *FContent;
  TSQLiteStatement List(FDatabase,
                        "SELECT name, type, strict, wr FROM pragma_table_list WHERE schema = 'main' ORDER BY name",
                        Format("Cannot list the tables of the database '%s'", sqlite3_db_filename(FDatabase, "main")));
  TContent Content;
  while (List.Step())
    Content.Tables.push_back({List.Text(0), List.Text(1), List.Integer(2) != 0, List.Integer(3) != 0});
  FContent = std::move(Content);
  FVersion = Current;
  return *FContent;
}

const TSQLiteListedTable* TSQLiteSchemaMemory::Find(std::string_view Name) {
  const std::vector<TSQLiteListedTable>& Tables = Now().Tables;
  const auto Found =
      std::lower_bound(Tables.begin(), Tables.end(), Name,
                       [](const TSQLiteListedTable& Table, std::string_view A) { return Table.Name < A; });
  return Found != Tables.end() && Found->Name == Name ? &*Found : nullptr;
}

}  // namespace velkrund
