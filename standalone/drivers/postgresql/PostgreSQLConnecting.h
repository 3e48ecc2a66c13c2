#pragma once

#include <map>
#include <memory>
#include <string>

#include "standalone/drivers/Driver.h"

struct pg_conn;

namespace velkrund {

/// What is known of a database before it is connected to.
struct TPostgreSQLAddress {
  std::string Info;           // an address or a "key=value" text, as the client library takes it; may be empty
  std::string ShownName;      // in messages, without secrets
  std::string Password = {};  // that somebody was asked for; empty: none
};

using TConnectionParameters = std::map<std::string, std::string, std::less<>>;

/// All that the client library will go by: what the address says, else an entry of the service file, else the
/// environment. Without a connection. Empty when the address cannot be read.
TConnectionParameters MeantPostgreSQLParameters(const std::string& Info);

struct TFinishPostgreSQL {
  void operator()(pg_conn* Connection) const;
};
using TPostgreSQLHandle = std::unique_ptr<pg_conn, TFinishPostgreSQL>;

/// How long a server may take until it is ready; 0: as long as it takes.
std::chrono::seconds PostgreSQLConnectTimeout(pg_conn* Connection);

/// Makes a connection on which nothing waits inside the client library. What the person at a terminal is asked for is
/// kept in Address. Raises EDatabaseError, and EAbort when Options.Canceled, polled meanwhile, says so.
TPostgreSQLHandle ConnectToPostgreSQL(TPostgreSQLAddress& Address, const TConnectOptions& Options);

}  // namespace velkrund
