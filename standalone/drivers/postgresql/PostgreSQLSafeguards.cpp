#include "standalone/drivers/postgresql/PostgreSQLSafeguards.h"

#include <algorithm>

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLLocks.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr std::string_view KeysFailed = "Cannot end the load: what was left to check at its end is refused";

/// Of a table ($1) and all its parts; internal ones are foreign keys. Whether the role may change them: it owns the
/// table. With schemas: a trigger may change where names are looked for.
std::string TriggersStatement() {
  return CatalogueStatement(
      "SELECT pg_catalog.quote_ident(n.nspname) || '.' || pg_catalog.quote_ident(c.relname), "
      "pg_catalog.quote_ident(t.tgname), t.tgenabled, pg_catalog.pg_has_role(c.relowner, 'USAGE') "
      "FROM pg_catalog.pg_trigger t JOIN pg_catalog.pg_class c ON c.oid = t.tgrelid "
      "JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace WHERE NOT t.tgisinternal AND t.tgenabled <> 'D' "
      "AND t.tgrelid IN (SELECT $1::pg_catalog.text::pg_catalog.regclass::pg_catalog.oid UNION SELECT p.relid "
      "FROM pg_catalog.pg_partition_tree($1::pg_catalog.text::pg_catalog.regclass) p) ORDER BY 1, 2");
}

/// The deferrable triggers for deletions of a table ($1) and its parts, and whether they wait unless told otherwise.
/// The names that SET CONSTRAINTS knows are those of their constraints.
std::string LateTriggersStatement() {
  return CatalogueStatement(
      "SELECT DISTINCT pg_catalog.quote_ident(n.nspname) || '.' || pg_catalog.quote_ident(k.conname), "
      "t.tginitdeferred FROM pg_catalog.pg_trigger t JOIN pg_catalog.pg_constraint k ON k.oid = t.tgconstraint "
      "JOIN pg_catalog.pg_namespace n ON n.oid = k.connamespace "
      "WHERE NOT t.tgisinternal AND t.tgdeferrable AND t.tgenabled <> 'D' AND (t.tgtype & 8) <> 0 "
      "AND t.tgrelid IN (SELECT $1::pg_catalog.text::pg_catalog.regclass::pg_catalog.oid UNION SELECT p.relid "
      "FROM pg_catalog.pg_partition_tree($1::pg_catalog.text::pg_catalog.regclass) p) ORDER BY 1");
}

/// The constraint that key $1 is a part of, or is itself: a partitioned table's is what can be altered.
std::string KeyStatement() {
  return CatalogueStatement(
      "WITH RECURSIVE k AS (SELECT * FROM pg_catalog.pg_constraint c WHERE c.oid = $1::pg_catalog.oid UNION ALL "
      "SELECT u.* FROM pg_catalog.pg_constraint u JOIN k ON u.oid = k.conparentid) "
      "SELECT pg_catalog.quote_ident(n.nspname) || '.' || pg_catalog.quote_ident(c.relname), "
      "pg_catalog.quote_ident(k.conname), k.condeferrable, "
      "pg_catalog.pg_has_role(c.relowner, 'USAGE'), pg_catalog.pg_get_userbyid(c.relowner) "
      "FROM k JOIN pg_catalog.pg_class c ON c.oid = k.conrelid "
      "JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace WHERE k.conparentid = '0'");
}

}  // namespace

/// A question within the transaction would begin what it sees, before the locks are held.
TPostgreSQLSafeguards::TPostgreSQLSafeguards(TPostgreSQLSession& Session, TLoadNeeds Needs)
    : FSession(Session), FNeeds(std::move(Needs)), FIndexes(Session) {
  if (!FNeeds.RebuildsIndexes) return;
  for (const TLoadNeeds::TTarget& Target : FNeeds.Targets)
    if (Target.Table.Kind == TTableKind::Table && TPostgreSQLIndexesAside::MayChange(Session, Target.Table))
      FAltered.insert(FullName(Target.Table));
}

void TPostgreSQLSafeguards::Lock() { TPostgreSQLLocks(FSession, FNeeds, FAltered).Take(); }

void TPostgreSQLSafeguards::SetAside() {
  FRole = Role();
  DeferWhatWasDeferred();
  if (FNeeds.TriggersOff || FNeeds.BrokenReferences) DisableTriggers();
  DeferKeys();
  if (!FNeeds.BrokenReferences) return;
  RefuseLateKeys();
  RequireReplicaRole();
}

std::string TPostgreSQLSafeguards::Role() const {
  return FSession.Query(KeysFailed, "SHOW session_replication_role").Copy(0, 0);
}

/// The load before this one, in the same transaction, has checked everything at its end, and from then on at once.
void TPostgreSQLSafeguards::DeferWhatWasDeferred() {
  const std::string Names = PostgreSQLNamesOf(FNeeds, FSession.Dialect());
  const TPostgreSQLResult Found = FSession.Query(
      KeysFailed,
      "SELECT EXISTS (SELECT FROM pg_catalog.pg_constraint k WHERE k.condeferred AND k.conrelid OPERATOR("
      "pg_catalog.=) ANY ($1::pg_catalog.text[]::pg_catalog.regclass[]::pg_catalog.oid[]))",
      {Names.c_str()});
  if (Found.Boolean(0, 0)) FSession.Query(KeysFailed, "SET CONSTRAINTS ALL DEFERRED");
}

/// With the checks of references the engine would also leave out those of deferrable unique keys.
void TPostgreSQLSafeguards::RefuseLateKeys() {
  const std::string Names = PostgreSQLNamesOf(FNeeds, FSession.Dialect());
  const TPostgreSQLResult Found =
      FSession.Query(KeysFailed,
                     "SELECT k.conname, k.conrelid::pg_catalog.regclass FROM pg_catalog.pg_constraint k WHERE "
                     "k.condeferrable AND k.contype OPERATOR(pg_catalog.=) ANY ('{p,u,x}') AND k.conrelid OPERATOR("
                     "pg_catalog.=) ANY ($1::pg_catalog.text[]::pg_catalog.regclass[]::pg_catalog.oid[])",
                     {Names.c_str()});
  if (Found.RowCount() == 0) return;
  throw EDatabaseError(
      Format("Cannot load rows that refer to nothing: the engine would not check the deferrable constraint '%s' of the "
             "table %s either. Make it not deferrable for the load",
             Found.Text(0, 0), Found.Text(0, 1)),
      {.Code = TErrorCode::RowRefused});
}

void TPostgreSQLSafeguards::DisableTriggers() {
  constexpr std::string_view What = "Cannot switch triggers off";
  for (const TLoadNeeds::TTarget& Target : FNeeds.Targets) {
    const std::string Name = FSession.Dialect().QualifiedName(Target.Table);
    const TPostgreSQLResult Rows = FSession.Query(What, TriggersStatement(), {Name.c_str()});
    for (int Row = 0; Row < Rows.RowCount(); ++Row) {
      const std::string Table = Rows.Copy(Row, 0), Trigger = Rows.Copy(Row, 1);
      // What is meant for replicas would fire in the role that lets references pass.
      if (!FNeeds.TriggersOff && Rows.Text(Row, 2) != "R") continue;
      if (!Rows.Boolean(Row, 3))
        throw EDatabaseError(
            Format("%s: only the owner of the table %s can do that to its trigger %s", What, Table, Trigger),
            {.Code = TErrorCode::DatabaseAccess, .Table = FullName(Target.Table)});
      FSession.Query(What, Format("ALTER TABLE ONLY %s DISABLE TRIGGER %s", Table, Trigger));
      FTriggers.push_back({Table, Trigger, Rows.Text(Row, 2).front()});
    }
  }
}

void TPostgreSQLSafeguards::DeferKeys() {
  constexpr std::string_view What = "Cannot load tables whose foreign keys form a circle";
  for (const TForeignKey& Key : FNeeds.Circular) {
    const TPostgreSQLResult Found = FSession.Query(What, KeyStatement(), {Key.Id.c_str()});
    if (Found.RowCount() == 0 || Found.Boolean(0, 2)) continue;
    const TKey Altered{Found.Copy(0, 0), Found.Copy(0, 1)};
    const auto IsIt = [&](const TKey& Other) { return Other.Table == Altered.Table && Other.Name == Altered.Name; };
    if (std::any_of(FKeys.begin(), FKeys.end(), IsIt)) continue;
    if (!Found.Boolean(0, 3))
      throw EDatabaseError(
          Format("%s: the constraint %s of the table %s is checked row by row, and only the owner of the table, '%s', "
                 "can have it checked at the end of the load",
                 What, Altered.Name, Altered.Table, Found.Copy(0, 4)),
          {.Code = TErrorCode::DatabaseAccess, .Table = FullName(Key.From)});
    FSession.Query(What, Format("ALTER TABLE %s ALTER CONSTRAINT %s DEFERRABLE", Altered.Table, Altered.Name));
    FKeys.push_back(Altered);
  }
  if (!FNeeds.Circular.empty()) FSession.Query(What, "SET CONSTRAINTS ALL DEFERRED");
}

void TPostgreSQLSafeguards::SetRole(const std::string& Role) {
  FSession.Query("Cannot load rows that refer to nothing", "SET LOCAL session_replication_role = " + Role);
}

/// Shows what is missing before the tables are emptied.
void TPostgreSQLSafeguards::RequireReplicaRole() {
  try {
    SetRole("replica");
  } catch (const EDatabaseError& Error) {
    constexpr std::string_view MissingRight = "42501";
    if (Error.Info().EngineCode != MissingRight) throw;
    throw EDatabaseError(
        "Cannot load rows that refer to nothing: the engine checks every reference, unless a role with the right to "
        "set session_replication_role loads the rows: a superuser, or one that was granted SET ON PARAMETER "
        "session_replication_role",
        {.Code = TErrorCode::References, .EngineCode = Error.Info().EngineCode});
  }
  SetRole(FRole);
}

void TPostgreSQLSafeguards::EndEmptying() {
  constexpr std::string_view What = "Cannot let triggers fire that were to fire later";
  for (const TLoadNeeds::TTarget& Target : FNeeds.Targets) {
    if (!Target.Replaced || !Target.HasDeleteTriggers) continue;
    const std::string Name = FSession.Dialect().QualifiedName(Target.Table);
    const TPostgreSQLResult Late = FSession.Query(What, LateTriggersStatement(), {Name.c_str()});
    for (int Row = 0; Row < Late.RowCount(); ++Row) {
      FSession.Query(What, Format("SET CONSTRAINTS %s IMMEDIATE", Late.Text(Row, 0)));
      if (Late.Boolean(Row, 1)) FSession.Query(What, Format("SET CONSTRAINTS %s DEFERRED", Late.Text(Row, 0)));
    }
  }
  // Behind rows that are allowed to be missing, the checks of what was deleted would find them missing.
  if (FNeeds.BrokenReferences) FSession.Query(What, "SET CONSTRAINTS ALL IMMEDIATE");
}

void TPostgreSQLSafeguards::BeginRows() {
  if (!FNeeds.BrokenReferences) return;
  // What the emptying has left to check is complete only with the rows; it is checked behind them.
  SetRole("replica");
}

void TPostgreSQLSafeguards::EndRows() {
  if (FNeeds.BrokenReferences) SetRole(FRole);
  if (Role() != FRole)
    throw EDatabaseError("A trigger has changed session_replication_role, so that references were not checked any more",
                         {.Code = TErrorCode::TriggerRefused});
  FSession.Query(KeysFailed, "SET CONSTRAINTS ALL IMMEDIATE");
}

void TPostgreSQLSafeguards::PutBack() {
  constexpr std::string_view What = "Cannot put back what was set aside for the load";
  for (const TKey& Key : FKeys)
    FSession.Query(What, Format("ALTER TABLE %s ALTER CONSTRAINT %s NOT DEFERRABLE", Key.Table, Key.Name));
  for (const TTriggerState& Trigger : FTriggers) {
    const char* const Kind = Trigger.State == 'A' ? "ALWAYS " : Trigger.State == 'R' ? "REPLICA " : "";
    FSession.Query(What, Format("ALTER TABLE ONLY %s ENABLE %sTRIGGER %s", Trigger.Table, Kind, Trigger.Name));
  }
}

}  // namespace velkrund
