#include "standalone/drivers/postgresql/PostgreSQLSequences.h"

#include <algorithm>

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Those of identity columns and of columns declared as serial.
std::string OwnedSequences() {
  return CatalogueStatement(
      "SELECT a.attname, pg_catalog.quote_ident(n.nspname) || '.' || pg_catalog.quote_ident(c.relname), "
      "s.seqincrement > 0, s.seqmin, s.seqmax, pg_catalog.has_sequence_privilege(c.oid, 'SELECT'), "
      "pg_catalog.has_sequence_privilege(c.oid, 'UPDATE') "
      "FROM pg_catalog.pg_depend d JOIN pg_catalog.pg_class c ON c.oid = d.objid AND c.relkind = 'S' "
      "JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
      "JOIN pg_catalog.pg_sequence s ON s.seqrelid = c.oid "
      "JOIN pg_catalog.pg_attribute a ON a.attrelid = d.refobjid AND a.attnum = d.refobjsubid "
      "WHERE d.classid = 'pg_catalog.pg_class'::pg_catalog.regclass::pg_catalog.oid AND d.refclassid = d.classid "
      "AND d.deptype = ANY ('{a,i}') AND d.refobjid = $1::pg_catalog.oid");
}

/// What it takes to move a sequence: to see where it stands, and to set it.
void CheckRights(const std::string& What, std::string_view Column, std::string_view Sequence, bool CanRead,
                 bool CanSet) {
  if (CanRead && CanSet) return;
  const std::string Missing = CanRead ? "UPDATE" : CanSet ? "SELECT" : "SELECT, UPDATE";
  throw EDatabaseError(
      Format("%s: the sequence of its column '%s' cannot be moved behind the highest key, since the "
             "right to do so is missing: let its owner GRANT %s ON SEQUENCE %s",
             What, Column, Missing, Sequence));
}

}  // namespace

void MovePostgreSQLSequences(TPostgreSQLSession& Session, const std::string& What, const std::string& TableOid,
                             const std::vector<std::string>& Names, const std::vector<TPostgreSQLEncoder>& Encoders) {
  const auto HasKeys = [](const TPostgreSQLEncoder& Encoder) { return Encoder.Highest().has_value(); };
  if (std::none_of(Encoders.begin(), Encoders.end(), HasKeys)) return;
  const TPostgreSQLResult Owned = Session.Query(What, OwnedSequences(), {TableOid.c_str()});
  for (int Row = 0; Row < Owned.RowCount(); ++Row) {
    const auto Written = std::find(Names.begin(), Names.end(), Owned.Text(Row, 0));
    if (Written == Names.end()) continue;
    const TPostgreSQLEncoder& Encoder = Encoders[static_cast<std::size_t>(Written - Names.begin())];
    const bool Upwards = Owned.Boolean(Row, 2);
    const std::optional<std::int64_t> Last = Upwards ? Encoder.Highest() : Encoder.Lowest();
    if (!Last || *Last < Owned.Integer(Row, 3) || *Last > Owned.Integer(Row, 4)) continue;
    const std::string Sequence = Owned.Copy(Row, 1);
    CheckRights(What, *Written, Sequence, Owned.Boolean(Row, 5), Owned.Boolean(Row, 6));
    const std::string Key = std::to_string(*Last);
    // A sequence that was never asked will give its current value first.
    Session.Query(What,
                  Format("SELECT pg_catalog.setval($1::pg_catalog.text::pg_catalog.regclass, $2::bigint) FROM %s "
                         "WHERE $2::bigint OPERATOR(pg_catalog.%s) last_value "
                         "OR (NOT is_called AND $2::bigint OPERATOR(pg_catalog.=) last_value)",
                         Sequence, Upwards ? ">" : "<"),
                  {Sequence.c_str(), Key.c_str()});
  }
}

}  // namespace velkrund
