#pragma once

#include "standalone/drivers/Driver.h"
#include "standalone/drivers/postgresql/PostgreSQLScriptWriter.h"

namespace velkrund {

/// PostgreSQL, from version 12: "postgresql://USER@HOST:PORT/NAME?KEY=VALUE", "postgresql:NAME" or
/// "postgresql:KEY=VALUE KEY=VALUE". What an address leaves open comes from the engine's own environment variables,
/// service file and password file.
class TPostgreSQLDriver final : public TDriver {
 public:
  std::string_view Scheme() const override { return "postgresql"; }
  bool Accepts(std::string_view Scheme) const override { return Scheme == "postgresql" || Scheme == "postgres"; }
  /// Host, port, database and service, wherever they come from.
  std::string Identity(const TDatabaseUrl& Url, const TConnectOptions& Options) const override;
  std::string SessionIdentity(const TDatabaseUrl& Url, const TConnectOptions& Options) const override;
  std::unique_ptr<TConnection> Connect(const TDatabaseUrl& Url, const TConnectOptions& Options) const override;
  const TScriptWriter& Scripts() const override { return FScripts; }

 private:
  class TMeant;
  const TPostgreSQLScriptWriter FScripts{};
};

}  // namespace velkrund
