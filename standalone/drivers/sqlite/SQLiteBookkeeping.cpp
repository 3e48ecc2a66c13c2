#include "standalone/drivers/sqlite/SQLiteBookkeeping.h"

#include <sqlite3.h>

#include <algorithm>

#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "standalone/drivers/sqlite/SQLiteExecution.h"
#include "standalone/drivers/sqlite/SQLiteTokenReader.h"
#include "standalone/drivers/sqlite/SQLiteWords.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

TKvVariant TextOf(std::string_view Text) {
  TKvVariant Result;
  Result.SetText(Text);
  return Result;
}

/// Returns how many rows were changed.
int Run(const TSQLiteDatabase& Database, const std::string& Statement, const std::vector<TKvVariant>& Parameters) {
  RunSQLite(Database, Statement, Parameters);
  return sqlite3_changes(Database.Handle());
}

/// The name in another table, folded.
std::string Renamed(const TRenamedFields& Fields, const std::string& Name) {
  for (const auto& [Before, Then] : Fields)
    if (SameSQLiteName(Before, Name)) return FoldedSQLiteName(Then);
  return FoldedSQLiteName(Name);
}

}  // namespace

TSQLiteBookkeeping::TSQLiteBookkeeping(const TSQLiteDatabase& Database, std::string Table)
    : FDatabase(Database), FTable(std::move(Table)) {
  const TKvVariant Name[] = {TextOf(FTable)};
  if (HasTable("sqlite_sequence")) {
    TSQLiteExecution Counter(FDatabase, "SELECT max(seq) FROM main.sqlite_sequence WHERE name = ?1", Name);
    if (Counter.Step() && sqlite3_column_type(Counter.Handle(), 0) == SQLITE_INTEGER)
      FCounter = sqlite3_column_int64(Counter.Handle(), 0);
  }
  FKnown = SQLitePlannerRows(FDatabase, FTable);
  FIndexes = Indexes({});
}

bool TSQLiteBookkeeping::HasTable(const char* Name) const {
  TSQLiteStatement Found(FDatabase.Handle(), "SELECT 1 FROM main.sqlite_schema WHERE type = 'table' AND name = ?1",
                         FDatabase.About("read"));
  return Found.BindText(1, Name).Step();
}

/// Renamed: fields of the table that is gone, by which those of the new one are shown.
std::map<std::string, std::string> TSQLiteBookkeeping::Indexes(const TRenamedFields& RenamedFields) const {
  // What is known of the key of a table without row numbers goes by the table's name.
  TSQLiteStatement Fields(
      FDatabase.Handle(),
      "SELECT CASE WHEN l.origin = 'pk' AND (SELECT wr FROM pragma_table_list WHERE schema = 'main' AND name = ?1) "
      "THEN ?1 ELSE l.name END, x.name, x.desc || ' ' || x.coll || ' ' || l.partial FROM pragma_index_list(?1, 'main') "
      "l CROSS JOIN pragma_index_xinfo(l.name, 'main') x WHERE x.key ORDER BY l.seq, x.seqno",
      Format("Cannot read the indexes of table '%s'", FTable));
  Fields.BindText(1, FTable);
  std::map<std::string, std::string> Result;
  while (Fields.Step()) Result[Fields.Text(0)] += Renamed(RenamedFields, Fields.Text(1)) + '\n' + Fields.Text(2) + '\n';
  return Result;
}

/// The new table may have it in another case, and the engine looks for it by that.
std::string TSQLiteBookkeeping::NameNow() const {
  TSQLiteStatement Name(FDatabase.Handle(),
                        "SELECT name FROM main.sqlite_schema WHERE type = 'table' AND name = ?1 COLLATE NOCASE",
                        FDatabase.About("read"));
  return Name.BindText(1, FTable).Step() ? Name.Text(0) : FTable;
}

bool TSQLiteBookkeeping::NumbersItself() const {
  TSQLiteStatement Text(FDatabase.Handle(), "SELECT sql FROM main.sqlite_schema WHERE type = 'table' AND name = ?1",
                        FDatabase.About("read"));
  if (!Text.BindText(1, FTable).Step()) return false;
  const std::string Declaration = Text.Text(0);
  const std::vector<TSQLiteToken> Tokens = SQLiteTokens(Declaration);
  return std::any_of(Tokens.begin(), Tokens.end(), [](const TSQLiteToken& One) { return One.Is("AUTOINCREMENT"); });
}

void TSQLiteBookkeeping::PutCounterBack() const {
  if (!FCounter || !NumbersItself()) return;
  std::vector<TKvVariant> Row = {TextOf(FTable), {}};
  Row[1].SetInteger(*FCounter);
  if (Run(FDatabase, "UPDATE main.sqlite_sequence SET seq = max(seq, ?2) WHERE name = ?1", Row) == 0)
    Run(FDatabase, "INSERT INTO main.sqlite_sequence (name, seq) VALUES (?1, ?2)", Row);
}

void TSQLiteBookkeeping::PutBack(const TRenamedFields& RenamedFields) {
  FTable = NameNow();
  PutCounterBack();
  TRenamedFields Backwards;
  for (const auto& [Before, Then] : RenamedFields) Backwards.emplace_back(Then, Before);
  const std::map<std::string, std::string> Now = Indexes(Backwards);
  DeleteSQLitePlannerRows(FDatabase, FTable);
  for (TSQLitePlannerRow& Row : FKnown) {
    Row.Cells[0].SetText(FTable);
    const TKvVariant& Index = Row.Cells[1];
    const auto Before = FIndexes.find(std::string(Index.AsText()));
    const auto Again = Now.find(std::string(Index.AsText()));
    if (Index.IsNull() || (Before != FIndexes.end() && Again != Now.end() && Before->second == Again->second))
      InsertSQLitePlannerRow(FDatabase, Row);
  }
}

}  // namespace velkrund
