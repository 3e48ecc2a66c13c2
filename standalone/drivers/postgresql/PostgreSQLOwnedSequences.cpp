#include "standalone/drivers/postgresql/PostgreSQLOwnedSequences.h"

#include <algorithm>

#include "standalone/drivers/postgresql/PostgreSQLGrants.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Of the columns of the table $1.
constexpr const char* OwnedStatement = R"(
SELECT c.oid, quote_ident(n.nspname), quote_ident(c.relname), quote_ident(a.attname), p.deptype = 'i',
  c.relpersistence = 'u', obj_description(c.oid, 'pg_class'),
  quote_ident(pg_get_userbyid(c.relowner))
FROM pg_depend p JOIN pg_class c ON c.oid = p.objid AND c.relkind = 'S' JOIN pg_namespace n ON n.oid = c.relnamespace
JOIN pg_attribute a ON a.attrelid = p.refobjid AND a.attnum = p.refobjsubid
WHERE p.classid = 'pg_class'::regclass AND p.refclassid = 'pg_class'::regclass AND p.refobjid = $1::oid
AND p.deptype IN ('a', 'i') ORDER BY c.relname)";

constexpr const char* HasColumnStatement =
    "SELECT EXISTS (SELECT FROM pg_attribute a WHERE a.attrelid = $1::oid AND a.attnum > 0 AND NOT a.attisdropped "
    "AND quote_ident(a.attname) = $2::text)";

}  // namespace

TPostgreSQLOwnedSequences::TPostgreSQLOwnedSequences(TPostgreSQLSession& Session, std::string_view What,
                                                     const std::string& Oid)
    : FSession(Session), FOwned(Read(What, Oid)) {}

std::vector<TPostgreSQLOwnedSequences::TSequence> TPostgreSQLOwnedSequences::Read(std::string_view What,
                                                                                  const std::string& Oid) const {
  const TPostgreSQLResult Rows = FSession.Query(What, OwnedStatement, {Oid.c_str()});
  std::vector<TSequence> Result;
  for (int Row = 0; Row < Rows.RowCount(); ++Row)
    Result.push_back({Rows.Copy(Row, 0), Rows.Copy(Row, 1), Rows.Copy(Row, 2), Rows.Copy(Row, 3), Rows.Boolean(Row, 4),
                      Rows.Boolean(Row, 5), Rows.Copy(Row, 6), Rows.Copy(Row, 7)});
  return Result;
}

void TPostgreSQLOwnedSequences::SetAside(std::string_view What) {
  for (TSequence& Owned : FOwned) {
    // Giving it to the owner that it has locks it: nobody takes a number from it any more.
    FSession.Query(What, Format("ALTER TABLE %s OWNER TO %s", Owned.FullName(), Owned.Owner));
    const TPostgreSQLResult Now =
        FSession.Query(What, Format("SELECT last_value, is_called FROM %s", Owned.FullName()));
    Owned.Last = Now.Copy(0, 0);
    Owned.IsCalled = Now.Boolean(0, 1);
    if (Owned.IsIdentity) continue;
    FSession.Query(What, Format("ALTER SEQUENCE %s OWNED BY NONE", Owned.FullName()));
    FSession.Query(What, Format("ALTER SEQUENCE %s RENAME TO %s", Owned.FullName(), Owned.AsideName()));
  }
}

void TPostgreSQLOwnedSequences::PutBack(const std::string& Oid, const std::string& Table, TPostgreSQLGrants& Grants) {
  std::vector<TSequence> Made = Read("Cannot read the sequences of the new table", Oid);
  for (const TSequence& Owned : FOwned) {
    const auto IsOfColumn = [&](const TSequence& New) { return New.Column == Owned.Column; };
    auto New = std::find_if(Made.begin(), Made.end(), [&](const TSequence& Other) {
      return IsOfColumn(Other) && Other.FullName() == Owned.FullName();
    });
    if (New == Made.end()) New = std::find_if(Made.begin(), Made.end(), IsOfColumn);
    if (New == Made.end()) {
      Return(Owned, Oid, Table);
      continue;
    }
    HandOn(Owned, *New, Grants);
    Made.erase(New);
  }
}

/// The numbers that it has given do not come again.
void TPostgreSQLOwnedSequences::HandOn(const TSequence& Owned, const TSequence& Made, TPostgreSQLGrants& Grants) const {
  const std::string What = Format("Cannot put back the value of the sequence %s", Owned.FullName());
  const std::string Name = Made.FullName();
  FSession.Query(What, "SELECT setval($1::text::regclass, $2::bigint, $3::boolean)",
                 {Name.c_str(), Owned.Last.c_str(), Owned.IsCalled ? "true" : "false"});
  if (!Owned.Comment.empty() && Made.Comment.empty())
    FSession.Query(What, Format("COMMENT ON SEQUENCE %s IS %s", Name, QuotePostgreSQLText(Owned.Comment)));
  if (Owned.IsUnlogged != Made.IsUnlogged)
    FSession.Query(What, Format("ALTER SEQUENCE %s SET %s", Name, Owned.IsUnlogged ? "UNLOGGED" : "LOGGED"));
  Grants.Rename(Owned.FullName(), Name);
  if (!Owned.IsIdentity)
    FSession.Query(Format("Cannot drop the old sequence %s", Owned.FullName()),
                   Format("DROP SEQUENCE %s.%s", Owned.Schema, Owned.AsideName()));
}

void TPostgreSQLOwnedSequences::Return(const TSequence& Owned, const std::string& Oid, const std::string& Table) const {
  if (Owned.IsIdentity) return;
  const std::string Waiting = Owned.Schema + "." + Owned.AsideName();
  const std::string What = Format("Cannot put back the sequence %s", Owned.FullName());
  if (!FSession.Query(What, HasColumnStatement, {Oid.c_str(), Owned.Column.c_str()}).Boolean(0, 0)) {
    FSession.Query(Format("Cannot drop the sequence %s with its column", Owned.FullName()), "DROP SEQUENCE " + Waiting);
    return;
  }
  FSession.Query(What, Format("ALTER SEQUENCE %s RENAME TO %s", Waiting, Owned.Name));
  FSession.Query(What, Format("ALTER SEQUENCE %s OWNED BY %s.%s", Owned.FullName(), Table, Owned.Column));
}

}  // namespace velkrund
