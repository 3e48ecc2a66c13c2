#include "standalone/drivers/postgresql/PostgreSQLSequences.h"

#include <set>
#include <utility>

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

constexpr std::string_view What = "Cannot move the sequences behind the keys that were loaded";

/// Those of identity columns, of columns declared as serial, and those that the default of a column, or of its domain,
/// asks; of the tables $1.
std::string FeedingSequences() {
  return CatalogueStatement(
      "WITH f AS (SELECT d.refobjid AS r, d.refobjsubid::pg_catalog.int4 AS n, d.objid AS s FROM pg_catalog.pg_depend "
      "d "
      "WHERE d.classid = 'pg_catalog.pg_class'::pg_catalog.regclass::pg_catalog.oid AND d.refclassid = d.classid "
      "AND d.deptype = ANY ('{a,i}') AND d.refobjid = ANY ($1::pg_catalog.oid[]) UNION "
      "SELECT v.adrelid, v.adnum::pg_catalog.int4, d.refobjid FROM pg_catalog.pg_attrdef v JOIN pg_catalog.pg_depend d "
      "ON d.classid = 'pg_catalog.pg_attrdef'::pg_catalog.regclass::pg_catalog.oid AND d.objid = v.oid "
      "AND d.refclassid = 'pg_catalog.pg_class'::pg_catalog.regclass::pg_catalog.oid "
      "WHERE v.adrelid = ANY ($1::pg_catalog.oid[]) UNION "
      "SELECT a.attrelid, a.attnum::pg_catalog.int4, d.refobjid FROM pg_catalog.pg_attribute a "
      "JOIN pg_catalog.pg_depend d ON d.classid = 'pg_catalog.pg_type'::pg_catalog.regclass::pg_catalog.oid "
      "AND d.objid = a.atttypid AND d.refclassid = 'pg_catalog.pg_class'::pg_catalog.regclass::pg_catalog.oid "
      "WHERE NOT a.atthasdef AND a.attrelid = ANY ($1::pg_catalog.oid[])) "
      "SELECT f.r, a.attname, c.oid::pg_catalog.regclass, s.seqincrement > '0', s.seqmin, s.seqmax, "
      "pg_catalog.has_sequence_privilege(c.oid, 'SELECT'), pg_catalog.has_sequence_privilege(c.oid, 'UPDATE'), "
      "f.r::pg_catalog.regclass, pg_catalog.quote_ident(a.attname), t.typcategory "
      "FROM f JOIN pg_catalog.pg_class c ON c.oid = f.s AND c.relkind = 'S' "
      "JOIN pg_catalog.pg_sequence s ON s.seqrelid = c.oid "
      "JOIN pg_catalog.pg_attribute a ON a.attrelid = f.r AND a.attnum::pg_catalog.int4 = f.n "
      "JOIN pg_catalog.pg_type t ON t.oid = a.atttypid ORDER BY 3, 9, 10");
}

/// Numbers of the tables $1 whose default calls a function that is not the engine's own.
std::string HiddenDefaults() {
  return CatalogueStatement(
      "SELECT DISTINCT v.adrelid, a.attname, v.adrelid::pg_catalog.regclass, pg_catalog.quote_ident(a.attname) "
      "FROM pg_catalog.pg_attrdef v JOIN pg_catalog.pg_attribute a ON a.attrelid = v.adrelid AND a.attnum = v.adnum "
      "AND a.attgenerated = '' JOIN pg_catalog.pg_type t ON t.oid = a.atttypid AND t.typcategory = 'N' "
      "JOIN pg_catalog.pg_depend d ON d.classid = 'pg_catalog.pg_attrdef'::pg_catalog.regclass::pg_catalog.oid "
      "AND d.objid = v.oid AND d.refclassid = 'pg_catalog.pg_proc'::pg_catalog.regclass::pg_catalog.oid "
      "WHERE v.adrelid = ANY ($1::pg_catalog.oid[]) ORDER BY 3, 4");
}

}  // namespace

void TPostgreSQLSequences::Note(const std::string& TableOid, const std::vector<std::string>& Names,
                                const std::vector<TPostgreSQLEncoder>& Encoders) {
  for (std::size_t I = 0; I < Names.size(); ++I)
    FWritten.push_back({TableOid, Names[I], Encoders[I].Highest(), Encoders[I].Lowest()});
  // Outside of a transaction the rows are there for good.
  if (!FSession.InTransaction()) Move();
}

void TPostgreSQLSequences::Note(const std::string& TableOid, const std::vector<std::string>& Names) {
  for (const std::string& Name : Names) FWritten.push_back({TableOid, Name, std::nullopt, std::nullopt});
  if (!FSession.InTransaction()) Move();
}

std::string TPostgreSQLSequences::Tables() const {
  std::set<std::string> Oids;
  for (const TWritten& Written : FWritten) Oids.insert(Written.TableOid);
  std::string Result = "{";
  for (const std::string& Oid : Oids) Result += (Result.size() > 1 ? "," : "") + Oid;
  return Result += '}';
}

/// What was written, by table and column.
TPostgreSQLSequences::TColumns TPostgreSQLSequences::ByColumn() const {
  TColumns Result;
  for (const TWritten& Written : FWritten)
    Result.emplace(std::pair<std::string_view, std::string_view>(Written.TableOid, Written.Column), &Written);
  return Result;
}

/// Where nobody can tell which sequence a default asks, somebody has to look.
void TPostgreSQLSequences::TellHidden(const std::string& Tables) const {
  const TPostgreSQLResult Rows = FSession.Query(What, HiddenDefaults(), {Tables.c_str()});
  const TColumns Columns = ByColumn();
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    if (Columns.contains({Rows.Text(Row, 0), Rows.Text(Row, 1)}))
      FWarning(Format("the default of %s.%s calls a function: where a sequence behind it stands is not known",
                      Rows.Text(Row, 2), Rows.Text(Row, 3)));
  }
}

/// By their names; those alone that rows were written for.
std::map<std::string, TPostgreSQLSequences::TSequence> TPostgreSQLSequences::Find(const std::string& Tables) const {
  const TPostgreSQLResult Rows = FSession.Query(What, FeedingSequences(), {Tables.c_str()});
  const TColumns Columns = ByColumn();
  std::map<std::string, TSequence> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    const bool Upwards = Rows.Boolean(Row, 3);
    const auto [First, End] = Columns.equal_range({Rows.Text(Row, 0), Rows.Text(Row, 1)});
    for (auto Each = First; Each != End; ++Each) {
      const TWritten* const Written = Each->second;
      TSequence& Sequence =
          Result
              .try_emplace(Rows.Copy(Row, 2),
                           TSequence{Rows.Copy(Row, 2), "", Upwards, Rows.Boolean(Row, 6), Rows.Boolean(Row, 7),
                                     Rows.Integer(Row, 4), Rows.Integer(Row, 5), std::nullopt})
              .first->second;
      const std::string Column = Rows.Copy(Row, 8) + "." + Rows.Copy(Row, 9);
      if (Sequence.Columns.find(Column) == std::string::npos)
        Sequence.Columns += (Sequence.Columns.empty() ? "" : ", ") + Column;
      std::optional<std::int64_t> Last = Upwards ? Written->Highest : Written->Lowest;
      if (!Last) Last = FurthestOf(Rows, Row, Upwards);
      if (!Last) continue;
      if (!Sequence.Furthest || (Upwards ? *Last > *Sequence.Furthest : *Last < *Sequence.Furthest))
        Sequence.Furthest = Last;
    }
  }
  return Result;
}

/// Of a column of other numbers, as it stands in the table.
std::optional<std::int64_t> TPostgreSQLSequences::FurthestOf(const TPostgreSQLResult& Rows, int Row,
                                                             bool Upwards) const {
  const std::string Column = Rows.Copy(Row, 9);
  if (Rows.Text(Row, 10) != "N") {
    FWarning(Format("the sequence %s stays where it is: how the values of %s.%s come from it is not known",
                    Rows.Text(Row, 2), Rows.Text(Row, 8), Column));
    return std::nullopt;
  }
  const TPostgreSQLResult Found = FSession.Query(
      What,
      Format("SELECT pg_catalog.trunc(pg_catalog.%s(%s)) FROM %s WHERE %s::pg_catalog.float8 BETWEEN -9e18 AND 9e18",
             Upwards ? "max" : "min", Column, Rows.Copy(Row, 8), Column));
  return StrToInt64(Found.Text(0, 0));
}

void TPostgreSQLSequences::Stays(const TSequence& Sequence, const std::string& Why) const {
  FWarning(Format("the sequence %s stays where it is, although %s has reached %d: %s", Sequence.Name, Sequence.Columns,
                  *Sequence.Furthest, Why));
}

void TPostgreSQLSequences::MoveOne(const TSequence& Sequence) const {
  const std::int64_t Last = *Sequence.Furthest;
  if (Sequence.Upwards ? Last < Sequence.Min : Last > Sequence.Max) return;
  if (Sequence.Upwards ? Last > Sequence.Max : Last < Sequence.Min) return Stays(Sequence, "its range ends before");
  if (!Sequence.CanRead || !Sequence.CanSet)
    return Stays(Sequence, Format("the right to move it is missing; let its owner GRANT %s ON SEQUENCE %s",
                                  Sequence.CanRead  ? "UPDATE"
                                  : Sequence.CanSet ? "SELECT"
                                                    : "SELECT, UPDATE",
                                  Sequence.Name));
  const std::string Key = std::to_string(Last);
  // A sequence that was never asked will give its current value first.
  FSession.Query(What,
                 Format("SELECT pg_catalog.setval($1::pg_catalog.text::pg_catalog.regclass, $2::bigint) FROM %s "
                        "WHERE $2::bigint OPERATOR(pg_catalog.%s) last_value "
                        "OR (NOT is_called AND $2::bigint OPERATOR(pg_catalog.=) last_value)",
                        Sequence.Name, Sequence.Upwards ? ">" : "<"),
                 {Sequence.Name.c_str(), Key.c_str()});
}

void TPostgreSQLSequences::Move() {
  if (FWritten.empty()) return;
  const std::string Oids = Tables();
  TellHidden(Oids);
  for (const auto& [Name, Sequence] : Find(Oids))
    if (Sequence.Furthest) MoveOne(Sequence);
  Rollback();
}

void TPostgreSQLSequences::SetSavepoint(int Number) {
  FMarks.resize(static_cast<std::size_t>(Number) - 1, FWritten.size());
  FMarks.push_back(FWritten.size());
}

void TPostgreSQLSequences::ReleaseSavepoint(int Number) { FMarks.resize(static_cast<std::size_t>(Number) - 1); }

void TPostgreSQLSequences::RollbackToSavepoint(int Number) {
  const auto Mark = static_cast<std::size_t>(Number) - 1;
  if (FMarks.size() <= Mark) return;
  FWritten.erase(FWritten.begin() + static_cast<std::ptrdiff_t>(FMarks[Mark]), FWritten.end());
  FMarks.resize(Mark);
}

void TPostgreSQLSequences::Rollback() {
  FWritten.clear();
  FMarks.clear();
}

}  // namespace velkrund
