#include "standalone/drivers/sqlite/SQLiteIndexesAside.h"

#include <sqlite3.h>

#include <algorithm>

#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "standalone/drivers/sqlite/SQLiteExecution.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

/// The engine drops nothing below a statement that is at work.
bool TSQLiteIndexesAside::IsReading() const {
  sqlite3* const Handle = FDatabase.Handle();
  for (sqlite3_stmt* One = sqlite3_next_stmt(Handle, nullptr); One; One = sqlite3_next_stmt(Handle, One))
    if (sqlite3_stmt_busy(One) != 0) return true;
  return false;
}

/// By a table of the connection alone, which the kept statements would be about.
bool TSQLiteIndexesAside::IsHidden(const std::string& Table) const {
  TSQLiteStatement Found(FDatabase.Handle(),
                         "SELECT 1 FROM sqlite_temp_schema WHERE type IN ('table', 'view') AND name = ?1 "
                         "COLLATE NOCASE",
                         FDatabase.About("read"));
  return Found.BindText(1, Table).Step();
}

/// Those that CREATE INDEX has made, in the order in which it did: where several would do, the engine's planner takes
/// the one that was made last.
std::vector<TSQLiteIndexesAside::TIndex> TSQLiteIndexesAside::Indexes(const std::string& Table) const {
  TSQLiteStatement Found(FDatabase.Handle(),
                         "SELECT s.name, s.sql, l.\"unique\" FROM pragma_index_list(?1, 'main') l CROSS JOIN "
                         "main.sqlite_schema s WHERE l.origin = 'c' AND s.type = 'index' AND s.name = l.name "
                         "ORDER BY s.rowid",
                         Format("Cannot read the indexes of table '%s'", Table));
  std::vector<TIndex> Result;
  for (Found.BindText(1, Table); Found.Step();) Result.push_back({Found.Text(0), Found.Text(1), Found.Integer(2) != 0});
  return Result;
}

TIndexObstacle TSQLiteIndexesAside::Drop(const std::string& Table) {
  std::vector<TIndex> Indexes = this->Indexes(Table);
  // What was made before one that stays would come to stand behind it.
  const auto Stays = std::find_if(Indexes.rbegin(), Indexes.rend(), [](const TIndex& One) { return One.IsUnique; });
  const bool AnyStays = std::any_of(Stays, Indexes.rend(), [](const TIndex& One) { return !One.IsUnique; });
  const TIndexObstacle Rest = AnyStays ? TIndexObstacle::Special : TIndexObstacle::None;
  Indexes.erase(Indexes.begin(), Stays.base());
  if (Indexes.empty()) return Rest;
  if (IsReading()) return TIndexObstacle::CursorOpen;
  if (IsHidden(Table)) return TIndexObstacle::Hidden;
  TAside Aside{Indexes, SQLitePlannerRows(FDatabase, Table)};
  std::erase_if(Aside.Known, [&](const TSQLitePlannerRow& Row) {
    const auto IsIt = [&](const TIndex& Index) { return Row.Cells[1].AsText() == Index.Name; };
    return std::none_of(Indexes.begin(), Indexes.end(), IsIt);
  });
  for (const TIndex& Index : Indexes) RunSQLite(FDatabase, "DROP INDEX main." + QuoteStandardName(Index.Name));
  FAside.insert_or_assign(Table, std::move(Aside));
  return Rest;
}

std::size_t TSQLiteIndexesAside::Dropped(const std::string& Table) const {
  const auto Found = FAside.find(Table);
  return Found == FAside.end() ? 0 : Found->second.Indexes.size();
}

void TSQLiteIndexesAside::Make(const std::string& Table) {
  const auto Found = FAside.find(Table);
  if (Found == FAside.end()) return;
  const TAside Aside = std::move(Found->second);
  FAside.erase(Found);
  for (const TIndex& Index : Aside.Indexes) MakeOne(Table, Index);
  for (const TSQLitePlannerRow& Row : Aside.Known) InsertSQLitePlannerRow(FDatabase, Row);
}

void TSQLiteIndexesAside::MakeOne(const std::string& Table, const TIndex& Index) const {
  TSQLiteStatement(FDatabase.Handle(), Index.Statement,
                   Format("Cannot make the index '%s' of table '%s' again behind its rows", Index.Name, Table))
      .Step();
}

}  // namespace velkrund
