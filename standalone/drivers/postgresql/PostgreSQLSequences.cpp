#include "standalone/drivers/postgresql/PostgreSQLSequences.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// Those of identity columns and of columns declared as serial.
constexpr const char* OwnedSequences =
    "SELECT a.attname, pg_catalog.quote_ident(n.nspname) || '.' || pg_catalog.quote_ident(c.relname), "
    "s.seqincrement > 0, s.seqmin, s.seqmax "
    "FROM pg_catalog.pg_depend d JOIN pg_catalog.pg_class c ON c.oid = d.objid AND c.relkind = 'S' "
    "JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
    "JOIN pg_catalog.pg_sequence s ON s.seqrelid = c.oid "
    "JOIN pg_catalog.pg_attribute a ON a.attrelid = d.refobjid AND a.attnum = d.refobjsubid "
    "WHERE d.classid = 'pg_catalog.pg_class'::regclass AND d.refclassid = 'pg_catalog.pg_class'::regclass "
    "AND d.deptype IN ('a', 'i') AND d.refobjid = $1::oid";

}  // namespace

void MovePostgreSQLSequences(TPostgreSQLSession& Session, const std::string& What, const std::string& TableOid,
                             const std::vector<std::string>& Names, const std::vector<TPostgreSQLEncoder>& Encoders) {
  const auto HasKeys = [](const TPostgreSQLEncoder& Encoder) { return Encoder.Highest().has_value(); };
  if (std::none_of(Encoders.begin(), Encoders.end(), HasKeys)) return;
  const TPostgreSQLResult Owned = Session.Query(What, OwnedSequences, {TableOid.c_str()});
  for (int Row = 0; Row < Owned.RowCount(); ++Row) {
    const auto Written = std::find(Names.begin(), Names.end(), Owned.Text(Row, 0));
    if (Written == Names.end()) continue;
    const TPostgreSQLEncoder& Encoder = Encoders[static_cast<std::size_t>(Written - Names.begin())];
    const bool Upwards = Owned.Boolean(Row, 2);
    const std::optional<std::int64_t> Last = Upwards ? Encoder.Highest() : Encoder.Lowest();
    if (!Last || *Last < Owned.Integer(Row, 3) || *Last > Owned.Integer(Row, 4)) continue;
    const std::string Sequence = Owned.Copy(Row, 1);
    const std::string Key = std::to_string(*Last);
    // A sequence that was never asked will give its current value first.
    Session.Query(What,
                  Format("SELECT pg_catalog.setval($1::text::regclass, $2::bigint) FROM %s "
                         "WHERE $2::bigint %s last_value OR (NOT is_called AND $2::bigint = last_value)",
                         Sequence, Upwards ? ">" : "<"),
                  {Sequence.c_str(), Key.c_str()});
  }
}

}  // namespace velkrund
