#include "standalone/drivers/sqlite/SQLiteSchemaMemory.h"

#include <sqlite3.h>

#include <tuple>
#include <utility>

#include "standalone/drivers/sqlite/SQLiteTableDeclaration.h"
#include "standalone/drivers/sqlite/SQLiteTokenReader.h"
#include "standalone/drivers/sqlite/SQLiteWords.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

/// Whether a statement makes a table, an index or a trigger that was not there. Where it may be there, a statement can
/// do nothing while somebody else changes the schema.
bool MakesOne(std::string_view Statement) {
  constexpr std::string_view Create = "CREATE";
  // Most statements are others, and may be long.
  if (!SameAsciiWord(Statement.substr(0, Create.size()), Create)) return false;
  TSQLiteTokenReader Tokens(Statement, "a statement");
  if (!Tokens.TakeIf("CREATE")) return false;
  if (Tokens.TakeIf("UNIQUE")) return Tokens.TakeIf("INDEX") && !Tokens.TakeIf("IF");
  return (Tokens.TakeIf("TABLE") || Tokens.TakeIf("INDEX") || Tokens.TakeIf("TRIGGER")) && !Tokens.TakeIf("IF");
}

}  // namespace

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

std::int64_t TSQLiteSchemaMemory::Version() {
  static constexpr const char* AskVersion = "PRAGMA main.schema_version";
  TAsked Asked = Ask(AskVersion, What());
  Asked->Step();
  return Asked->Integer(0);
}

TSQLiteSchemaMemory::TContent& TSQLiteSchemaMemory::Now() {
  const std::int64_t Current = Version();
  if (FContent && FVersion == Current) return *FContent;
  FContent.reset();
  TContent Content;
  Read(Content);
  FContent = std::move(Content);
  FVersion = Current;
  return *FContent;
}

void TSQLiteSchemaMemory::Read(TContent& Content) {
  TSQLiteStatement Last(FDatabase, "SELECT max(rowid) FROM main.sqlite_schema", What());
  if (Last.Step()) Content.LastRow = Last.Integer(0);
  TSQLiteStatement List(FDatabase, "SELECT name, type, strict, wr FROM pragma_table_list WHERE schema = 'main'",
                        What());
  while (List.Step()) AddTable(Content, {List.Text(0), List.Text(1), List.Integer(2) != 0, List.Integer(3) != 0});
}

void TSQLiteSchemaMemory::AddTable(TContent& Content, TSQLiteListedTable Table) {
  std::string Name = Table.Name;
  const TSQLiteListedTable& Added = Content.Tables.emplace(std::move(Name), std::move(Table)).first->second;
  Content.Folded.emplace(LowerCase(Added.Name), &Added);
}

const TSQLiteListedTable* TSQLiteSchemaMemory::Find(std::string_view Name) {
  const TContent& Content = Now();
  const auto Found = Content.Tables.find(Name);
  return Found == Content.Tables.end() ? nullptr : &Found->second;
}

std::vector<const TSQLiteListedTable*> TSQLiteSchemaMemory::TContent::FindInAnyCase(std::string_view Name) const {
  const auto [First, Last] = Folded.equal_range(LowerCase(Name));
  std::vector<const TSQLiteListedTable*> Result;
  for (auto Each = First; Each != Last; ++Each) Result.push_back(Each->second);
  return Result;
}

const TSQLiteListedTable* TSQLiteSchemaMemory::TContent::FindAsEngine(std::string_view Name) const {
  for (const TSQLiteListedTable* const Each : FindInAnyCase(Name))
    if (SameSQLiteName(Each->Name, Name)) return Each;
  return nullptr;
}

/// The engine has no index over what it keeps: who asks a second time will ask for many.
std::vector<TSQLiteKeptItem> TSQLiteSchemaMemory::Kept(const std::string& Table) {
  TContent& Content = Now();
  std::vector<TSQLiteKeptItem> Result;
  if (!std::exchange(Content.HasAskedKept, true)) {
    TSQLiteStatement Items(FDatabase,
                           "SELECT type, name, sql FROM main.sqlite_schema WHERE tbl_name = ?1 COLLATE NOCASE AND sql "
                           "IS NOT NULL ORDER BY rowid",
                           Format("Cannot read the declaration of '%s'", Table));
    for (Items.BindText(1, Table); Items.Step();) Result.push_back({Items.Text(0), Items.Text(1), Items.Text(2)});
    return Result;
  }
  if (!Content.Kept) {
    TSQLiteStatement Items(FDatabase,
                           "SELECT tbl_name, type, name, sql FROM main.sqlite_schema WHERE sql IS NOT NULL ORDER BY "
                           "rowid",
                           Format("Cannot read the declaration of '%s'", Table));
    TKeptItems All;
    while (Items.Step())
      All.emplace(FoldedSQLiteName(Items.Text(0)), TSQLiteKeptItem{Items.Text(1), Items.Text(2), Items.Text(3)});
    Content.Kept = std::move(All);
  }
  const auto [First, Last] = Content.Kept->equal_range(FoldedSQLiteName(Table));
  for (auto Each = First; Each != Last; ++Each) Result.push_back(Each->second);
  return Result;
}

bool TSQLiteSchemaMemory::OnlyAdds(std::string_view Statement) {
  // Nobody else changes the schema while this connection is writing.
  return FContent && sqlite3_txn_state(FDatabase, "main") == SQLITE_TXN_WRITE && MakesOne(Statement) &&
         Version() == FVersion;
}

void TSQLiteSchemaMemory::TakeAdded() {
  if (!FContent || Version() != FVersion + 1) return Forget();
  static constexpr const char* AskAdded =
      "SELECT rowid, tbl_name, type, name, sql FROM main.sqlite_schema WHERE rowid > ?1 ORDER BY rowid";
  try {
    TAsked Added = Ask(AskAdded, What());
    for (Added->BindInteger(1, FContent->LastRow); Added->Step();) {
      FContent->LastRow = Added->Integer(0);
      // Indexes of keys have no text.
      if (!Added->Text(4).empty()) AddItem(Added->Text(1), {Added->Text(2), Added->Text(3), Added->Text(4)});
    }
    ++FVersion;
  } catch (const EDatabaseError&) {
    // It is read anew where it is needed.
    Forget();
  }
}

void TSQLiteSchemaMemory::AddItem(const std::string& Table, TSQLiteKeptItem Item) {
  if (Item.Type == "trigger") FContent->Triggers.reset();
  if (Item.Type == "table") {
    const TSQLiteTableDeclaration Declared = ReadTableDeclaration(Item.Statement, Item.Name);
    AddTable(*FContent, {Item.Name, "table", Declared.Strict, Declared.WithoutRowId});
    FContent->ForeignKeys.reset();
  }
  if (FContent->Kept) FContent->Kept->emplace(FoldedSQLiteName(Table), std::move(Item));
}

}  // namespace velkrund
