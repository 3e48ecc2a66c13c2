#include "standalone/drivers/postgresql/PostgreSQLLocks.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr const char* Weakest = "ROW EXCLUSIVE";
constexpr std::string_view LockFailed = "Cannot lock the tables of the load";

/// How many locks a load of the tables $1 takes, with those on indexes and parts, and for how many the server has room
/// for certain. What it has beyond that depends on what else is in its memory.
std::string LockRoomStatement() {
  return "WITH t AS (SELECT pg_catalog.unnest($1::pg_catalog.text[])::pg_catalog.regclass AS r), "
         "p AS (SELECT r::pg_catalog.oid FROM t UNION SELECT p.relid::pg_catalog.oid FROM t, "
         "pg_catalog.pg_partition_tree(t.r) p) "
         "SELECT (SELECT pg_catalog.count(*) FROM p) + (SELECT pg_catalog.count(*) FROM pg_catalog.pg_index i "
         "JOIN p ON p.r OPERATOR(pg_catalog.=) i.indrelid), "
         "pg_catalog.current_setting('max_locks_per_transaction')::bigint OPERATOR(pg_catalog.*) "
         "(pg_catalog.current_setting('max_connections')::bigint OPERATOR(pg_catalog.+) "
         "pg_catalog.current_setting('max_prepared_transactions')::bigint)";
}

/// Takes the locks on indexes that the rows will need: the planner looks at all of a table.
constexpr std::string_view PlanAll =
    "DO $velkrund$ DECLARE t pg_catalog.text; BEGIN FOREACH t IN ARRAY %s::pg_catalog.text[] LOOP "
    "EXECUTE 'EXPLAIN SELECT FROM ' OPERATOR(pg_catalog.||) t; END LOOP; END $velkrund$";

std::string Literal(std::string_view Text) {
  std::string Result = "E'";
  for (const char C : Text) {
    if (C == '\'' || C == '\\') Result += C;
    Result += C;
  }
  return Result += '\'';
}

}  // namespace

std::string PostgreSQLNamesOf(const TLoadNeeds& Needs, const TPostgreSQLDialect& Dialect) {
  std::vector<std::string> Names;
  for (const TLoadNeeds::TTarget& Target : Needs.Targets) Names.push_back(Dialect.QualifiedName(Target.Table));
  return PostgreSQLArray(Names);
}

/// A replaced table is kept from writers, whose changes could otherwise not be told from what is deleted; readers go
/// on.
const char* TPostgreSQLLocks::ModeFor(const TLoadNeeds::TTarget& Target) const {
  if (FAltered.contains(FullName(Target.Table))) return "ACCESS EXCLUSIVE";
  return Target.Replaced || FNeeds.TriggersOff || FNeeds.BrokenReferences ? "SHARE ROW EXCLUSIVE" : Weakest;
}

void TPostgreSQLLocks::Take() {
  for (const TForeignKey& Key : FNeeds.Circular) FAltered.insert(FullName(Key.From));
  std::vector<TWanted> Tables;
  for (const TLoadNeeds::TTarget& Target : FNeeds.Targets)
    if (Target.Table.Kind == TTableKind::Table) Tables.push_back({&Target, ModeFor(Target), FullName(Target.Table)});
  // Everybody in the same order, so that nobody waits for somebody who waits; those that hardly anybody waits for last.
  std::sort(Tables.begin(), Tables.end(), [](const TWanted& A, const TWanted& B) {
    return std::pair(A.Mode == Weakest, std::string_view(A.Name)) <
           std::pair(B.Mode == Weakest, std::string_view(B.Name));
  });
  const auto FirstWeak =
      std::find_if(Tables.begin(), Tables.end(), [](const TWanted& Table) { return Table.Mode == Weakest; });
  // A question begins what the transaction sees: no sooner than it has to.
  std::for_each(Tables.begin(), FirstWeak, [this](const TWanted& Table) { LockOne(Table); });
  LockWeakly({FirstWeak, Tables.end()});
  CheckRoom();
}

/// Who may write some columns alone gets the lock with the rows, but not by asking for it.
void TPostgreSQLLocks::LockWeakly(std::span<const TWanted> Tables) {
  if (Tables.empty()) return;
  std::vector<std::string> Names;
  for (const TWanted& Table : Tables) Names.push_back(FSession.Dialect().QualifiedName(Table.Target->Table));
  const std::string All = PostgreSQLArray(Names);
  const TPostgreSQLResult Rights =
      FSession.Query(LockFailed,
                     "SELECT pg_catalog.has_table_privilege(a.name, 'INSERT, UPDATE, DELETE, TRUNCATE') FROM ROWS FROM "
                     "(pg_catalog.unnest($1::pg_catalog.text[])) WITH ORDINALITY AS a (name, place) ORDER BY a.place",
                     {All.c_str()});
  for (std::size_t I = 0; I < Tables.size(); ++I)
    if (Rights.Boolean(static_cast<int>(I), 0)) LockOne(Tables[I]);
}

void TPostgreSQLLocks::LockOne(const TWanted& Table) {
  try {
    FSession.Query(Format("Cannot lock the table '%s' for the load", Table.Name),
                   Format("LOCK TABLE %s IN %s MODE", FSession.Dialect().SQLName(Table.Target->Table), Table.Mode));
  } catch (EDatabaseError& Error) {
    if (Error.Info().Code == TErrorCode::DatabaseLocks) RaiseNoRoom(Error.Info().EngineCode);
    Error.Add({.Table = Table.Name});
    throw;
  }
}

void TPostgreSQLLocks::RaiseNoRoom(const std::string& EngineCode) {
  throw EDatabaseError(
      "The load needs more locks in one transaction than the server has room for: raise its setting "
      "max_locks_per_transaction and restart it, or commit the tables one by one",
      {.Code = TErrorCode::DatabaseLocks, .EngineCode = EngineCode});
}

void TPostgreSQLLocks::CheckRoom() {
  const std::string All = PostgreSQLNamesOf(FNeeds, FSession.Dialect());
  const TPostgreSQLResult Room = FSession.Query(LockFailed, LockRoomStatement(), {All.c_str()});
  if (Room.Integer(0, 0) <= Room.Integer(0, 1)) return;
  try {
    FSession.Query(LockFailed, Format(PlanAll, Literal(All)));
  } catch (const EDatabaseError& Error) {
    if (Error.Info().Code != TErrorCode::DatabaseLocks) throw;
    RaiseNoRoom(Error.Info().EngineCode);
  }
}

}  // namespace velkrund
