#include "standalone/drivers/postgresql/PostgreSQLLocks.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

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
  std::string Result = "{";
  for (const TLoadNeeds::TTarget& Target : Needs.Targets) {
    Result += Result.size() > 1 ? ",\"" : "\"";
    for (const char C : Dialect.QualifiedName(Target.Table)) {
      if (C == '"' || C == '\\') Result += '\\';
      Result += C;
    }
    Result += '"';
  }
  return Result += '}';
}

bool TPostgreSQLLocks::NeedsOwner(const TTableInfo& Table) const {
  return std::any_of(FNeeds.Circular.begin(), FNeeds.Circular.end(),
                     [&](const TForeignKey& Key) { return FullName(Key.From) == FullName(Table); });
}

/// A replaced table is kept from writers, whose changes could otherwise not be told from what is deleted; readers go
/// on.
const char* TPostgreSQLLocks::ModeFor(const TLoadNeeds::TTarget& Target) const {
  if (NeedsOwner(Target.Table)) return "ACCESS EXCLUSIVE";
  return Target.Replaced || FNeeds.TriggersOff || FNeeds.BrokenReferences ? "SHARE ROW EXCLUSIVE" : Weakest;
}

void TPostgreSQLLocks::Take() {
  std::vector<const TLoadNeeds::TTarget*> Tables;
  for (const TLoadNeeds::TTarget& Target : FNeeds.Targets)
    if (Target.Table.Kind == TTableKind::Table) Tables.push_back(&Target);
  // Everybody in the same order, so that nobody waits for somebody who waits; those that hardly anybody waits for last.
  const auto Place = [this](const TLoadNeeds::TTarget* Target) {
    return std::pair(ModeFor(*Target) == Weakest, FullName(Target->Table));
  };
  std::sort(Tables.begin(), Tables.end(), [&](const auto* A, const auto* B) { return Place(A) < Place(B); });
  for (const TLoadNeeds::TTarget* Target : Tables)
    if (ModeFor(*Target) != Weakest || MayLock(*Target)) LockOne(*Target);
  CheckRoom();
}

/// Who may write some columns alone gets the lock with the rows, but not by asking for it.
bool TPostgreSQLLocks::MayLock(const TLoadNeeds::TTarget& Target) {
  const std::string Name = FSession.Dialect().QualifiedName(Target.Table);
  return FSession
      .Query(LockFailed,
             "SELECT pg_catalog.has_table_privilege($1::pg_catalog.text, 'INSERT, UPDATE, DELETE, TRUNCATE')",
             {Name.c_str()})
      .Boolean(0, 0);
}

void TPostgreSQLLocks::LockOne(const TLoadNeeds::TTarget& Target) {
  const std::string Name = FullName(Target.Table);
  try {
    FSession.Query(Format("Cannot lock the table '%s' for the load", Name),
                   Format("LOCK TABLE %s IN %s MODE", FSession.Dialect().SQLName(Target.Table), ModeFor(Target)));
  } catch (EDatabaseError& Error) {
    if (Error.Info().Code == TErrorCode::DatabaseLocks) RaiseNoRoom(Error.Info().EngineCode);
    Error.Add({.Table = Name});
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
