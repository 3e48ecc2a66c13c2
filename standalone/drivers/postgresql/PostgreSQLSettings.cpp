#include "standalone/drivers/postgresql/PostgreSQLSettings.h"

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

struct TSetting {
  const char* Name;
  const char* Value;
};

constexpr TSetting Settings[] = {
    // Texts that depend on settings get one form.
    {"DateStyle", "ISO, YMD"},
    {"IntervalStyle", "postgres"},
    {"TimeZone", "UTC"},
    {"extra_float_digits", "3"},
    {"bytea_output", "hex"},
    {"standard_conforming_strings", "on"},
    {"xmloption", "content"},
    {"array_nulls", "on"},
    // Rows come in the table's own order, not in that of a scan that another session has begun or that several
    // processes share.
    {"synchronize_seqscans", "off"},
    {"max_parallel_workers_per_gather", "0"},
    // Rows that a policy hides are an error, not less rows.
    {"row_security", "off"},
    // A load takes as long as it takes, whatever is set for the role or the database.
    {"statement_timeout", "0"},
    {"idle_in_transaction_session_timeout", "0"},
    // A client whose machine has gone is noticed, and what it has locked let go.
    {"tcp_keepalives_idle", "60"},
    {"tcp_keepalives_interval", "10"},
    {"tcp_keepalives_count", "6"},
};
/// Those that newer servers alone have.
constexpr TSetting NewerSettings[] = {{"idle_session_timeout", "0"}, {"transaction_timeout", "0"}};

std::string MakeStatement() {
  std::string Result =
      "SELECT pg_catalog.current_schema(), pg_catalog.current_setting('server_version'), "
      "pg_catalog.current_setting('transaction_read_only')::pg_catalog.bool OR pg_catalog.pg_is_in_recovery(), "
      "pg_catalog.current_setting('session_replication_role'), pg_catalog.set_config('lock_timeout', $1, false)";
  for (const auto& [Name, Value] : Settings)
    Result += Format(", pg_catalog.set_config('%s', '%s', false)", Name, Value);
  for (const auto& [Name, Value] : NewerSettings)
    Result += Format(
        ", CASE WHEN pg_catalog.current_setting('%s', true) IS NOT NULL "
        "THEN pg_catalog.set_config('%s', '%s', false) END",
        Name, Name, Value);
  return Result;
}

}  // namespace

const std::string& PostgreSQLSettingsStatement() {
  static const std::string Result = MakeStatement();
  return Result;
}

}  // namespace velkrund
