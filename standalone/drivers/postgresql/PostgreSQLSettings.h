#pragma once

#include <string>

namespace velkrund {

// What every session asks a server for.

/// Gives the session its settings, $1 being how long a lock is waited for, in milliseconds, and tells what is to be
/// known of it in the columns below. To be run again where something may have changed a setting.
const std::string& PostgreSQLSettingsStatement();
enum TPostgreSQLSessionColumn { CurrentSchemaColumn, ServerVersionColumn, ReadOnlyColumn, RoleColumn };

/// Has a server that can do so look now and then, while it works, whether we are still there. An error where its system
/// has no way to find out.
constexpr const char* PostgreSQLCheckClientStatement =
    "SELECT CASE WHEN pg_catalog.current_setting('client_connection_check_interval', true) = '0' "
    "THEN pg_catalog.set_config('client_connection_check_interval', '10000', false) END";

/// For a transaction that writes: what a client that has vanished was sent last is not repeated for a quarter of an
/// hour. Not where rows are read, since a reader that pauses looks the same to the server's system. Does not fix the
/// moment that the transaction sees: locks come first.
constexpr const char* PostgreSQLWritingStatement = "SET LOCAL tcp_user_timeout = 300000";

}  // namespace velkrund
