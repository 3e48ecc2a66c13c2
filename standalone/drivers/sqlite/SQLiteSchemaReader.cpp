#include "standalone/drivers/sqlite/SQLiteSchemaReader.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"
#include "standalone/drivers/sqlite/SQLiteTriggerText.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

bool IsUserTable(std::string_view Name, std::string_view Type) {
  const auto Begins = [&](std::string_view Prefix) { return SameText(Name.substr(0, Prefix.size()), Prefix); };
  // Shadow tables hold the inside of a virtual table.
  return Type != "shadow" && !Begins("sqlite_") && !IsCatalogueTable(Name);
}

}  // namespace

/// How a message about a list begins.
std::string TSQLiteSchemaReader::About(std::string_view What) const {
  return Format("Cannot list the %s of the database '%s'", What, sqlite3_db_filename(FDatabase, "main"));
}

TSQLiteVirtualTable TSQLiteSchemaReader::Virtual(const std::string& Name) {
  TSQLiteStatement Declaration(FDatabase, "SELECT sql FROM main.sqlite_schema WHERE type = 'table' AND name = ?1",
                               Format("Cannot read the declaration of table '%s'", Name));
  return Declaration.BindText(1, Name).Step() ? ReadVirtualTable(Declaration.Text(0)) : TSQLiteVirtualTable();
}

TTableKind TSQLiteSchemaReader::KindOfTable(const std::string& Name, std::string_view Type) {
  if (Type == "view") return TTableKind::View;
  return Type == "virtual" ? Virtual(Name).Kind : TTableKind::Table;
}

std::vector<TTextIndex> TSQLiteSchemaReader::TextIndexes() {
  std::vector<TTextIndex> Result;
  for (const TTableInfo& Table : Tables()) {
    if (Table.Kind != TTableKind::IndexOfTable) continue;
    if (const std::optional<TTableInfo> Source = FindTable(Virtual(Table.Name).Source))
      Result.push_back({Table, *Source});
  }
  return Result;
}

std::vector<TTableInfo> TSQLiteSchemaReader::Tables() {
  std::vector<TTableInfo> Result;
  for (const auto& [Name, Table] : FMemory.Now().Tables)
    if (IsUserTable(Name, Table.Type)) Result.push_back({Name, {}, KindOfTable(Name, Table.Type)});
  return Result;
}

std::optional<TTableInfo> TSQLiteSchemaReader::FindTable(std::string_view Name) {
  const TSQLiteListedTable* Found = FMemory.Find(Name);
  if (const auto Parts = Found ? std::nullopt : ExactNameParts(Name)) {
    const bool IsOfMain = Parts->size() == 1 || (Parts->size() == 2 && Parts->front() == "main");
    if (!IsOfMain || !(Found = FMemory.Find(Parts->back()))) return std::nullopt;
  }
  if (!Found) {
    const std::vector<const TSQLiteListedTable*> Alike = FMemory.Now().FindInAnyCase(Name);
    if (Alike.empty()) return std::nullopt;
    if (Alike.size() > 1) {
      std::string All;
      for (const TSQLiteListedTable* One : Alike) All += (All.empty() ? "" : ", ") + QuoteStandardName(One->Name);
      throw EDatabaseError(
          Format("Cannot look for table '%s': several go by that name: %s; name one in its own case", Name, All));
    }
    Found = Alike.front();
  }
  if (!IsUserTable(Found->Name, Found->Type)) return std::nullopt;
  return TTableInfo{Found->Name, {}, KindOfTable(Found->Name, Found->Type)};
}

std::vector<std::vector<int>> TSQLiteSchemaReader::UniqueKeys(const TTableDescription& Table) {
  // An expression has no name; a key with one is no use to anybody here.
  TSQLiteStatement Keys(
      FDatabase,
      "SELECT l.seq, x.name FROM pragma_index_list(?1, 'main') l CROSS JOIN pragma_index_xinfo(l.name, 'main') x "
      "WHERE l.\"unique\" AND NOT l.partial AND l.origin <> 'pk' AND x.key AND NOT EXISTS (SELECT 1 FROM "
      "pragma_index_xinfo(l.name, 'main') e WHERE e.key AND e.name IS NULL) ORDER BY l.seq, x.seqno",
      Format("Cannot read the keys of table '%s'", Table.Table.Name));
  Keys.BindText(1, Table.Table.Name);
  std::vector<std::vector<int>> Result;
  std::int64_t Last = -1;
  while (Keys.Step()) {
    if (Keys.Integer(0) != std::exchange(Last, Keys.Integer(0))) Result.emplace_back();
    Result.back().push_back(IndexOf(Table, Keys.Text(1)));
  }
  return Result;
}

std::int64_t TSQLiteSchemaReader::RowCount(const TTableInfo& Table) {
  TSQLiteStatement Count(FDatabase, "SELECT count(*) FROM main." + QuoteStandardName(Table.Name),
                         Format("Cannot count the rows of table '%s'", Table.Name));
  Count.Step();
  return Count.Integer(0);
}

/// Numbers of rows that follow each other tell; where they are scattered they name more rows than the file has room
/// for.
std::optional<std::int64_t> TSQLiteSchemaReader::EstimatedRows(const TTableDescription& Table) {
  constexpr std::int64_t LeastRowBytes = 4;
  if (Table.Table.Kind != TTableKind::Table || IndexInAnyCase(Table, "_rowid_") >= 0) return std::nullopt;
  const TSQLiteListedTable* const Known = FMemory.Find(Table.Table.Name);
  if (!Known || Known->WithoutRowId) return std::nullopt;
  const std::string Name = "main." + QuoteStandardName(Table.Table.Name);
  TSQLiteStatement Span(FDatabase,
                        Format("SELECT (SELECT max(_rowid_) FROM %s) - (SELECT min(_rowid_) FROM %s) + 1, p.page_count "
                               "* s.page_size FROM pragma_page_count('main') p, pragma_page_size('main') s",
                               Name, Name),
                        Format("Cannot look into table '%s'", Table.Table.Name));
  if (!Span.Step()) return std::nullopt;
  const std::int64_t Rows = Span.Integer(0);
  if (Rows < 0 || Rows > Span.Integer(1) / LeastRowBytes) return std::nullopt;
  return Rows;
}

bool TSQLiteSchemaReader::HasAtLeast(const TTableInfo& Table, std::int64_t Rows) {
  TSQLiteStatement Any(FDatabase,
                       Format("SELECT 1 FROM main.%s LIMIT 1 OFFSET %d", QuoteStandardName(Table.Name), Rows - 1),
                       Format("Cannot look into table '%s'", Table.Name));
  return Any.Step();
}

std::optional<std::int64_t> TSQLiteSchemaReader::TableBytes(const TTableInfo& Table) {
  if (!FCapabilities.TableSizes || Table.Kind != TTableKind::Table) return std::nullopt;
  const TMoment Now = Moment();
  if (!FSizes || FSizesAreOf != Now) FSizes = MeasureAll();
  FSizesAreOf = Now;
  // What is written may be rolled back, after which the numbers say nothing.
  if (sqlite3_txn_state(FDatabase, "main") == SQLITE_TXN_WRITE) FSizesAreOf = {};
  const auto Found = FSizes->find(Table.Name);
  return Found == FSizes->end() ? 0 : Found->second;
}

/// Other numbers when anybody has changed anything.
TSQLiteSchemaReader::TMoment TSQLiteSchemaReader::Moment() {
  static constexpr const char* AskVersion = "PRAGMA main.data_version";
  auto Others = FMemory.Ask(AskVersion, About("tables"));
  Others->Step();
  return {Others->Integer(0), FMemory.Version(), sqlite3_total_changes64(FDatabase)};
}

/// By table, with its indexes. The engine walks through the whole database for one table, too, and would look through
/// its schema for every name of it.
std::map<std::string, std::int64_t> TSQLiteSchemaReader::MeasureAll() const {
  constexpr const char* What = "Cannot measure the tables";
  std::map<std::string, std::string> Owners;
  TSQLiteStatement Items(FDatabase, "SELECT name, tbl_name FROM main.sqlite_schema WHERE rootpage > 0", What);
  while (Items.Step()) Owners.emplace(Items.Text(0), Items.Text(1));
  TSQLiteStatement Bytes(FDatabase, "SELECT name, pgsize FROM dbstat('main', 1)", What);
  std::map<std::string, std::int64_t> Result;
  while (Bytes.Step())
    if (const auto Owner = Owners.find(Bytes.Text(0)); Owner != Owners.end()) Result[Owner->second] += Bytes.Integer(1);
  return Result;
}

bool TSQLiteSchemaReader::HasCatalogueTable(const std::string& Name) {
  const TSQLiteListedTable* const Found = FMemory.Find(Name);
  return Found && Found->Type != "view";
}

std::vector<TForeignKey> TSQLiteSchemaReader::ForeignKeys() {
  TSQLiteSchemaMemory::TContent& Known = FMemory.Now();
  if (!Known.ForeignKeys) Known.ForeignKeys = ReadForeignKeys(Known);
  return *Known.ForeignKeys;
}

std::vector<TForeignKey> TSQLiteSchemaReader::ReadForeignKeys(const TSQLiteSchemaMemory::TContent& Known) const {
  // In this order, whatever the planner thinks of it: asking every pair of tables takes minutes where there are
  // thousands.
  TSQLiteStatement Keys(FDatabase,
                        "SELECT f.name, k.\"table\", k.on_delete IN ('CASCADE', 'SET NULL', 'SET DEFAULT') "
                        "FROM main.sqlite_schema f CROSS JOIN pragma_foreign_key_list(f.name, 'main') k "
                        "WHERE f.type = 'table' AND k.seq = 0 ORDER BY f.name, k.id",
                        About("foreign keys"));
  std::vector<TForeignKey> Result;
  while (Keys.Step()) {
    const TSQLiteListedTable* const To = Known.FindAsEngine(Keys.Text(1));
    if (!To || To->Type == "view") continue;
    Result.push_back({.From = {Keys.Text(0), {}},
                      .To = {To->Name, {}},
                      .FromWhole = {Keys.Text(0), {}},
                      .ToWhole = {To->Name, {}},
                      .ActsOnDelete = FCapabilities.EnforcesForeignKeys && Keys.Integer(2) != 0});
  }
  return Result;
}

TBrokenReferences TSQLiteSchemaReader::BrokenReferences(const TTableInfo& Table) {
  TSQLiteStatement Broken(FDatabase, "SELECT count(*), min(rowid), parent FROM pragma_foreign_key_check(?1, 'main')",
                          Format("Cannot check the foreign keys of table '%s'", Table.Name));
  Broken.BindText(1, Table.Name).Step();
  TBrokenReferences Result{Broken.Integer(0)};
  if (Result.Count == 0) return Result;
  // Tables without row numbers have none to show.
  const std::string Row = Broken.Text(1).empty() ? "a row" : "row " + Broken.Text(1);
  Result.Example = Format("%s to a row of '%s'", Row, Broken.Text(2));
  return Result;
}

std::vector<TTrigger> TSQLiteSchemaReader::Triggers() { return KnownTriggers(); }

std::span<const TTrigger> TSQLiteSchemaReader::TriggersOf(std::string_view Table) {
  const std::vector<TTrigger>& All = KnownTriggers();
  const auto First = std::lower_bound(All.begin(), All.end(), Table, [](const TTrigger& Each, std::string_view Name) {
    return Each.Table.Name < Name;
  });
  const auto Last = std::find_if(First, All.end(), [=](const TTrigger& Each) { return Each.Table.Name != Table; });
  return {First, Last};
}

const std::vector<TTrigger>& TSQLiteSchemaReader::KnownTriggers() {
  std::optional<std::vector<TTrigger>>& Known = FMemory.Now().Triggers;
  if (!Known) Known = ReadTriggers();
  return *Known;
}

std::vector<TTrigger> TSQLiteSchemaReader::ReadTriggers() const {
  TSQLiteStatement List(FDatabase,
                        "SELECT g.name, t.name, g.sql FROM main.sqlite_schema g JOIN main.sqlite_schema t "
                        "ON t.name = g.tbl_name COLLATE NOCASE AND t.type IN ('table', 'view') "
                        "WHERE g.type = 'trigger' ORDER BY g.name",
                        About("triggers"));
  std::vector<TTrigger> Result;
  while (List.Step()) {
    const std::string Event = SQLiteTriggerEvent(List.Text(2));
    if (Event == "UPDATE") continue;
    Result.push_back({{List.Text(1), {}}, List.Text(0), Event == "INSERT", Event == "DELETE"});
  }
  std::stable_sort(Result.begin(), Result.end(),
                   [](const TTrigger& A, const TTrigger& B) { return A.Table.Name < B.Table.Name; });
  return Result;
}

}  // namespace velkrund
