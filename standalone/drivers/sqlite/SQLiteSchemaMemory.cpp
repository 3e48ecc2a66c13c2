#include "standalone/drivers/sqlite/SQLiteSchemaMemory.h"

#include <sqlite3.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

std::string TSQLiteSchemaMemory::What() const {
  return Format("Cannot list the tables of the database '%s'", sqlite3_db_filename(FDatabase, "main"));
}

TSQLiteSchemaMemory::TAsked TSQLiteSchemaMemory::Ask(const char* Text, std::string What) {
  auto Found = FStatements.find(Text);
  if (Found == FStatements.end())
    Found = FStatements
                .emplace(std::piecewise_construct, std::forward_as_tuple(Text),
                         std::forward_as_tuple(FDatabase, Text, What, TSQLiteStatement::TUse::Often))
                .first;
  return {Found->second, std::move(What)};
}

TSQLiteSchemaMemory::TContent& TSQLiteSchemaMemory::Now() {
  static constexpr const char* AskVersion = "PRAGMA main.schema_version";
  TAsked Version = Ask(AskVersion, What());
  Version->Step();
  const std::int64_t Current = Version->Integer(0);
  if (FContent && FVersion == Current) return *FContent;
  TSQLiteStatement List(
      FDatabase, "SELECT name, type, strict, wr FROM pragma_table_list WHERE schema = 'main' ORDER BY name", What());
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
