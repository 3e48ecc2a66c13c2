#include "tests/roundtrip/DatabaseState.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <vector>

namespace velkrund::tests {

namespace {

struct TQueries {
  const char* Tables;  // name, and the query of its rows
  const char *Objects, *Counters;
};

/// Index tables of virtual tables are their own business.
constexpr TQueries SQLiteQueries = {
    R"(SELECT name, 'SELECT ' || iif(type = 'virtual', 'rowid, ', '') || '* FROM "' || replace(name, '"', '""') || '"'
       FROM pragma_table_list WHERE schema = 'main' AND type NOT IN ('shadow', 'view') AND name NOT LIKE 'sqlite^_%' ESCAPE '^')",
    "SELECT type, name, tbl_name, sql FROM sqlite_schema ORDER BY 1, 2; PRAGMA integrity_check",
    "SELECT name, 1, seq FROM sqlite_sequence"};

constexpr TQueries PostgreSQLQueries = {
    R"(SELECT oid::regclass, 'SELECT whole.* FROM ONLY ' || oid::regclass || ' AS whole' FROM pg_class
       WHERE relkind = 'r' AND oid >= 16384 AND relnamespace <> 'pg_toast'::regnamespace)",
    R"(SELECT concat_ws(' ', 'trigger', tgrelid::regclass, CASE WHEN tgisinternal THEN
         tgfoid::regproc || ' of ' || (SELECT conname FROM pg_constraint AS c WHERE c.oid = tgconstraint) ELSE tgname END,
         tgenabled, tgdeferrable, tginitdeferred) AS line FROM pg_trigger
       UNION ALL SELECT concat_ws(' ', 'constraint', conrelid::regclass, conname, condeferrable, condeferred, convalidated,
         pg_get_constraintdef(oid)) FROM pg_constraint WHERE conrelid >= 16384
       UNION ALL SELECT concat_ws(' ', 'index', indexrelid::regclass, indisvalid, indisclustered, indisreplident,
         pg_get_indexdef(indexrelid)) FROM pg_index WHERE indrelid >= 16384
         AND indrelid NOT IN (SELECT oid FROM pg_class WHERE relnamespace = 'pg_toast'::regnamespace)
       UNION ALL SELECT concat_ws(' ', 'table', oid::regclass, relkind, relpersistence, relrowsecurity, relforcerowsecurity,
         relowner::regrole, relacl) FROM pg_class WHERE oid >= 16384 AND relkind IN ('r', 'p', 'v', 'm', 'S')
       ORDER BY line)",
    R"(SELECT format('%I.%I', schemaname, sequencename), increment_by, coalesce(last_value, start_value - increment_by)
       FROM pg_sequences)"};

std::vector<std::string> Lines(const std::string& Text, char End = '\n') {
  std::vector<std::string> Result;
  std::istringstream In(Text);
  for (std::string Line; std::getline(In, Line, End);) Result.push_back(Line);
  return Result;
}

std::string Sorted(const std::string& Text) {
  std::vector<std::string> All = Lines(Text);
  std::sort(All.begin(), All.end());
  std::string Result;
  for (const std::string& Line : All) Result += Line + "\n";
  return Result;
}

void AddMissing(const std::string& What, const std::string& From, const std::string& In, std::string& Text) {
  std::multiset<std::string> Rest;
  for (const std::string& Line : Lines(In)) Rest.insert(Line);
  for (const std::string& Line : Lines(From)) {
    const auto Found = Rest.find(Line);
    if (Found == Rest.end())
      Text += What + Line + "\n";
    else
      Rest.erase(Found);
  }
}

}  // namespace

TDatabaseState StateOf(const TTestDatabase& Database) {
  const bool SQLite = Database.Url.starts_with("sqlite:");
  const TQueries& Queries = SQLite ? SQLiteQueries : PostgreSQLQueries;
  TDatabaseState Result;
  for (const std::string& Line : Lines(Database.Text(Queries.Tables))) {
    const std::vector<std::string> Values = Lines(Line, '\t');
    Result.Rows[Values.at(0)] = Sorted(Database.Cells(Values.at(1)));
  }
  Result.Objects = Database.Text(Queries.Objects);
  if (SQLite && Result.Objects.find("\tsqlite_sequence\t") == std::string::npos) return Result;
  for (const std::string& Line : Lines(Database.Text(Queries.Counters))) {
    const std::vector<std::string> Values = Lines(Line, '\t');
    Result.Counters[Values.at(0)] = {std::stoll(Values.at(1)), std::stoll(Values.at(2))};
  }
  return Result;
}

std::map<std::string, TDatabaseState::TCounter> Furthest(const TDatabaseState& One, const TDatabaseState& Other) {
  auto Result = One.Counters;
  for (const auto& [Name, Counter] : Other.Counters) {
    TDatabaseState::TCounter& Known = Result.try_emplace(Name, Counter).first->second;
    if (Counter.Step > 0 ? Counter.Value > Known.Value : Counter.Value < Known.Value) Known = Counter;
  }
  return Result;
}

void ExpectState(const TDatabaseState& Now, const TDatabaseState& Expected) {
  std::string Text;
  AddMissing("- ", Expected.Objects, Now.Objects, Text);
  AddMissing("+ ", Now.Objects, Expected.Objects, Text);
  for (const auto& [Table, Rows] : Expected.Rows) {
    const auto Found = Now.Rows.find(Table);
    const std::string There = Found == Now.Rows.end() ? std::string() : Found->second;
    AddMissing("- " + Table + ": ", Rows, There, Text);
    AddMissing("+ " + Table + ": ", There, Rows, Text);
  }
  for (const auto& [Name, Counter] : Expected.Counters) {
    const auto Found = Now.Counters.find(Name);
    const std::string There = Found == Now.Counters.end() ? "nowhere" : std::to_string(Found->second.Value);
    if (Found == Now.Counters.end() || Found->second != Counter)
      Text += "  " + Name + " stands at " + There + ", not at " + std::to_string(Counter.Value) + "\n";
  }
  EXPECT_TRUE(Now == Expected) << Text;
}

}  // namespace velkrund::tests
