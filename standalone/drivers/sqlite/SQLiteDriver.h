#pragma once

#include "standalone/drivers/Driver.h"
#include "standalone/drivers/sqlite/SQLiteScriptWriter.h"

namespace velkrund {

/// SQLite: "sqlite:PATH", or "sqlite::memory:" for a database that lives as long as its connection. Percent signs in
/// paths stand for themselves. A file without write rights is opened for reading.
class TSQLiteDriver final : public TDriver {
 public:
  std::string_view Scheme() const override { return "sqlite"; }
  /// The canonical path, so that all spellings of one file's name share a connection.
  std::string Identity(const TDatabaseUrl& Url, const TConnectOptions& Options) const override;
  std::unique_ptr<TConnection> Connect(const TDatabaseUrl& Url, const TConnectOptions& Options) const override;
  const TScriptWriter& Scripts() const override { return FScripts; }

 private:
  const TSQLiteScriptWriter FScripts{};
};

}  // namespace velkrund
