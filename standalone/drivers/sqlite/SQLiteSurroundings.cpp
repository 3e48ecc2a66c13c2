#include "standalone/drivers/sqlite/SQLiteSurroundings.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

#include "standalone/drivers/sqlite/SQLiteDatabase.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "standalone/drivers/sqlite/SQLiteTokenReader.h"
#include "standalone/drivers/sqlite/SQLiteWords.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {
namespace {

/// In the order in which they were made.
constexpr const char* AskTriggers =
    "SELECT 0, name, sql, rowid FROM main.sqlite_schema WHERE type = 'trigger' AND tbl_name = ?1 COLLATE NOCASE UNION "
    "ALL SELECT 1, name, sql, rowid FROM sqlite_temp_schema WHERE type = 'trigger' AND tbl_name = ?1 COLLATE NOCASE "
    "ORDER BY 1, 4";

/// The engine leaves the word out of what it keeps.
std::string Statement(bool IsTemporary, const std::string& Text) {
  constexpr std::string_view Start = "CREATE ";
  return IsTemporary ? std::string(Start) + "TEMP " + Text.substr(Start.size()) : Text;
}

bool IsOfEngine(std::string_view Name) { return SameSQLiteName(Name.substr(0, 7), "sqlite_"); }

}  // namespace

TSQLiteSurroundings::TSQLiteSurroundings(TConnection& Connection, TSQLiteDatabase& Database, TTableInfo Object,
                                         TRenamedFields Renamed)
    : FConnection(Connection), FDatabase(Database), FObject(std::move(Object)), FRenamed(std::move(Renamed)) {}

std::string TSQLiteSurroundings::What() const {
  return Format("Cannot recreate %s '%s'", FObject.Kind == TTableKind::View ? "view" : "table", FullName(FObject));
}

/// The engine's word for what has the object's name in that schema; empty: nothing has.
std::string TSQLiteSurroundings::Listed(const char* Schema) const {
  TSQLiteStatement Found(FDatabase.Handle(),
                         "SELECT type FROM pragma_table_list WHERE schema = ?1 AND name = ?2 COLLATE NOCASE", What());
  return Found.BindText(1, Schema).BindText(2, FObject.Name).Step() ? Found.Text(0) : std::string();
}

/// Why nothing can be begun with the object; empty: something can.
std::string TSQLiteSurroundings::Obstacle() const {
  if (FConnection.Capabilities().ReadOnly) return "the database is opened for reading only";
  if (!FDatabase.InTransaction()) return "no transaction is open";
  if (!FObject.Schema.empty()) return "it is not in the database itself; name one that is";
  if (IsOfEngine(FObject.Name)) return "it is the engine's own";
  if (!Listed("temp").empty()) return "a temporary table or view of that name hides it; drop that first";
  const std::string Type = Listed("main");
  if (Type.empty()) return "it is not in the database";
  if (Type == "shadow") return "it is a part of a virtual table; recreate that";
  if (Type == "virtual") return "it is a virtual table; drop it and create it again by its own statement";
  return EnforcedKeys();
}

/// Dropping a table deletes its rows first where the engine enforces keys, and what refers to them with them.
std::string TSQLiteSurroundings::EnforcedKeys() const {
  int Enforces = 0;
  sqlite3_db_config(FDatabase.Handle(), SQLITE_DBCONFIG_ENABLE_FKEY, -1, &Enforces);
  if (Enforces == 0) return {};
  std::vector<std::string> Tables;
  for (const TForeignKey& Key : FConnection.Schema().ForeignKeys())
    if (Key.To.Name == FObject.Name && Key.From.Name != FObject.Name &&
        (Tables.empty() || Tables.back() != Key.From.Name))
      Tables.push_back(Key.From.Name);
  if (Tables.empty()) return {};
  return Format(
      "the engine is set to enforce foreign keys, so that dropping it would delete or refuse rows of others "
      "that refer to it (%s); use an engine that is not, or drop these tables or their keys first",
      JoinedInShort(Tables));
}

void TSQLiteSurroundings::SetAside() {
  if (const std::string Reason = Obstacle(); !Reason.empty())
    throw EDatabaseError(Format("%s: %s", What(), Reason), {.Table = FullName(FObject)});
  ReadTriggers();
  const bool IsTable = FObject.Kind != TTableKind::View;
  if (IsTable) {
    FHighestRowNumber = HighestRowNumber();
    FBookkeeping.emplace(FDatabase, FObject.Name);
    FReferences.emplace(FConnection.Schema(), FObject);
  }
  for (const TTextIndex& One : FConnection.Schema().TextIndexes())
    if (One.Table.Name == FObject.Name) FTextIndexes.emplace_back(One.Index, ReasonAgainst(One.Index).empty());
  FFields = Fields();
  FDependents.emplace(FDatabase.Handle(), FObject.Name);
}

void TSQLiteSurroundings::ReadTriggers() {
  TSQLiteStatement Triggers(FDatabase.Handle(), AskTriggers, What());
  Triggers.BindText(1, FObject.Name);
  while (Triggers.Step()) FTriggers.push_back({Triggers.Integer(0) != 0, Triggers.Text(1), Triggers.Text(2)});
}

void TSQLiteSurroundings::PutBack(TPutBack How) {
  if (Listed("main").empty()) throw EDatabaseError(What() + ": it was not created again", {.Table = FullName(FObject)});
  if (FBookkeeping) FBookkeeping->PutBack(FRenamed);
  PutTriggersBack();
  RebuildTextIndexes();
  if (FReferences) CheckReferences(How);
  CheckDependents();
  if (How == TPutBack::Whole && FBookkeeping)
    if (const std::string Now = HighestRowNumber();
        !Now.empty() && !FHighestRowNumber.empty() && Now != FHighestRowNumber)
      FRemarks.push_back(Format("the rows of table '%s' have other row numbers (rowid) now", FullName(FObject)));
  if (FProblems.empty()) return;
  throw EDatabaseError(
      Format("%s: the new one does not fit what stands around it: %s; change one or the other first", What(),
             JoinedInShort(FProblems)),
      {.Code = FLosesReferences ? TErrorCode::References : TErrorCode::Database, .Table = FullName(FObject)});
}

/// Those of the connection alone may stand on a table of that name in another database, and are there still.
void TSQLiteSurroundings::PutTriggersBack() {
  const std::vector<TTriggerText> Before = std::exchange(FTriggers, {});
  ReadTriggers();
  for (const TTriggerText& Trigger : Before) {
    const auto IsIt = [&](const TTriggerText& Other) {
      return Other.IsTemporary == Trigger.IsTemporary && SameSQLiteName(Other.Name, Trigger.Name);
    };
    if (std::any_of(FTriggers.begin(), FTriggers.end(), IsIt)) continue;
    const std::string Reason = ReasonAgainst(Statement(Trigger.IsTemporary, Trigger.Text));
    if (!Reason.empty()) FProblems.push_back(Format("trigger '%s': %s", Trigger.Name, Reason));
  }
}

/// Runs it. Empty: nothing was wrong with it.
std::string TSQLiteSurroundings::ReasonAgainst(const std::string& Text) const {
  try {
    TSQLiteStatement(FDatabase.Handle(), Text, What()).Step();
    return {};
  } catch (const EDatabaseError& Error) {
    if (!IsSQLiteMisunderstanding(Error.Info())) throw;
    return sqlite3_errmsg(FDatabase.Handle());
  }
}

/// It reads the fields of its table when it is asked for rows.
std::string TSQLiteSurroundings::ReasonAgainst(const TTableInfo& TextIndex) const {
  return ReasonAgainst("SELECT * FROM main." + QuoteStandardName(TextIndex.Name) + " LIMIT 1");
}

void TSQLiteSurroundings::RebuildTextIndexes() {
  for (const auto& [Index, Worked] : FTextIndexes) {
    const std::string Shown = Format("text index '%s'", Index.Name);
    if (const std::string Reason = ReasonAgainst(Index); Reason.empty())
      FConnection.RebuildTextIndex(Index);
    else if (Worked)
      FProblems.push_back(Format("%s: %s", Shown, Reason));
    else
      FRemarks.push_back(Shown + " did not work before either");
  }
}

void TSQLiteSurroundings::CheckReferences(TPutBack How) {
  TSQLiteReferences::TChanges Changes = FReferences->Changes();
  for (const std::string& Keys : Changes.NotBefore) FRemarks.push_back(Keys + " did not work before either");
  if (How == TPutBack::Rehearsed) Changes.Worse.clear();
  FProblems.insert(FProblems.end(), Changes.Worse.begin(), Changes.Worse.end());
  FProblems.insert(FProblems.end(), Changes.Broken.begin(), Changes.Broken.end());
  FLosesReferences = !Changes.Broken.empty() || !Changes.Worse.empty();
}

/// Of a view that does not work there are none.
std::set<std::string> TSQLiteSurroundings::Fields() const {
  std::set<std::string> Result;
  if (!ReasonAgainst("SELECT * FROM main." + QuoteStandardName(FObject.Name) + " LIMIT 0").empty()) return Result;
  for (const TColumnInfo& Column : FConnection.Schema().Describe(FObject).Columns)
    Result.insert(FoldedSQLiteName(Column.Name));
  return Result;
}

/// Empty without rows, and where they have no numbers but those that a column shows.
std::string TSQLiteSurroundings::HighestRowNumber() const {
  for (const TColumnInfo& Column : FConnection.Schema().Describe(FObject).Columns)
    if (Column.KeyPosition == 1 && SameAsciiWord(Column.DeclaredType, "INTEGER")) return {};
  const std::string Statement = "SELECT max(rowid) FROM main." + QuoteStandardName(FObject.Name);
  if (!ReasonAgainst(Statement).empty()) return {};
  std::string Result;
  const auto Rows = FConnection.Query(Statement);
  TKvVariant Value;
  if (Rows->Next()) Rows->Read(0, Value);
  Value.AppendAsText(Result);
  return Result;
}

void TSQLiteSurroundings::CheckDependents() {
  std::set<std::string> Gone = FFields;
  for (const std::string& Field : Fields()) Gone.erase(Field);
  const TSQLiteDependents::TChanges Changes = FDependents->Changes(Gone);
  for (const std::string& One : Changes.NotBefore) FRemarks.push_back(One + " did not work before either");
  FProblems.insert(FProblems.end(), Changes.Broken.begin(), Changes.Broken.end());
}

}  // namespace velkrund
